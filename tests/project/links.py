#!/usr/bin/python3
"""links.py FILE_OR_FOLDER...: checks that every relative link of the pages there leads to a file or folder, and to a
heading where it names one, and that every plant file there names a schema that is there.

links.py --installed BUILD: the same for what the build in that folder installs.
Exit code 0: every link leads somewhere; 1: one does not, or there is none.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

LINK = re.compile(r"\]\(([^)\s]+)\)")
ANCHOR = re.compile(r'<a id="([^"]+)">')


def prose_of(page):
    """The lines of a page that are no code."""
    fenced = False
    for number, line in enumerate(page.read_text().splitlines(), 1):
        fenced ^= line.startswith("```")
        if not fenced and not line.startswith("    "):
            yield number, line


def anchors_of(page):
    anchors = set()
    for _, line in prose_of(page):
        anchors.update(ANCHOR.findall(line))
        if line.startswith("#"):
            heading = re.sub(r"[^\w\- ]", "", line.lstrip("# ").lower()).replace(" ", "-")
            numbered = (f"{heading}-{number}" if number else heading for number in range(len(anchors) + 1))
            anchors.add(next(anchor for anchor in numbered if anchor not in anchors))
    return anchors


def faults_of_page(page):
    """How many relative links a page has, and those that lead nowhere."""
    count, faults = 0, []
    for number, line in prose_of(page):
        for target in LINK.findall(re.sub(r"`[^`]*`", "", line)):
            if re.match(r"[a-z]+:", target):
                continue
            count += 1
            name, _, anchor = target.partition("#")
            linked = page.parent / name if name else page
            if not linked.exists() or (anchor and anchor not in anchors_of(linked)):
                faults.append(f"{page}:{number}: {target} leads nowhere")
    return count, faults


def faults_of_json(file):
    """The same for the schema that a file names."""
    document = json.loads(file.read_text())
    schema = document.get("$schema", "https:")
    if re.match(r"[a-z]+:", schema):
        return 0, []
    return 1, [] if (file.parent / schema).exists() else [f"{file}: the schema {schema} is not there"]


def check(paths):
    count, faults = 0, []
    for path in paths:
        for file in [path] if path.is_file() else sorted(path.rglob("*.*")):
            if file.suffix in (".md", ".json"):
                links, wrong = faults_of_page(file) if file.suffix == ".md" else faults_of_json(file)
                count, faults = count + links, faults + wrong
    print("".join(f"{fault}\n" for fault in faults) + f"{count} links, {len(faults)} of them lead nowhere")
    return 0 if count and not faults else 1


def check_installed(build):
    with tempfile.TemporaryDirectory() as root:
        subprocess.run(["cmake", "--install", build], env={**os.environ, "DESTDIR": root}, check=True,
                       stdout=subprocess.DEVNULL)
        return check(sorted(pathlib.Path(root).rglob("share/doc")))


if __name__ == "__main__":
    if sys.argv[1:2] == ["--installed"] and len(sys.argv) == 3:
        sys.exit(check_installed(sys.argv[2]))
    sys.exit(check([pathlib.Path(argument) for argument in sys.argv[1:]]))
