#!/usr/bin/python3
"""samples.py FOLDER: runs the console samples of README.md and docs/ with the programs in FOLDER, and compares what
they print with what the pages show.

A sample is an indented block with a line that begins with "$ ". The commands of a block are run in their order, in
one shell and in a folder that all blocks of a page share. `kvsim` runs beside them until the block ends; a block that
starts none of its own gets one without options. A command beneath which the page shows nothing may print what it
likes, but has to end with 0.

In what a page shows, "…" stands for anything, and in a line of its own for any number of lines. Times, free ports
and durations need not be the same. Comments in the page, right before a block, say what else there is to know:

    <!-- before: COMMAND -->    run that first
    <!-- prints: COMMAND -->    the block has no prompt, it is what this command prints
    <!-- digits vary -->        numbers need not be the same, nor the blanks beside them
    <!-- not run: REASON -->    for a block that cannot be run here

All of it happens in a network of its own, so that nothing else on this machine is asked or disturbed.
Exit code 0: all is as shown; 1: something is not; 2: wrong use; 3: no network of its own can be had.
"""

import contextlib
import difflib
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import tempfile
import textwrap
import threading

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXCEPTED_PAGES = {"docs/errors.md": "tests/velhost/explain/tst_errorprovocation.cpp runs what this page is made of"}
SECONDS = 60

COMMENT = re.compile(r"<!-- (?:(before|prints|not run): (.+)|digits vary) -->$")
MASKS = [
    (re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}(?:\d{3})?([+-]\d\d:\d\d)?"), "DATE"),
    (re.compile(r"\d\d:\d\d:\d\d(\.\d{3})?"), "TIME"),
    (re.compile(r"(?<=\d:)[3-6]\d{4}\b"), "PORT"),
    (re.compile(r"(_ms\":)\d+\.\d+"), r"\1DURATION"),
    (re.compile(r"((?: +\d+){5})(?: +\d+\.\d\d){3}$"), r"\1 DURATIONS"),
]


class Failure(Exception):
    pass


class Block:
    def __init__(self, page, line, comments, fault=None):
        self.page, self.line, self.comments, self.fault, self.lines = page, line, comments, fault, []

    def said(self, key):
        return [value for name, value in self.comments if name == key]

    def commands(self):
        """Each command with the lines that the page shows beneath it."""
        printing = self.said("prints")
        if printing:
            return [(printing[0], self.lines)]
        commands = []
        for line in self.lines:
            if line.startswith("$ "):
                commands.append((line[2:], []))
            elif commands:
                commands[-1][1].append(line)
            else:
                raise Failure("the block does not begin with a prompt")
        return commands


def blocks_of(page):
    """The blocks of a page that have a prompt or a comment."""
    blocks, comments, block = [], [], None
    for number, line in enumerate((ROOT / page).read_text().splitlines(), 1):
        comment = COMMENT.match(line)
        if re.match(" {4}", line) and (block or previous == "" or comments):
            if not block:
                block, comments = Block(page, number, comments), []
                blocks.append(block)
            block.lines.append(line)
        elif comment:
            comments.append((comment[1] or "digits vary", comment[2]))
            block = None
        elif line == "" and block:
            block.lines.append(line)
        elif line != "":
            if comments or line.lstrip().startswith(("<!--", "$ ")):
                blocks.append(Block(page, number, [], "a comment or a prompt that belongs to no block"))
            block, comments = None, []
        previous = line
    if comments:
        blocks.append(Block(page, number, [], "a comment that belongs to no block"))
    for block in blocks:
        block.lines = textwrap.dedent("\n".join(block.lines)).rstrip("\n").split("\n")
    return [block for block in blocks
            if block.fault or block.comments or any(line.startswith("$ ") for line in block.lines)]


def masked(line, folder, digits_vary):
    line = line.replace(str(folder), "/home/me")
    for pattern, replacement in MASKS:
        line = pattern.sub(replacement, line)
    if digits_vary or "DURATIONS" in line:
        line = re.sub(" +", " ", re.sub(r"\d+", "0", line) if digits_vary else line)
    return line.rstrip()


