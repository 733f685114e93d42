#!/usr/bin/env python3
"""Every link between pages leads to a file of the tree and to a heading of it, and every path of the tree, and every
public header, that is named in a code span exists.

    links.py                   the pages of the tree, each of which README.md leads to
    links.py installed WORK    the pages that are installed below WORK/prefix; links only
"""

import pathlib
import re
import sys

import markdown
from markdown import ROOT, Mistake

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")  # images too
WITHOUT_ALTERNATIVE = re.compile(r"!\[\s*\]\(")
TREE_PATH = re.compile(r"^(?:\./)?((?:src|tests|scripts|docs|examples|cmake|tools|bench|fuzz|\.ci)/[\w./-]*)$")
HEADER = re.compile(r"^orvo(?:plugin|util)/[\w/]+\.h$")


def made_by_cmake(header):
    return (ROOT / "cmake" / (header.rpartition("/")[2] + ".in")).is_file()


def check(document):
    """Returns how many links and paths there are; raises on the first that leads nowhere."""
    count = 0
    for number, line in document.prose:
        if WITHOUT_ALTERNATIVE.search(markdown.without_spans(line)):
            raise Mistake(f"{document.where(number)}: a picture without a text alternative")
        for target in LINK.findall(markdown.without_spans(line)):
            check_link(document, number, target)
            count += 1
        for span in markdown.spans(line):
            header = HEADER.match(span)
            if header and not ((ROOT / "src" / span).is_file() or made_by_cmake(span)):
                raise Mistake(f"{document.where(number)}: there is no {span}")
            path = TREE_PATH.match(span.split()[0]) if span.split() else None
            if path:
                if not (ROOT / path.group(1)).exists() and not (document.path.parent / path.group(1)).exists():
                    raise Mistake(f"{document.where(number)}: there is no {path.group(1)}")
                count += 1
    return count


def check_link(document, number, target):
    if re.match(r"^[a-z]+:", target):
        return
    file, _, anchor = target.partition("#")
    path = (document.path.parent / file).resolve() if file else document.path
    if not path.exists():
        raise Mistake(f"{document.where(number)}: {target} leads nowhere")
    if anchor and anchor not in markdown.anchors(markdown.read(path)):
        raise Mistake(f"{document.where(number)}: {target}: no such heading")


def unreached(start, pages):
    """Pages that no path of links from `start` leads to."""
    reached, waiting = set(), [start]
    while waiting:
        page = waiting.pop()
        if page in reached:
            continue
        reached.add(page)
        for _, line in markdown.read(page).prose:
            for target in LINK.findall(line):
                path = (page.parent / target.partition("#")[0]).resolve()
                if path.is_dir():
                    waiting += sorted(path.glob("*.md"))
                elif path.suffix == ".md" and path.exists():
                    waiting.append(path)
    return sorted(set(pages) - reached)


def check_tree():
    total = sum(check(markdown.read(path)) for path in markdown.documents())
    if left := unreached(ROOT / "README.md", markdown.documents()):
        raise Mistake("No link leads to: " + ", ".join(str(p.relative_to(ROOT)) for p in left))
    return f"{total} links and paths lead somewhere, and README.md leads to every page"


def check_installed(work):
    pages = sorted((pathlib.Path(work).resolve() / "prefix").rglob("share/doc/**/*.md"))
    if not pages:
        raise Mistake(f"no page is installed below {work}")
    for page in map(markdown.read, pages):
        for number, line in page.prose:
            for target in LINK.findall(line):
                check_link(page, number, target)
    return f"the links of {len(pages)} installed pages lead somewhere"


if __name__ == "__main__":
    try:
        print(check_installed(sys.argv[2]) if sys.argv[1:2] == ["installed"] else check_tree())
    except Mistake as mistake:
        sys.exit(str(mistake))
