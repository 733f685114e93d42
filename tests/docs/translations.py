#!/usr/bin/env python3
"""Each page below docs/de is the German version of a page: the same headings, code blocks and tables, in the same order.

    translations.py            compares each translation with its original
    translations.py update     first takes the code blocks that differ over from the originals

The blocks of a translation are those of its original, which another test runs; only comments differ. In tables, the code
spans of the first column are the same, so every line of the log stands in the translated guide too. What varies may have
another name in angle brackets."""

import re
import sys

import blocks
import markdown
from markdown import ROOT, Mistake

FOLDER = ROOT / "docs" / "de"
COMMENTS = {"cpp": r"\s*//.*$", "cmake": r"\s*#.*$"}


def original(path):
    return ROOT / "README.md" if path.name == "README.md" else ROOT / "docs" / path.name


def headings(document):
    return [len(line) - len(line.lstrip("#")) for _, line in document.prose if re.match(r"#{1,6}\s", line)]


def code(block):
    """What a block is and says, without comments."""
    if block.kind == "sh":
        lines = blocks.commands(block.text)
    elif block.marker == "paths":
        lines = [re.match(r"\s*\S*", line).group(0) for line in block.text.splitlines()]
    else:
        lines = re.sub(COMMENTS.get(block.kind, r"$^"), "", block.text, flags=re.MULTILINE).splitlines()
    return block.kind, block.marker, block.value, lines


def first_cells(document):
    """The code spans of the first cell of each row; each hole is the same."""
    return [[re.sub(r"<[^<>]*>", "<>", span) for span in markdown.spans(cells[0])]
            for table in markdown.tables(document) for _, cells in table]


def compare(page, what, theirs, ours):
    for number, (there, here) in enumerate(zip(theirs, ours), 1):
        if there != here:
            raise Mistake(f"{page}: {what} {number}: the original has {there}, the translation {here}")
    if len(theirs) != len(ours):
        raise Mistake(f"{page}: the original has {len(theirs)} of: {what}, the translation {len(ours)}")


def check(translation, source):
    compare(translation.name, "heading", headings(source), headings(translation))
    compare(translation.name, "code block", [code(b) for b in source.blocks], [code(b) for b in translation.blocks])
    compare(translation.name, "row", first_cells(source), first_cells(translation))


def update(translation, source):
    """Writes the original's text into each block that differs, comments too."""
    lines = translation.path.read_text(encoding="utf-8").splitlines()
    if len(source.blocks) != len(translation.blocks):
        return
    for ours, theirs in reversed(list(zip(translation.blocks, source.blocks))):
        if code(ours) != code(theirs):
            lines[ours.line : ours.line + len(ours.text.splitlines())] = theirs.text.splitlines()
    translation.path.write_text("\n".join(lines) + "\n", encoding="utf-8")


def check_all(updating):
    pages = sorted(FOLDER.glob("*.md"))
    if not pages:
        raise Mistake(f"{FOLDER} has no pages")
    for page in pages:
        if updating:
            update(markdown.read(page), markdown.read(original(page)))
        check(markdown.read(page), markdown.read(original(page)))
    return f"{len(pages)} translated pages have what their originals have"


if __name__ == "__main__":
    try:
        print(check_all(sys.argv[1:] == ["update"]))
    except Mistake as mistake:
        sys.exit(str(mistake))
