"""What the tests share: a scene, the tool, and the exported function."""

import ctypes
import os
import pathlib
import subprocess

import numpy as np
import pytest

TOOL = os.environ["QUORVANE_TOOL"]
LIBRARY = os.environ["QUORVANE_LIBRARY"]
SOURCES = pathlib.Path(os.environ["QUORVANE_SOURCES"])


def make_light(height, width, seed=1):
    """Linear light with large contrasts, smooth areas and texture, of colours that surfaces have."""
    y, x = np.mgrid[0:height, 0:width] / max(height, width)
    level = np.exp2(6 * np.sin(5 * x + 1) + 5 * np.cos(4 * y) - 4)
    colour = np.stack([1 + 0.6 * np.sin(9 * x), np.full_like(x, 1.0), 1 + 0.6 * np.cos(7 * y)], axis=-1)
    texture = np.random.default_rng(seed).uniform(0.7, 1.3, (height, width, 1))
    return (level[..., None] * colour * texture).astype(np.float32)


@pytest.fixture
def light():
    return make_light(90, 130)


@pytest.fixture
def codes(light):
    """The scene as 16-bit codes."""
    return (np.clip(light, 0, 1) ** (1 / 2.2) * 65535).astype(np.uint16)


def write_pfm(path, light):
    height, width = light.shape[:2]
    path.write_bytes(b"PF\n%d %d\n-1.0\n" % (width, height) + light[::-1].astype("<f4").tobytes())


@pytest.fixture
def pfm(tmp_path, light):
    path = tmp_path / "scene.pfm"
    write_pfm(path, light)
    return path


@pytest.fixture
def run_tool(tmp_path):
    def run(*arguments):
        done = subprocess.run([TOOL, *map(str, arguments)], cwd=tmp_path, check=True, capture_output=True)
        return done.stdout.decode()

    return run


class Image(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int32) for name in
                "width height samples input_bits output_bits r0 pitch reversed r1 r2".split()]


class Sliders(ctypes.Structure):
    _fields_ = [(name, ctypes.c_float) for name in
                "strength lighting tone_compression white_clip black_clip microcontrast "
                "a b c d e test1 f g h wrap".split()]


def exported_function(image, depth, color_space, **sliders):
    """What cpp_tm_quorvane makes of packed codes."""
    library = ctypes.CDLL(LIBRARY)
    height, width, samples = image.shape
    out = np.empty(image.shape, np.uint8 if depth == 8 else np.uint16)
    layout = Image(width, height, samples, 8 * image.itemsize, depth, 0, samples * width)
    settings = Sliders(70.0, 0.0, 0.0, 5.0, 0.1)
    for name, value in sliders.items():
        setattr(settings, name, value)
    space = ["srgb", "adobergb", "prophoto"].index(color_space)
    done = library.cpp_tm_quorvane(ctypes.byref(layout), None, space, ctypes.byref(settings),
                                   image.ctypes.data_as(ctypes.c_void_p), out.ctypes.data_as(ctypes.c_void_p))
    assert done == 1
    return out
