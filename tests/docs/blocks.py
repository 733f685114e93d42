#!/usr/bin/env python3
"""Compiles and runs the code blocks of the documents.

    blocks.py check [DOCUMENT]...                     every block is of a kind that a test compiles, runs or reads
    blocks.py install BUILD WORK                      installs what a build folder holds, for the documents to use
    blocks.py run DOCUMENT WORK [--compiler CXX]      runs the document's blocks from its first to its last

WORK/prefix holds what `install` made. Each document has a folder of its own as home directory, WORK/<name>, with the
prefix in it as `orvo`: the documents say ~/orvo.
"""

import argparse
import fnmatch
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

import logtexts
import markdown
import mermaid
from markdown import ROOT, Mistake

ALLOWED = {  # what a block of each kind may be
    "cpp": {"file", "fragment"},
    "cmake": {"file"},
    "makefile": {"file"},
    "meson": {"file"},
    "sh": {"", "in the tree", "needs", "run by"},
    "text": {"file", "output", "paths"},
    "json": {"output"},
    "mermaid": {""},
}
LOG_LINE = re.compile(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} (?:DEBUG|INFO |WARN |ERROR) orvo\.[^:]*: (.*)$")


def fragment(name):
    """The code around a fragment."""
    return ROOT / "tests" / "docs" / "fragments" / f"{name}.in"


def commands(text):
    """The single commands of a block, without comments."""
    lines = re.sub(r"\\\n\s*", " ", text).splitlines()
    lines = [re.sub(r"(^|\s+)#.*$", "", line).strip() for line in lines]
    return [part.strip() for line in lines if line for part in line.split("&&")]


def check_block(document, block, previous):
    where = document.where(block.line)
    if block.kind not in ALLOWED:
        raise Mistake(f"{where}: no test knows a code block of kind '{block.kind}'")
    if block.marker and block.marker not in markdown.MARKERS:
        raise Mistake(f"{where}: no test knows the marker '{block.marker}'")
    if block.marker not in ALLOWED[block.kind]:
        wanted = " or ".join(f"'{m}'" for m in sorted(ALLOWED[block.kind]) if m) or "none"
        raise Mistake(f"{where}: a block of kind '{block.kind}' needs a marker: {wanted}")
    if not block.text.strip():
        raise Mistake(f"{where}: an empty block")
    if block.marker == "file" and pathlib.PurePath(block.value).name not in block.prose:
        raise Mistake(f"{where}: the reader is not told that this is {block.value}")
    if block.marker == "fragment" and not fragment(block.value).is_file():
        raise Mistake(f"{where}: there is no fragment {block.value}")
    if block.marker == "output" and (previous is None or previous.kind != "sh"):
        raise Mistake(f"{where}: output of no command")
    if block.marker == "run by":
        script = (ROOT / block.value).read_text(encoding="utf-8")
        for command in commands(block.text):
            if not re.search(r"^\s*" + re.escape(command) + r"( .*)?$", script, re.MULTILINE):
                raise Mistake(f"{where}: {block.value} does not run: {command}")
    if block.kind == "mermaid":
        mermaid.check(block.text, where)


def check(document):
    """Whether each block is one that is compiled, run or read. Returns how many there are."""
    previous = None
    for block in document.blocks:
        check_block(document, block, previous)
        if block.marker != "output":
            previous = block
    for index, (number, line) in enumerate(document.prose):
        before = document.prose[index - 1][1] if index else ""
        if line.startswith("    ") and line.strip() and not before.strip():
            raise Mistake(f"{document.where(number)}: a code block without a fence")
    return len(document.blocks)


