"""Tone mapping for high-dynamic-range photographs.

``tonemap`` turns an array of light into a finished picture, ``tonemap_file`` a file into a file. ``Renderer`` is
for sliders that move; ``auto_settings`` and ``presets`` choose them. ``read``, ``write``, ``inspect``, ``compare``,
``equalize`` and ``equalize_file`` are the tool's way with pictures.

Calls release the interpreter's lock, so that threads work at once, and Ctrl-C ends them. Errors are ValueError,
MemoryError and OSError, and ``Error`` for all that can be wrong with a picture.
"""

from ._arrays import Renderer, auto_settings, equalize, tonemap
from ._errors import Cancelled, Error
from ._files import Metadata, Photo, compare, equalize_file, inspect, read, tonemap_file, write
from ._presets import presets
from ._quorvane import __version__

__all__ = [
    "Cancelled", "Error", "Metadata", "Photo", "Renderer", "__version__", "auto_settings", "compare", "equalize",
    "equalize_file", "inspect", "presets", "read", "tonemap", "tonemap_file", "write",
]  # fmt: skip
