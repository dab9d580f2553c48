#!/usr/bin/env python3
"""Checks that the includes of src/ follow the order of the rooms and that no modules include one another
in a circle, and that the drawing of the rooms in docs/architecture.md shows the includes. A module is a
header with the source of the same name.

    check_includes.py SRC DOCUMENT           exits 1 and prints what is wrong, if anything is
    check_includes.py SRC DOCUMENT --draw    writes the current drawing into the document
"""

import re
import sys
from pathlib import Path

CORE = ["platform", "document", "link", "signals", "tracesetup", "capture", "analysis", "export", "performance",
        "exerciser", "stimulus", "testsuites"]
# Each room of the windows with the rooms that it may include; all may include the core.
UI = {
    "framework": set(),
    "link": {"framework"},
    "controls": {"framework"},
    "signals": {"framework", "controls"},
    "patterns": {"framework", "controls", "signals"},
    "levels": {"framework"},
    "tracesetup": {"framework", "levels", "patterns"},
    "capture": {"framework"},
    "display": {"framework", "controls", "patterns", "capture"},
    "performance": {"framework", "controls", "patterns"},
    "exerciser": {"framework", "patterns"},
    "stimulus": {"framework", "levels", "patterns"},
    "testsuites": {"framework", "controls", "patterns"},
    "trace": {"framework", "tracesetup", "capture", "display"},
    "analysis": {"framework", "display"},
    "shell": {"framework", "analysis", "exerciser", "link", "performance", "signals", "stimulus", "testsuites", "trace"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def room_of(path):
    """(layer, room) of a path below src; what stands in no room of its layer has the room ""."""
    parts = path.parts
    return (parts[0], parts[1]) if len(parts) > 2 else (parts[0], "")


def allowed(user, used):
    layer, room = user
    used_layer, used_room = used
    if user == used or layer == "app":
        return True
    if layer == "cli":
        return used_layer == "core" or (used_layer == "cli" and used_room == "")
    if layer == "core":
        return used_layer == "core" and CORE.index(used_room) < CORE.index(room)
    return used_layer == "core" or (used_layer == "ui" and used_room in UI[room])


def modules(graph):
    """The other modules that each module includes, in its header or in its source."""
    joined = {}
    for file, targets in graph.items():
        module = file.with_suffix("")
        others = {target.with_suffix("") for target in targets} - {module}
        joined.setdefault(module, set()).update(others)
    return {module: sorted(others) for module, others in joined.items()}


def circle(graph):
    """A list of modules that include one another in a circle, or None."""
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


def reachable(arrows, start):
    """All rooms that can be reached from one by at least one arrow."""
    found, waiting = set(), [start]
    while waiting:
        for target in arrows.get(waiting.pop(), ()):
            if target not in found:
                found.add(target)
                waiting.append(target)
    return found


def node(room):
    return "_".join(filter(None, room))


def drawing(graph):
    """The rooms with the arrows that are not implied by others, as a Mermaid graph."""
    arrows = {}
    for user, targets in graph.items():
        for used in map(room_of, targets):
            if used != room_of(user):
                arrows.setdefault(room_of(user), set()).add(used)
    lines = ["```mermaid", "graph RL"]
    for layer in ("core", "ui"):
        rooms = sorted({room for room in [*arrows, *set().union(*arrows.values())] if room[0] == layer})
        lines.append(f"  subgraph {layer}")
        lines += [f"    {layer}_{name}[{name}]" for _, name in rooms]
        lines.append("  end")
    lines += sorted("  " + node(room) for room in arrows if room[0] == "cli")
    for user in sorted(arrows):
        for used in sorted(arrows[user]):
            implied = any(used in reachable(arrows, other) for other in arrows[user] - {used})
            if user[0] != "app" and not implied:
                lines.append(f"  {node(user)} --> {node(used)}")
    return "\n".join([*lines, "```"])


def main():
    source, document = Path(sys.argv[1]), Path(sys.argv[2])
    files = sorted(p for p in source.rglob("*") if p.suffix in (".h", ".cpp"))
    complaints, graph = [], {}
    for file in files:
        path = file.relative_to(source)
        user = room_of(path)
        if user[0] == "core" and user[1] not in CORE or user[0] == "ui" and user[1] not in UI:
            complaints.append(f"{path}: the room is not in the table")
            continue
        for bracket, name in INCLUDE.findall(file.read_text()):
            if user[0] in ("core", "cli") and re.match(r"Q[A-Z]|Qt", name):
                complaints.append(f"{path}: includes <{name}>, which belongs to the windows")
            if bracket == "<":
                continue
            target = Path("core") / name if (source / "core" / name).exists() else Path(name)
            if not (source / target).exists():
                complaints.append(f'{path}: "{name}" is not given from the source folder')
                continue
            graph.setdefault(path, []).append(target)
            if not allowed(user, room_of(target)):
                complaints.append(f"{path}: includes {target}, against the direction")
    found = circle(modules(graph))
    if found:
        complaints.append("circle: " + " -> ".join(map(str, found)))
    text = document.read_text()
    start, end = text.index("```mermaid"), text.index("```\n", text.index("```mermaid") + 3) + 3
    if "--draw" in sys.argv:
        document.write_text(text[:start] + drawing(graph) + text[end:])
    elif text[start:end] != drawing(graph):
        complaints.append(f"{document.name}: the drawing is outdated; update it with --draw")
    print("\n".join(complaints) or f"{len(files)} files, no arrow against the direction")
    return 1 if complaints else 0


sys.exit(main())
