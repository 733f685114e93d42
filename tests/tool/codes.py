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
    return set(re.findall(r"^\| `(\w+)` \|", part, re.M)) - {"state", "code", "rule"}


def main():
    page, source = (open(name, encoding="utf-8").read() for name in (sys.argv[1], sys.argv[3]))
    with open(sys.argv[2], encoding="utf-8") as file:
        defs = json.load(file)["$defs"]
    reasons = set(defs["reason"]["properties"]["code"]["enum"])
    wanted = {
        "States of a file": set(defs["state"]["enum"]),
        "Reasons": reasons,
        "Rules": set(defs["lost_key"]["properties"]["rule"]["enum"]),
    }
    wrong = 0
    for heading, codes in wanted.items():
        if column(page, heading) != codes:
            print(f"{heading}: page and schema differ by {sorted(column(page, heading) ^ codes)}")
            wrong += 1
    in_source = set(re.findall(r'\{Grund::\w+,\s*"(\w+)"', source))
    if in_source != reasons:
        print(f"reasons: sources and schema differ by {sorted(in_source ^ reasons)}")
        wrong += 1
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
