"""Reads pictures as linear light of sRGB primaries, and results as coded numbers."""
import re
import shutil
import struct
import subprocess
import tempfile
from pathlib import Path

import numpy as np

from . import filters

MOST_PIXELS = 2_000_000
EXTENSIONS = {".hdr", ".pfm", ".exr", ".tif", ".tiff", ".jpg", ".jpeg", ".png", ".webp", ".jxl", ".avif", ".heic"}


class Failure(Exception):
    """Something that the user can change; the text says what."""


# ---- Linear light ---------------------------------------------------------------------------------------------


def read_light(path):
    """height x width x 3 floats; NaN and infinity become 0. Negative numbers (colours beyond sRGB) stay."""
    light = _reader(path)(path)
    return np.where(np.isfinite(light), light, 0).astype(np.float32)


def _reader(path):
    try:
        import quorvane
        return lambda name: quorvane.read(name).pixels[:, :, :3]
    except ImportError:
        pass
    head = path.open("rb").read(10)
    if head.startswith(b"PF\n"):
        return read_pfm
    if head.startswith((b"#?RADIANCE", b"#?RGBE")):
        return read_hdr
    if shutil.which("vips") is None:
        raise Failure(f"{path}: reading this needs the Python module quorvane or the package libvips-tools")
    return _read_by_vips


def read_pfm(path):
    data = path.read_bytes()
    head = re.match(rb"PF\s+(?:#.*\n)*(\d+)\s+(\d+)\s+(-?[0-9.eE+-]+)\s", data)
    if not head:
        raise Failure(f"{path}: not a colour PFM")
    width, height = int(head[1]), int(head[2])
    pixels = np.frombuffer(data, "<f4" if float(head[3]) < 0 else ">f4", 3 * width * height, head.end())
    return pixels.reshape(height, width, 3)[::-1].astype(np.float32)


def write_pfm(path, light):
    height, width = light.shape[:2]
    path.write_bytes(b"PF\n%d %d\n-1.0\n" % (width, height) + light[::-1].astype("<f4").tobytes())


def _unpacked_row(data, at, width):
    """One row of four planes, each in runs; returns it with the place after it."""
    row = bytearray()
    while len(row) < 4 * width:
        count = data[at]
        if count > 128:
            row += data[at + 1:at + 2] * (count - 128)
            at += 2
        else:
            row += data[at + 1:at + 1 + count]
            at += 1 + count
    return np.frombuffer(row, np.uint8).reshape(4, width).T, at


def read_hdr(path):
    data = path.read_bytes()
    at = data.index(b"\n\n") + 2
    end = data.index(b"\n", at)
    down, height, across, width = data[at:end].split()
    if (down, across) != (b"-Y", b"+X"):
        raise Failure(f"{path}: rows run in an unusual direction; convert the picture first")
    height, width, at = int(height), int(width), end + 1
    if data[at:at + 2] == b"\2\2" and 8 <= width < 32768:
        rows = []
        for _ in range(height):
            row, at = _unpacked_row(data, at + 4, width)
            rows.append(row)
        rgbe = np.stack(rows)
    else:
        rgbe = np.frombuffer(data, np.uint8, 4 * width * height, at).reshape(height, width, 4)
    exponent = rgbe[:, :, 3:].astype(int)
    return np.where(exponent > 0, np.ldexp(rgbe[:, :, :3] + 0.5, exponent - 136), 0)


def _read_by_vips(path):
    """Without the module: what is beyond sRGB in a finished picture is clipped."""
    with tempfile.TemporaryDirectory() as folder:
        colours, linear = folder + "/colours.v", folder + "/linear.tif"

        def vips(*words):
            done = subprocess.run(["vips", *map(str, words)], capture_output=True, text=True)
            if done.returncode:
                raise Failure(f"{path}: {done.stderr.strip()}")
        if path.suffix.lower() == ".exr":
            vips("extract_band", path, linear, 0, "-n", 3)
        else:
            vips("autorot", path, folder + "/upright.v")
            vips("icc_transform", folder + "/upright.v", colours, "srgb", "--embedded", "--depth", 16)
            vips("colourspace", colours, linear, "scrgb", "--source-space", "rgb16")
        return read_tiff(Path(linear))


class Scene:
    """A picture's light, at the size it is measured at, in a file that every tone mapper can read."""

    def __init__(self, path, folder):
        self.path, self.name, self.folder = path, path.name, folder
        light = read_light(path)
        factor = int(np.ceil(np.sqrt(light.shape[0] * light.shape[1] / MOST_PIXELS)))
        self.light = filters.reduce_by(light, factor) if factor > 1 else light
        self.whole_size = light.shape[:2]
        self.source = self.written("light", self.light) if factor > 1 else path

    def written(self, name, light):
        """A file of that light."""
        path = self.folder / f"{self.path.stem}-{name}.pfm"
        if not path.exists():
            write_pfm(path, light)
        return path

    def is_panorama(self):
        return self.whole_size[1] == 2 * self.whole_size[0]


# ---- Results --------------------------------------------------------------------------------------------------


def read_tiff(path):
    """An uncompressed TIFF of 8, 16 or 32 bits as numbers of 0..1; alpha is left out."""
    data = path.read_bytes()
    order = {b"II": "<", b"MM": ">"}[data[:2]]
    at, = struct.unpack_from(order + "I", data, 4)
    tags = {}
    for entry in range(struct.unpack_from(order + "H", data, at)[0]):
        tag, kind, count = struct.unpack_from(order + "HHI", data, at + 2 + 12 * entry)
        form = {3: "H", 4: "I"}.get(kind)
        if form:
            place = at + 10 + 12 * entry
            if count * struct.calcsize(form) > 4:
                place, = struct.unpack_from(order + "I", data, place)
            tags[tag] = struct.unpack_from(f"{order}{count}{form}", data, place)
    if tags.get(259, (1,))[0] != 1:
        raise Failure(f"{path}: compressed")
    width, height, samples = tags[256][0], tags[257][0], tags.get(277, (1,))[0]
    kind = {8: "u1", 16: "u2", 32: "f4"}[tags[258][0]]
    pixels = b"".join(data[start:start + size] for start, size in zip(tags[273], tags[279]))
    picture = np.frombuffer(pixels, order + kind).reshape(height, width, samples)
    if samples < 3:
        picture = np.repeat(picture[:, :, :1], 3, axis=2)
    return picture[:, :, :3].astype(np.float32) / {"u1": 255, "u2": 65535, "f4": 1}[kind]


def quantised(coded, depth):
    most = 2 ** depth - 1
    return (np.round(np.clip(coded, 0, 1) * most) / most).astype(np.float32)
