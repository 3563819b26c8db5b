#!/usr/bin/python3
"""rooms.py ROOT: checks that no source below ROOT/src, ROOT/vel and ROOT/tools includes what the arrows of
docs/rooms.dot do not lead to from its room, at once or through other rooms, and that docs/rooms.svg shows these arrows.

A room is a folder of the tools, a unit of the plug-in, or the host's declarations.
Exit code 0: all is well; 1: an include is refused, the picture is another, or there is nothing to check.
"""

import html
import pathlib
import re
import sys

PROJECT = pathlib.Path(__file__).resolve().parents[2]
INCLUDE = re.compile(r'^#include [<"]([\w/]+)\.h[>"]', re.MULTILINE)


def arrows_of(dot):
    """The arrows, each as a pair of rooms."""
    arrows = set()
    statement = re.compile(r'(?:"[^"]+"|\{[^{}]+\})(?:\s*->\s*(?:"[^"]+"|\{[^{}]+\}))+')
    for chain in statement.findall(re.sub(r"//.*", "", dot)):
        steps = [re.findall(r'"([^"]+)"', step) for step in chain.split("->")]
        for sources, targets in zip(steps, steps[1:]):
            arrows.update((source, target) for source in sources for target in targets)
    return arrows


def reach_of(room, arrows):
    """The room and those that its arrows lead to, at once or through others."""
    reached, waiting = set(), [room]
    while waiting:
        current = waiting.pop()
        if current not in reached:
            reached.add(current)
            waiting.extend(target for source, target in arrows if source == current)
    return reached


def room_of(path):
    """The room of a source or a header by its path below the root."""
    if path.parts[0] == "src":
        return f"src/{path.stem}"
    return "vel" if path.parts[0] == "vel" else path.parent.relative_to("tools").as_posix()


def room_of_include(name, source):
    """The room of what a source includes by that name; nothing for a library's header."""
    if name.startswith("vel/"):
        return "vel"
    base = source.parts[: 2 if source.parts[0] == "tools" else 1]
    for folder in (pathlib.Path(*base), pathlib.Path("tools")):
        if (PROJECT / folder / f"{name}.h").is_file():
            return room_of(folder / f"{name}.h")
    return None


def refused_includes(root, arrows):
    """How many includes there are between rooms, and those that no arrow allows."""
    count, faults = 0, []
    for file in sorted(file for part in ("src", "vel", "tools") for file in root.glob(f"{part}/**/*.*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        source = file.relative_to(root)
        for name in INCLUDE.findall(file.read_text()):
            target = room_of_include(name, source)
            count += target is not None
            if target and target not in reach_of(room_of(source), arrows):
                faults.append(f"{source}: {room_of(source)} must not include {name}.h: "
                              f"docs/rooms.dot has no arrow from it to {target}")
    return count, faults


def arrows_of_picture(svg):
    titles = re.findall(r'<g id="edge\d+" class="edge">\s*<title>([^<]*)</title>', svg)
    return {tuple(html.unescape(title).split("->")) for title in titles}


def main(root):
    arrows = arrows_of((PROJECT / "docs/rooms.dot").read_text())
    count, faults = refused_includes(root, arrows)
    if arrows_of_picture((PROJECT / "docs/rooms.svg").read_text()) != arrows:
        faults.append("docs/rooms.svg does not show docs/rooms.dot: run dot -Tsvg docs/rooms.dot -o docs/rooms.svg")
    print("".join(f"{fault}\n" for fault in faults) + f"{count} includes, {len(faults)} faults")
    return 0 if count and not faults else 1


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
