"""Installs the package from the tree: `pip install --no-build-isolation ./python`. What is made from the headers and
the tables of the C++ side is made by the build of the tree, which this starts; RSVP_MOR_BUILD names its folder."""
import os
import shutil
import subprocess
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py

ROOT = Path(__file__).resolve().parent.parent


class Build(build_py):
    def run(self):
        build = Path(os.environ.get("RSVP_MOR_BUILD", ROOT / "build" / "host"))
        if not (build / "CMakeCache.txt").exists():
            subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DRSVP_MOR_TESTS=OFF"], check=True)
        subprocess.run(["cmake", "--build", build, "--parallel", "--target", "rsvp_mor_python"], check=True)
        shutil.copytree(build / "python" / "rsvp_mor", Path(self.build_lib, "rsvp_mor"), dirs_exist_ok=True,
                        ignore=shutil.ignore_patterns("__pycache__"))


setup(cmdclass={"build_py": Build})
