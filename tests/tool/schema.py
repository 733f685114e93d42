#!/usr/bin/env python3
"""Holds JSON documents to the schema of the tool's output.

    schema.py SCHEMA DOCUMENT...     exit 1, and what is wrong with which document, when one is not valid

The schema is tried too: it has to refuse each document once a field of it is taken out, added or of another type.
"""

import copy
import json
import sys

import jsonschema


def places(value, path=()):
    """Every object in a document, with the way to it."""
    if isinstance(value, dict):
        yield path
        for key, child in value.items():
            yield from places(child, path + (key,))
    elif isinstance(value, list):
        for index, child in enumerate(value[:3]):
            yield from places(child, path + (index,))


def at(document, path):
    for step in path:
        document = document[step]
    return document


def mutations(document):
    for path in places(document):
        for key in list(at(document, path)):
            without = copy.deepcopy(document)
            del at(without, path)[key]
            yield f"without {path + (key,)}", without
        more = copy.deepcopy(document)
        at(more, path)["something_else"] = 1
        yield f"with more at {path}", more
        for key in list(at(document, path)):
            other = copy.deepcopy(document)
            at(other, path)[key] = [[1.5]]
            yield f"with another type at {path + (key,)}", other


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    commands = {branch["$ref"].rsplit("/", 1)[-1] for branch in schema["oneOf"]}
    bad = 0
    for name in sys.argv[2:]:
        with open(name, encoding="utf-8") as file:
            document = json.load(file)
        commands.discard(document["command"])
        # one branch, not all of them, so that a message says what is wrong
        branch = {"$ref": "#/$defs/" + document["command"], "$defs": schema["$defs"]}
        validator = jsonschema.Draft202012Validator(branch)
        for error in validator.iter_errors(document):
            print(f"{name}: {error.json_path}: {error.message}")
            bad += 1
        if len(json.dumps(document)) < 2500:
            for what, mutation in mutations(document):
                if validator.is_valid(mutation):
                    print(f"{name}: the schema takes it {what}")
                    bad += 1
    for command in sorted(commands):
        print(f"no document of the command {command} was tried")
        bad += 1
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
