#!/usr/bin/env python3
"""Packs a built Python package as a wheel that pip installs.

  make_wheel.py BUILT_FOLDER OUTPUT_FOLDER

BUILT_FOLDER holds orvanth/ with its extension and its libraries.
"""
import base64
import hashlib
import platform
import sys
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
METADATA = """\
Metadata-Version: 2.1
Name: orvanth
Version: {version}
Summary: Distributions, special functions, linear algebra, random numbers and a minimiser
Requires-Python: =={python}.*
Requires-Dist: numpy
Provides-Extra: plot
Requires-Dist: matplotlib; extra == "plot"

Needs the shared libraries of OpenBLAS, gfortran and g++: on Debian libopenblas0, libgfortran5 and libstdc++6.
"""
WHEEL = "Wheel-Version: 1.0\nGenerator: tools/make_wheel.py\nRoot-Is-Purelib: false\nTag: {tag}\n"


def record(name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}\n"


def main(built, output):
    package = Path(built) / "orvanth"
    version = package.joinpath("_version.py").read_text().split('"')[1]
    python = f"{sys.version_info.major}.{sys.version_info.minor}"
    abi = "cp" + python.replace(".", "")
    tag = f"{abi}-{abi}-linux_{platform.machine()}"
    info = f"orvanth-{version}.dist-info"
    files = {f"orvanth/{p.relative_to(package)}": p.read_bytes() for p in sorted(package.rglob("*"))
             if p.is_file() and p.parent.name != "__pycache__"}
    files[f"{info}/METADATA"] = METADATA.format(version=version, python=python).encode()
    files[f"{info}/WHEEL"] = WHEEL.format(tag=tag).encode()
    notices = ROOT / "THIRD_PARTY_NOTICES.md"
    if notices.exists():
        files[f"{info}/{notices.name}"] = notices.read_bytes()
    listing = "".join(record(name, data) for name, data in files.items()) + f"{info}/RECORD,,\n"
    files[f"{info}/RECORD"] = listing.encode()
    path = Path(output) / f"orvanth-{version}-{tag}.whl"
    path.parent.mkdir(parents=True, exist_ok=True)
    for old in path.parent.glob("orvanth-*.whl"):
        old.unlink()
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, data in files.items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))  # the same bytes from the same build
            entry.external_attr = (0o755 if ".so" in name else 0o644) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            wheel.writestr(entry, data)
    print(path)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
