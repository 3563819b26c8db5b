#!/usr/bin/python3
"""performance-page.py RESULTS: fills in docs/performance.md.j2 with what scripts/bench.sh measured into the folder
RESULTS, makes docs/performance.md and its plots of it, and prints the page's tables."""

import csv
import datetime
import json
import os
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

import jinja2

ROOT = pathlib.Path(__file__).resolve().parents[1]
DOCS = ROOT / "docs"

PLOT = """
set terminal svg size 720,360 font "sans-serif,12" background "white"
set output "{output}"
set xlabel "{label}"
set ylabel "microseconds an item"
set logscale x
set yrange [0:*]
set key below
set grid ytics
set datafile separator ","
plot {lines}
"""


class Figures:
    """What the comparing benchmarks printed: medians with their spread, by name and size."""

    def __init__(self, results):
        self.rows = {}
        for name in ("exchange", "devices", "tools"):
            with open(results / f"{name}.csv", encoding="utf-8") as file:
                for row in csv.DictReader(file):
                    values = [float(row[column]) for column in ("median", "least", "greatest")]
                    self.rows[row["figure"], int(row["size"])] = values

    def median(self, name, size):
        return self.rows[name, size][0]

    def text(self, name, size, digits=2):
        median, least, greatest = self.rows[name, size]
        return f"{median:.{digits}f} ({least:.{digits}f} to {greatest:.{digits}f})"

    def sizes(self, name):
        return [size for figure, size in self.rows if figure == name]


def budget(results):
    """Instructions and allocations of each row of the budget's test."""
    counts = []
    for message in xml.etree.ElementTree.parse(results / "budget.xml").iter("Message"):
        found = re.fullmatch(r"(\d+) instructions, (\d+) allocations an? (\w+)", message.findtext("Description") or "")
        if found:
            instructions, allocations, what = found.groups()
            counts.append({"what": message.findtext("DataTag") or f"{what} of `readData`, beside its items",
                           "instructions": int(instructions), "allocations": int(allocations)})
    if not counts:
        sys.exit("performance-page: the budget's test printed no counts")
    return counts


def operations(results):
    """Nanoseconds and allocations of the conversions, by type: name of the operation -> (median, allocations)."""
    types = {}
    for entry in json.loads((results / "itemdata.json").read_text(encoding="utf-8"))["benchmarks"]:
        operation, _, variant = entry["run_name"].partition("/")
        if entry["aggregate_name"] == "median" and operation in ("validateItemFields, read", "getUserText", "getPlcValue"):
            types.setdefault(variant, {})[operation] = (entry["cpu_time"], entry["allocations"])
    return types


def plot(figures, output, label, names):
    """One line for each name; the spread as bars."""
    blocks, lines = [], []
    for number, (name, title) in enumerate(names.items()):
        rows = [",".join(map(str, [size, *figures.rows[name, size]])) for size in figures.sizes(name)]
        blocks.append(f"$data{number} << end\n" + "\n".join(rows) + "\nend\n")
        lines.append(f'$data{number} using 1:2:3:4 with yerrorlines title "{title}"')
    script = "".join(blocks) + PLOT.format(output=DOCS / output, label=label, lines=", ".join(lines))
    subprocess.run(["gnuplot", "-"], input=script, text=True, check=True)


def machine():
    information = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8")
    model = re.search(r"^model name\s*: (.*)", information, re.MULTILINE)
    compiler = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True, check=True).stdout.strip()
    return {"processor": model.group(1) if model else "unknown", "cores": os.cpu_count(),
            "kernel": os.uname().release.split("-")[0], "compiler": compiler,
            "date": datetime.date.today().isoformat()}


def main():
    results = pathlib.Path(sys.argv[1])
    figures = Figures(results)
    environment = jinja2.Environment(loader=jinja2.FileSystemLoader(DOCS), trim_blocks=True, lstrip_blocks=True,
                                     keep_trailing_newline=True, undefined=jinja2.StrictUndefined)
    page = environment.get_template("performance.md.j2").render(
        figures=figures, budget=budget(results), types=operations(results), machine=machine())
    (DOCS / "performance.md").write_text(page, encoding="utf-8")
    plot(figures, "performance-items.svg", "items of a list",
         {"plug-in": "plug-in", "bare loop": "bare loop", "libmodbus": "libmodbus", "Qt SerialBus": "Qt SerialBus"})
    plot(figures, "performance-devices.svg", "devices of 10 items",
         {"devices: plug-in": "plug-in", "devices: bare loop": "bare loop"})
    print("\n".join(line for line in page.splitlines() if line.startswith("|")))


if __name__ == "__main__":
    main()
