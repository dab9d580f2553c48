#!/usr/bin/env python3
"""Compares the documentation of busquill-trace with the program's own help: the man page, the
completions of three shells and the chapter of the manual must name every command and option, and no
others.

    check_command_line.py PROGRAM REPOSITORY    exits 1 and prints what is wrong, if anything is
"""

import re
import subprocess
import sys
from pathlib import Path

# On a line with one of these names the manual describes options of that program.
OTHER_PROGRAMS = re.compile(r"\b(boardsim|sigrok-cli|gtkwave|vcd2fst)\b")
ALWAYS = {"help", "version"}
OPTION = re.compile(r"(?<![\w-])--([a-z][a-z-]*)")


def ask(program, *arguments):
    """What the program prints to standard output and standard error."""
    run = subprocess.run([program, *arguments], capture_output=True, text=True, timeout=20)
    return run.stdout + run.stderr


def commands_of(program):
    """The options of each command, and the letters of the options that have one."""
    names = re.findall(r"^  ([a-z]+) ", ask(program, "-h"), re.MULTILINE)
    commands, letters = {}, {}
    for name in names:
        rows = re.findall(r"^  (?:-(\w), |    )--([a-z-]+)", ask(program, name, "-h"), re.MULTILINE)
        commands[name] = {option for _, option in rows} - ALWAYS
        letters.update({option: letter for letter, option in rows if letter})
    return commands, letters


def needed_by(program, commands):
    """The required options of each command, from its usage line."""
    needed = {}
    for name in commands:
        said = ask(program, name, "-h")
        usage = said.split("\n", 1)[0].replace("[OPTION...]", "")
        long_names = dict(re.findall(r"^  (-\w), (--[a-z-]+)", said, re.MULTILINE))
        typed = re.findall(r"(?<!\S)--?[a-z][a-z-]*", usage)
        needed[name] = {long_names.get(option, option).lstrip("-") for option in typed}
    return needed


def values_of(program):
    """Values by option, for options whose values the program lists when it is given an invalid one."""
    values = {}
    for option, command in (("model", "info"), ("bus", "info"), ("width", "info"),
                            ("align", "compare"), ("format", "list"), ("format", "convert")):
        files = ["a", "b"] if command == "compare" else ["a"]
        said = ask(program, command, f"--{option}", "?", "-o", "/nowhere/x", *files)
        listed = re.search(r"(?:there are|is one of) ([^;\n]+)", said)
        if listed is None:
            raise SystemExit(f"{command} does not list the values of --{option}: {said}")
        values.setdefault(option, set()).update(listed.group(1).split(", "))
    return values


def man_page(text):
    """The options in the section of each command, those without brackets, and all options with their
    letters."""
    text = text.replace("\\-", "-").replace("\\(hy", "-")
    body = text[text.index(".SH COMMANDS"):text.index(".SH PATTERNS")]
    sections = re.split(r"^\.SS (\w+)$", body, flags=re.MULTILINE)[1:]
    parts = zip(sections[::2], sections[1::2])
    commands, needed = {}, {}
    for name, part in parts:
        commands[name] = set(OPTION.findall(part))
        needed[name] = set(re.findall(r"^\.B --([a-z-]+)$", part.split(".PP")[0], re.MULTILINE))
    described = text[text.index(".SH OPTIONS"):text.index(".SH FILES")]
    tags = re.findall(r"^\.TP\n(.*)$", described, re.MULTILINE)
    letters = {}
    for tag in tags:
        option = OPTION.search(tag)
        letter = re.search(r"(?<![\w-])-(\w)\b", tag)
        if option:
            letters[option.group(1)] = letter.group(1) if letter else None
    return commands, needed, letters


def arms(text):
    """The options of each command in a completion that has them as `info) options=...`."""
    found = re.findall(r"^\s*(\w+)\) options=[\"(]([^\")]*)[\")]", text, re.MULTILINE)
    return {name: set(options.split()) for name, options in found}


def fish(text):
    commands = {}
    for names, option in re.findall(r'-n "\$some ([^"]+)".*? -l ([a-z-]+)', text):
        for name in names.split():
            commands.setdefault(name, set()).add(option)
    return commands


