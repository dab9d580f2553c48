#!/usr/bin/env python3
"""Applies the udev rule of the board to the interfaces of devices: it must open those with interfaces
of the vendor's own class only, early enough for access by the seat.

    check_udev_rules.py RULES    exits 1 and prints what is wrong, if anything is
"""

import re
import sys
from fnmatch import fnmatchcase
from pathlib import Path

# As udev lists them: class, subclass and protocol of each kind of interface.
OPENED = [":ff0000:", ":ffffff:", ":ff0000:ff0001:"]
CLOSED = ["", ":030101:", ":080650:", ":fe0101:", ":ff4201:080650:", ":080650:ff4201:", ":ff0000:fe0101:"]
TERM = re.compile(r'([A-Z]+(?:\{\w+\})?)(==|!=|\+=|=)"([^"]*)"')


def rules_of(text):
    """The terms of each rule, and what of its line is no term."""
    for line in text.replace("\\\n", "").splitlines():
        if line.strip() and not line.startswith("#"):
            yield TERM.findall(line), re.sub(r"[,\s]", "", TERM.sub("", line))


def matches(terms, device):
    for key, operator, patterns in terms:
        if operator in ("==", "!="):
            fits = any(fnmatchcase(device[key], pattern) for pattern in patterns.split("|"))
            if fits != (operator == "=="):
                return False
    return True


def main(path):
    wrong = []
    if path.name >= "73-seat-late.rules":
        wrong.append("comes after the rule that gives access to the seat")
    for terms, rest in rules_of(path.read_text()):
        if rest:
            wrong.append(f"not understood: {rest}")
        if ("TAG", "+=", "uaccess") not in terms:
            wrong.append("a rule without access for the seat")
        for interfaces in OPENED + CLOSED:
            device = {"ACTION": "add", "SUBSYSTEM": "usb", "ENV{DEVTYPE}": "usb_device",
                      "ENV{ID_USB_INTERFACES}": interfaces}
            if matches(terms, device) != (interfaces in OPENED):
                wrong.append(f"opens the wrong devices: {interfaces!r}")
    if not wrong and not list(rules_of(path.read_text())):
        wrong.append("no rule")
    for line in wrong:
        print(f"{path.name}: {line}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
