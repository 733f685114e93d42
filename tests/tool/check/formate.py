#!/usr/bin/python3
"""Reads what `check` writes for build servers with a reader of each format, and compares it with the JSON output.

    formate.py TOOL SCHEMA PLUGIN LATE

SCHEMA is that of SARIF; PLUGIN takes its faults from a file of orders beside it; LATE gets a warning.
The first line names Debian's Python, for which Debian's packages are.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.parse
import xml.etree.ElementTree

import jsonschema
import junitparser

FAILURES = {"failed", "crashed", "timed_out"}
wrong = []


def expect(condition, what):
    if not condition:
        wrong.append(what)


def fill(folder, plugin, late):
    """Plugins with every kind of result, one with texts that mean something in each format, and no plugin."""
    orders = {
        "libgut.dylib": b"",
        "libabsturz.dylib": b"beschreiben absturz",
        "libtexte, 100%: <&\">.dylib": b"beschreiben version 1%0A:,::error::]]><x a=\"'&\x1b[31m\xfc\xef\xbf\xbe",
    }
    for name, order in orders.items():
        shutil.copy(plugin, os.path.join(folder, name))
        with open(os.path.join(folder, name + ".txt"), "wb") as file:
            file.write(order)
    shutil.copy(late, os.path.join(folder, "libspaet.dylib"))
    with open(os.path.join(folder, "libtext.dylib"), "w", encoding="ascii") as file:
        file.write("no library")


def check(tool, folder, output, *options):
    """What the tool writes in that format, also in a German environment."""
    command = [tool, "check", "--dir", folder, os.path.join(folder, "libfehlt.dylib"), "--skip", "memory,overlaps"]
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "LANGUAGE": "de"}
    run = subprocess.run([*command, "--format", output, *options], capture_output=True, check=False, env=environment)
    expect(run.returncode == 4, f"{output}: exit code {run.returncode}")
    text = run.stdout.decode("utf-8")  # or it ends here
    expect(not re.search(r"[^\n -~\u00a0-\U0010ffff]", text), f"{output}: control characters")
    return text


def read_junit(text, files):
    xml.etree.ElementTree.fromstring(text)
    suites = junitparser.JUnitXml.fromstring(text.encode("utf-8"))
    expect([suite.name for suite in suites] == [file["file"] for file in files], "junit: other files")
    for suite, file in zip(suites, files):
        totals = file["totals"]
        cases = [(case.name, case.result[0] if case.result else None, case.system_out) for case in suite]
        if file["error"]:
            expect(len(cases) == 1 and cases[0][1].message == file["error"], "junit: the unreadable file")
            continue
        expect((suite.tests, suite.failures, suite.errors, suite.skipped)
               == (len(file["checks"]), totals["failed"], totals["crashed"] + totals["timed_out"], totals["skipped"]),
               f"junit: counts of {suite.name}")
        kinds = {"failed": junitparser.Failure, "crashed": junitparser.Error, "skipped": junitparser.Skipped}
        for (name, result, output), wanted in zip(cases, file["checks"]):
            reason = wanted["reason"].replace("\ufffe", "\ufffd")
            expect(name == wanted["name"], f"junit: {name} is not {wanted['name']}")
            expect(type(result) is kinds.get(wanted["result"], type(None)), f"junit: result of {name}")
            if result is not None:
                expect(result.message == reason, f"junit: {name} says {result.message}")
            if isinstance(result, (junitparser.Failure, junitparser.Error)):
                expect(result.type == wanted["code"], f"junit: code of {name}")
            expect(output == (f"warning: {reason}" if wanted["result"] == "warning" else None), f"junit: output of {name}")
    expect(suites.tests == sum(suite.tests for suite in suites), "junit: the sum")


def findings(files):
    """What each format of findings has to hold: file, check, level, text."""
    for file in files:
        for result in file["checks"]:
            if result["result"] in FAILURES | {"warning"}:
                level = "warning" if result["result"] == "warning" else "error"
                yield file["file"], result["name"], level, f"{result['result'].replace('_', ' ')}: {result['reason']}"


def read_sarif(text, files, schema):
    log = json.loads(text)
    for error in jsonschema.Draft4Validator(schema).iter_errors(log):
        wrong.append(f"sarif: {error.json_path}: {error.message}")
    run = log["runs"][0]

    def path(located):
        return urllib.parse.unquote(urllib.parse.urlparse(located["locations"][0]["physicalLocation"]["artifactLocation"]["uri"]).path)

    rules = {rule["id"] for rule in run["tool"]["driver"]["rules"]}
    expect(all(result["ruleId"] in rules for result in run["results"]), "sarif: a result without a rule")
    got = {(path(r), r["ruleId"], r["level"], r["message"]["text"]) for r in run["results"] if r["level"] != "note"}
    expect(got == set(findings(files)), f"sarif: {got ^ set(findings(files))}")
    notes = {path(r): r["message"]["text"].split()[0] for r in run["results"] if r["level"] == "note"}
    expect(notes == {f["file"]: str(sum(c["code"] == "builds_on" for c in f["checks"])) for f in files
                     if any(c["code"] == "builds_on" for c in f["checks"])}, f"sarif: notes {notes}")
    missing = {path(n): n["message"]["text"] for n in run["invocations"][0]["toolExecutionNotifications"]}
    expect(missing == {f["file"]: f["error"] for f in files if f["error"]}, f"sarif: unreadable {missing}")


def unescaped(text):
    for escape, character in (("%0D", "\r"), ("%0A", "\n"), ("%3A", ":"), ("%2C", ","), ("%25", "%")):
        text = text.replace(escape, character)
    return text


def read_github(text, files):
    got, missing = set(), {}
    for line in text.splitlines():
        level, properties, message = re.fullmatch(r"::(error|warning|notice) ([^:]*)::(.*)", line).groups()
        values = {key: unescaped(value) for key, value in (part.split("=", 1) for part in properties.split(","))}
        name = values["title"].removeprefix("orvoplugin check").strip()
        if not name:
            missing[values["file"]] = unescaped(message)
        elif level != "notice":
            got.add((values["file"], name, level, unescaped(message)))
    expect(got == set(findings(files)), f"github: {got ^ set(findings(files))}")
    expect(missing == {f["file"]: f["error"] for f in files if f["error"]}, f"github: unreadable {missing}")


def main():
    tool, schema, plugin, late = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        fill(folder, plugin, late)
        files = json.loads(check(tool, folder, "json"))["files"]
        results = {result["result"] for file in files for result in file["checks"]}
        expect({"passed", "failed", "warning", "skipped", "crashed"} <= results, f"only {results} are tried")
        read_junit(check(tool, folder, "junit"), files)
        with open(schema, encoding="utf-8") as file:
            read_sarif(check(tool, folder, "sarif"), files, json.load(file))
        read_github(check(tool, folder, "github"), files)
        shown = [suite.name for suite in junitparser.JUnitXml.fromstring(check(tool, folder, "junit", "--only-failed").encode())]
        expect(shown == [f["file"] for f in files if not f["conformant"] or f["totals"]["warning"]], "junit: --only-failed")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
