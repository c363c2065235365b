"""Pictures in files."""

from __future__ import annotations

import dataclasses
import json
import os
from collections.abc import Sequence
from typing import Any, Literal, Union

import numpy as np
import numpy.typing as npt

from . import _quorvane
from ._arrays import Pixels, Points, Progress, Rendering, Wrap, curve_texts
from ._presets import load_preset

PathLike = Union[str, "os.PathLike[str]"]
Metadata = _quorvane.Metadata

_ALL_KINDS = ("exif", "xmp", "iptc")


def _keywords(settings: dict[str, Any]) -> dict[str, Any]:
    """The tool's names of settings, as keywords."""
    return {name.replace("-", "_"): value for name, value in settings.items()}


@dataclasses.dataclass(frozen=True, eq=False)
class Photo:
    """A photograph that `read` gives."""

    pixels: npt.NDArray[np.float32]
    """Linear light, upright, every sample finite: (height, width, 3), or 4 with alpha from 0 to 1."""
    source: str
    """The space of `pixels`, as `tonemap` takes it."""
    profile: str
    """What the file states of its colours, in words: "Display P3 (ICC)"."""
    format: str
    """The file's format, in words: "OpenEXR"."""
    depth: int
    """Bits per sample of the file."""
    premultiplied: bool
    """Whether the light is what is seen over black: alpha is no part of it."""
    panorama: bool
    """Whether the metadata state that left and right edges meet."""
    metadata: Metadata
    """EXIF, XMP and IPTC, for `write`; ``metadata.summary`` is a dict of what people ask for."""
    repairs: dict[str, int]
    """How many pixels were repaired: nan, infinite, outliers, negative."""
    warnings: list[str]
    """What had to be put right or left out."""


def read(
    path: PathLike,
    *,
    source: str = "linear-srgb",
    page: int | None = None,
    part: str | int | None = None,
    layer: str | None = None,
    progress: Progress | None = None,
) -> Photo:
    """Read a photograph of any format that the tool reads, as linear light.

    Parameters
    ----------
    path : path
        Detected by its content.
    source : str
        The space of the result, as in `tonemap`. With "xyz-d50", ``tonemap(photo.pixels, source="xyz-d50")``
        has the bytes of the tool, for a photograph without alpha.
    page : int, optional
        Of a file with several pictures, from 1.
    part, layer : optional
        Of an OpenEXR file: a part by its number from 0 or its name; a layer by its name.
    progress : callable, optional
        As in `tonemap`.

    Returns
    -------
    Photo

    Raises
    ------
    OSError
        When the file cannot be opened: FileNotFoundError, PermissionError.
    Error
        When it is damaged, or of an unknown format.
    MemoryError
        24 bytes per pixel are needed.
    """
    options = {"page": page, "part": None if part is None else str(part), "layer": layer}
    pixels, info = _quorvane.read(os.fsencode(path), source, options, progress)
    return Photo(pixels=pixels, source=source, **info)


def write(
    path: PathLike,
    image: npt.ArrayLike,
    *,
    color_space: str = "srgb",
    metadata: Metadata | None = None,
    keep: Sequence[str] = _ALL_KINDS,
    quality: int | None = None,
    compression: int | None = None,
    overwrite: bool = False,
) -> list[str]:
    """Write a finished picture with its profile. The file appears only when it is complete.

    Parameters
    ----------
    path : path
        The file extension chooses the format: .png, .tif, .jpg, .webp, .avif or .jxl.
    image : array of uint8 or uint16, of the shape (height, width, 3) or (height, width, 4)
        Alpha is straight. .jpg and .webp take uint8 only; .avif stores 12 bits of uint16.
    color_space : {"srgb", "adobergb", "prophoto"}
        Of `image`; its profile is embedded.
    metadata : Metadata, optional
        Those of a photograph that was read; they are corrected for the result.
    keep : sequence of {"exif", "xmp", "iptc"}
        Which of them are written.
    quality : int, optional
        1 to 100, of .jpg, .webp, .avif and .jxl.
    compression : int, optional
        0 to 9, of .png and .tif.
    overwrite : bool
        Whether a file that exists is replaced.

    Returns
    -------
    list of str
        What had to be left out.

    Raises
    ------
    FileExistsError, OSError
        When the file exists already, or cannot be written.
    ValueError
        For an array or an option that does not fit the format.
    """
    options = {
        "color_space": color_space, "keep": list(keep), "quality": quality, "compression": compression,
        "overwrite": overwrite,
    }  # fmt: skip
    return _quorvane.write(os.fsencode(path), np.asarray(image), metadata, options)


