#!/usr/bin/env python3
"""The glossary's terms: each is in order, explained and used by the code, and the names of its type column are in the
code."""

import re
import sys

import markdown
import mermaid
from markdown import ROOT, Mistake

PAGE = ROOT / "docs" / "glossary.md"
UMLAUTS = str.maketrans({"ä": "ae", "ö": "oe", "ü": "ue", "ß": "ss", "Ä": "Ae", "Ö": "Oe", "Ü": "Ue"})


def ascii_spelling(text):
    return text.translate(UMLAUTS)


def check(document, words):
    """Returns how many terms there are."""
    (table,) = markdown.tables(document)
    heads = table[0][1]
    if heads != ["term", "meaning", "type", "not to be confused with"]:
        raise Mistake(f"{document.name}: other columns: {heads}")
    folded = {word.lower() for word in words}
    terms = []
    for number, cells in table[1:]:
        term, meaning, kinds, _ = cells
        bare = ascii_spelling(re.sub(r"\s*\(.*", "", term))
        if not meaning:
            raise Mistake(f"{document.where(number)}: {term} is not explained")
        # German terms are parts of compound and inflected names, so they are searched inside the words.
        for part in re.split(r",\s*", bare):
            if not any(part.lower() in word for word in folded):
                raise Mistake(f"{document.where(number)}: no name in the sources has {part} in it")
        for kind in markdown.spans(kinds):
            for name in re.findall(r"[A-Za-z_]\w+", kind):
                if name not in words and not any(word.startswith(name) for word in words):
                    raise Mistake(f"{document.where(number)}: {name} is not in the sources")
        terms.append(bare.lower())
    if terms != sorted(terms):
        first = next(a for a, b in zip(terms, sorted(terms)) if a != b)
        raise Mistake(f"{document.name}: not in order from '{first}' on")
    return len(terms)


if __name__ == "__main__":
    try:
        print(f"{check(markdown.read(PAGE), mermaid.words_of_the_sources())} terms are in the code")
    except Mistake as mistake:
        sys.exit(str(mistake))
