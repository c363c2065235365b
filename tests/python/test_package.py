"""What people see of the package: its documentation, types, and examples."""

import ctypes
import doctest
import os
import pathlib
import re
import subprocess
import sys

import numpy as np
import PIL.Image
import pytest
import quorvane
from conftest import SOURCES, make_light, write_pfm

PACKAGE = pathlib.Path(quorvane.__file__).parent
EXAMPLES = SOURCES / "python/examples"


@pytest.mark.parametrize("name", ["_arrays", "_files", "_presets"])
def test_docstrings_hold(name):
    result = doctest.testmod(sys.modules[f"quorvane.{name}"], optionflags=doctest.IGNORE_EXCEPTION_DETAIL)
    assert result.attempted > 0 and result.failed == 0


def test_public_names_are_documented():
    for name in set(quorvane.__all__) - {"__version__", "presets"}:
        assert getattr(quorvane, name).__doc__, name


def test_sliders_are_stated_as_they_are():
    text = sys.modules["quorvane._arrays"].__doc__.replace("\n", " ")
    plain = lambda number: f"{number:g}"
    defaults = quorvane.tonemap.__kwdefaults__
    assert defaults == {**quorvane.Renderer.render.__kwdefaults__, "color_space": "srgb", "source": "linear-srgb"}
    for keyword, lowest, highest, default, _ in quorvane._quorvane.sliders():
        assert np.float32(defaults[keyword]) == np.float32(default)
        extent = f"{plain(lowest)} to {plain(highest)}"
        assert re.search(rf"``{keyword}``(,| and ``\w+``)? {extent}", text) or f"``{keyword}`` and" in text
        assert extent in quorvane.tonemap.__doc__


def test_types_hold(tmp_path):
    user = tmp_path / "user.py"
    user.write_text("import numpy as np\nimport quorvane\n"
                    "light = quorvane.read('a.exr').pixels\n"
                    "result = quorvane.tonemap(light, strength=3, **{'depth': 8})\n"
                    "quorvane.write('a.png', result, metadata=quorvane.read('a.exr').metadata)\n"
                    "reveal_type(quorvane.presets['vivid'])\n")  # fmt: skip
    environment = {**os.environ, "MYPYPATH": str(PACKAGE.parent), "MYPY_CACHE_DIR": str(tmp_path)}
    check = lambda *what: subprocess.run([sys.executable, "-m", "mypy", "--strict", *map(str, what)], cwd=tmp_path,
                                         env=environment, capture_output=True, text=True)
    done = check(PACKAGE)
    assert done.returncode == 0, done.stdout
    user.write_text(user.read_text() + "quorvane.tonemap(light, strength='much')\n")
    assert 'user.py:7: error: Argument "strength" to "tonemap" has incompatible type "str"' in check(user).stdout


def test_only_the_entry_of_the_module_is_exported():
    extension = pathlib.Path(quorvane._quorvane.__file__)
    listing = subprocess.run(["nm", "-D", "--defined-only", extension], capture_output=True, text=True, check=True)
    assert [line.split()[-1] for line in listing.stdout.splitlines()] == ["PyInit__quorvane"]
    assert not hasattr(ctypes.CDLL(str(extension)), "cpp_tm_quorvane")


@pytest.fixture
def photos(tmp_path):
    folder = tmp_path / "photos"
    folder.mkdir()
    for seed in range(3):
        write_pfm(folder / f"{seed}.pfm", make_light(40, 60, seed))
    (folder / "damaged.exr").write_text("no picture")
    return folder


def run_example(name, *arguments):
    done = subprocess.run([sys.executable, EXAMPLES / name, *arguments], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return sorted(done.stdout.splitlines())


@pytest.mark.parametrize("name", ["folder.py", "cluster.py"])
def test_folders_are_spread(tmp_path, photos, name):
    lines = run_example(name, photos, tmp_path / "results")
    assert lines[:3] == ["0.pfm: done", "1.pfm: done", "2.pfm: done"]
    assert lines[3].startswith("damaged.exr: ") and "not a picture" in lines[3] and len(lines) == 4
    for seed in range(3):
        quorvane.tonemap_file(photos / f"{seed}.pfm", tmp_path / "own.jpg", auto=True, overwrite=True)
        assert (tmp_path / f"results/{seed}.jpg").read_bytes() == (tmp_path / "own.jpg").read_bytes()
    assert run_example(name, photos, tmp_path / "results")[0] == "0.pfm: skipped"


def test_before_and_after_are_drawn(tmp_path, photos):
    run_example("before_after.py", photos / "0.pfm", tmp_path / "drawn.png")
    figure = np.asarray(PIL.Image.open(tmp_path / "drawn.png").convert("L"))
    left, right = np.array_split(figure, 2, axis=1)
    assert left.std() > 10 and right.std() > 10 and (left != right[:, : left.shape[1]]).any()


def test_the_page_holds(tmp_path, monkeypatch):
    """Runs the blocks of docs/python.md one after the other."""
    monkeypatch.chdir(tmp_path)
    write_pfm(tmp_path / "photo.pfm", make_light(60, 90))
    page = (SOURCES / "docs/python.md").read_text()
    blocks = re.findall(r"```python\n(.*?)```", page, re.DOTALL)
    assert len(blocks) >= 4
    names = {"__name__": "page"}
    for block in blocks:
        exec(compile(block, "docs/python.md", "exec"), names)
    assert (tmp_path / "photo.png").exists()
