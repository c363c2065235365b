"""Pictures in numpy arrays.

Sliders, their ranges and defaults are those of the tool: ``strength`` -200 to 150, ``lighting`` -14 to 10,
``tone_compression`` 0 to 100, ``white_clip`` 0 to 200, ``black_clip`` 0 to 50, ``microcontrast`` -11 to 10,
``contrast`` and ``saturation`` -100 to 100.
"""

from __future__ import annotations

from collections.abc import Callable, Iterable
from typing import Any, Literal, Union

import numpy as np
import numpy.typing as npt

from . import _quorvane
from ._presets import Settings

Pixels = npt.NDArray[Any]
Progress = Callable[[float], Any]
Wrap = Union[bool, Literal["none", "horizontal", "auto"]]
Rendering = Literal["color", "engine"]
Points = Union[str, Iterable[tuple[float, float]]]


def _default_rendering(image: Pixels) -> Rendering:
    return "color" if image.dtype.kind == "f" else "engine"


def tonemap(
    image: npt.ArrayLike,
    *,
    strength: float = 70.0,
    lighting: float = 0.0,
    tone_compression: float = 0.0,
    white_clip: float = 5.0,
    black_clip: float = 0.1,
    microcontrast: float = 0.0,
    contrast: float = 20.0,
    saturation: float = 0.0,
    wrap: Wrap = False,
    rendering: Rendering | None = None,
    color_space: str = "srgb",
    source: str = "linear-srgb",
    depth: int = 8,
    dither: bool = False,
    out: Pixels | None = None,
    progress: Progress | None = None,
) -> Pixels:
    """Tone-map a picture: compress the contrasts that are too large for a screen or paper.

    Parameters
    ----------
    image : array of the shape (height, width, 3) or (height, width, 4)
        Red, green, blue, and alpha, which is passed on. One of

        - float32 or float16: linear light in the space `source`, 1.0 for white; any finite value. NaN and
          infinite samples, single outliers, and colours that no surface has, are repaired as those of a file.
        - uint8 or uint16: gamma-encoded in `color_space` (2.2, ProPhoto RGB 1.8), as ``cpp_tm_quorvane`` takes
          them; with the same settings the result has the same bytes.

        Any strides will do. Rows are read where they are; those whose samples do not follow each other are
        copied one by one. The picture as a whole is copied only if it has infinite samples, outliers, or floats
        with `wrap`. At most 748980 pixels wide.
    strength : float
        Compression of large contrasts, -200 to 150; usual from -100 to 100, higher shows more.
    lighting : float
        Reach of the local adaptation over tones, -14 to 10; higher is more local.
    tone_compression : float
        Extra pull of far tones toward the mean, 0 to 100.
    white_clip : float
        Pixels that become white, in twentieths of a per cent, 0 to 200.
    black_clip : float
        Pixels that become black, in per cent, 0 to 50.
    microcontrast : float
        Reach of the local adaptation over the picture, -11 to 10; higher is finer.
    contrast : float
        Steepness of the final tone curve, -100 to 100.
    saturation : float
        Purity of colours, -100 (grey) to 100 (doubled).
    wrap : bool or {"none", "horizontal", "auto"}
        Whether left and right edges meet, as in a full panorama. "auto" looks at the edges of pictures that
        are twice as wide as high.
    rendering : {"color", "engine"}, optional
        What the last tone curve does to colours: "color", the default for floats, keeps hue and purity;
        "engine", the default for integers, curves each channel, as the exported function does.
    color_space : {"srgb", "adobergb", "prophoto"}
        Of the result, and of integer samples in `image`.
    source : str
        Space of floats: "linear-srgb", "linear-display-p3", "linear-rec2020", "aces2065-1", "acescg",
        "linear-adobergb", "linear-prophoto", or "xyz-d50" (XYZ relative to D50, as `read` gives it).
    depth : {8, 16}
        Bits per sample of the result.
    dither : bool
        For depth 8: whether the result is rendered at 16 bits and reduced by a fixed fine pattern, so that
        smooth gradients show no bands. The same call gives the same bytes.
    out : array, optional
        Where the result goes: of `image`'s shape, uint8 for depth 8, uint16 for 16, with any strides. It may
        be `image`. After an error it may hold a part of the result.
    progress : callable, optional
        Called with the share of the work that is done, first 0.0, last 1.0. Returning False before that stops
        the work.

    Returns
    -------
    array
        uint8 or uint16, of `image`'s shape; `out` if that is given.

    Raises
    ------
    ValueError
        For an argument out of its range, or an array of another shape or type.
    Error
        For a picture that is too wide.
    MemoryError
        About 22 bytes per pixel are needed.
    Cancelled
        When `progress` returned False. What it raises, and KeyboardInterrupt, end the work as well.

    Examples
    --------
    >>> import numpy as np
    >>> import quorvane
    >>> light = np.geomspace(0.001, 10.0, 3 * 64 * 64, dtype=np.float32).reshape(64, 64, 3)
    >>> result = quorvane.tonemap(light, strength=90)
    >>> result.shape, result.dtype
    ((64, 64, 3), dtype('uint8'))
    >>> quorvane.tonemap(light, strength=200)
    Traceback (most recent call last):
    ValueError: strength is 200; it must be a number from -200 to 150
    """
    array = np.asarray(image)
    settings = {
        "strength": strength, "lighting": lighting, "tone_compression": tone_compression,
        "white_clip": white_clip, "black_clip": black_clip, "microcontrast": microcontrast,
        "contrast": contrast, "saturation": saturation, "wrap": wrap,
        "rendering": rendering or _default_rendering(array),
    }  # fmt: skip
    return _quorvane.tonemap(array, settings, color_space, source, depth, dither, out, progress)


