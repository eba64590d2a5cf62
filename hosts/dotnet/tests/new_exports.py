#!/usr/bin/env python3
"""Exports that do not exist yet get their place without a hand: writes the sources that they would have.

  new_exports.py FOLDER      a copy of hosts/dotnet with four further exports
"""
import shutil
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tools"))

import signature_table  # noqa: E402
from signature_table import Argument, Export  # noqa: E402

FURTHER = [
    Export("distributions", "WeibullICDF", "double",
           (Argument("double", "p"), Argument("double", "shape"), Argument("double", "params"), Argument("TailFlag", "tail")),
           ("Throws",), ("Reentrant",)),
    Export("special", "Zeta", "double", (Argument("double", "x"),), ("Silent",), ("Reentrant",)),
    Export("linalg", "Trace", "double", (Argument("const double*", "x"), Argument("const MatrixDescriptor*", "descriptor")),
           ("None",), ("Reentrant",)),
    Export("time_series", "Smooth", "int32_t", (Argument("double*", "values"), Argument("int32_t", "count")), ("Status",),
           ("Reentrant",)),
]
known = signature_table.exports()
signature_table.exports = lambda: known + FURTHER

from hosts import dotnet  # noqa: E402


def main(target):
    target = Path(target)
    shutil.copytree(ROOT / "hosts" / "dotnet", target, dirs_exist_ok=True)
    for path, text in dotnet.files().items():
        target.joinpath(path.relative_to(ROOT / "hosts" / "dotnet")).write_text(text)
    target.joinpath("src", "use.cs").write_text("""
static class Use
{
    static double Calls()
    {
        return Orvanth.Core.Math.Weibull.Quantile(0.5, 1, 2) + Orvanth.Core.Math.SpecialFunctions.Zeta(2) +
               Orvanth.Core.Math.LinearAlgebra.Trace(new double[1], new Orvanth.Core.Math.MatrixDescriptor(1, 1)) +
               Orvanth.Core.Math.TimeSeries.Smooth(new double[1], 1) +
               Orvanth.Core.Math.SpecialFunctions.Zeta(new[] { 2.0 }, new double[1]).Failures;
    }
}
""")


if __name__ == "__main__":
    main(*sys.argv[1:])
