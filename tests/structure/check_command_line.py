#!/usr/bin/env python3
"""Compares the documentation of a program with its own help: the man page must have a section for each
command and describe each option, and the chapter of the manual must name all of them and no others.
What the page says of the commands' options is filled in when it is made.

    check_command_line.py PROGRAM CHAPTER PAGE    exits 1 and prints what is wrong, if anything is
"""

import re
import subprocess
import sys
from pathlib import Path

# On a line with one of these names the manual describes options of that program.
OTHER_PROGRAMS = re.compile(r"\b(boardsim|sigrok-cli|gtkwave|vcd2fst)\b")
OPTION = re.compile(r"(?<![\w-])--([a-z][a-z-]*)")


def ask(program, *arguments):
    return subprocess.run([program, *arguments], capture_output=True, text=True, timeout=20).stdout


def commands_of(program):
    """The options of each command."""
    names = re.findall(r"^  ([a-z]+) ", ask(program, "-h"), re.MULTILINE)
    return {name: set(re.findall(r"^  (?:-\w, |    )--([a-z-]+)", ask(program, name, "-h"), re.MULTILINE))
            for name in names}


def section(text, name):
    """The part of a man page under a heading."""
    return re.search(rf"^\.SH {name}\n(.*?)(?=^\.SH |\Z)", text, re.MULTILINE | re.DOTALL).group(1)


def man_page(text):
    """The commands with a section, and the options with a heading."""
    text = re.sub(r"\\f[BIR]", "", text.replace("\\-", "-"))
    tags = re.findall(r"^\.TP\n(.*)$", section(text, "OPTIONS"), re.MULTILINE)
    return (set(re.findall(r"^\.SS (\w+)\n\.B .*\b\1$", section(text, "COMMANDS"), re.MULTILINE)),
            {option for tag in tags for option in OPTION.findall(tag)[:1]})


def manual(text):
    """The commands in the headings of a chapter, and the options that it names."""
    lines = [line for line in text.splitlines() if not OTHER_PROGRAMS.search(line)]
    headings = re.findall(r"^#+ `?([a-z]+)`?(?:$|:)", "\n".join(lines), re.MULTILINE)
    return set(headings), set(OPTION.findall("\n".join(lines)))


def differences(where, expected, found, what):
    lacking, extra = sorted(expected - found), sorted(found - expected)
    return ([f"{where}: lacks {what}{name}" for name in lacking] +
            [f"{where}: names {what}{name}, which does not exist" for name in extra])


def main():
    program, chapter, page = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    commands = commands_of(program)
    if not commands:
        raise SystemExit("the program names no commands")
    options = set().union(*commands.values())

    sections, described = man_page(page.read_text())
    complaints = differences("man page", set(commands), sections, "the command ")
    complaints += differences("man page, OPTIONS", options, described, "--")

    headings, named = manual(chapter.read_text())
    complaints += [f"manual: lacks a heading for {name}" for name in sorted(set(commands) - headings)]
    complaints += differences("manual", options, named, "--")

    print("\n".join(complaints) or f"{len(commands)} commands, {len(options)} options, documented alike")
    return 1 if complaints else 0


sys.exit(main())
