#!/usr/bin/env python3
"""Compares the codes on the page about the JSON output with those of the schema, and of the tool's own table.

    codes.py PAGE SCHEMA TABLE
"""

import json
import re
import sys


def column(page, heading):
    """The codes of the first column of the table below a heading."""
    part = page.split(f"\n## {heading}\n")[1].split("\n## ")[0]
    return set(re.findall(r"^\| `(\w+)` \|", part, re.M)) - {"state", "code", "rule", "cause", "step"}


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        page = file.read()
    with open(sys.argv[2], encoding="utf-8") as file:
        defs = json.load(file)["$defs"]
    with open(sys.argv[3], encoding="utf-8") as file:
        table = json.load(file)
    reasons = set(defs["reason"]["properties"]["code"]["enum"])
    wanted = {
        "States of a file": set(defs["state"]["enum"]),
        "Reasons": reasons,
        "Causes": set(defs["reason"]["properties"]["cause"]["enum"]) - {None},
        "Steps and services": (set(defs["reason"]["properties"]["step"]["enum"]) - {None})
        | set(defs["service"]["properties"]["state"]["enum"]),
        "Rules": set(defs["lost_key"]["properties"]["rule"]["enum"]),
    }
    wrong = 0
    for heading, codes in wanted.items():
        if column(page, heading) != codes:
            print(f"{heading}: page and schema differ by {sorted(column(page, heading) ^ codes)}")
            wrong += 1
    states = wanted["States of a file"]
    for name, codes in (("reasons", reasons), ("causes", wanted["Causes"]), ("states", states)):
        in_source = {row["code"] for row in table[name]} - {""}
        if in_source != codes:
            print(f"{name}: table and schema differ by {sorted(in_source ^ codes)}")
            wrong += 1
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
