#!/usr/bin/env python3
"""Writes the inputs of recorded answers as files of a fuzzing corpus.

usage: make_corpus.py DIRECTORY VECTORS.jsonl…
"""

import base64
import json
import pathlib
import sys

# Where "in" is the base64 of bytes rather than text.
BINARY = {"bookmarks-decode", "json"}


def seeds(path):
    for line in path.read_text(encoding="utf-8").splitlines():
        row = json.loads(line)
        value = row["in"]
        if path.stem in BINARY:
            yield base64.b64decode(value)
        elif isinstance(value, str):
            yield value.encode("utf-8")
        else:
            # What was encoded is the more telling input for a decoder.
            yield row["out"].encode("utf-8")


def main():
    directory = pathlib.Path(sys.argv[1])
    directory.mkdir(parents=True, exist_ok=True)
    for vectors in map(pathlib.Path, sys.argv[2:]):
        for number, seed in enumerate(seeds(vectors)):
            (directory / f"{vectors.stem}-{number:05}").write_bytes(seed)


if __name__ == "__main__":
    main()
