"""The tone-mapped image quality index of Yeganeh and Wang, IEEE Transactions on Image Processing 22(2), 2013."""
import math

import numpy as np

from . import color, filters

SCALE_WEIGHTS = (0.0448, 0.2856, 0.3001, 0.2363, 0.1333)
FREQUENCIES = (16, 8, 4, 2, 1)  # cycles per degree, a scale each
WINDOW = filters.kernel(1.5, 5)
C1, C2 = 0.01, 10.0
SHARE, S_POWER, N_POWER = 0.8012, 0.3046, 0.7088
MEAN_LIGHT, LIGHT_DEVIATION = 115.94, 27.99
BETA_A, BETA_B, MOST_CONTRAST = 4.4, 10.1, 64.29
BLOCK = 11

_CURVE_AT = np.linspace(-6, 6, 24001)
_CURVE = np.array([0.5 * (1 + math.erf(x / math.sqrt(2))) for x in _CURVE_AT])


def _visibility(deviation, frequency):
    """The chance that a local deviation is seen, by the contrast sensitivity at a frequency."""
    sensitivity = 100 * 2.6 * (0.0192 + 0.114 * frequency) * math.exp(-((0.114 * frequency) ** 1.1))
    mean = 128 / (1.4 * sensitivity)
    return np.interp((deviation - mean) / (mean / 3), _CURVE_AT, _CURVE)


def _local_fidelity(hdr, ldr, frequency):
    def smooth(plane):
        return filters.smooth_inside(plane, WINDOW)
    mean_h, mean_l = smooth(hdr), smooth(ldr)
    sigma_h = np.sqrt(np.maximum(0, smooth(hdr * hdr) - mean_h ** 2))
    sigma_l = np.sqrt(np.maximum(0, smooth(ldr * ldr) - mean_l ** 2))
    common = smooth(hdr * ldr) - mean_h * mean_l
    seen_h, seen_l = _visibility(sigma_h, frequency), _visibility(sigma_l, frequency)
    same_contrast = (2 * seen_h * seen_l + C1) / (seen_h ** 2 + seen_l ** 2 + C1)
    same_structure = (common + C2) / (sigma_h * sigma_l + C2)
    return float(np.mean(same_contrast * same_structure))


def fidelity(hdr, ldr):
    """S: structures of the scene that the result keeps. hdr: luminance of any scale; ldr: 0..255."""
    reach = float(np.ptp(hdr))
    hdr = (hdr - hdr.min()) * ((2.0 ** 32 - 1) / reach if reach > 0 else 0.0)
    product = 1.0
    for weight, frequency in zip(SCALE_WEIGHTS, FREQUENCIES):
        if min(hdr.shape) < len(WINDOW):
            raise ValueError("TMQI needs pictures of 176 pixels a side or more")
        product *= max(_local_fidelity(hdr, ldr, frequency), 0.0) ** weight
        hdr, ldr = filters.reduce_by(hdr, 2), filters.reduce_by(ldr, 2)
    return product


def naturalness(ldr):
    """N: how usual the mean light (0..255) and the mean contrast of blocks are among photographs."""
    light = math.exp(-0.5 * ((float(ldr.mean()) - MEAN_LIGHT) / LIGHT_DEVIATION) ** 2)
    rows, columns = ldr.shape[0] // BLOCK, ldr.shape[1] // BLOCK
    blocks = ldr[:rows * BLOCK, :columns * BLOCK].reshape(rows, BLOCK, columns, BLOCK)
    contrast = float(blocks.std(axis=(1, 3), ddof=1).mean()) / MOST_CONTRAST

    def beta(x):
        return x ** (BETA_A - 1) * (1 - x) ** (BETA_B - 1) if 0 < x < 1 else 0.0
    return light * beta(contrast) / beta((BETA_A - 1) / (BETA_A + BETA_B - 2))


def tmqi(light, coded):
    """Q, S and N of a coded result (0..1) of a scene's linear light."""
    ldr = color.luminance(coded.astype(float)) * 255
    s = fidelity(color.luminance(light.astype(float)), ldr)
    n = naturalness(ldr)
    return SHARE * s ** S_POWER + (1 - SHARE) * n ** N_POWER, s, n
