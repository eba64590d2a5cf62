#!/usr/bin/env python3
"""Packs the built assembly and the native libraries in NuGet's layout.

  package.py ASSEMBLY_FOLDER OUTPUT_FOLDER RID=LIBRARY_FOLDER...

ASSEMBLY_FOLDER holds what build.sh made. RID is linux-x64, win-x64 and so on; the libraries are taken from the folder by
the names of that system.
"""
import re
import sys
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NUSPEC = """\
<?xml version="1.0" encoding="utf-8"?>
<package xmlns="http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd">
  <metadata>
    <id>Orvanth.Core.Math</id>
    <version>{version}</version>
    <authors>Orvanth</authors>
    <requireLicenseAcceptance>false</requireLicenseAcceptance>
    <description>Distributions, special functions, multiple comparisons, linear algebra, random numbers and a minimiser. \
On Linux the system's OpenBLAS, gfortran and g++ libraries are needed (Debian: libopenblas0 libgfortran5 libstdc++6), on Windows nothing else.</description>
    <dependencies>
      <group targetFramework=".NETStandard2.0" />
    </dependencies>
  </metadata>
</package>
"""
RELATIONS = """\
<?xml version="1.0" encoding="utf-8"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
  <Relationship Type="http://schemas.microsoft.com/packaging/2010/07/manifest" Target="/Orvanth.Core.Math.nuspec" Id="R1" />
</Relationships>
"""
TYPES = """\
<?xml version="1.0" encoding="utf-8"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
  <Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml" />
{defaults}
</Types>
"""
# The file that the assembly loads, and the one that it needs, as the system asks for them. On Windows it needs none.
NATIVE = {"linux": ("libOrvanth.Core.Math.Shield.so", "libOrvanth.Core.Math.so.1"),
          "win": ("Orvanth.Core.Math.Shield.dll",)}


def version():
    return re.search(r"^project\(\w+ VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]


def contents(assembly, runtimes):
    files = {}
    for name in ("Orvanth.Core.Math.dll", "Orvanth.Core.Math.xml", "Orvanth.Core.Math.dll.config"):
        files[f"lib/netstandard2.0/{name}"] = (assembly / name).read_bytes()
    for rid, folder in runtimes:
        for name in NATIVE[rid.split("-")[0]]:
            files[f"runtimes/{rid}/native/{name}"] = (folder / name).read_bytes()
    files["THIRD_PARTY_NOTICES.md"] = (ROOT / "THIRD_PARTY_NOTICES.md").read_bytes()
    files["Orvanth.Core.Math.nuspec"] = NUSPEC.format(version=version()).encode()
    extensions = sorted({name.rsplit(".", 1)[1] for name in files})
    defaults = "\n".join(f'  <Default Extension="{e}" ContentType="application/octet-stream" />' for e in extensions)
    return {"[Content_Types].xml": TYPES.format(defaults=defaults).encode(), "_rels/.rels": RELATIONS.encode(), **files}


def main(assembly, output, *runtimes):
    pairs = [(rid, Path(folder)) for rid, folder in (r.split("=", 1) for r in runtimes)]
    path = Path(output) / f"Orvanth.Core.Math.{version()}.nupkg"
    path.parent.mkdir(parents=True, exist_ok=True)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as package:
        for name, data in contents(Path(assembly), pairs).items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))  # the same bytes from the same build
            entry.external_attr = 0o644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            package.writestr(entry, data)
    print(path)


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