def fits(shown, printed):
    patterns = ["(?:.*\n)*" if line.strip() == "…" else re.escape(line).replace("…", ".*") + "\n" for line in shown]
    pattern = "".join(patterns)
    return re.fullmatch(pattern, "".join(line + "\n" for line in printed)) is not None


def compare(shown, printed):
    if not fits(shown, printed):
        # A line that differs only in what "…" leaves out is not shown as a difference.
        shown = [next((other for other in printed if line != "…" and fits([line], [other])), line) for line in shown]
        difference = difflib.unified_diff(shown, printed, "the page", "the program", lineterm="", n=99)
        raise Failure("the program prints something else:\n" + "\n".join(difference))


def words_of(command):
    """A command without the variables that are set for it and without the folders of programs."""
    words = [word for word in command.split() if not re.match(r"[A-Z_]+=", word)]
    return [words[0].rsplit("/", 1)[-1], *words[1:]]


class Shell:
    """A shell that keeps its descriptors and variables from one command to the next."""

    def __init__(self, folder, environment):
        self.process = subprocess.Popen(
            ["bash", "--noprofile", "--norc"], cwd=folder, env=environment, text=True, errors="replace",
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)

    def run(self, command):
        """The lines that a command prints, and its exit code."""
        self.process.stdin.write(f"{{ {command}\n}} </dev/null\nprintf '\\n@@ %d\\n' $?\n")
        self.process.stdin.flush()
        watchdog = threading.Timer(SECONDS, os.killpg, (self.process.pid, signal.SIGKILL))
        watchdog.start()
        lines = []
        for line in self.process.stdout:
            if line.startswith("@@ "):
                watchdog.cancel()
                if lines[-1] == "":
                    lines.pop()
                return lines, int(line[3:])
            lines.append(line.rstrip("\n"))
        watchdog.cancel()
        raise Failure(f"the shell ended, or was ended after {SECONDS} s; so far it printed:\n" + "\n".join(lines))

    def end(self):
        self.process.stdin.close()
        self.process.wait()