class Renderer:
    """A picture that is tone-mapped again and again, as sliders move.

    It keeps what the engine found, 22 bytes per pixel, so that a call costs only what its changes ask for:
    `contrast`, `saturation`, `rendering`, `depth`, `dither` and `out` the last stage; `strength`,
    `tone_compression` and the clips the last two; `lighting`, `microcontrast` and `wrap` all but the preparation
    of the pixels. The results are those of `tonemap`. Threads that share a renderer take turns.

    Parameters
    ----------
    image, source, color_space
        As in `tonemap`. The array is kept, and must stay as it is.

    Examples
    --------
    >>> import numpy as np
    >>> import quorvane
    >>> light = np.geomspace(0.001, 10.0, 3 * 64 * 64, dtype=np.float32).reshape(64, 64, 3)
    >>> renderer = quorvane.Renderer(light)
    >>> first = renderer.render(strength=90)
    >>> second = renderer.render(strength=90, contrast=0)
    >>> bool((second == quorvane.tonemap(light, strength=90, contrast=0)).all())
    True
    """

    def __init__(
        self, image: npt.ArrayLike, *, source: str = "linear-srgb", color_space: str = "srgb"
    ) -> None:
        array = np.asarray(image)
        self._rendering = _default_rendering(array)
        self._renderer = _quorvane.Renderer(array, source, color_space)

    def render(
        self,
        *,
        strength: float = 70.0,
        lighting: float = 0.0,
        tone_compression: float = 0.0,
        white_clip: float = 5.0,
        black_clip: float = 0.1,
        microcontrast: float = 0.0,
        contrast: float = 20.0,
        saturation: float = 0.0,
        wrap: Wrap = False,
        rendering: Rendering | None = None,
        depth: int = 8,
        dither: bool = False,
        out: Pixels | None = None,
        progress: Progress | None = None,
    ) -> Pixels:
        """Tone-map the picture. Parameters, result and errors are those of `tonemap`."""
        settings = {
            "strength": strength, "lighting": lighting, "tone_compression": tone_compression,
            "white_clip": white_clip, "black_clip": black_clip, "microcontrast": microcontrast,
            "contrast": contrast, "saturation": saturation, "wrap": wrap,
            "rendering": rendering or self._rendering,
        }  # fmt: skip
        return self._renderer.render(settings, depth, dither, out, progress)

    @property
    def stage_seconds(self) -> dict[str, float]:
        """How long each stage took when it last ran: preparation, phase1, phase2, final_rendering."""
        return self._renderer.seconds()

    @property
    def repairs(self) -> dict[str, int]:
        """How many pixels of floats were repaired: nan, infinite, outliers, negative (beyond the colours of
        surfaces). Known after the first call."""
        return self._renderer.repairs()


