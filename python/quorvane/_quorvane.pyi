from collections.abc import Callable
from typing import Any

import numpy as np
import numpy.typing as npt

__version__: str
has_exiv2: bool

class Metadata:
    @property
    def xmp(self) -> bytes: ...
    @property
    def exif(self) -> bytes: ...
    @property
    def summary(self) -> dict[str, str]: ...

class Renderer:
    def __init__(self, image: npt.NDArray[Any], source: str, color_space: str) -> None: ...
    def render(
        self,
        settings: dict[str, Any],
        depth: int,
        out: npt.NDArray[Any] | None,
        progress: Callable[[float], Any] | None,
    ) -> npt.NDArray[Any]: ...
    def seconds(self) -> dict[str, float]: ...
    def repairs(self) -> dict[str, int]: ...

def tonemap(
    image: npt.NDArray[Any],
    settings: dict[str, Any],
    color_space: str,
    source: str,
    depth: int,
    out: npt.NDArray[Any] | None,
    progress: Callable[[float], Any] | None,
) -> npt.NDArray[Any]: ...
def auto_settings(image: npt.NDArray[Any], source: str, color_space: str) -> dict[str, Any]: ...
def equalize(
    image: npt.NDArray[Any],
    hue_shift: str,
    saturation: str,
    lightness: str,
    mode: str,
    color_space: str,
    out: npt.NDArray[Any] | None,
) -> npt.NDArray[Any]: ...
def compare_arrays(a: npt.NDArray[Any], b: npt.NDArray[Any]) -> dict[str, Any]: ...
def tonemap_file(
    source: bytes,
    target: bytes,
    settings: dict[str, Any],
    options: dict[str, Any],
    progress: Callable[[float], Any] | None,
) -> str: ...
def inspect(path: bytes, options: dict[str, Any]) -> str: ...
def read(
    path: bytes, source: str, options: dict[str, Any], progress: Callable[[float], Any] | None
) -> tuple[npt.NDArray[np.float32], dict[str, Any]]: ...
def write(
    path: bytes, image: npt.NDArray[Any], metadata: Metadata | None, options: dict[str, Any]
) -> list[str]: ...
def compare_files(a: bytes, b: bytes) -> dict[str, Any]: ...
def list_presets(user_folder: bytes, own_folder: bytes) -> list[str]: ...
def load_preset(user_folder: bytes, own_folder: bytes, name: bytes) -> tuple[dict[str, Any], str]: ...
def sliders() -> list[tuple[str, float, float, float, str]]: ...
