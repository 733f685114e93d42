#!/usr/bin/env python3
"""Holds the page of the predefined values and the sources together: sub-case types, letters of a pattern, codes and kinds
of period, and procedures are the same here and there, in the same order."""

import re
import sys

import markdown
from markdown import ROOT, Mistake

PAGE = ROOT / "docs" / "predefined.md"
SOURCES = ROOT / "src" / "orvoplugin"


def source(path):
    return (SOURCES / path).read_text(encoding="utf-8")


def inside(pattern, text):
    """What stands in the only place that the pattern finds."""
    return re.search(pattern, text, re.DOTALL).group(1)


def sub_case_types(text):
    return re.findall(r'^const Unterfallart (\w+) = (\d+|"[^"]*");', text, re.MULTILINE)


def pattern_letters(text):
    separators = inside(r"bool istTrennzeichen\(char p\) \{(.*?)\}", text)
    digits = inside(r"zahl = (.*?);", text)
    return [letter.replace("\\\\", "\\") for part in (digits, separators)
            for letter in re.findall(r"p == '(\\?.)'", part)]


def period_codes(text):
    first, other, year = (int(inside(rf"constexpr int {name} = (\d+);", text))
                          for name in ("kQuartalEins", "kAlternativesQuartalEins", "kGanzesJahr"))
    return [str(year), f"{first} to {first + 3}", f"{other} to {other + 3}"]


def period_kinds(text):
    return [(value, name) for name, value in
            re.findall(r"(\w+) = (-?\d+)", inside(r"enum Typ : std::int32_t \{(.*?)\};", text))]


def procedures(text):
    names = re.findall(r'"(\w+)"', inside(r"VERFAHREN = \{(.*?)\};", text))
    return [(str(number), name) for number, name in enumerate(names)]


def rows(document, section):
    """The cells of the section's only table, without its heads and without back quotes."""
    (table,) = markdown.tables(document, section)
    return [tuple(cell.strip("`") for cell in cells) for _, cells in table[1:]]


def compare(what, page, sources):
    if not sources:
        raise Mistake(f"{what}: not found in the sources")
    if page != sources:
        both = next(((a, b) for a, b in zip(page, sources) if a != b), (len(page), len(sources)))
        raise Mistake(f"{PAGE.name}, {what}: the page says {both[0]}, the sources say {both[1]}")
    return len(sources)


def check(document):
    """Returns how many values are the same."""
    constants, period = source("domain/Konstanten.h"), source("domain/Veranlagungszeitraum.cpp")
    return sum((
        compare("Sub-case types", rows(document, "Sub-case types"), sub_case_types(constants)),
        compare("Letters of a pattern", [row[0] for row in rows(document, "Letters of a pattern")],
                pattern_letters(period)),
        compare("Codes of a period", [row[0] for row in rows(document, "Codes of a period")[1:-1]],
                period_codes(period)),
        compare("Kinds of period", [row[:2] for row in rows(document, "Kinds of period")],
                period_kinds(source("domain/Veranlagungszeitraum.h"))),
        compare("Procedures", rows(document, "Procedures"), procedures(source("service/ServiceKonstanten.h")))))


if __name__ == "__main__":
    try:
        print(f"{check(markdown.read(PAGE))} predefined values are as in the sources")
    except Mistake as mistake:
        sys.exit(str(mistake))