def tonemap_file(
    source: PathLike,
    target: PathLike,
    *,
    preset: PathLike | None = None,
    auto: bool = False,
    strength: float | None = None,
    lighting: float | None = None,
    tone_compression: float | None = None,
    white_clip: float | None = None,
    black_clip: float | None = None,
    microcontrast: float | None = None,
    contrast: float | None = None,
    saturation: float | None = None,
    wrap: Wrap | None = None,
    rendering: Rendering | None = None,
    depth: int = 8,
    dither: bool = False,
    color_space: str = "srgb",
    preview: int = 0,
    alpha: str = "keep",
    keep: Sequence[str] = _ALL_KINDS,
    quality: int | None = None,
    compression: int | None = None,
    page: int | None = None,
    part: str | int | None = None,
    layer: str | None = None,
    overwrite: bool = False,
    skip_existing: bool = False,
    progress: Progress | None = None,
) -> dict[str, Any]:
    """Tone-map a photograph from file to file: the bytes of ``quorvane tonemap``.

    Parameters
    ----------
    source : path
        A photograph of any format that the tool reads.
    target : path
        The result; the file extension chooses the format. It appears only when it is complete.
    preset : str or path, optional
        Settings of that name or file.
    auto : bool
        Whether sliders that are not given are chosen by the picture's light.
    strength, lighting, tone_compression, white_clip, black_clip, microcontrast, contrast, saturation, wrap, rendering
        As in `tonemap`; None for the preset's or the default. `wrap` is "auto" by default, `rendering` "color".
    depth : {8, 12, 16}
        Bits per sample of the result.
    dither : bool
        As in `tonemap`.
    color_space : {"srgb", "adobergb", "prophoto"}
        Of the result.
    preview : int
        The most pixels on the longer side of the result; 0 for as many as the picture has.
    alpha : str
        "keep", "ignore", or a colour such as "#808080" that the result is laid over.
    keep : sequence of {"exif", "xmp", "iptc"}
        Which metadata the result gets.
    quality, compression : int, optional
        As in `write`.
    page, part, layer : optional
        As in `read`.
    overwrite, skip_existing : bool
        Whether a target that exists is replaced, or left as it is.
    progress : callable, optional
        As in `tonemap`. Encoders of AVIF, JPEG XL and WebP are waited for. The target stays as it was.

    Returns
    -------
    dict
        What the tool's ``--json`` reports: size, settings, repairs, warnings, times of the stages.
        ``{"status": "skipped", ...}`` for a target that exists, with `skip_existing`.

    Raises
    ------
    OSError
        When a file cannot be opened or written: FileNotFoundError, FileExistsError.
    Error
        When the photograph is damaged, of an unknown format, or cannot be processed.
    ValueError
        For an argument out of its range, or one that does not fit the format.
    MemoryError
        Up to 44 bytes per pixel are needed; for .avif up to 80, for .jxl 110.
    Cancelled
        When `progress` returned False.
    """
    given = {
        "strength": strength, "lighting": lighting, "tone_compression": tone_compression,
        "white_clip": white_clip, "black_clip": black_clip, "microcontrast": microcontrast,
        "contrast": contrast, "saturation": saturation, "wrap": wrap, "rendering": rendering,
    }  # fmt: skip
    settings = {} if preset is None else load_preset(preset)
    settings.update({name: value for name, value in given.items() if value is not None})
    options = {
        "auto": auto, "depth": depth, "dither": dither, "color_space": color_space, "preview": preview, "alpha": alpha,
        "keep": list(keep), "quality": quality, "compression": compression, "page": page,
        "part": None if part is None else str(part), "layer": layer, "overwrite": overwrite,
        "skip_existing": skip_existing,
    }  # fmt: skip
    files = os.fsencode(source), os.fsencode(target)
    record: dict[str, Any] = json.loads(_quorvane.tonemap_file(*files, settings, options, progress))
    if "settings" in record:
        record["settings"] = _keywords(record["settings"])
    return record


