"""Checks Mermaid diagrams without a browser: the kind is known, lines have a known form, every block is closed,
every participant is declared once and used, and names of code exist in the sources."""

import functools
import re

from markdown import ROOT, Mistake

KINDS = {"sequenceDiagram", "flowchart TD", "flowchart LR"}
SEQUENCE = {
    "participant": re.compile(r"^(?:participant|actor) (\w+)(?: as (.+))?$"),
    "message": re.compile(r"^(\w+)(?:->>|-->>|-x|--x|-\)|--\))([+-]?)(\w+): (.+)$"),
    "note": re.compile(r"^Note (?:over|left of|right of) (\w+)(?:,\s*(\w+))?: (.+)$"),
    "opens": re.compile(r"^(?:loop|alt|opt|par|critical|break|rect)\b.*$"),
    "between": re.compile(r"^(?:else|and|option)\b.*$"),
    "closes": re.compile(r"^end$"),
    "active": re.compile(r"^(?:activate|deactivate) (\w+)$"),
    "other": re.compile(r"^(?:autonumber|%%.*)$"),
}
NODE = r"(\w+)(?:\[\"[^\"]*\"\]|\(\[\"[^\"]*\"\]\)|\{\"[^\"]*\"\}|\(\"[^\"]*\"\))?"
EDGE = re.compile(rf"^{NODE}\s+(?:-->|-\.->|==>)(?:\|\"?[^|]*\"?\|)?\s+{NODE}$")
DECLARED = re.compile(r"(\w+)(?:\[\"|\(\[\"|\{\"|\(\")")
NAME = re.compile(r"\b(?:[A-Za-z_]\w*::)+~?[A-Za-z_]\w*|\b[A-Za-z_]\w*(?=\()|\borvo_\w+|\b[A-Z][a-z]+[A-Z]\w+")


@functools.lru_cache
def words_of_the_sources():
    words = set()
    for folder in ("src", "tools", "examples", "cmake"):
        for path in (ROOT / folder).rglob("*"):
            if path.suffix in (".h", ".cpp", ".cmake", ".txt"):
                words |= set(re.findall(r"\w+", path.read_text(encoding="utf-8", errors="replace")))
    return words


def check_names(text, where):
    for name in NAME.findall(text):
        for part in name.split("::"):
            if part.lstrip("~") not in words_of_the_sources():
                raise Mistake(f"{where}: the diagram names {name}, which is not in the sources")


def check_sequence(lines, where):
    declared, used, depth = {}, set(), 0
    for line in lines:
        kind, match = next(((k, m) for k, p in SEQUENCE.items() if (m := p.match(line))), (None, None))
        if kind is None:
            raise Mistake(f"{where}: not a line of a sequence diagram: {line}")
        if kind == "participant":
            if match.group(1) in declared:
                raise Mistake(f"{where}: participant {match.group(1)} is declared twice")
            declared[match.group(1)] = match.group(2) or match.group(1)
        elif kind == "message":
            used |= {match.group(1), match.group(3)}
        elif kind == "note":
            used |= {name for name in match.groups()[:2] if name}
        elif kind == "active":
            used.add(match.group(1))
        elif kind == "between" and depth == 0:
            raise Mistake(f"{where}: outside of any block: {line}")
        depth += (kind == "opens") - (kind == "closes")
        if depth < 0:
            raise Mistake(f"{where}: an end too many")
    if depth:
        raise Mistake(f"{where}: {depth} blocks without an end")
    compare(declared.keys(), used, where)


def check_flowchart(lines, where):
    declared, used = set(), set()
    for line in lines:
        edge = EDGE.match(line)
        if not edge and not re.fullmatch(NODE, line):
            raise Mistake(f"{where}: not a line of a flowchart: {line}")
        declared |= set(DECLARED.findall(line))
        if edge:
            used |= {edge.group(1), edge.group(2)}
    compare(declared, used, where)


def compare(declared, used, where):
    if unknown := used - declared:
        raise Mistake(f"{where}: used and not declared: {', '.join(sorted(unknown))}")
    if idle := declared - used:
        raise Mistake(f"{where}: declared and not used: {', '.join(sorted(idle))}")


def check(text, where):
    lines = [line.strip() for line in text.splitlines() if line.strip()]
    if not lines or lines[0] not in KINDS:
        raise Mistake(f"{where}: not a kind of diagram: {lines[0] if lines else ''}")
    if len(lines) < 3:
        raise Mistake(f"{where}: a diagram of nothing")
    (check_sequence if lines[0] == "sequenceDiagram" else check_flowchart)(lines[1:], where)
    for line in lines[1:]:
        check_names(line, where)
