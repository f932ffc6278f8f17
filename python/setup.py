"""Builds the module of C++ with CMake, from the sources of the whole project in the folder above: a wheel
holds the library, and needs HDF5 beside it alone."""
import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parent


def version() -> str:
    if not (PROJECT / "CMakeLists.txt").exists():
        sys.exit("orvml is built in the sources of the whole project, of which this folder is a part")
    text = (PROJECT / "CMakeLists.txt").read_text()
    found = re.search(r"project\(orvml_io VERSION (\d+\.\d+\.\d+)", text)
    assert found is not None
    return found.group(1)


class BuildWithCMake(build_ext):
    def build_extension(self, extension: Extension) -> None:
        target = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve()
        build = (pathlib.Path(self.build_temp) / "cmake").resolve()
        settings = {
            "CMAKE_BUILD_TYPE": "Release",
            "CMAKE_UNITY_BUILD": "ON",
            "BUILD_SHARED_LIBS": "OFF",
            "ORVML_IO_DEVELOPER": "OFF",
            "ORVML_TOOLS": "OFF",
            "ORVML_PYTHON": "ON",
            "Python3_EXECUTABLE": sys.executable,
        }
        subprocess.run(["cmake", "-S", PROJECT, "-B", build,
                        *[f"-D{name}={value}" for name, value in settings.items()]], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "orvml_python",
                        "--parallel", str(os.cpu_count() or 1)], check=True)
        target.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(build / "python/package/orvml" / target.name), str(target))


setup(version=version(), ext_modules=[Extension("orvml._orvml", sources=[])],
      cmdclass={"build_ext": BuildWithCMake})
