#!/usr/bin/env python3
"""Writes what the hosts of the library are made of, from the signature table and the manual texts.

  generate_hosts.py            writes every file
  generate_hosts.py --check    exit 1 if a file is not what would be written
  generate_hosts.py --list     the files

A host is a module of tools/hosts with a function files() that gives {path: text}; add it to HOSTS.
"""
import sys

from hosts import dotnet, python, r, shield
from signature_table import ROOT

HOSTS = (shield, python, dotnet, r)


def all_files():
    made = {}
    for host in HOSTS:
        made.update(host.files())
    return made


def main(arguments):
    if arguments == ["--list"]:
        print(*(path.relative_to(ROOT) for path in all_files()), sep="\n")
        return 0
    if arguments == ["--check"]:
        stale = [p for p, text in all_files().items() if not p.exists() or p.read_text() != text]
        for path in stale:
            print(f"{path.relative_to(ROOT)} is stale: run tools/generate_hosts.py", file=sys.stderr)
        return 1 if stale else 0
    if arguments == []:
        for path, text in all_files().items():
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
