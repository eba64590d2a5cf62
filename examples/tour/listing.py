"""The code that made a number: found in the section's own source, so that the page shows what ran and nothing else."""
import ast
import html
import io
import keyword
import textwrap
import tokenize
from functools import cache
from pathlib import Path

# Methods of the page that put something on it. A function that calls one is shown where it does.
SHOWING = {"section", "text", "table", "compare", "holds", "figure"}


class Source:
    """A section's file, taken apart."""

    def __init__(self, path):
        text = Path(path).read_text(encoding="utf-8")
        self.lines = text.splitlines()
        tree = ast.parse(text)
        self.functions = {node.lineno: node for node in ast.walk(tree) if isinstance(node, ast.FunctionDef)}
        # What other code of the file refers to by name.
        self.named = {}
        for node in tree.body:
            if isinstance(node, (ast.FunctionDef, ast.ClassDef)):
                self.named[node.name] = node
            elif isinstance(node, ast.Assign):
                for target in node.targets:
                    self.named.update({name.id: node for name in ast.walk(target) if isinstance(name, ast.Name)})

    def text(self, first, last):
        return textwrap.dedent("\n".join(self.lines[first - 1:last])).strip("\n")


source = cache(Source)


def shows(node):
    """Whether this statement puts something on the page by itself."""
    return any(isinstance(n, ast.Attribute) and n.attr in SHOWING and isinstance(n.value, ast.Name)
               and n.value.id == "page" for n in ast.walk(node))


def only_says(node):
    """Whether this statement is a call with a fixed text, which tells nothing beside that text."""
    return (isinstance(node, ast.Expr) and isinstance(node.value, ast.Call) and shows(node)
            and all(isinstance(a, ast.Constant) for a in node.value.args))


class Listing:
    """Hands out the code between one thing on the page and the next, each line once."""

    def __init__(self):
        self._done = {}  # (file, line of the function) -> statements of its body that were handed out
        self._named = set()

    def _place(self, frame):
        path = frame.f_code.co_filename
        function = source(path).functions.get(frame.f_code.co_firstlineno)
        if function is None:
            return path, None, 0
        at = next(i for i, node in enumerate(function.body) if node.lineno <= frame.f_lineno <= node.end_lineno)
        return path, function, at + 1

    def skip(self, frame):
        """What stands in this function up to the call is not shown."""
        path, function, end = self._place(frame)
        if function is not None:
            self._done[path, function.lineno] = end

    def take(self, frame):
        """The code of this function up to the call, behind what it needs of its file."""
        path, function, end = self._place(frame)
        if function is None:
            return ""
        start = self._done.get((path, function.lineno), 0)
        self._done[path, function.lineno] = max(start, end)
        new = function.body[start:end]
        if not new or all(only_says(node) for node in new):
            return ""
        file = source(path)
        # Comments in front of a statement belong to it.
        first = function.body[start - 1].end_lineno + 1 if start else function.body[0].lineno
        parts = self._needed(path, new)
        parts.append(file.text(first, new[-1].end_lineno))
        return "\n\n".join(parts)

    def _needed(self, path, nodes):
        file, parts = source(path), []
        for name in [n.id for node in nodes for n in ast.walk(node) if isinstance(n, ast.Name)]:
            node = file.named.get(name)
            if node is None or (path, node.lineno) in self._named:
                continue
            if isinstance(node, ast.FunctionDef) and shows(node):
                continue
            self._named.add((path, node.lineno))
            parts += self._needed(path, [node])
            parts.append(file.text(node.lineno, node.end_lineno))
        return parts


def marked(code):
    """The code as HTML: keywords, texts and comments marked, a line a span that wraps under its own indentation."""
    lines = code.splitlines()
    kinds = [[""] * len(line) for line in lines]
    for token in tokenize.generate_tokens(io.StringIO(code).readline):
        if token.type == tokenize.COMMENT:
            kind = "c"
        elif token.type == tokenize.STRING:
            kind = "s"
        elif token.type == tokenize.NAME and keyword.iskeyword(token.string):
            kind = "k"
        else:
            continue
        (row, column), (last, end) = token.start, token.end
        for i in range(row - 1, last):
            stop = end if i == last - 1 else len(lines[i])
            for j in range(column if i == row - 1 else 0, stop):
                kinds[i][j] = kind
    spans = []
    for line, kind in zip(lines, kinds):
        indent = len(line) - len(line.lstrip())
        out, at = "", indent
        while at < len(line):
            end = at
            while end < len(line) and kind[end] == kind[at]:
                end += 1
            piece = html.escape(line[at:end], quote=False)
            out += f"<i class={kind[at]}>{piece}</i>" if kind[at] else piece
            at = end
        spans.append(f'<span style="--i:{indent}">{out or " "}</span>')
    return "".join(spans)
