"""The Python package beyond the exports: its modules and what their docstrings say, read from the sources."""
import ast
import re

from hosts import dotnet, python, r, table
from signature_table import ROOT

from site_pages.prose import escape

PACKAGE = ROOT / "hosts" / "python" / "orvanth"
PAGES = (("python-stats", "Tests in Python: orvanth.stats", "orvanth.stats", sorted((PACKAGE / "stats").glob("[a-z]*.py"))),
         ("python-linalg", "Linear algebra in Python: orvanth.linalg", "orvanth.linalg", [PACKAGE / "linalg.py"]),
         ("python-more", "Minimiser, random numbers and failures in Python", "orvanth",
          [PACKAGE / "optimize.py", PACKAGE / "random.py", PACKAGE / "errors.py"]))


def public(tree):
    """What __all__ names, or all without an underscore in front where there is no list; functions before classes."""
    names = next((ast.literal_eval(node.value) for node in tree.body if isinstance(node, ast.Assign)
                  and getattr(node.targets[0], "id", "") == "__all__"), None)
    found = [node for node in tree.body if isinstance(node, (ast.FunctionDef, ast.ClassDef))
             and (node.name in names if names is not None else not node.name.startswith("_"))]
    return sorted(found, key=lambda node: isinstance(node, ast.ClassDef))


def code(text):
    """``x`` of docstrings as `x`, everything else escaped."""
    parts = re.split(r"``(.+?)``", text)
    return "".join(f"`{part}`" if i % 2 else escape(part) for i, part in enumerate(parts))


def sections(text):
    """[(title, lines)] of a docstring with underlined titles; the first has no title."""
    found, lines = [("", [])], text.splitlines()
    for i, line in enumerate(lines):
        if i + 1 < len(lines) and line.strip() and re.fullmatch(r"-{3,}", lines[i + 1].strip()):
            found.append((line.strip(), []))
        elif not re.fullmatch(r"-{3,}", line.strip()) or not found[-1][0]:
            found[-1][1].append(line)
    return found


def paragraphs(lines):
    """Prose as it is; lines of a Python session and what they print as code."""
    out, session = [], []
    for line in [*lines, ""]:
        if line.startswith(">>>") or session and line.strip():
            session.append(line)
            continue
        if session:
            out += ["```pycon", *session, "```", ""]
            session = []
        out.append(code(line))
    return "\n".join(out).strip()


def fields(lines):
    """'name : what it is' with continuation lines, as a list."""
    items = []
    for line in lines:
        if line.strip() and not line.startswith(" "):
            items.append(line)
        elif line.strip():
            # A type and its description stand on two lines.
            typed = line.strip()[0].isupper() and not items[-1].endswith((".", ",", ";", ":"))
            items[-1] += (". " if typed else " ") + line.strip()
    out = []
    for item in items:
        name, colon, text = item.partition(" : ")
        out.append(f"- `{name}`: {code(text)}" if colon else f"- {code(item)}")
    return "\n".join(out)


def described(docstring, level):
    parts = []
    for title, lines in sections(docstring):
        if not any(line.strip() for line in lines):
            continue
        body = fields(lines) if title in ("Parameters", "Attributes", "Returns", "Raises") else paragraphs(lines)
        parts.append(f"**{title}**\n\n{body}" if title else body)
    return "\n\n".join(parts)


def signature(node, module=""):
    """The definition; on several lines where one would be too long."""
    line = f"{module}{node.name}({ast.unparse(node.args)})"
    if len(line) <= 76 or not module:
        return line
    return f"{module}{node.name}(\n    " + ast.unparse(node.args).replace(", ", ",\n    ") + ")"


def page(title, module, files):
    lines = [f"# {title}", ""]
    package = PACKAGE / "stats" / "__init__.py"
    if module == "orvanth.stats":
        lines += [described(ast.get_docstring(ast.parse(package.read_text())), 2), ""]
    for file in files:
        tree = ast.parse(file.read_text())
        for node in public(tree):
            docstring = ast.get_docstring(node)
            if not docstring or file.name == "plots.py":
                continue
            lines += [f"## {escape(node.name)}", ""]
            if isinstance(node, ast.FunctionDef):
                lines += [f"```python\n{signature(node, module + '.')}\n```", ""]
            lines += [described(docstring, 3), ""]
            methods = [m for m in node.body if isinstance(m, ast.FunctionDef) and not m.name.startswith("_")
                       and ast.get_docstring(m)] if isinstance(node, ast.ClassDef) else []
            for method in methods:
                lines += [f"`{signature(method).replace('(self, ', '(').replace('(self)', '()')}`",
                          f": {code(' '.join(ast.get_docstring(method).split(chr(10) * 2)[0].split()))}", ""]
    return "\n".join(lines)


def names_page():
    """How each language calls the functions over arrays."""
    lines = ["# Names in Python, C\\# and R", "", "Functions over numbers and arrays. Matrices, random streams and the minimiser "
             "have forms of their own: [Hosts](../hosts.md).", "", "| export | Python, in `orvanth` | C# | R |", "|---|---|---|---|"]
    for function in table.functions():
        if table.has_array_form(function):
            lines.append(f"| [`{function.name}`](../reference/{function.name}.md) | `{python.snake(function.name)}` | "
                         f"`{'.'.join(dotnet.place(function))}` | `{r.Function(function).name}` |")
    return "\n".join(lines + [""])


def pages():
    return {"packages/names.md": names_page()} | {f"packages/{name}.md": page(title, module, files) for name, title, module, files in PAGES if files}
