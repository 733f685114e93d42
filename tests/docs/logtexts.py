#!/usr/bin/env python3
"""Holds the operator's guide and the sources together: every text that the libraries can write to the log stands in
the guide's section "Every line of the log", and every line that stands there can be written.

    logtexts.py sources    each text of the sources stands in the guide
    logtexts.py guide      each line of the guide can be put together from texts of the sources

A text of the sources is a string that reads like one (with a blank, "::", "()" or an umlaut) or is handed to a trace.
Strings that read like texts and never reach the log stand in other-texts.txt, each with what it is.
In the guide, <...> in angle brackets stands for what varies.
"""

import functools
import pathlib
import re
import sys

import markdown
from markdown import ROOT, Mistake

GUIDE = ROOT / "docs" / "operator.md"
SECTION = "Every line of the log"
OTHERS = pathlib.Path(__file__).with_name("other-texts.txt")
LITERAL = re.compile(r'(?:u8|R)?"((?:[^"\\\n]|\\.)*)"')
TRACE = re.compile(r"\b(?:Konstruktor|Destruktor)?Spur\s+\w+\([^;]*?\"((?:[^\"\\\n]|\\.)*)\"")
READS_LIKE_A_TEXT = re.compile(r"\s|::|\(\)|[^\x00-\x7f]")
HOLE = re.compile(r"<[a-z][^<>]*>")


def without_comments(text):
    """The source without comments and preprocessor lines; strings stay."""
    pattern = re.compile(r'"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\'|//[^\n]*|/\*.*?\*/', re.DOTALL)
    text = pattern.sub(lambda m: m.group(0) if m.group(0)[0] in "\"'" else " ", text)
    text = without_assertions(text)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "", text, flags=re.MULTILINE)


def without_assertions(text):
    """The source without texts for developers: `static_assert(...)` and `assert(...)`."""
    while match := re.search(r"\b(?:static_)?assert\s*\(", text):
        depth, end = 1, match.end()
        while depth and end < len(text):
            literal = LITERAL.match(text, end)
            depth += 0 if literal else {"(": 1, ")": -1}.get(text[end], 0)
            end = literal.end() if literal else end + 1
        text = text[: match.start()] + text[end:]
    return text


def plain(literal):
    """The text that a string stands for; escapes for single bytes are left as they are."""
    known = {'\\"': '"', "\\n": "\n", "\\t": "\t", "\\\\": "\\"}
    return re.sub(r"\\.", lambda m: known.get(m.group(0), m.group(0)), literal)


def strings(text):
    """Every string; adjacent literals are one string."""
    found, end = [], None
    for match in LITERAL.finditer(text):
        if end is not None and not text[end : match.start()].strip():
            found[-1] += match.group(1)
        else:
            found.append(match.group(1))
        end = match.end()
    return {plain(string) for string in found}


def source_files():
    return sorted(p for p in (ROOT / "src").rglob("*") if p.suffix in (".cpp", ".h"))


def literals_of(text):
    """Every string of a source, and those of them that are texts."""
    text = without_comments(text)
    every = strings(text)
    traces = {plain(m.group(1)) for m in TRACE.finditer(text)}
    return every, {t for t in every if READS_LIKE_A_TEXT.search(t) and re.search(r"\w", t)} | traces


@functools.lru_cache
def source_literals():
    every, texts = {}, {}
    for path in source_files():
        some, of_these = literals_of(path.read_text(encoding="utf-8"))
        for found, into in ((some, every), (of_these, texts)):
            for literal in found:
                into.setdefault(literal, path.relative_to(ROOT))
    return every, texts


def other_texts():
    """Texts that never reach the log: text, tab, what it is."""
    found = {}
    for line in OTHERS.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            text, _, what = line.partition("\t")
            found[text] = what
    return found


def guide_lines(document=None):
    """(line number, text) for each line of the log in the guide."""
    document = document or markdown.read(GUIDE)
    found = []
    for table in markdown.tables(document, SECTION):
        for number, cells in table[1:]:
            lines = markdown.spans(cells[0])
            if not lines:
                raise Mistake(f"{document.where(number)}: a row without a line of the log")
            found += [(number, line) for line in lines]
    if not found:
        raise Mistake(f"{document.name} has no section '{SECTION}' with tables")
    return found


def fixed_parts(line):
    return [part for part in HOLE.split(line) if part]


def guide_patterns():
    return [re.compile(".*".join(re.escape(part) for part in HOLE.split(line)), re.DOTALL)
            for _, line in guide_lines()]


def is_known(text, patterns):
    """Whether a line that was written is one of the guide's; `text` as `StreamLogSink` writes it."""
    text = re.sub(r"^(?:-> |<- )(?:Konstruktor |Destruktor )?", "", text)
    tagged = re.match(r"^\[([^\]]*)\] (.*)$", text)
    candidates = [text] if not tagged else [tagged.group(2) or tagged.group(1)]
    return any(pattern.fullmatch(candidate.rstrip()) or pattern.fullmatch(candidate)
               for pattern in patterns for candidate in candidates)


def composed_of(part, literals):
    """Whether a text is a sequence of strings of the sources."""
    reached = {0}
    for end in range(1, len(part) + 1):
        if any(part[start:end] in literals for start in reached):
            reached.add(end)
    return len(part) in reached


def check_sources():
    parts = [part for _, line in guide_lines() for part in fixed_parts(line)]
    others = other_texts()
    _, texts = source_literals()
    missing = [f"{path}: {text!r}" for text, path in sorted(texts.items(), key=lambda item: str(item[1]))
               if text not in others and not any(text in part for part in parts)]
    stale = sorted(text for text in others if text not in texts)
    if missing:
        raise Mistake(f"Not in {GUIDE.relative_to(ROOT)}, '{SECTION}' (or, if it never reaches the log, in "
                      f"{OTHERS.relative_to(ROOT)}):\n  " + "\n  ".join(missing))
    if stale:
        raise Mistake(f"{OTHERS.relative_to(ROOT)} names what is not in the sources:\n  " + "\n  ".join(stale))
    return f"{len(texts) - len(others)} texts of the sources stand in the guide"


def check_guide():
    every, _ = source_literals()
    usable = {text for text in every if len(text) > 1 or not text.isalnum()}
    lines = guide_lines()
    unknown = [f"line {number}: {line}" for number, line in lines
               if not all(composed_of(part, usable) for part in fixed_parts(line))]
    if unknown:
        raise Mistake(f"In {GUIDE.relative_to(ROOT)}, but not in the sources:\n  " + "\n  ".join(unknown))
    return f"{len(lines)} lines of the guide can be written"


if __name__ == "__main__":
    try:
        print({"sources": check_sources, "guide": check_guide}[sys.argv[1]]())
    except Mistake as mistake:
        sys.exit(str(mistake))
