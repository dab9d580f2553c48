#!/usr/bin/env bash
# Installs the package into a clean Debian, and starts the program there as its menu does, without a screen.
#
#     packaging/debian/try.sh PACKAGE.deb
set -euo pipefail

# Runs commands in the clean Debian, whose root is the second argument.
if [ "$1" = --in ]; then
    root=$2
    chroot "$root" apt-get install --yes --no-install-recommends /tmp/busquill.deb
    chroot "$root" useradd --create-home engineer
    chroot "$root" runuser --login engineer <<'INSIDE'
set -eu
export QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME=$HOME/config
mkdir -p "$XDG_CONFIG_HOME/Tarnlight Labs" work
printf '[Setup]\nComPort=<None>\n' >"$XDG_CONFIG_HOME/Tarnlight Labs/Busquill!.conf"
cd work
$(sed -n 's/^Exec=//p' /usr/share/applications/com.tarnlightlabs.Busquill.desktop) &
for _ in $(seq 300); do
    [ -e ~/.local/state/busquill/copied-files ] && break
    sleep 0.1
done
sleep 5 # meanwhile it opens its main window
kill $! || { echo "the program has ended" >&2; exit 1; }
diff -r /usr/share/busquill ~/.local/share/busquill
test -z "$(ls -A .)"
busquill-trace info ~/.local/share/busquill/Trigger1.tra
busquill-board --version
man=/usr/share/man
gzip -t "$man"/man1/busquill.1.gz "$man"/man5/busquill-files.5.gz
echo "The program starts from its desktop entry."
INSIDE
    exit
fi

cd "$(dirname "$0")/../.."
. tools/setup.sh
. /etc/os-release
as_root mmdebstrap --variant=apt --format=null \
    --customize-hook="copy-in '$(realpath "$1")' /tmp" \
    --customize-hook="mv \"\$1/tmp/$(basename "$1")\" \"\$1/tmp/busquill.deb\"" \
    --customize-hook="'$PWD/packaging/debian/try.sh' --in \"\$1\"" \
    "$VERSION_CODENAME" /dev/null
