#!/usr/bin/env python3
"""The corpora of libFuzzer, one text file a family with an input a line in hexadecimal.

    corpus.py unpack FILE FOLDER          writes each input to a file of its own
    corpus.py pack FOLDER FILE [BYTES]    keeps the smallest inputs of a folder, 3000 bytes of them by itself
"""
import sys
from hashlib import sha1
from pathlib import Path


def unpack(file, folder):
    Path(folder).mkdir(parents=True, exist_ok=True)
    for line in Path(file).read_text().split():
        data = bytes.fromhex(line)
        (Path(folder) / sha1(data).hexdigest()).write_bytes(data)


def pack(folder, file, most=3000):
    kept, size = [], 0
    for data in sorted((path.read_bytes() for path in Path(folder).iterdir()), key=lambda one: (len(one), one)):
        size += len(data)
        if size > int(most):
            break
        kept.append(data.hex())
    Path(file).write_text("".join(line + "\n" for line in kept if line))


if __name__ == "__main__":
    if len(sys.argv) < 4 or sys.argv[1] not in ("pack", "unpack"):
        sys.exit(__doc__)
    {"pack": pack, "unpack": unpack}[sys.argv[1]](*sys.argv[2:])