# The commands that each completion offers.
def offered_by_bash(text):
    return set(re.search(r'commands="([^"]*)"', text).group(1).split())


def offered_by_zsh(text):
    block = re.search(r"^  commands=\(\n(.*?)^  \)$", text, re.MULTILINE | re.DOTALL).group(1)
    return set(re.findall(r"^    '(\w+):", block, re.MULTILINE))


def offered_by_fish(text):
    return set(re.findall(r"^complete .* -a (\w+) -d", text, re.MULTILINE))


def manual(text):
    """The commands in the headings of a chapter, and the options that it names."""
    lines = [line for line in text.splitlines() if not OTHER_PROGRAMS.search(line)]
    headings = re.findall(r"^#+ `?([a-z]+)`?(?:$|:)", "\n".join(lines), re.MULTILINE)
    return set(headings), set(OPTION.findall("\n".join(lines)))


def differences(where, expected, found, what):
    lacking, extra = sorted(expected - found), sorted(found - expected)
    return ([f"{where}: lacks {what}{name}" for name in lacking] +
            [f"{where}: names {what}{name}, which does not exist" for name in extra])


def by_command(where, commands, found):
    complaints = differences(where, set(commands), set(found), "the command ")
    for name in sorted(set(commands) & set(found)):
        complaints += differences(f"{where}, {name}", commands[name], found[name] - ALWAYS, "--")
    return complaints


def main():
    program, repository = sys.argv[1], Path(sys.argv[2])
    commands, letters = commands_of(program)
    if not commands:
        raise SystemExit("the program names no commands")
    options = set().union(*commands.values()) | ALWAYS
    packaging = repository / "packaging"

    page = (packaging / "man" / "busquill-trace.1").read_text()
    page_commands, page_needed, page_options = man_page(page)
    complaints = by_command("man page", commands, page_commands)
    for name, needed in needed_by(program, commands).items():
        complaints += differences(f"man page, {name}, without brackets", needed,
                                  page_needed.get(name, set()), "--")
    complaints += differences("man page, OPTIONS", options, set(page_options), "--")
    complaints += [f"man page: --{option} has the letter {letters.get(option)}, not {letter}"
                   for option, letter in page_options.items()
                   if option in options and letter != letters.get(option)]
    texts = {"man page": page.replace("\\-", "-")}

    for shell, file, offered, read in (
            ("bash", "busquill-trace.bash", offered_by_bash, arms),
            ("zsh", "_busquill-trace", offered_by_zsh, arms),
            ("fish", "busquill-trace.fish", offered_by_fish, fish)):
        text = (packaging / "completions" / file).read_text()
        complaints += differences(f"completion of {shell}, what it offers", set(commands),
                                  offered(text), "the command ")
        complaints += by_command(f"completion of {shell}", commands, read(text))
        texts[f"completion of {shell}"] = text.replace("\\ ", " ").replace("\\n", "\n")
        if not re.search(r"^[^#\n]*busquill-trace names", text, re.MULTILINE):
            complaints.append(f"completion of {shell}: does not query the names of a bus")
        complaints += [f"completion of {shell}: lacks --{option}" for option in sorted(ALWAYS)
                       if not re.search(rf"\b{option}\b", text)]
    # The options in the arms also need descriptions in zsh.
    described = set(OPTION.findall(texts["completion of zsh"]))
    complaints += differences("completion of zsh, descriptions", options, described, "--")

    for option, values in values_of(program).items():
        for where, text in texts.items():
            complaints += [f"{where}: lacks {value} of --{option}" for value in sorted(values)
                           if not re.search(rf"(?<![\w/-]){re.escape(value)}(?![\w/+-])", text)]

    headings, named = manual((repository / "docs" / "manual" / "command-line.md").read_text())
    lacking = sorted(set(commands) - headings)
    complaints += [f"manual: lacks a heading for {name}" for name in lacking]
    complaints += differences("manual", options, named, "--")

    print("\n".join(complaints) or f"{len(commands)} commands, {len(options)} options, documented alike")
    return 1 if complaints else 0


sys.exit(main())
