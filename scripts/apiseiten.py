"""Makes what Doxygen reads for the API pages: the guides, with links, code and diagrams such as Doxygen shows, and the
public headers, in which the labels of the comments are commands (see ALIASES in Doxyfile).

    python3 scripts/apiseiten.py FOLDER HEADER...      copies into FOLDER, with their paths in the tree
"""

import html
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "docs"))
import markdown
from mermaid import EDGE, SEQUENCE

LABEL = re.compile(r"\b(Parameters|Returns|Errors|Ownership|Threads|Encoding): (\w?)")
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
# The pages of the tree beside the classes; what no other group has is reference.
GROUPS = {
    "First steps": ("README.md", "docs/client.md", "docs/plugin-author.md"),
    "Reference": (),
    "Design": ("docs/architecture.md", "docs/benchmarks.md", "docs/coverage.md"),
    "Decisions": tuple(sorted(str(path.relative_to(ROOT)) for path in (ROOT / "docs/adr").glob("*.md"))),
    "Deutsch": ("docs/de/README.md", "docs/de/operator.md"),
}
MAIN_PAGE = ROOT / "docs/api.md"


def groups():
    named = [page for pages in GROUPS.values() for page in pages]
    others = [str(path.relative_to(ROOT)) for path in sorted((ROOT / "docs").glob("*.md")) if path != MAIN_PAGE]
    return GROUPS | {"Reference": tuple(page for page in others if page not in named)}


def header(text):
    """Labels become commands. "Returns:" at the head of a comment stays its sentence, which the lists show."""
    lines, before = [], ""
    for line in text.splitlines():
        if re.match(r"^ *///(?!<)", line):
            if not before.startswith("///"):
                line = re.sub(r"/// Returns: ", "/// Returns ", line)
            line = LABEL.sub(lambda match: f"@{match.group(1).lower()} {match.group(2).upper()}", line)
        lines.append(line)
        before = line.strip()
    return "\n".join(lines) + "\n"


def label(path, anchor=""):
    """The name by which Doxygen knows a page, or a heading of it."""
    name = "guide_" + re.sub(r"\W", "_", str(path.relative_to(ROOT).with_suffix("")))
    return name + "__" + re.sub(r"\W", "_", anchor) if anchor else name


def steps(diagram):
    """A diagram as a list: who calls whom with what, blocks indented."""
    names = dict(re.findall(r"(\w+)\[\"([^\"]*)\"\]", diagram))
    depth, lines = 0, []
    for line in (line.strip() for line in diagram.splitlines()[1:]):
        found = {kind: form.match(line) for kind, form in SEQUENCE.items()}
        if found["participant"]:
            names[found["participant"].group(1)] = found["participant"].group(2)
        elif found["closes"]:
            depth -= 1
        elif found["opens"] or found["between"]:
            lines.append((depth - bool(found["between"]), "*" + re.sub(r"^alt ", "if ", line) + "*"))
            depth += bool(found["opens"])
        elif found["message"]:
            caller, _, called, text = found["message"].groups()
            lines.append((depth, f"**{names[caller]} → {names[called]}:** {text}"))
        elif found["note"]:
            lines.append((depth, found["note"].group(3)))
        elif edge := EDGE.match(line):
            lines.append((depth, f"{names[edge.group(1)]} → {names[edge.group(2)]}"))
    return "\n".join("    " * depth + "- " + html.escape(text, quote=False) for depth, text in lines) + "\n"


class Guide:
    def __init__(self, name, pages):
        self.path = ROOT / name
        self.pages = pages
        self.slugs = {}

    def link(self, match):
        picture, text, target = match.groups()
        if picture:
            return f'![{text}]({pathlib.Path(target).name})'
        if re.match(r"^[a-z]+:", target):
            return match.group(0)
        file, _, anchor = target.partition("#")
        path = (self.path.parent / file).resolve() if file else self.path
        if path == MAIN_PAGE:
            return f"[{text}](@ref index)"
        # A file of the tree that is no page here is only named.
        return f"[{text}](@ref {label(path, anchor)})" if path in self.pages else text

    def line(self, line):
        if re.match(r"^<!--.*-->$", line):
            return ""
        if heading := re.match(r"^(#+) (.*)$", line):
            marks, text = heading.groups()
            anchor = markdown.slug(text, self.slugs)
            name = label(self.path) if marks == "#" else label(self.path, anchor)
            return f"{marks} {text.replace('`', '')}" + ("" if self.path == MAIN_PAGE else f" {{#{name}}}")
        # Links may hold code, and code may hold what looks like a link.
        parts = re.split(r"(!?\[[^\]]*\]\([^)\s]+\)|`[^`]*`)", line)
        return "".join(self.span(part) if part.startswith("`") else LINK.sub(self.link, part) for part in parts)

    @staticmethod
    def span(code):
        """Doxygen takes `::name` for a link to something of the sources, also in code."""
        return f"<code>\\{html.escape(code[1:-1])}</code>" if code.startswith("`::") else code

    def text(self):
        document = markdown.read(self.path)
        lines = dict((number, self.line(line)) for number, line in document.prose)
        for block in document.blocks:
            kind = "cpp" if block.kind == "cpp" else "{.unparsed}"
            lines[block.line] = steps(block.text) if block.kind == "mermaid" else f"```{kind}\n{block.text}```"
        return "\n".join(text for _, text in sorted(lines.items())) + "\n"


def main(folder, headers):
    target = pathlib.Path(folder)

    def write(name, text):
        (target / name).parent.mkdir(parents=True, exist_ok=True)
        (target / name).write_text(text, encoding="utf-8")

    for name in headers:
        write(name, header((ROOT / name).read_text(encoding="utf-8")))
    pages = {ROOT / name for names in groups().values() for name in names}
    for path in pages | {MAIN_PAGE}:
        name = str(path.relative_to(ROOT))
        write(name, Guide(name, pages).text())
    for number, (title, names) in enumerate(groups().items(), 1):
        entries = "".join(f"- @subpage {label(ROOT / name)}\n" for name in names)
        write(f"group{number}.md", f"# {title} {{#guides_{number}}}\n\n{entries}")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
