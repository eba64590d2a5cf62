#!/usr/bin/env python3
"""What the two DLLs export, need and contain.

  dll_parts.py OBJDUMP CORE_DLL SHIELD_DLL

The exported names equal the signature table in both directions, undecorated. Only DLLs of the system are needed. No
mathematical function comes from another library: its digits would change with the system or with the precision word.
"""
import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from hosts import shield  # noqa: E402
from signature_table import exports  # noqa: E402

# DLLs of every Windows since Vista.
SYSTEM = {"kernel32.dll", "msvcrt.dll", "user32.dll", "advapi32.dll"}
MATHEMATICS = set("""acos acosh asin asinh atan atan2 atanh cbrt cos cosh erf erfc exp exp2 expm1 fma fmod hypot lgamma
                     log log10 log1p log2 pow remainder sin sincos sinh sqrt tan tanh tgamma""".split())


def parts(objdump, dll):
    """Exported names, and imported names by DLL."""
    text = subprocess.run([objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    table = text.split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
    exported = set(re.findall(r"^\s+\[ *\d+\](?: \+base\[ *\d+\] +[0-9a-f]+)? +(\S+)$", table, re.M))
    imported = {}
    for block in text.split("DLL Name: ")[1:]:
        name, rest = block.split("\n", 1)
        imported[name.strip().lower()] = set(re.findall(r"^\s+[0-9a-f]+\s+\d+\s+(\S+)$", rest.split("\n\n")[0], re.M))
    return exported, imported


def faults(objdump, dll, table):
    exported, imported = parts(objdump, dll)
    found = [f"exported, but in no row of the table: {n}" for n in sorted(exported - table)]
    found += [f"in the table, but not exported: {n}" for n in sorted(table - exported)]
    found += [f"needed, but no DLL of the system: {n}" for n in sorted(set(imported) - SYSTEM)]
    if not imported.get("msvcrt.dll"):
        found.append("no import of msvcrt.dll was read: the listing has another form")
    found += [f"a mathematical function of {name}: {f}" for name, functions in imported.items()
              for f in sorted(functions & MATHEMATICS)]
    members = Path(dll).with_suffix(".map").read_text().split("\n\n")
    linked = set(re.findall(r"libmingwex\.a\(lib\w*?mingwex_a-(\w+)\.o\)", members[1] if len(members) > 1 else ""))
    if not linked:
        found.append("no member of libmingwex was read: the map has another form")
    found += [f"a mathematical function of mingw-w64: {f}" for f in sorted(linked & (MATHEMATICS | {"lgamma_r", "cossin"}))]
    if "libquadmath.a(" in "".join(members):
        found.append("parts of libquadmath, whose licence is the LGPL")
    return [f"{Path(dll).name}: {fault}" for fault in found], len(exported), sorted(imported)


def main(objdump, core, second):
    wrong = []
    for dll, table in ((core, {e.name for e in exports()}), (second, set(shield.names()))):
        found, count, needed = faults(objdump, dll, table)
        wrong += found
        print(f"{Path(dll).name}: {count} functions; needs {', '.join(needed)}")
    print("\n".join(wrong), end="\n" if wrong else "")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
