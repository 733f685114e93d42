#!/usr/bin/env python3
"""Writes the texts of the tool's sources as a catalogue to translate, a .pot file, to standard output.

    texte.py SOURCES | msgmerge --no-fuzzy-matching --no-wrap --update de.po -
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

KEYWORDS = ["satz:1", "uebersetzt:1", "N_:1", "anzahl:2,3", "add_option:3", "add_flag:3",
            "add_flag_callback:3", "type_name:1"]
ARGUMENT = re.compile(r'\badd_option\(\s*"([^-"][^"]*)"')
TABLES = ("texte.json", "gruende.json", "pruefungen.json")
SAME_EVERYWHERE = {"class", "example", "code", "stage", "step", "where", "builds_on"}


def texts_of_page(value):
    """The texts of a JSON document, as it is translated when the page is made."""
    if isinstance(value, str) and value:
        yield value
    elif isinstance(value, list):
        for entry in value:
            yield from texts_of_page(entry)
    elif isinstance(value, dict):
        for name, entry in value.items():
            if name not in SAME_EVERYWHERE:
                yield from texts_of_page(entry)


def is_text(block):
    """Not the name of an option, nor nothing."""
    text = "".join(re.findall(r'"(.*)"', re.search(r'^msgid ((?:".*"\n?)+)', block, re.M).group(1)))
    return text and not re.fullmatch(r"-\S+", text)


def template(sources):
    code = sorted([*sources.rglob("*.cpp"), *sources.rglob("*.h")])
    with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="utf-8") as page:
        for file in sorted(file for name in TABLES for file in sources.rglob(name)):
            for text in texts_of_page(json.loads(file.read_text(encoding="utf-8"))):
                page.write(f"N_({json.dumps(text, ensure_ascii=False)});\n")
        for file in code:
            for name in ARGUMENT.findall(file.read_text(encoding="utf-8")):
                page.write(f'N_("{name}");\n')
        page.flush()
        found = subprocess.run(
            ["xgettext", "--c++", "--from-code=UTF-8", "--no-wrap", "--no-location", "--output=-", "--keyword"]
            + [f"--keyword={word}" for word in KEYWORDS] + [page.name, *map(str, code)],
            check=True, capture_output=True, text=True).stdout
    header, *blocks = found.split("\n\n")
    header = header[header.index('msgid ""'):].replace("CHARSET", "UTF-8")
    return "\n\n".join([header, *filter(is_text, blocks)]).rstrip("\n") + "\n"


if __name__ == "__main__":
    sys.stdout.write(template(pathlib.Path(sys.argv[1])))
