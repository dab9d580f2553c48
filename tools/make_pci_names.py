#!/usr/bin/env python3
"""Writes PCIVendors.txt and PCIClass.txt, the names of vendors and device classes, from the public list
of PCI IDs (on Debian in the package pci.ids).

    make_pci_names.py [LIST [FOLDER]]        by default /usr/share/misc/pci.ids and data/
"""

import re
import sys
from pathlib import Path

VENDOR = re.compile(r"([0-9a-f]{4})  (\S.*)")
# The class that the program looks up is the base class alone.
BASE_CLASS = re.compile(r"C ([0-9a-f]{2})  (\S.*)")


def names(lines, form):
    return [f"{found[1]} {found[2].strip()}" for found in map(form.fullmatch, lines) if found]


def main():
    ids = Path(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/misc/pci.ids")
    folder = Path(sys.argv[2]) if len(sys.argv) > 2 else Path(__file__).parents[1] / "data"
    lines = ids.read_text(encoding="utf-8").splitlines()
    for file, form in (("PCIVendors.txt", VENDOR), ("PCIClass.txt", BASE_CLASS)):
        found = names(lines, form)
        if not found:
            sys.exit(f"make_pci_names.py: nothing for {file} in {ids}")
        (folder / file).write_text("".join(line + "\n" for line in found), encoding="utf-8")


main()