def output_matches(expected, found):
    """Whether the lines found are those expected, where '...' stands for anything and blanks may be more or fewer."""
    if not expected:
        return not found
    if expected[0].strip() == "...":
        return any(output_matches(expected[1:], found[skip:]) for skip in range(len(found) + 1))
    if not found:
        return False
    pattern = re.escape(" ".join(expected[0].split()))
    pattern = pattern.replace(re.escape(" ... "), "(?: .*)? ").replace(re.escape("..."), ".*")
    return (re.fullmatch(pattern, " ".join(found[0].split())) is not None
            and output_matches(expected[1:], found[1:]))


class Reader:
    """Does what a document says, as a reader at a terminal would."""

    def __init__(self, document, work, compiler):
        self.document = document
        self.work = pathlib.Path(work).resolve()
        self.compiler = compiler
        self.home = self.work / re.sub(r"\W+", "-", document.name)
        self.printed = ""
        self.patterns = logtexts.guide_patterns()
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir(parents=True)
        (self.home / "orvo").symlink_to(self.work / "prefix")
        self.folder = str(self.first_folder())
        self.environment = self.first_environment()

    def first_folder(self):
        """Where the reader begins: at home, or, if the page is that of a project, in a copy of the project's folder."""
        project = self.document.path.parent
        if project == ROOT or not (project / "CMakeLists.txt").is_file():
            return self.home
        return shutil.copytree(project, self.home / project.name, ignore=shutil.ignore_patterns("build", "build-*"))

    def first_environment(self):
        kept = ("PATH", "LANG", "TMPDIR", "CMAKE_CXX_COMPILER_LAUNCHER", "CCACHE_DIR",
                "CCACHE_NOHASHDIR", "CCACHE_MAXSIZE")
        environment = {name: os.environ[name] for name in kept if name in os.environ}
        environment.update(HOME=str(self.home), CXX=self.compiler, CMAKE_GENERATOR="Ninja", LC_ALL="C.UTF-8",
                           DOKUMENT_TREE=str(self.work / "tree"))
        return environment

    def follow(self):
        """Does each block; returns how many there are."""
        for block in self.document.blocks:
            step = getattr(self, f"{block.kind}_{block.marker.replace(' ', '_')}".rstrip("_"))
            step(block)
        return len(self.document.blocks)

    def fail(self, block, text):
        raise Mistake(f"{self.document.where(block.line)}: {text}")

    # Files and fragments

    def write_file(self, block):
        target = self.home / block.value
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(block.text, encoding="utf-8")

    cpp_file = cmake_file = makefile_file = meson_file = text_file = write_file

    def cpp_fragment(self, block):
        source = self.home / "fragments" / f"line{block.line}.cpp"
        source.parent.mkdir(parents=True, exist_ok=True)
        around = fragment(block.value).read_text(encoding="utf-8")
        source.write_text(around.replace("@FRAGMENT@", block.text), encoding="utf-8")
        prefix = self.work / "prefix" / "include"
        self.run_plain(block, [*shlex.split(self.compiler), "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
                               "-fsyntax-only", "-I", str(prefix), str(source)])

    def run_plain(self, block, command):
        result = subprocess.run(command, cwd=self.home, env=self.environment, text=True, errors="replace",
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if result.returncode != 0:
            self.fail(block, f"does not compile\n{result.stdout}")

    # Commands

    def sh(self, block):
        self.run_commands(block)

    def sh_in_the_tree(self, block):
        before = self.folder
        self.folder = self.environment["DOKUMENT_TREE"]
        self.run_commands(block)
        self.folder = before

    def sh_needs(self, block):
        """Left out, with its output, where a program is not installed."""
        missing = [program for program in block.value.split() if not shutil.which(program)]
        if not missing:
            self.run_commands(block)
            return
        self.printed = None
        print(f"{self.document.where(block.line)}: not run, for want of {', '.join(missing)}")

    def sh_run_by(self, block):
        """`check` reads it; what a test cannot run is run elsewhere."""

    def run_commands(self, block):
        """Runs the block where the one before it ended: same folder, same variables."""
        state = self.home / ".state"
        script = f"{block.text}\nexport -p > {shlex.quote(str(state))}.env\npwd > {shlex.quote(str(state))}.pwd\n"
        result = subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=self.folder, env=self.environment,
                                text=True, errors="replace", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, timeout=900)
        self.printed = result.stdout
        if result.returncode != 0:
            self.fail(block, f"ends with status {result.returncode}\n{result.stdout}")
        self.check_log(block)
        self.folder = pathlib.Path(f"{state}.pwd").read_text(encoding="utf-8").rstrip("\n")
        self.take_variables(pathlib.Path(f"{state}.env"))

    def take_variables(self, saved):
        listed = subprocess.run(["bash", "-c", f"source {shlex.quote(str(saved))}; env -0"], env={}, check=True,
                                stdout=subprocess.PIPE).stdout.decode("utf-8", "replace")
        own = {"PWD", "OLDPWD", "SHLVL", "_"}
        self.environment.update(entry.split("=", 1) for entry in listed.split("\0")
                                if "=" in entry and entry.split("=", 1)[0] not in own)

    def check_log(self, block):
        """Every line of the libraries' log in the output is in the operator's guide."""
        for line in self.printed.splitlines():
            entry = LOG_LINE.match(line)
            if entry and not logtexts.is_known(entry.group(1), self.patterns):
                self.fail(block, f"the operator's guide does not know this line of the log: {line}")

    # What is read

    def text_output(self, block):
        if self.printed is None:
            return
        expected, found = block.text.splitlines(), self.printed.splitlines()
        if not output_matches(expected, found):
            self.fail(block, "the commands above print something else:\n" + self.printed)

    json_output = text_output

    def text_paths(self, block):
        base = ROOT if block.value == "." else self.home / block.value
        above = []
        for line in block.text.splitlines():
            entry = re.match(r"^(\s*)(\S+)", line)
            depth = len(entry.group(1)) // 4
            above = [*above[:depth], entry.group(2)]
            path = "/".join(part.rstrip("/") for part in above)
            if not any(fnmatch.fnmatch(str(p.relative_to(base)), path) for p in base.glob(path)):
                self.fail(block, f"there is no {path} below {base}")

    def mermaid(self, block):
        """`check` reads it."""


