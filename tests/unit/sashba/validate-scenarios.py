#!/usr/bin/env python3
"""Holds the shipped scenarios and a generated one against the JSON Schema, and some broken ones that it must refuse.

Exit code 77 (skipped) where python3-jsonschema is not installed.
"""
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)

folder = pathlib.Path(sys.argv[1])
schema = json.loads((folder / "scenario.schema.json").read_text())
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
failures = 0


def check(name, document, valid):
    global failures
    errors = [error.message[:200] for error in validator.iter_errors(document)]
    if bool(errors) == valid:
        failures += 1
        print("%s: expected %s" % (name, "no error" if valid else "an error"), *errors, sep="\n  ")


def machine(**hba):
    return {"hbas": [{"hbaNumber": 0, **hba}]}


def timeline(change):
    return {"hbas": [{"hbaNumber": 0}], "timeline": [change]}


shipped = [path for path in sorted(folder.glob("*.json")) if path.name != "scenario.schema.json"]
if len(shipped) < 3:
    sys.exit("expected the shipped scenarios in %s, found %d" % (folder, len(shipped)))
for path in shipped:
    check(path.name, json.loads(path.read_text()), True)
generated = subprocess.run([folder / "make-large", "200"], stdout=subprocess.PIPE, check=True).stdout
check("make-large 200", json.loads(generated), True)

check("raw code", machine(controllerStatus=255), True)
check("set of an HBA", timeline({"atPass": 1, "hba": 0, "set": {"controllerStatus": "failed"}}), True)
check("insert of a disk", timeline({"afterSeconds": 0.5, "hba": 0, "insert": {"driveNumber": 3}}), True)
check("no HBAs", {}, False)
check("misspelt field", machine(controlerStatus=2), False)
check("unknown word", machine(controllerStatus="brokn"), False)
check("code that does not fit", machine(controllerStatus=256), False)
check("drive without number", machine(physicalDrives=[{"status": 2}]), False)
check("17 members", machine(logicalDrives=[{"logicalDriveNumber": 0, "members": list(range(17))}]), False)
check("change without time", timeline({"hba": 0, "pull": 1}), False)
check("change with two times", timeline({"atPass": 1, "afterSeconds": 1, "hba": 0, "pull": 1}), False)
check("change with two actions", timeline({"atPass": 1, "hba": 0, "pull": 1, "insert": 1}), False)
check("drive field on a box", timeline({"atPass": 1, "hba": 0, "storageBox": 1, "set": {"osName": "x"}}), False)
sys.exit(1 if failures else 0)
