"""What became of colours and tones: hue, purity, clipping, lightness."""
import numpy as np

from . import color

LEAST_PURITY_IN = 0.06  # of C/L; paler colours have no hue to speak of
LEAST_CHROMA_OUT = 0.02


def _hue_error(before, after):
    """Degrees between two pictures in Oklab."""
    turn = np.degrees(np.arctan2(after[:, 2], after[:, 1]) - np.arctan2(before[:, 2], before[:, 1]))
    return np.abs((turn + 180) % 360 - 180)


def _mean_and_most(errors):
    return (float(errors.mean()), float(np.quantile(errors, 0.95))) if errors.size else (None, None)


def _chroma(lab):
    return np.hypot(lab[:, 1], lab[:, 2])


def fidelity(light, coded):
    """Hue error (degrees; mean and 95 % quantile) and purity of pixels inside the gamut and of clipped ones.

    None where a picture has no such pixels.
    """
    light, coded = light.reshape(-1, 3), coded.reshape(-1, 3)
    before, after = color.oklab(light), color.oklab(color.decode(coded))
    purity_before = _chroma(before) / np.maximum(before[:, 0], 1e-9)
    has_hue = (purity_before > LEAST_PURITY_IN) & (_chroma(after) > LEAST_CHROMA_OUT) & (light >= 0).all(axis=1)
    inside = has_hue & ((coded >= 0.01) & (coded <= 0.995)).all(axis=1)
    clipped = has_hue & ((coded <= 0) | (coded >= 1)).any(axis=1)
    purity_after = _chroma(after) / np.maximum(after[:, 0], 1e-9)
    hue, hue_95 = _mean_and_most(_hue_error(before[inside], after[inside]))
    clipped_hue, clipped_hue_95 = _mean_and_most(_hue_error(before[clipped], after[clipped]))
    purity = float(np.median(purity_after[inside] / purity_before[inside])) if inside.any() else None
    return {"hue": hue, "hue_95": hue_95, "clipped_hue": clipped_hue, "clipped_hue_95": clipped_hue_95,
            "purity": purity}


def clipping(coded):
    """Per cent of pixels with a channel at white, with all there, with all at black."""
    at_white, at_black = coded >= 1, coded <= 0
    return {"white_any": 100 * float(at_white.any(axis=2).mean()),
            "white_all": 100 * float(at_white.all(axis=2).mean()),
            "black_all": 100 * float(at_black.all(axis=2).mean())}


def light(coded):
    """Mean L*, and the per cent of pixels that are very dark or very light."""
    tones = color.lightness(coded)
    return {"lightness": float(tones.mean()), "dark": 100 * float((tones < 20).mean()),
            "light": 100 * float((tones > 95).mean())}
