#!/usr/bin/env python3
"""Compares the codes on the page about the JSON output with those of the schema, and of the sources.

    codes.py PAGE SCHEMA SOURCE
"""

import json
import re
import sys


def column(page, heading):
    """The codes of the first column of the table below a heading."""
    part = page.split(f"\n## {heading}\n")[1].split("\n## ")[0]
    return set(re.findall(r"^\| `(\w+)` \|", part, re.M)) - {"state", "code", "rule", "cause", "step"}


def main():
    page, source = (open(name, encoding="utf-8").read() for name in (sys.argv[1], sys.argv[3]))
    with open(sys.argv[2], encoding="utf-8") as file:
        defs = json.load(file)["$defs"]
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
    for name, codes in (("Grund", reasons), ("Ursache", wanted["Causes"])):
        in_source = set(re.findall(r'\{%s::\w+,\s*"(\w+)"' % name, source))
        if in_source != codes:
            print(f"{name}: sources and schema differ by {sorted(in_source ^ codes)}")
            wrong += 1
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