class Simulator:
    """A simulated controller beside the shell. Its first line says that it listens."""

    def __init__(self, command, folder, environment, count):
        self.process = subprocess.Popen(
            ["bash", "-c", "exec " + command.rstrip("& ")], cwd=folder, env=environment, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        watchdog = threading.Timer(SECONDS, self.process.kill)
        watchdog.start()
        read = (self.process.stdout.readline() for _ in range(count))
        self.lines = [line.rstrip("\n") for line in read if line]
        watchdog.cancel()
        # Later output is not read: it fits into the pipe.
        if not self.lines or not self.lines[0].startswith("listening "):
            raise Failure(f"{command}: does not listen: {self.lines}")

    def end(self):
        self.process.terminate()
        self.process.communicate(timeout=SECONDS)
        if self.process.returncode != 0:
            raise Failure(f"kvsim ended with {self.process.returncode}")


def watch(command, folder, environment, is_right):
    """Runs a command on a terminal until what is drawn there is right, then ends it by Ctrl+C."""
    pid, terminal = pty.fork()
    if pid == 0:
        # A script in the background ignores Ctrl+C, and so would its programs.
        signal.signal(signal.SIGINT, signal.SIG_DFL)
        os.chdir(folder)
        os.execvpe("bash", ["bash", "-c", "stty cols 120 rows 40; " + command], environment)
    watchdog = threading.Timer(SECONDS, os.killpg, (pid, signal.SIGKILL))
    watchdog.start()
    drawn, seen = b"", []
    # Reading fails when the program has ended.
    with contextlib.suppress(OSError):
        while not (seen and is_right(seen)):
            drawn += os.read(terminal, 65536)
            drawings = drawn.split(b"\x1b[H")[1:-1]
            if drawings:
                text = re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", drawings[-1].decode())
                seen = [line.rstrip() for line in text.splitlines()]
        os.write(terminal, b"\x03")
        while os.read(terminal, 65536):
            pass
    watchdog.cancel()
    os.waitpid(pid, 0)
    os.close(terminal)
    return seen


def run_block(block, folder, environment):
    digits_vary = bool(block.said("digits vary"))

    def mask(lines):
        return [masked(line, folder, digits_vary) for line in lines]

    steps = [(command, None) for command in block.said("before")] + block.commands()
    simulators, shell = [], Shell(folder, environment)
    if not any(words_of(command)[0] == "kvsim" and words_of(command)[1:2] != ["ctl"] for command, _ in steps):
        simulators.append(Simulator("kvsim", folder, environment, 1))
    try:
        for command, shown in steps:
            words = words_of(command)
            if words[0] == "kvsim" and words[1:2] != ["ctl"]:
                simulators.append(Simulator(command, folder, environment, len(shown or "1")))
                printed = simulators[-1].lines
            elif words[:2] == ["velhost", "watch"] and not {"|", "--for"} & set(words):
                printed = watch(command, folder, environment, lambda seen: fits(mask(shown or ["…"]), mask(seen)))
            else:
                printed, status = shell.run(command)
                if not shown and status != 0:
                    raise Failure(f"{command}: ends with {status}:\n" + "\n".join(printed))
            if shown:
                compare(mask(shown), mask(printed))
    finally:
        shell.end()
        for simulator in simulators:
            simulator.end()


def run_page(page, programs, excepted):
    """How many blocks were run and how many failed."""
    run = failed = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "build/demo").mkdir(parents=True)
        (folder / "build/demo/bin").symlink_to(programs)
        for linked in "docs", "examples":
            (folder / linked).symlink_to(ROOT / linked)
        environment = {"PATH": f"{programs}:/usr/bin:/bin:/usr/sbin:/sbin", "HOME": name, "TERM": "xterm",
                       "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        for block in blocks_of(page):
            if block.said("not run"):
                excepted.append(f"{page}:{block.line}: {block.said('not run')[0]}")
                continue
            run += 1
            try:
                if block.fault:
                    raise Failure(block.fault)
                run_block(block, folder, environment)
            except Failure as failure:
                failed += 1
                print(f"{page}:{block.line}: {failure}\n", file=sys.stderr)
    return run, failed


def main():
    if len(sys.argv) not in (2, 3) or not os.access(pathlib.Path(sys.argv[1]) / "velhost", os.X_OK):
        print("samples: name the folder that holds velhost and kvsim", file=sys.stderr)
        return 2
    # Root needs no user of its own for that, and could not have one within a chroot.
    alone = ["unshare", "--net"] if os.geteuid() == 0 else ["unshare", "--net", "--map-root-user"]
    if sys.argv[2:] != ["--alone"]:
        if subprocess.run([*alone, "true"]).returncode != 0:
            print("samples: nothing was run: this user can have no network of its own here", file=sys.stderr)
            return 3
        return subprocess.run([*alone, sys.executable, __file__, sys.argv[1], "--alone"]).returncode
    subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    subprocess.run(["ip", "address", "add", "192.168.0.10/24", "dev", "lo"], check=True)

    programs = pathlib.Path(sys.argv[1]).resolve()
    pages = ["README.md", *sorted(f"docs/{page.name}" for page in (ROOT / "docs").glob("*.md"))]
    excepted = [f"{page}: {reason}" for page, reason in EXCEPTED_PAGES.items()]
    counts = [run_page(page, programs, excepted) for page in pages if page not in EXCEPTED_PAGES]
    print("not run:\n" + "".join(f"  {line}\n" for line in excepted), end="")
    failed = sum(count for _, count in counts)
    print(f"{sum(count for count, _ in counts)} samples were run, {failed} print something else than the pages show.")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
