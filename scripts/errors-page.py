#!/usr/bin/python3
"""errors-page.py [--check]: fills in docs/errors.md.j2 and makes docs/errors.md of it. What velhost explains stands in
tools/velhost/explain/errors.json, how to provoke it in tests/velhost/explain/provocations.json. With --check it writes
nothing, and ends with 1 when docs/errors.md is another."""

import json
import pathlib
import sys

import jinja2

ROOT = pathlib.Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs/errors.md"


def load(file):
    return json.loads((ROOT / file).read_text(encoding="utf-8"))


def differences(provocation):
    """What is another than in the plant of the page."""
    device = {"ip": provocation.get("ip"), **provocation.get("parameters", {})}
    values = [f"the device's `{name}` is `{value}`" for name, value in device.items() if value]
    items = ["`{}` at `{memory_address}` as `{data_type}`".format(item["name"], **item["parameters"])
             for item in provocation["items"]]
    if any(item["parameters"]["memory_type"] != "Word device" for item in provocation["items"]):
        sys.exit("errors-page: an item is no word device, which the page does not show")
    if items != ["`Counter` at `DM100` as `Short`"]:
        values.append(f"the item{'s are' if items[1:] else ' is'} {' and '.join(items)}")
    return " and ".join(values)


def main():
    environment = jinja2.Environment(loader=jinja2.FileSystemLoader(ROOT / "docs"), trim_blocks=True,
                                     lstrip_blocks=True, keep_trailing_newline=True)
    environment.filters["differences"] = differences
    catalogue = load("tools/velhost/explain/errors.json")
    page = environment.get_template("errors.md.j2").render(
        errors=catalogue["errors"], forms=catalogue["forms"],
        provocations=load("tests/velhost/explain/provocations.json"))
    if sys.argv[1:] != ["--check"]:
        PAGE.write_text(page, encoding="utf-8")
    elif PAGE.read_text(encoding="utf-8") != page:
        sys.exit("docs/errors.md does not fit what it is made of: run scripts/errors-page.py")


if __name__ == "__main__":
    main()
