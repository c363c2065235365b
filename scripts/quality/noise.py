"""How much the grain of the shadows grows."""
import numpy as np

from . import color, filters

DARKEST = 0.2
FLOOR = 2.0 ** -16  # of the result's light; a black pixel has no logarithm


def _deviation(plane):
    detail = plane - filters.gaussian(plane, 2)
    return np.sqrt(filters.gaussian(detail * detail, 2))


def gain(light, coded):
    """Local deviation of the result's log luminance over the scene's, in the calmer half of the darkest fifth."""
    scene = color.log2_luminance(light)
    result = np.log2(np.maximum(color.luminance(color.decode(coded)), FLOOR))
    tones = filters.gaussian(scene, 3)
    before, after = _deviation(scene), _deviation(result)
    dark = (tones <= np.quantile(tones, DARKEST)) & (before > 1e-6)
    if not dark.any():
        return None
    calm = dark & (before <= np.median(before[dark]))
    return float(np.median(after[calm] / before[calm]))
