"""Commands of setuptools that make the wheel (see pyproject.toml): CMake builds and installs what is in it."""

import os
import subprocess
import sys

from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

BUILD_FOLDER = "build/wheel"


def run_cmake(*arguments: str) -> None:
    subprocess.run(["cmake", *arguments], check=True)


class cBuildWithCMake(build_py):
    """Installs the component into what becomes the wheel. Exiv2 is under the GPL and left out."""

    def run(self) -> None:
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "QUORVANE_BUILD_PYTHON": "ON",
            "QUORVANE_BUILD_TOOLS": "OFF",
            "QUORVANE_BUILD_TESTS": "OFF",
            "QUORVANE_EXIV2": "OFF",
            "QUORVANE_PYTHON_DIR": ".",
            "Python3_EXECUTABLE": sys.executable,
        }
        run_cmake("-S", ".", "-B", BUILD_FOLDER, "-G", "Ninja", *(f"-D{key}={value}" for key, value in options.items()))
        run_cmake("--build", BUILD_FOLDER, "--target", "quorvane_python")
        target = os.path.abspath(self.build_lib)
        run_cmake("--install", BUILD_FOLDER, "--component", "python", "--prefix", target, "--strip")


class cPlatformWheel(bdist_wheel):
    """A wheel for this interpreter and processor: setuptools does not see the extension that CMake builds."""

    def initialize_options(self) -> None:
        super().initialize_options()
        self.distribution.has_ext_modules = lambda: True
