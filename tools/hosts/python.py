"""The Python package: rows of the ufuncs, keyword-friendly functions, native signatures and type stubs."""
import keyword
import re

from signature_table import ROOT, exports

from hosts import table

PACKAGE = ROOT / "hosts" / "python"
TYPES = {"double": "NPY_DOUBLE", "int32_t": "NPY_INT64", "TailFlag": "NPY_INT64", table.ARRAY: "NPY_DOUBLE",
         "double*": "NPY_DOUBLE"}
CTYPES = {"double": "c_double", "int32_t": "c_int32", "TailFlag": "c_int32", "RandomStreamHandle": "c_ssize_t",
          "LBFGSBDriverState*": "c_void_p", "const char*": "c_char_p", "void": "None",
          table.DESCRIPTOR: "POINTER(MatrixDescriptor)"}
KINDS = {"double": "float", "int32_t": "int", "TailFlag": "bool", table.ARRAY: "array of float", "double*": "float"}


def snake(name):
    """NormalCDF: normal_cdf; MCaICDF: mca_icdf; RefinedMCaCDF: refined_mca_cdf; QR_Qy: qr_qy; InverseBetaRegularizedC2: inverse_beta_regularized_c2"""
    name = re.sub(r"^(Refined)?MC([abc])", lambda m: (m[1] or "") + "Mc" + m[2], name)
    name = re.sub(r"^FNC", "Fnc", name).replace("LogXplus1", "LogXPlus1").replace("ErfC", "Erfc")
    name = re.sub(r"(PDF|I?CDF|PS)$", lambda m: "_" + m[1].lower(), name)
    name = re.sub(r"(?<=[a-z0-9])(?=[A-Z])", "_", name)
    return re.sub(r"(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower().replace("__", "_")


def safe_name(name):
    return name + "_" if keyword.iskeyword(name) else name


def results(export):
    return [a.name for a in table.outputs(export)] or ["result"]


def signature(export):
    """The ufunc's signature where an argument is an array, otherwise None."""
    if not any(a.type == table.ARRAY for a in export.arguments):
        return None
    inside = ",".join("(k)" if a.type == table.ARRAY else "()" for a in table.inputs(export))
    return inside + "->" + ",".join("()" for _ in results(export))


def golden_example(export):
    """(argument texts, value) of the first golden row with a plain number, for an entry without an example."""
    for path in sorted((ROOT / "tests" / "data" / "golden").glob("*.tsv")):
        for line in path.read_text().splitlines():
            cells = line.split("\t")
            if cells[0] == export.name and len(cells) == 7 and cells[2] == "value" and cells[4] == "0" and \
                    not {"256", "257", "512"} & set(cells[1].split(" ")) and re.fullmatch(r"-?[0-9.]+(e[-+]?\d+)?", cells[3]) and cells[3] not in ("0", "1"):
                return [_number(c) for c in cells[1].split(" ")], f"{float(cells[3]):.6g}"
    return None


def _number(text):
    if text.startswith("["):
        return "[" + ", ".join(_number(t) for t in text[1:-1].split(",")) + "]"
    value = float.fromhex(text) if "x" in text else float(text)
    return repr(int(value)) if "x" not in text and value == int(value) else repr(value)


def _split(text):
    """Arguments of a C call; {a, b} is one argument."""
    pieces, depth = [""], 0
    for c in text:
        depth += (c == "{") - (c == "}")
        if c == "," and depth == 0:
            pieces.append("")
        else:
            pieces[-1] += c
    return [p.strip() for p in pieces]


def examples(export, function, keywords=None):
    """Lines of doctest: 'from orvanth import f', then calls with six digits of their value."""
    entry = table.manual_entries().get(export.name)
    pairs = []
    for call, value in (entry.scalar_examples() if entry and export.result == "double" else []):
        inside = call[call.index("(") + 1:call.rindex(")")]
        if re.fullmatch(r"[-+0-9.eExXa-fA-FpP{}, \n]+", inside):  # plain numbers and arrays
            value = f"{float(value):.6g}"  # 0.0170000: 0.017
            pairs.append(([a.replace("{", "[").replace("}", "]") for a in _split(inside)], value))
    if not pairs and export.result == "double":
        found = golden_example(export)
        pairs = [found] if found else []
    lines = []
    for arguments, value in pairs:
        if keywords:
            arguments = keywords(arguments)
        lines += [f'>>> print(f"{{{function}({", ".join(arguments)}):.6g}}")', value]
    if not lines and export.result == "void":
        name = "first"
        sample = ["2", "3", "0.25"] if export.folder == "special" else ["5", "8", "20", "2.0"]
        lines = [f">>> {name}, second = {function}({', '.join(sample)})", f">>> bool({name} > 0 and second > 0)", "True"]
    return [f">>> from orvanth import {function}"] + lines if lines else []


def paragraph(title, text, indent=""):
    return ["", indent + title, indent + "-" * len(title)] + [(indent + line).rstrip() for line in text.splitlines()]


def docstring(export, parameters, function, keywords=None):
    """numpydoc sections from the manual entry. `parameters` is [(python name, C argument)]."""
    entry = table.manual_entries().get(export.name)
    described = {p.name: " ".join(p.text.split()) for p in entry.parameters} if entry else {}
    lines = [table.brief(export), "", "Parameters", "----------"]
    for name, argument in parameters:
        lines += [f"{name} : {KINDS[argument.type]}", "    " + (described.get(argument.name) or argument.name)]
    returned = (entry.section("return") if entry else None) or "the results"
    lines += ["", "Returns", "-------", ", ".join(results(export)) + " : float"]
    lines += ["    " + line.strip() for line in returned.splitlines()]
    titles = {"Source": "References", "Failure": "Failure" if export in table.refined() else "Failure of the plain export"}
    for title in ("Formula", "Edges", "Failure", "Source"):
        text = entry.section(title) if entry else None
        if text:
            lines += paragraph(titles.get(title, title), text)
    lines += paragraph("Notes", "An element that fails is NaN where the library has no value, and raises NumPy's flag "
                       "'invalid'\nor 'over', as np.errstate says. orvanth.last_error() has the library's own text.")
    example = examples(export, function, keywords)
    if example:
        lines += paragraph("Examples", "\n".join(example))
    return "\n".join(lines)


def c_string(text):
    return "\n    ".join('"' + line.replace("\\", "\\\\").replace('"', '\\"') + '\\n"' for line in text.split("\n"))


def array_forms():
    return [e for e in table.functions() if table.has_array_form(e)]


def ufunc_rows():
    lines = [f"/* {table.MARK} */"]
    for e in array_forms():
        ins, outs = table.inputs(e), results(e)
        types = ", ".join([TYPES[a.type] for a in ins] + ["NPY_DOUBLE"] * len(outs))
        sign = f'"{signature(e)}"' if signature(e) else "NULL"
        text = docstring(e, [(a.name, a) for a in ins], e.name)
        lines.append(f"UFUNC({e.name}, {len(ins)}, {len(outs)}, ({types}), {sign},\n    {c_string(text)})")
    return "\n".join(lines) + "\n"


def function(export):
    """A function with names of its own: what asks for the upper tail is a keyword, and so is all behind it."""
    ins = table.inputs(export)
    names = ["upper" if a.type == "TailFlag" else safe_name(a.name) for a in ins]
    at = next((i for i, a in enumerate(ins) if a.type == "TailFlag"), None)
    before = names if at is None else names[:at]
    behind = [] if at is None else [n for n in names[at:] if n != "upper"] + ["upper=False"]
    extra = ["out=None"] + ([] if signature(export) else ["where=True"])
    parameters = ", ".join(before + ["*"] + behind + extra)
    out = "out=out" if len(results(export)) == 1 else "out=(None, None) if out is None else out"
    forward = ", ".join(names + [out] + ([] if signature(export) else ["where=where"]))

    def keywords(values):
        return [f"{n}={'True' if int(v) & 255 else 'False'}" if n == "upper" else f"{n}={v}"
                for n, v in zip(names, values)]

    text = docstring(export, list(zip(names, ins)), snake(export.name), keywords)
    body = "\n".join(("    " + line).rstrip() for line in text.split("\n")).strip()
    return f'def {snake(export.name)}({parameters}):\n    """{body}\n    """\n    return _ufuncs.{export.name}({forward})\n'


def functions():
    names = ", ".join(f'"{snake(e.name)}"' for e in array_forms())
    return (f'"""The scalar functions with keywords and tails by name. {table.MARK}"""\n'
            f"from . import _ufuncs\n\n__all__ = [{names}]\n\n\n" + "\n\n".join(function(e) for e in array_forms()))


def native():
    def ctype(text, is_argument=True):
        if text in CTYPES:
            return CTYPES[text]
        return "c_void_p"  # arrays go by address

    lines = [f'"""Signatures of the shield for ctypes. {table.MARK}"""',
             "from ctypes import POINTER, Structure, c_char_p, c_double, c_int32, c_ssize_t, c_void_p", "", "",
             "class MatrixDescriptor(Structure):",
             '    _fields_ = [("offset", c_int32), ("leadingDimension", c_int32), ("rows", c_int32), ("columns", c_int32)]',
             "", "", "# name: (result, arguments)", "SIGNATURES = {"]
    for own in table.own_functions():
        lines.append(f'    "{own.name}": ({ctype(own.result)}, [{", ".join(ctype(a.type) for a in own.arguments)}]),')
    for e in exports():
        if not table.has_array_form(e):
            lines.append(f'    "Safe{e.name}": ({ctype(e.result)}, [{", ".join(ctype(a.type) for a in e.arguments)}]),')
    lines += ["}", "", "# The kinds of failure.", "STATUS = {"]
    lines += [f'    {s.value}: "{s.words}",' for s in table.statuses()]
    return "\n".join(lines + ["}"]) + "\n"


def stubs():
    lines = [f"# {table.MARK}", "from typing import Any", "", "import numpy as np",
             "from numpy.typing import ArrayLike, NDArray", "",
             "from . import linalg as linalg", "from . import random as random", "from . import stats as stats",
             "from .errors import ArgumentError as ArgumentError", "from .errors import CollinearityError as CollinearityError",
             "from .errors import last_error as last_error", "from .optimize import OptimizeResult as OptimizeResult",
             "from .optimize import minimize as minimize", "from .random import RandomStream as RandomStream", "",
             "__version__: str"]
    lines += [f"{e.name}: np.ufunc" for e in array_forms()]
    lines.append("")
    for e in array_forms():
        ins = table.inputs(e)
        at = next((i for i, a in enumerate(ins) if a.type == "TailFlag"), len(ins))
        before = [f"{safe_name(a.name)}: ArrayLike" for a in ins[:at]]
        behind = [f"{safe_name(a.name)}: ArrayLike" for a in ins[at + 1:]]
        behind += ["upper: ArrayLike = ..."] if at < len(ins) else []
        extra = ["out: Any = ..."] + ([] if signature(e) else ["where: ArrayLike = ..."])
        lines.append(f"def {snake(e.name)}({', '.join(before + ['*'] + behind + extra)}) -> Any: ...")
    return "\n".join(lines) + "\n"


def files():
    package = PACKAGE / "orvanth"
    return {PACKAGE / "ufunc_rows.inc": ufunc_rows(), package / "functions.py": functions(),
            package / "_native.py": native(), package / "__init__.pyi": stubs()}
