"""Every docstring has an example, every example runs, and stubs name what there is."""
import ast
import doctest
import inspect
from pathlib import Path

import orvanth
import orvanth.errors
import orvanth.optimize
import pytest

PACKAGE = Path(orvanth.__file__).parent
PLACES = {**{f"ufunc {n}": f for n, f in orvanth.ufuncs.items()},
          **{f"function {n}": getattr(orvanth, n) for n in orvanth.functions.__all__},
          **{f"linalg.{n}": getattr(orvanth.linalg, n) for n in orvanth.linalg.__all__ if n != "OLSResult"},
          **{f"random.{n}": getattr(orvanth.random, n) for n in orvanth.random.__all__},
          **{f"stats.{n}": getattr(orvanth.stats, n) for n in orvanth.stats.__all__
             if inspect.isfunction(getattr(orvanth.stats, n))},
          "minimize": orvanth.minimize, "last_error": orvanth.last_error}


@pytest.mark.parametrize("place", PLACES)
def test_example(place):
    text = inspect.getdoc(PLACES[place]) if not place.startswith("ufunc") else PLACES[place].__doc__
    test = doctest.DocTestParser().get_doctest(text, {}, place, None, None)
    assert len(test.examples) >= 2, "no example"
    runner = doctest.DocTestRunner(verbose=False, optionflags=doctest.NORMALIZE_WHITESPACE)
    runner.run(test)
    assert runner.failures == 0


def test_stubs_name_what_there_is():
    tree = ast.parse((PACKAGE / "__init__.pyi").read_text())
    named = {n.name for n in tree.body if isinstance(n, ast.FunctionDef)}
    named |= {n.target.id for n in tree.body if isinstance(n, ast.AnnAssign)}
    named |= {a.asname for n in tree.body if isinstance(n, ast.ImportFrom) for a in n.names if a.asname}
    assert set(orvanth.__all__) <= named
    assert all(hasattr(orvanth, n) for n in named)


def test_the_stub_gives_each_function_its_parameters():
    tree = ast.parse((PACKAGE / "__init__.pyi").read_text())
    for node in tree.body:
        if isinstance(node, ast.FunctionDef):
            stub = [a.arg for a in node.args.args + node.args.kwonlyargs]
            assert stub == list(inspect.signature(getattr(orvanth, node.name)).parameters), node.name


def test_the_stub_of_the_tests_is_what_there_is():
    tree = ast.parse((PACKAGE / "stats" / "__init__.pyi").read_text())
    stats = orvanth.stats
    named = {n.name: n for n in tree.body if isinstance(n, (ast.FunctionDef, ast.ClassDef))}
    assert set(stats.__all__) == set(named)
    for name, node in named.items():
        functions = [(node, getattr(stats, name))] if isinstance(node, ast.FunctionDef) else \
            [(n, getattr(getattr(stats, name), n.name)) for n in node.body if isinstance(n, ast.FunctionDef)]
        for stub, function in functions:
            given = {a.arg for a in stub.args.args + stub.args.kwonlyargs + [stub.args.vararg] if a}
            assert given == set(inspect.signature(function).parameters), (name, stub.name)
        if isinstance(node, ast.ClassDef) and name != "ConfidenceInterval":
            fields = {n.target.id for n in node.body if isinstance(n, ast.AnnAssign)}
            assert fields == {f for f in getattr(stats, name).__dataclass_fields__ if not f.startswith("_")}, name
