"""Reads the Markdown of this tree: code blocks with their markers, headings, links, tables and code spans.

A marker is an HTML comment on the line directly above a code block; it says what the tests do with the block:

    <!-- file: NAME -->          it is that file, which the blocks after it find in their folder
    <!-- fragment: NAME -->      it is compiled inside tests/docs/fragments/NAME.in
    <!-- in the tree -->         its commands are run in a copy of the tree
    <!-- needs: PROGRAM... -->   its commands are run if these programs are installed
    <!-- run by: FILE -->        its commands are run by FILE, which holds each of them (for what a test cannot run)
    <!-- output -->              it is what the commands above it print; a line "..." stands for any number of lines,
                                 and "..." within a line for any text
    <!-- paths: FOLDER -->       it is a tree of files below FOLDER, each of which exists
"""

import dataclasses
import os
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
MARKERS = ("file", "fragment", "in the tree", "needs", "run by", "output", "paths")


class Mistake(Exception):
    """What is wrong with a document, and where."""


@dataclasses.dataclass
class Block:
    kind: str
    text: str
    line: int
    marker: str = ""  # before the colon
    value: str = ""  # behind it
    prose: str = ""  # what stands between the block before and this one


@dataclasses.dataclass
class Document:
    path: pathlib.Path
    blocks: list
    prose: list  # (line number, text) of every line outside code blocks

    @property
    def name(self):
        return str(self.path.relative_to(ROOT)) if self.path.is_relative_to(ROOT) else self.path.name

    def where(self, line):
        return f"{self.name}:{line}"


def read(path):
    path = pathlib.Path(path).resolve()
    blocks, prose, since_block = [], [], []
    fence = block = None
    previous = ""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if fence:
            if line == fence:
                blocks.append(block)
                fence, since_block = None, []
            else:
                block.text += line + "\n"
            continue
        opening = re.match(r"^(\s*)(```+)\s*(\S*)\s*$", line)
        if opening:
            if opening.group(1):
                raise Mistake(f"{path.name}:{number}: a code block is indented")
            fence = opening.group(2)
            block = Block(opening.group(3), "", number, prose="\n".join(text for text in since_block if not text.startswith("<!--")))
            marker = re.match(r"^<!-- ([a-z ]+?)(?:: (.*?))? -->$", previous)
            if marker:
                block.marker, block.value = marker.group(1), marker.group(2) or ""
        else:
            prose.append((number, line))
            since_block.append(line)
        previous = line
    if fence:
        raise Mistake(f"{path.name}: a code block has no end")
    return Document(path, blocks, prose)


def documents():
    """Every Markdown file of the tree. Build folders are left out: other tests write there."""
    found = []
    for folder, folders, files in os.walk(ROOT):
        folders[:] = [name for name in folders if name not in (".git", "build") and not name.startswith("build-")]
        found += [pathlib.Path(folder) / name for name in files if name.endswith(".md")]
    return sorted(found)


def spans(text):
    """The code spans of a line."""
    return [m.group(2) for m in re.finditer(r"(`+)(.+?)\1(?!`)", text)]


def without_spans(text):
    return re.sub(r"(`+)(.+?)\1(?!`)", "", text)


def slug(heading, found):
    """The anchor that a heading gives, the way forges make it; `found` counts those of its page."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading)
    name = re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
    count = found.get(name, 0)
    found[name] = count + 1
    return name if count == 0 else f"{name}-{count}"


def anchors(document):
    """The anchors that a page's headings give."""
    found = {}
    headings = (re.match(r"^#{1,6}\s+(.*?)\s*#*$", line) for _, line in document.prose)
    return {slug(heading.group(1), found) for heading in headings if heading}


def tables(document, below=None):
    """The tables of a document, or of one section of it: lists of rows, each a list of cells; first row the heads."""
    found, rows, level, inside = [], [], 0, below is None
    for number, line in [*document.prose, (0, "")]:
        heading = re.match(r"^(#{1,6})\s+(.*)$", line)
        if heading and below is not None:
            if inside and len(heading.group(1)) <= level:
                inside = False
            if heading.group(2) == below:
                inside, level = True, len(heading.group(1))
        if inside and line.startswith("|"):
            cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
            if not all(re.fullmatch(r":?-+:?", cell) for cell in cells):
                rows.append((number, cells))
        elif rows:
            found.append(rows)
            rows = []
    return found
