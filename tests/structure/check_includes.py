#!/usr/bin/env python3
"""Holds the includes of src/ against the order of the rooms and against circles of files.

Prints every arrow that goes the wrong way and exits 1 if there is one.
"""

import re
import sys
from pathlib import Path

CORE = ["platform", "document", "link", "signals", "tracesetup", "capture"]
# Each room of the windows with the rooms that it may include; all may include the core.
UI = {
    "framework": set(),
    "link": {"framework"},
    "controls": {"framework"},
    "signals": {"framework", "controls"},
    "patterns": {"framework", "controls", "signals"},
    "tracesetup": {"framework", "patterns"},
    "capture": {"framework"},
    "display": {"framework", "patterns", "capture"},
    "shell": {"framework", "link", "signals", "tracesetup", "capture", "display"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def room_of(path):
    """("core" or "ui" or "app", room) of a path below src."""
    parts = path.parts
    return (parts[0], parts[1]) if len(parts) > 2 else (parts[0], "")


def allowed(user, used):
    layer, room = user
    used_layer, used_room = used
    if user == used or layer == "app":
        return True
    if layer == "core":
        return used_layer == "core" and CORE.index(used_room) < CORE.index(room)
    return used_layer == "core" or (used_layer == "ui" and used_room in UI[room])


def circle(graph):
    """A list of files that include one another in a circle, or None."""
    done, path = set(), []

    def visit(node):
        if node in path:
            return path[path.index(node):] + [node]
        if node in done:
            return None
        path.append(node)
        for target in graph.get(node, ()):
            found = visit(target)
            if found:
                return found
        path.pop()
        done.add(node)
        return None

    for node in graph:
        found = visit(node)
        if found:
            return found
    return None


def main():
    source = Path(sys.argv[1])
    files = sorted(p for p in source.rglob("*") if p.suffix in (".h", ".cpp"))
    complaints, graph = [], {}
    for file in files:
        path = file.relative_to(source)
        user = room_of(path)
        if user[0] == "core" and user[1] not in CORE or user[0] == "ui" and user[1] not in UI:
            complaints.append(f"{path}: the room is not in the table")
            continue
        for bracket, name in INCLUDE.findall(file.read_text()):
            if user[0] == "core" and re.match(r"Q[A-Z]|Qt", name):
                complaints.append(f"{path}: the core includes <{name}>")
            if bracket == "<":
                continue
            target = Path("core") / name if (source / "core" / name).exists() else Path(name)
            if not (source / target).exists():
                complaints.append(f'{path}: "{name}" is not named from the source folder')
                continue
            graph.setdefault(path, []).append(target)
            if not allowed(user, room_of(target)):
                complaints.append(f"{path}: includes {target}, against the direction")
    found = circle(graph)
    if found:
        complaints.append("circle: " + " -> ".join(map(str, found)))
    print("\n".join(complaints) or f"{len(files)} files, no arrow against the direction")
    return 1 if complaints else 0


sys.exit(main())
