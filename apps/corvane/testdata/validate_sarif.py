#!/usr/bin/env python3
"""Validates a SARIF file against the SARIF 2.1.0 schema; exits 1 naming each error."""
import json
import sys

import jsonschema


def main() -> int:
    schema_path, sarif_path = sys.argv[1], sys.argv[2]
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    with open(sarif_path, encoding="utf-8") as file:
        document = json.load(file)
    validator = jsonschema.Draft4Validator(schema)
    errors = sorted(validator.iter_errors(document), key=lambda error: list(error.path))
    for error in errors:
        print(f"{'/'.join(str(part) for part in error.path)}: {error.message}", file=sys.stderr)
    # An empty run would pass the schema while proving nothing.
    results = document["runs"][0]["results"]
    if not results:
        print("no results to validate", file=sys.stderr)
        return 1
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
