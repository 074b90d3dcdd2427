#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes resources/schema/globals.json from the table beside it, globals.tsv.

The table has one row for each variable: id, type letter, readOnly and description, separated by
tabs.
"""

import json
import pathlib
import re
import sys

SCHEMA = pathlib.Path(__file__).resolve().parent.parent / "resources" / "schema"
HEADER = ["id", "type", "readOnly", "description"]


def read_table(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    if lines[:1] != ["\t".join(HEADER)]:
        sys.exit(f"{path}:1: the columns must be: {' '.join(HEADER)}")
    rows = {}
    for number, line in enumerate(lines[1:], start=2):
        cells = line.split("\t")
        if len(cells) != len(HEADER):
            sys.exit(f"{path}:{number}: {len(cells)} cells instead of {len(HEADER)}")
        name, type_letter, read_only, description = cells
        if not re.fullmatch(r"\w+/\w+", name) or name in rows:
            sys.exit(f"{path}:{number}: malformed or repeated id: {name}")
        if type_letter not in tuple("biuFs") or read_only not in ("true", "false"):
            sys.exit(f"{path}:{number}: unknown type or readOnly: {type_letter} {read_only}")
        rows[name] = {
            "type": type_letter,
            "description": description,
            "readOnly": read_only == "true",
        }
    return rows


def main():
    rows = read_table(SCHEMA / "globals.tsv")
    # One variable on each line keeps differences readable.
    lines = [
        f"    {json.dumps(name)}: {json.dumps(rows[name], ensure_ascii=False)}"
        for name in sorted(rows)
    ]
    text = (
        '{\n  "generatedFrom": "GlobalSettings.h",\n  "variables": {\n'
        + ",\n".join(lines)
        + "\n  }\n}\n"
    )
    (SCHEMA / "globals.json").write_text(text, encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
