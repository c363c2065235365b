"""Halos: slopes that a result reverses, and overshoot beside a drawn edge."""
import numpy as np

from . import color, filters

EDGE_SIZE = (512, 1024)
EDGE_STOPS = (1, 2, 3, 4, 5)
NEAR = 50  # pixels beside the edge that may overshoot
FAR = slice(150, 250)  # pixels from the edge that show the level of its side


def reversed_slopes(light, coded):
    """Per cent of clear slopes of the scene that run the other way in the result."""
    sigma = light.shape[1] / 128
    scene = np.gradient(filters.gaussian(color.log2_luminance(light), sigma))
    result = np.gradient(filters.gaussian(color.lightness(coded), sigma))
    steepness = np.hypot(*scene)
    clear = (steepness > 0) & (steepness >= np.quantile(steepness, 0.75))
    if not clear.any():
        return 0.0
    along = ((scene[0] * result[0] + scene[1] * result[1])[clear]) / steepness[clear]
    usual = np.median(np.abs(along))
    return 100 * float((along < -0.1 * usual).mean())


def edge_picture(stops):
    """A step of so many stops from left to right, between two slopes over five decades of light."""
    height, width = EDGE_SIZE
    slope = 10.0 ** np.linspace(-2.5, 2.5, height // 4)
    light = np.empty((height, width))
    light[:height // 4] = slope[:, None]
    light[-(height // 4):] = slope[::-1, None]
    light[height // 4:-(height // 4), :width // 2] = 2.0 ** (-stops / 2)
    light[height // 4:-(height // 4), width // 2:] = 2.0 ** (stops / 2)
    return np.repeat(light[:, :, None], 3, axis=2).astype(np.float32)


def overshoot(coded):
    """L* by which the dark and the light side of edge_picture() leave their levels beside the edge."""
    middle = color.lightness(coded[EDGE_SIZE[0] // 2 - 8:EDGE_SIZE[0] // 2 + 8]).mean(axis=0)
    dark, light = middle[:len(middle) // 2][::-1], middle[len(middle) // 2:]
    return (max(0.0, float(np.median(dark[FAR]) - dark[:NEAR].min())),
            max(0.0, float(light[:NEAR].max() - np.median(light[FAR]))))
