#!/usr/bin/env python3
"""Draws a photograph as one exposure shows it, and tone-mapped: before_after.py PHOTO RESULT.png"""

import sys

import matplotlib

matplotlib.use("Agg")  # no screen is needed
import matplotlib.pyplot as plt
import numpy as np
import quorvane


def expose(light: np.ndarray) -> np.ndarray:
    """One exposure: the median becomes a middle grey, what is brighter than white is burnt out."""
    middle = np.median(light) or 1.0
    return np.clip(0.18 / middle * light, 0, 1) ** (1 / 2.2)


def main(source: str, target: str) -> None:
    light = np.maximum(quorvane.read(source).pixels[..., :3], 0)
    settings = quorvane.auto_settings(light)
    pictures = {"one exposure": expose(light), "tone-mapped": quorvane.tonemap(light, **settings)}
    figure, axes = plt.subplots(1, len(pictures), figsize=(12, 5), layout="constrained")
    for axis, (title, picture) in zip(axes, pictures.items()):
        axis.imshow(picture)
        axis.set_title(title)
        axis.axis("off")
    figure.savefig(target)


if __name__ == "__main__":
    main(*sys.argv[1:])
