#!/usr/bin/env python3
"""Writes schema/core/cim-core.mof from the facts in schema/core/cim-facts.json.

The embedded object manager needs the superclasses of our classes; full CIM servers bring the whole schema. The facts
are names, superclasses, keys, types, defaults and value codes, so the result has no descriptions.

    make-core.py [--check] FACTS OUTPUT

With --check nothing is written: the exit status is 1 when OUTPUT is not what the facts give.
"""

import argparse
import json
import pathlib
import sys

HEAD = """\
// The CIM superclasses that the classes of this system need, and those that the embedded object manager serves itself.
// Made by tools/mof/make-core.py from cim-facts.json: change the facts, then run it again. A full CIM server
// brings the complete schema and must not be given this file.

#pragma include ("qualifiers.mof")
"""


def literal(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, str):
        return '"' + value.replace("\\", "\\\\").replace('"', '\\"') + '"'
    return str(value)


def wrapped(opening, items, indent):
    """One qualifier with an array value, broken into lines of at most 118 columns."""
    lines, line = [], indent + opening + "{"
    for number, item in enumerate(items):
        text = literal(item) + ("}" if number == len(items) - 1 else ", ")
        if len(line) + len(text.rstrip()) > 118:
            lines.append(line.rstrip())
            line = indent + "    "
        line += text
    lines.append(line)
    return "\n".join(lines)


def qualifiers_of(fact, indent):
    result = []
    if fact.get("key"):
        result.append("Key")
    if fact.get("aggregate"):
        result.append("Aggregate")
    if "overrides" in fact:
        result.append(f'Override("{fact["overrides"]}")')
    if fact.get("required"):
        result.append("Required")
    for name in ("min", "max"):
        if name in fact:
            result.append(f"{name.capitalize()}({fact[name]})")
    if "arrayType" in fact:
        result.append(f'ArrayType("{fact["arrayType"]}")')
    text = ", ".join(result)
    if "values" in fact:
        codes = wrapped("ValueMap", [code for code, _ in fact["values"]], indent + " ")
        parts = [text, codes] if text else [codes]
        # A text property lists its values in ValueMap alone: they need no second name.
        if all(name is not None for _, name in fact["values"]):
            parts.append(wrapped("Values", [name for _, name in fact["values"]], indent + " "))
        text = ",\n".join(parts).lstrip()
    return text


def property_of(fact):
    indent = "    "
    qualifiers = qualifiers_of(fact, indent)
    if fact["type"] == "reference":
        declaration = f'{fact["referenceClass"]} REF {fact["name"]}'
    else:
        declaration = f'{fact["type"]} {fact["name"]}' + ("[]" if fact.get("array") else "")
    if "default" in fact:
        declaration += " = " + literal(fact["default"])
    head = f"{indent}[{qualifiers}]\n" if qualifiers else ""
    return f"{head}{indent}{declaration};\n"


def class_of(name, fact):
    flags = [flag.capitalize() for flag in ("association", "indication", "aggregation", "abstract") if fact.get(flag)]
    head = f"[{', '.join(flags)}]\n" if flags else ""
    parent = f" : {fact['superclass']}" if fact["superclass"] else ""
    return f"{head}class {name}{parent}\n{{\n{''.join(property_of(one) for one in fact['properties'])}}};\n"


def main():
    parser = argparse.ArgumentParser(description="write the core MOF from its facts")
    parser.add_argument("--check", action="store_true", help="compare instead of writing")
    parser.add_argument("facts", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    arguments = parser.parse_args()
    facts = json.loads(arguments.facts.read_text(encoding="utf-8"))
    text = HEAD + "".join("\n" + class_of(name, fact) for name, fact in facts.items())
    if arguments.check:
        if not arguments.output.is_file() or arguments.output.read_text(encoding="utf-8") != text:
            print(f"{arguments.output} is stale: run tools/mof/make-core.py", file=sys.stderr)
            return 1
        return 0
    arguments.output.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
