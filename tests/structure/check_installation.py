#!/usr/bin/env python3
"""Installs the program into a folder, and checks what is there with the tools of the desktop.

    check_installation.py install CMAKE BUILD ROOT   installs into ROOT/usr, replacing what is there
    check_installation.py CHECK ROOT SOURCE VERSION  a check of the list below

Exits 1 and prints what is wrong, if anything is; 77 where the tool for it is missing.
"""

import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

ID = "com.tarnlightlabs.Busquill"
TYPES = "application/vnd.tarnlightlabs.busquill."
MISSING_TOOL = 77


def run(*command, **options):
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, **options)


def said_by(*command, **options):
    """Returns the complaints of a checker."""
    result = run(*command, **options)
    return [f"{command[0]}: {result.stdout.strip()}"] if result.returncode != 0 else []


def need(tool):
    if shutil.which(tool) is None:
        print(f"SKIPPED: {tool} is not installed")
        sys.exit(MISSING_TOOL)


def install(cmake, build, root):
    shutil.rmtree(root, ignore_errors=True)
    result = run(cmake, "--install", build, "--prefix", root / "usr")
    return [result.stdout] if result.returncode != 0 else []


def check_files(usr, source, version):
    found = {str(path.relative_to(usr)) for path in usr.rglob("*") if not path.is_dir()}
    expected = set((source / "tests/structure/installed_files.txt").read_text().split())
    wrong = [f"not installed: {name}" for name in sorted(expected - found)]
    wrong += [f"not in the list: {name}" for name in sorted(found - expected)]
    for path in (usr / "bin").iterdir():
        if not os.access(path, os.X_OK):
            wrong.append(f"cannot be run: {path.name}")
    return wrong


def check_desktop(usr, source, version):
    need("desktop-file-validate")
    entries = sorted((usr / "share/applications").iterdir())
    wrong = []
    for entry in entries:
        said = run("desktop-file-validate", entry)
        if said.stdout.strip():
            wrong.append(said.stdout.strip())
        text = entry.read_text()
        for key in ("Exec", "TryExec"):
            program = re.search(rf"^{key}=(\S+)", text, re.M).group(1)
            if not os.access(usr / "bin" / program, os.X_OK):
                wrong.append(f"{entry.name}: {program} is not installed")
        icon = re.search(r"^Icon=(\S+)", text, re.M).group(1)
        if not (usr / f"share/icons/hicolor/scalable/apps/{icon}.svg").exists():
            wrong.append(f"{entry.name}: no icon {icon}")
    # The menu's entry has no argument: file names on the command line are ignored.
    if not re.search(r"^Exec=busquill-open$", (usr / f"share/applications/{ID}.desktop").read_text(), re.M):
        wrong.append("the menu's entry names something else than busquill-open alone")
    return wrong


def check_appstream(usr, source, version):
    need("appstreamcli")
    page = usr / f"share/metainfo/{ID}.metainfo.xml"
    wrong = said_by("appstreamcli", "validate", "--no-net", page)
    text = page.read_text()
    if f'<release version="{version}"' not in text:
        wrong.append(f"{page.name}: not of version {version}")
    entry = (usr / f"share/applications/{ID}.Open.desktop").read_text()
    opened = set(re.search(r"^MimeType=(.*)$", entry, re.M).group(1).strip(";").split(";"))
    named = set(re.findall(r"<mediatype>(.*?)</mediatype>", text))
    known = set(re.findall(r'<mime-type type="(.*?)"', (usr / f"share/mime/packages/{ID}.xml").read_text()))
    wrong += [f"opened, but not described: {kind}" for kind in sorted(opened - named)]
    wrong += [f"described, but not opened: {kind}" for kind in sorted(named - opened)]
    wrong += [f"opened, but not recognised: {kind}" for kind in sorted(opened - known)]
    return wrong


