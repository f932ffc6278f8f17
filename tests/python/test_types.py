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
    for arguments in (["--python-version", "3.9", "-p", "orvml"],
                      [str(SOURCE / "tests/python/typed_use.py")]):
        assert run_mypy(*arguments, cache=tmp_path)[0] == 0, run_mypy(*arguments, cache=tmp_path)[1]


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
