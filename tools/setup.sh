# Sourced by run, test and the CI script: installs missing Debian packages and builds a preset.

build_packages=(g++ cmake ninja-build ccache lld pkg-config qt6-base-dev qt6-svg-dev libusb-1.0-0-dev
                libarchive-dev libqt6svg6 libcli11-dev nlohmann-json3-dev
                fonts-liberation)
test_packages=(googletest libgtest-dev libgmock-dev libbenchmark-dev python3 sigrok-cli gtkwave pciutils
               poppler-utils sqlite3)
screenless_packages=(xvfb xauth)
check_packages=(git clang clang-format clang-tidy libclang-rt-14-dev ripgrep desktop-file-utils appstream
                shared-mime-info libglib2.0-bin libxml2-utils mandoc lintian mmdebstrap)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# install_missing PACKAGE...
install_missing() {
    command -v dpkg-query >/dev/null || return 0 # another system: the packages are the user's
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing ${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [CMAKE-OPTION...] [-- TARGET...]
build() {
    local preset=$1 options=() targets=()
    shift
    while [ $# -gt 0 ]; do
        if [ "$1" = -- ]; then
            shift
            targets=(--target "$@")
            break
        fi
        options+=("$1")
        shift
    done
    cmake --preset "$preset" "${options[@]}" >/dev/null
    cmake --build --preset "$preset" "${targets[@]}"
}

# run_tests PRESET [CTEST-OPTION...]
run_tests() {
    local preset=$1
    shift
    # Tests spend most of their time waiting: for boards, timers, windows.
    ctest --preset "$preset" -j $((3 * $(nproc))) "$@"
}