def copy_of_tree(work):
    tree = work / "tree"
    shutil.rmtree(tree, ignore_errors=True)
    shutil.copytree(ROOT, tree, symlinks=True,
                    ignore=shutil.ignore_patterns(".git", "build", "build-*", ".cache", "corpus"))


def install(build, work):
    copy_of_tree(work)
    shutil.rmtree(work / "prefix", ignore_errors=True)
    result = subprocess.run(["cmake", "--install", str(build), "--prefix", str(work / "prefix")], text=True,
                            errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if result.returncode != 0:
        raise Mistake(f"{build} cannot be installed\n{result.stdout}")


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands_of = parser.add_subparsers(dest="command", required=True)
    commands_of.add_parser("check").add_argument("documents", nargs="*", type=pathlib.Path)
    installing, run = commands_of.add_parser("install"), commands_of.add_parser("run")
    installing.add_argument("build", type=pathlib.Path)
    installing.add_argument("work", type=pathlib.Path)
    run.add_argument("document", type=pathlib.Path)
    run.add_argument("work", type=pathlib.Path)
    run.add_argument("--compiler", default="c++")
    options = parser.parse_args(arguments)
    try:
        if options.command == "check":
            count = sum(check(markdown.read(path)) for path in options.documents or markdown.documents())
            print(f"{count} code blocks, each of a kind that a test compiles, runs or reads")
        elif options.command == "install":
            options.work.mkdir(parents=True, exist_ok=True)
            install(options.build, options.work.resolve())
        else:
            document = markdown.read(options.document)
            done = Reader(document, options.work, options.compiler).follow()
            print(f"{document.name}: {done} code blocks done as they stand there")
    except Mistake as mistake:
        print(mistake, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
