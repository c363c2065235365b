"""Presets: the user's own, and those of the package."""

from __future__ import annotations

import os
import pathlib
from collections.abc import Iterator, Mapping
from typing import Any

from . import _quorvane

Settings = dict[str, Any]
"""Sliders and ``wrap`` by their keywords, as ``tonemap(**settings)`` takes them."""


def _user_folder() -> str:
    config = os.environ.get("XDG_CONFIG_HOME", "")
    if config.startswith("/"):
        return f"{config}/quorvane/presets"
    home = os.environ.get("HOME", "")
    return f"{home}/.config/quorvane/presets" if home else ""


def _folders() -> tuple[bytes, bytes]:
    return os.fsencode(_user_folder()), os.fsencode(pathlib.Path(__file__).parent / "presets")


def load_preset(name: str | os.PathLike[str]) -> Settings:
    """Settings of a preset's name or file. Raises ValueError for one that is unknown or cannot be used."""
    return _quorvane.load_preset(*_folders(), os.fsencode(name))[0]


class Presets(Mapping[str, Settings]):
    """The presets by their names: those in the user's folder, which hide others of their name, then those of
    the package. The folder is ``$XDG_CONFIG_HOME/quorvane/presets``, by default
    ``~/.config/quorvane/presets``; it is read at each use.

    Examples
    --------
    >>> import quorvane
    >>> "vivid" in quorvane.presets
    True
    >>> quorvane.presets["vivid"]["saturation"]
    25.0
    """

    def __getitem__(self, name: str) -> Settings:
        if name not in _quorvane.list_presets(*_folders()):
            raise KeyError(name)
        return load_preset(name)

    def __iter__(self) -> Iterator[str]:
        return iter(_quorvane.list_presets(*_folders()))

    def __len__(self) -> int:
        return len(_quorvane.list_presets(*_folders()))

    def description(self, name: str) -> str:
        """A sentence about the preset."""
        return _quorvane.load_preset(*_folders(), os.fsencode(name))[1]


presets = Presets()
