#!/usr/bin/env python3
"""The payload's JSON Schema against a real validator, and against `check`.

Usage: schema_check_test.py MW_CLI SAMPLE_PAYLOAD PAYLOAD_DIR

The sample payload must be valid. For every payload in PAYLOAD_DIR, the schema
and `check --json` must agree: valid exactly when check finds no problem, the
same root keys at fault, and every pointer check names is a place the schema
rejects.
"""

import json
import pathlib
import re
import subprocess
import sys

import jsonschema

failures = []


def fail(name, message):
    failures.append(f"{name}: {message}")


def run(cli, *arguments):
    result = subprocess.run([cli, *arguments], capture_output=True, text=True,
                            env={"METERWICK_CONTAINER": "/nonexistent/mw", "PATH": "/usr/bin:/bin"})
    return result.returncode, result.stdout, result.stderr


def escape(token):
    return str(token).replace("~", "~0").replace("/", "~1")


def pointer(path):
    return "".join("/" + escape(token) for token in path)


def locations(error):
    """Every place an error (and the branches of an anyOf under it) rejects."""
    path = list(error.absolute_path)
    if error.validator == "required":
        missing = re.match(r"'(.*)' is a required property", error.message)
        if missing:
            path.append(missing.group(1))
    found = {pointer(path)}
    for sub in error.context or []:
        found |= locations(sub)
    return found


def root_key(location):
    return location.split("/")[1] if location else ""


def main():
    cli, sample, payload_dir = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])

    status, out, err = run(cli, "schema")
    if status != 0:
        sys.exit(f"schema exited with {status}: {err}")
    schema = json.loads(out)
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)

    errors = list(validator.iter_errors(json.loads(sample.read_text())))
    if errors:
        fail(sample.name, "the sample payload does not validate: " + "; ".join(e.message for e in errors))
    status, out, err = run(cli, "check", "--json", str(sample))
    if status != 0:
        fail(sample.name, f"check exits {status} on the sample: {out}{err}")

    files = sorted(payload_dir.glob("*.json"))
    if len(files) < 10:
        sys.exit(f"too few payloads in {payload_dir}")
    for file in files:
        name = file.name
        status, out, err = run(cli, "check", "--json", str(file))
        try:
            report = json.loads(out)
        except json.JSONDecodeError:
            fail(name, f"check printed no JSON (status {status}): {err}")
            continue
        problems = [p["pointer"] for p in report["problems"]]
        schema_errors = list(validator.iter_errors(json.loads(file.read_text())))
        rejected = set().union(*(locations(e) for e in schema_errors)) if schema_errors else set()

        if bool(problems) == (not schema_errors):
            fail(name, f"check finds {problems or 'nothing'}, the schema {sorted(rejected) or 'nothing'}")
            continue
        if status != (1 if problems else 0):
            fail(name, f"check exits {status} with problems {problems}")
        for p in problems:
            if p not in rejected:
                fail(name, f"check names {p!r}, which the schema does not reject (it rejects {sorted(rejected)})")
        check_keys = {root_key(p) for p in problems}
        schema_keys = {root_key(pointer(e.absolute_path)) if e.absolute_path else root_key(min(locations(e), key=len))
                       for e in schema_errors}
        if check_keys != schema_keys:
            fail(name, f"root keys at fault differ: check {sorted(check_keys)}, schema {sorted(schema_keys)}")
        for p in report["problems"]:
            if not p["reason"] or not p["effect"]:
                fail(name, f"problem {p['pointer']!r} lacks a reason or an effect")

    for line in failures:
        print(line, file=sys.stderr)
    print(f"{len(files) + 1} payloads, {len(failures)} disagreements")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