def equalize_file(
    source: PathLike,
    target: PathLike,
    *,
    hue_shift: Points | None = None,
    saturation: Points | None = None,
    lightness: Points | None = None,
    mode: Literal["smooth", "linear", "flat"] = "smooth",
    depth: int | None = None,
    keep: Sequence[str] = _ALL_KINDS,
    quality: int | None = None,
    compression: int | None = None,
    page: int | None = None,
    overwrite: bool = False,
) -> list[str]:
    """Change a finished picture by curves over hue, from file to file: the bytes of ``quorvane equalize``.

    Parameters
    ----------
    source, target : path
        The picture, of integer samples, and the result, which keeps its profile, alpha and metadata.
    hue_shift, saturation, lightness, mode
        As in `equalize`.
    depth : {8, 12, 16}, optional
        Bits per sample of the result; the picture's, or the most that the format holds.
    keep, quality, compression, page, overwrite
        As in `tonemap_file`.

    Returns
    -------
    list of str
        What had to be put right or left out.

    Raises
    ------
    OSError, Error, ValueError, MemoryError
        As `tonemap_file` does.
    """
    options = {
        "depth": depth, "keep": list(keep), "quality": quality, "compression": compression, "page": page,
        "overwrite": overwrite,
    }  # fmt: skip
    curves = curve_texts(hue_shift, saturation, lightness, mode)
    return _quorvane.equalize_file(os.fsencode(source), os.fsencode(target), curves, options)


def inspect(
    path: PathLike, *, page: int | None = None, part: str | int | None = None, layer: str | None = None
) -> dict[str, Any]:
    """Measure a photograph: what ``quorvane inspect --json`` reports.

    Parameters
    ----------
    path : path
        A photograph of any format that the tool reads.
    page, part, layer : optional
        As in `read`.

    Returns
    -------
    dict
        Size, format, repaired pixels, ``log_luminance`` (decimal logarithms, 0 for white), metadata, and
        ``suggested``, the settings of `auto_settings`.

    Raises
    ------
    OSError, Error, MemoryError
        As `read` does.
    """
    options = {"page": page, "part": None if part is None else str(part), "layer": layer}
    record: dict[str, Any] = json.loads(_quorvane.inspect(os.fsencode(path), options))
    record["suggested"] = _keywords(record["suggested"])
    return record


def compare(a: PathLike | Pixels, b: PathLike | Pixels) -> dict[str, Any]:
    """Measure how far two finished pictures of one size differ, in 8-bit codes.

    Parameters
    ----------
    a, b : path or array of uint8 or uint16
        Both paths, or both arrays. A 16-bit code counts as 1/257 of an 8-bit one. Profiles and alpha are not
        looked at.

    Returns
    -------
    dict
        ``red``, ``green``, ``blue`` and ``all``, each with ``largest`` and ``mean``; ``quantile_99``,
        ``different_share`` (0 to 1 of the pixels), ``largest_at`` (column, row).

    Raises
    ------
    ValueError
        For pictures of two sizes.
    OSError, Error
        For a file that cannot be read.

    Examples
    --------
    >>> import numpy as np
    >>> import quorvane
    >>> black = np.zeros((2, 2, 3), np.uint8)
    >>> quorvane.compare(black, black + np.uint8(3))["all"]
    {'largest': 3.0, 'mean': 3.0}
    """
    if isinstance(a, np.ndarray) and isinstance(b, np.ndarray):
        return _quorvane.compare_arrays(a, b)
    if isinstance(a, np.ndarray) or isinstance(b, np.ndarray):
        raise TypeError("a and b must be two paths or two arrays")
    return _quorvane.compare_files(os.fsencode(a), os.fsencode(b))
