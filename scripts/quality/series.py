"""Figures that compare several renderings: seam, preview, neighbours of a series."""
import numpy as np

from . import color, filters


def seam(coded, rotated):
    """Mean step, in 8-bit codes, from the last to the first column beyond that of the scene itself.

    rotated: the result of the picture rotated by half, in which those columns meet inside.
    """
    middle = rotated.shape[1] // 2
    step = np.abs(coded[:, -1] - coded[:, 0]).mean()
    inner = np.abs(rotated[:, middle - 1] - rotated[:, middle]).mean()
    return 255 * float(step - inner)


def _codes_apart(first, second):
    apart = 255 * np.abs(first - second)
    return float(apart.mean()), float(np.quantile(apart, 0.99))


def preview(small, whole):
    """Codes between a preview and the full result, whose light is averaged over each of the preview's pixels."""
    reduced = color.encode(filters.reduce_to(color.decode(whole), *small.shape[:2]))
    mean, most = _codes_apart(small, reduced)
    smooth_mean, smooth_most = _codes_apart(filters.gaussian(small, 3), filters.gaussian(reduced, 3))
    return {"preview": mean, "preview_99": most, "preview_smooth": smooth_mean, "preview_smooth_99": smooth_most}


def same_look(light, coded):
    """L* between the results of two neighbours of a series (pairs), where the scene did not change."""
    unchanged = np.abs(color.log2_luminance(light[0]) - color.log2_luminance(light[1])) < 0.01
    apart = np.abs(color.lightness(coded[0]) - color.lightness(coded[1]))[unchanged]
    if not apart.size:
        return {"same_look": None, "same_look_95": None}
    return {"same_look": float(apart.mean()), "same_look_95": float(np.quantile(apart, 0.95))}
