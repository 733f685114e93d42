#!/usr/bin/env python3
"""Every text of the tool's sources is in the catalogue of a language, translated, and with the same placeholders.

    katalog.py TEXTE SOURCES CATALOGUE     TEXTE is the script that gathers the texts
"""

import re
import subprocess
import sys


def joined(block, field):
    """The text of a field that may go over several lines; None when there is none."""
    found = re.search(rf'^{field} ((?:".*"\n?)+)', block, re.M)
    return "".join(re.findall(r'"(.*)"', found.group(1))) if found else None


def entries(catalogue):
    """The entries below the header, by text and plural: their block."""
    blocks = catalogue.split("\n\n")[1:]
    return {(joined(block, "msgid"), joined(block, r"msgid_plural")): block for block in blocks}


def faults(key, block):
    if "fuzzy" in "".join(re.findall(r"^#,.*", block, re.M)):
        yield "fuzzy"
    plural = key[1] is not None
    for field, text in ((r"msgstr\[0\]", key[0]), (r"msgstr\[1\]", key[1])) if plural else (("msgstr", key[0]),):
        translation = joined(block, field)
        if not translation:
            yield "not translated"
        elif set(re.findall(r"\{\d\}", text)) != set(re.findall(r"\{\d\}", translation)):
            yield f"other placeholders: {translation}"


def main():
    gather, sources, catalogue = sys.argv[1:]
    wanted = entries(subprocess.run([gather, sources], check=True, capture_output=True, text=True).stdout)
    with open(catalogue, encoding="utf-8") as file:
        text = file.read()
    there = entries(text)
    wrong = [f"{key[0]}: not in the catalogue" for key in wanted if key not in there]
    wrong += [f"{key[0]}: in no source" for key in there if key not in wanted]
    wrong += [f"{key[0]}: {fault}" for key, block in there.items() if key in wanted for fault in faults(key, block)]
    if "\n#~" in text:
        wrong.append("the catalogue holds obsolete entries")
    if not wanted:
        wrong.append("no text found in the sources")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
