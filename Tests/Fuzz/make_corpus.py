#!/usr/bin/env python3
"""Writes the inputs of test vectors to the files of a fuzzing corpus.

usage: make_corpus.py [--frames] DIRECTORY VECTORS.jsonl…
"""

import base64
import json
import pathlib
import struct
import sys

# Vector files in which "in" is binary data, encoded in base64.
BINARY = {"bookmarks-decode", "json"}


def json_of_fragment(fragment):
    body = fragment.partition("=")[2].rstrip("=").replace("-", "+").replace("_", "/")
    try:
        yield base64.b64decode(body + "=" * (-len(body) % 4))
    except ValueError:
        pass


def seeds(path):
    for line in path.read_text(encoding="utf-8").splitlines():
        row = json.loads(line)
        value = row["in"]
        if path.stem in BINARY:
            yield base64.b64decode(value)
        elif path.stem == "reply":
            yield base64.b64decode(value["payload"])
        elif isinstance(value, str):
            yield value.encode("utf-8")
            if path.stem == "target":
                yield from json_of_fragment(value)
        else:
            # These vectors test an encoder, but the seed is for a decoder: write the encoded output.
            yield row["out"].encode("utf-8")


def main():
    arguments = sys.argv[1:]
    frames = arguments[0] == "--frames"
    directory, *files = map(pathlib.Path, arguments[1:] if frames else arguments)
    directory.mkdir(parents=True, exist_ok=True)
    for vectors in files:
        for number, seed in enumerate(seeds(vectors)):
            if frames:
                seed = bytes([number % 256]) + struct.pack("<I", len(seed)) + seed
            (directory / f"{vectors.stem}-{number:05}").write_bytes(seed)


if __name__ == "__main__":
    main()