def auto_settings(
    image: npt.ArrayLike, *, source: str = "linear-srgb", color_space: str = "srgb"
) -> Settings:
    """Choose sliders by the light of a picture, as ``quorvane tonemap --auto`` does.

    Parameters
    ----------
    image, source, color_space
        As in `tonemap`.

    Returns
    -------
    dict
        All sliders, for ``tonemap(image, **settings)``.

    Raises
    ------
    ValueError
        As `tonemap` does.
    MemoryError
        12 bytes per pixel are needed.

    Examples
    --------
    >>> import numpy as np
    >>> import quorvane
    >>> light = np.geomspace(0.001, 10.0, 3 * 64 * 64, dtype=np.float32).reshape(64, 64, 3)
    >>> sorted(quorvane.auto_settings(light))[:3]
    ['black_clip', 'contrast', 'lighting']
    """
    return _quorvane.auto_settings(np.asarray(image), source, color_space)


def _points_text(points: Points | None) -> str:
    if points is None or isinstance(points, str):
        return points or ""
    return ",".join(f"{float(hue)!r}:{float(value)!r}" for hue, value in points)


def curve_texts(
    hue_shift: Points | None, saturation: Points | None, lightness: Points | None, mode: str
) -> dict[str, str]:
    """Curves as the extension takes them."""
    return {
        "hue_shift": _points_text(hue_shift), "saturation": _points_text(saturation),
        "lightness": _points_text(lightness), "mode": mode,
    }  # fmt: skip


def equalize(
    image: npt.ArrayLike,
    *,
    hue_shift: Points | None = None,
    saturation: Points | None = None,
    lightness: Points | None = None,
    mode: Literal["smooth", "linear", "flat"] = "smooth",
    color_space: str = "srgb",
    out: Pixels | None = None,
) -> Pixels:
    """Change hue, saturation and lightness of a finished picture, each by a curve over hue.

    Parameters
    ----------
    image : array of uint8 or uint16, of the shape (height, width, 3) or (height, width, 4)
        Encoded in `color_space`. Alpha is passed on.
    hue_shift, saturation, lightness : str or pairs of numbers, optional
        Points of the curve, 1 to 100 in any order: pairs (hue, value), or the tool's text
        "HUE:VALUE,HUE:VALUE". Hue in degrees from 0 to 360, in linear ProPhoto RGB; value from 0 to 1, 0.5 is
        neutral. A curve that is not given is neutral.
    mode : {"smooth", "linear", "flat"}
        Interpolation between points.
    color_space : {"srgb", "adobergb", "prophoto"}
        Of `image` and the result.
    out : array, optional
        As in `tonemap`, of `image`'s type.

    Returns
    -------
    array
        Of `image`'s shape and type; `out` if that is given.

    Raises
    ------
    ValueError
        For points out of their range, or an array of another shape or type.

    Examples
    --------
    >>> import numpy as np
    >>> import quorvane
    >>> red = np.full((2, 2, 3), (200, 30, 30), np.uint8)
    >>> quorvane.equalize(red, saturation=[(0, 0.0)])[0, 0].ptp()
    0
    """
    curves = curve_texts(hue_shift, saturation, lightness, mode)
    return _quorvane.equalize(np.asarray(image), curves, color_space, out)
