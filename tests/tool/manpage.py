#!/usr/bin/env python3
"""Compares the tool's manual page with its --help: the same commands, arguments, options and exit codes, and for each
command the same line that says what it does.

    manpage.py TOOL PAGE LANGUAGE
"""

import os
import re
import subprocess
import sys


WORDS = {
    "en": {"positionals": "Positionals", "subcommands": "Subcommands", "usage": "Usage", "codes": "Exit codes",
           "commands": "COMMANDS", "options": "OPTIONS", "exit status": "EXIT STATUS",
           "examples": "Examples", "examples on the page": "EXAMPLES"},
    "de": {"positionals": "Argumente", "subcommands": "Befehle", "usage": "Aufruf", "codes": "Exit-Codes",
           "commands": "BEFEHLE", "options": "OPTIONEN", "exit status": "EXIT-STATUS",
           "examples": "Beispiele", "examples on the page": "BEISPIELE"},
}


def help_of(tool, *command):
    return subprocess.run([tool, *command, "--help"], check=True, capture_output=True, text=True,
                          encoding="utf-8").stdout


def options(text):
    return set(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", text, re.M))


def arguments(text, heading):
    block = re.search(rf"^{heading}:\n(.*?)\n\n", text, re.M | re.S)
    return set(re.findall(r"^  (\S+)", block.group(1), re.M)) if block else set()


def plain(roff):
    """Roff text without its commands, blanks folded."""
    lines = [re.sub(r"^\.\w+ ?", "", line).replace("\\-", "-") for line in roff.splitlines()]
    return re.sub(r"\s+", " ", " ".join(lines)).replace('"', "")


def tags(roff):
    """What stands as a tag of a list."""
    return re.findall(r"^\.TP\n\.\w+ (.*)$", roff, re.M)


def tagged_options(roff):
    return set(re.findall(r"--[a-z-]+", " ".join(tags(roff)).replace("\\-", "-")))


def main():
    tool, page, language = sys.argv[1:]
    words = WORDS[language]
    os.environ.update(LC_ALL="C.UTF-8", LANGUAGE=language)
    with open(page, encoding="utf-8") as file:
        roff = file.read()
    sections = {part.split("\n", 1)[0].strip('"'): part for part in re.split(r"^\.SH ", roff, flags=re.M)[1:]}
    pages = {}
    for part in re.split(r"^\.SS ", sections[words["commands"]], flags=re.M)[1:]:
        title = part.split("\n", 1)[0].strip('"')
        pages[title.split()[1]] = (title, part)

    wrong = []
    overview = help_of(tool)
    summaries = dict(re.findall(r"^  ([a-z]+) +(\S.*)$", overview.split("\n" + words["subcommands"] + ":\n")[1].split("\n\n")[0], re.M))
    if set(summaries) != set(pages):
        wrong.append(f"commands: help {sorted(summaries)}, page {sorted(pages)}")
    common = options(overview)
    if common != tagged_options(sections[words["options"]]):
        wrong.append(f"common options: help {sorted(common)}, page {sorted(tagged_options(sections[words['options']]))}")
    for code, meaning in re.findall(r"(\d) ([^;]+?)(?:;|\.$)", overview.split(words["codes"] + ": ")[1].replace("\n", " ").strip()):
        if f"\n.B {code}\n{meaning}\n" not in sections[words["exit status"]]:
            wrong.append(f"exit code {code}: the page does not say '{meaning}'")
    for command, summary in summaries.items():
        title, part = pages.get(command, ("", ""))
        text = help_of(tool, command)
        own = options(text) - common
        if own != tagged_options(part):
            wrong.append(f"{command}: options: help {sorted(own)}, page {sorted(tagged_options(part))}")
        for option in common - options(text) - {"--version"}:  # which is of no command
            if option not in plain(part):
                wrong.append(f"{command}: the page does not say that it takes no {option}")
        usage = re.search(rf"^{words['usage']}: (.*)$", text, re.M).group(1)
        if usage != title:
            wrong.append(f"{command}: usage: help '{usage}', page '{title}'")
        missing = {a for a in arguments(text, words["positionals"]) if a not in {tag.split()[0] for tag in tags(part)}}
        if missing:
            wrong.append(f"{command}: arguments that the page does not explain: {sorted(missing)}")
        if summary not in plain(part):
            wrong.append(f"{command}: the page does not say '{summary}'")
    for text in [overview, *(help_of(tool, command) for command in summaries)]:
        examples = re.search(rf"^{words['examples']}:\n((?:  orvoplugin .*\n)+)", text, re.M)
        if not examples:
            wrong.append(f"no examples in the help: {text.splitlines()[0]}")
            continue
        for line in examples.group(1).splitlines():
            if line.strip() not in sections[words["examples on the page"]].replace("\\-", "-").splitlines():
                wrong.append(f"the page lacks the example '{line.strip()}'")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
