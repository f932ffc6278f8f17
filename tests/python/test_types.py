"""The package has types, which mypy finds nothing wrong with, and neither with those who use them."""
import pathlib
import subprocess
import sys

import pytest

SOURCE = pathlib.Path(__file__).resolve().parents[2]

pytest.importorskip("mypy")


def run_mypy(*arguments, cache):
    run = subprocess.run([sys.executable, "-m", "mypy", "--config-file", "pyproject.toml", "--strict",
                          "--cache-dir", cache, *arguments], cwd=SOURCE / "python", text=True,
                         capture_output=True)
    return run.returncode, run.stdout


def test_strict_types_of_the_package_and_of_who_uses_it(tmp_path):
    # The types of NumPy 2 are written for later versions of Python. Which of its complaints a line has
    # to be excused from depends on mypy's version: what is not needed is looked for with that of
    # Debian 12.
    import numpy
    from mypy.version import __version__ as release

    version = ["--python-version", "3.9"] if numpy.__version__.startswith("1.") else []
    excuses = [] if release.startswith("1.0.") else ["--no-warn-unused-ignores"]
    for arguments in ([*version, "-p", "orvml"], [str(SOURCE / "tests/python/typed_use.py")]):
        code, told = run_mypy(*excuses, *arguments, cache=tmp_path)
        assert code == 0, told


@pytest.mark.parametrize("line, wrong", [
    ("orvml.read(3)", "arg-type"), ("part.parameters['a'] = 'b'", "assignment|arg-type|Unsupported"),
    ("part.nodes.attributes['a'].nothing()", "attr-defined"), ("x: int = part.points", "assignment")])
def test_wrong_use_is_found(tmp_path, line, wrong):
    program = tmp_path / "program.py"
    program.write_text(f"import orvml\npart = orvml.Input()\n{line}\n")
    code, told = run_mypy(str(program), cache=tmp_path)
    assert code == 1 and any(word in told for word in wrong.split("|")), told


def test_every_public_name_is_explained():
    import orvml

    for name in orvml.__all__:
        value = getattr(orvml, name)
        if callable(value):
            assert value.__doc__, name