# A file of each kind, and its type. The seeds of the fuzzers are real files.
FILES = {
    "data/Trigger1.tra": "trace",
    "data/MemoryWrite.tsp": "setup",
    "tests/fuzz/seeds/performance_file/short.per": "performance",
    "tests/fuzz/seeds/performance_setup/short.psu": "performance-setup",
    "tests/fuzz/seeds/master_file/all.mst": "master",
    "tests/fuzz/seeds/target_file/all.tgt": "target",
    "tests/fuzz/seeds/stimulus_file/short.stm": "stimulus",
    "tests/fuzz/seeds/compliance_file/short.cpl": "compliance",
    "tests/fuzz/seeds/anomaly_file/short.adt": "compliance",
    "tests/fuzz/seeds/backplane_file/short.bpt": "backplane",
}
# Files of other programs with the same extensions.
OTHERS = {
    "other.tra": b"motion of a camera\n",
    "other.per": b"a person\n",
    "other.mst": b"MST \0\1",
    "other.tgt": b"\0\0\1\2",
    "other.cfg": b"[Display]\nWidth=3\n",
    "song.stm": b"a song in twenty byte" [:20] + b"!Scream!\x1a",
    "empty.cfg": b"",
}


def check_mime(usr, source, version):
    for tool in ("update-mime-database", "gio", "xmllint"):
        need(tool)
    common = Path("/usr/share/mime/packages/freedesktop.org.xml")
    with tempfile.TemporaryDirectory() as folder:
        share = Path(folder) / "share"
        shutil.copytree(usr / "share/mime", share / "mime")
        page = share / f"mime/packages/{ID}.xml"
        wrong = said_by("xmllint", "--noout", page)
        shutil.copy(common, page.parent)
        wrong += said_by("update-mime-database", share / "mime")
        surroundings = {**os.environ, "XDG_DATA_DIRS": str(share), "XDG_DATA_HOME": str(Path(folder) / "none"),
                        "LC_ALL": "C"}

        def kind_of(path):
            said = run("gio", "info", "-a", "standard::content-type", path, env=surroundings).stdout
            found = re.search(r"standard::content-type: (\S+)", said)
            return found.group(1) if found else said

        for name, kind in FILES.items():
            original = source / name
            bare = Path(folder) / "renamed"
            shutil.copy(original, bare)
            for path in (original, bare):
                if kind_of(path) != TYPES + kind:
                    wrong.append(f"{path.name}, a {kind} file, is taken for {kind_of(path)}")
        for name, content in OTHERS.items():
            other = Path(folder) / name
            other.write_bytes(content)
            if kind_of(other).startswith(TYPES):
                wrong.append(f"{name} is taken for {kind_of(other)}")
    return wrong


def check_icons(usr, source, version):
    wrong = []
    pictures = sorted((usr / "share/icons").rglob("*.png"))
    for picture in pictures:
        start = picture.read_bytes()[:24]
        size = "{}x{}".format(*struct.unpack(">II", start[16:24]))
        if start[:8] != b"\x89PNG\r\n\x1a\n" or picture.parent.parent.name != size:
            wrong.append(f"{picture.relative_to(usr)} is no picture of its size")
    return wrong or ([] if pictures else ["no icons"])


def check_man(usr, source, version):
    need("mandoc")
    wrong = []
    for page in sorted((usr / "share/man").rglob("*.[15]")):
        # Remarks about style are left out. The pages have no date on purpose.
        said = run("mandoc", "-T", "lint", "-W", "warning", page).stdout
        wrong += [line for line in said.splitlines() if "missing date" not in line]
        if f"Busquill! {version}" not in page.read_text():
            wrong.append(f"{page.name}: not of version {version}")
    # Every option of the simulated board is described.
    usage = run(usr / "bin/busquill-boardsim", "--help").stdout
    page = (usr / "share/man/man1/busquill-boardsim.1").read_text().replace("\\-", "-")
    wrong += [f"busquill-boardsim.1 lacks {option}" for option in sorted(set(re.findall(r"--[a-z-]+", usage)))
              if not re.search(rf"{option}\b", page)]
    return wrong


def check_version(usr, source, version):
    """The version is written only in CMakeLists.txt; everything else takes it from there."""
    wrong = []
    for program in ("busquill-trace", "busquill-board"):
        said = run(usr / "bin" / program, "--version").stdout.strip()
        if said != f"{program} {version}":
            wrong.append(f"{program} says: {said}")
    newest = re.search(r"^## \[(.*?)\]", (source / "CHANGELOG.md").read_text(), re.M).group(1)
    if newest != version:
        wrong.append(f"the newest entry of CHANGELOG.md is {newest}")
    return wrong


def main(arguments):
    if arguments[0] == "install":
        wrong = install(arguments[1], Path(arguments[2]), Path(arguments[3]))
    else:
        check = globals()[f"check_{arguments[0]}"]
        wrong = check(Path(arguments[1]) / "usr", Path(arguments[2]), arguments[3])
    for line in wrong:
        print(line)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
