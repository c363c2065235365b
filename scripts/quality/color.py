"""Light and colour: sRGB, luminance, lightness, Oklab. Linear light is 1 at the white of the screen."""
import numpy as np

LUMINANCE = np.array([0.2126, 0.7152, 0.0722])
# Björn Ottosson, "A perceptual color space for image processing" (2020): linear sRGB to cones, cones to Lab.
CONES = np.array([[0.4122214708, 0.5363325363, 0.0514459929],
                  [0.2119034982, 0.6806995451, 0.1073969566],
                  [0.0883024619, 0.2817188376, 0.6299787005]])
OPPONENTS = np.array([[0.2104542553, 0.7936177850, -0.0040720468],
                      [1.9779984951, -2.4285922050, 0.4505937099],
                      [0.0259040371, 0.7827717662, -0.8086757660]])


def decode(coded):
    """Coded sRGB of 0..1 to linear light."""
    return np.where(coded <= 0.04045, coded / 12.92, ((np.maximum(coded, 0) + 0.055) / 1.055) ** 2.4)


def encode(light):
    light = np.clip(light, 0, 1)
    return np.where(light <= 0.0031308, light * 12.92, 1.055 * light ** (1 / 2.4) - 0.055)


def luminance(rgb):
    return rgb @ LUMINANCE.astype(rgb.dtype)


def lightness(coded):
    """L* of a coded picture."""
    y = luminance(decode(coded))
    return np.where(y > (6 / 29) ** 3, 116 * np.cbrt(y) - 16, y * (29 / 3) ** 3)


def oklab(light):
    return np.cbrt(light.astype(float) @ CONES.T) @ OPPONENTS.T


def log2_luminance(light):
    """Black and negative luminance count as the least that is positive."""
    y = luminance(light.astype(float))
    positive = y > 0
    if not positive.any():
        return np.zeros_like(y)
    return np.log2(np.maximum(y, y[positive].min()))
