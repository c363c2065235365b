"""Smoothing and reduction of planes (height x width) and pictures (height x width x channels)."""
import numpy as np


def kernel(sigma, radius):
    offsets = np.arange(-radius, radius + 1)
    weights = np.exp(-0.5 * (offsets / sigma) ** 2)
    return weights / weights.sum()


def _convolved(plane, weights, axis):
    """Without the places where the kernel leaves the plane."""
    length = plane.shape[axis] - len(weights) + 1
    total = 0
    for start, weight in enumerate(weights.astype(plane.dtype)):
        window = [slice(None)] * plane.ndim
        window[axis] = slice(start, start + length)
        total = total + weight * plane[tuple(window)]
    return total


def smooth_inside(plane, weights):
    return _convolved(_convolved(plane, weights, 0), weights, 1)


def gaussian(picture, sigma):
    """As large as the picture, whose borders are mirrored."""
    radius = max(1, int(np.ceil(3 * sigma)))
    around = [(radius, radius)] * 2 + [(0, 0)] * (picture.ndim - 2)
    return smooth_inside(np.pad(picture, around, mode="symmetric"), kernel(sigma, radius))


def _shares(length, to):
    """Where the areas of `to` equal parts of `length` samples begin and end, as positions in a running sum."""
    return np.linspace(0, length, to + 1)


def _reduced(picture, to, axis):
    picture = np.moveaxis(picture, axis, 0)
    running = np.concatenate([np.zeros_like(picture[:1], dtype=float), np.cumsum(picture, axis=0, dtype=float)])
    at = _shares(len(picture), to)
    low = np.minimum(at.astype(int), len(picture) - 1)
    part = (at - low).reshape((-1,) + (1,) * (picture.ndim - 1))
    sums = running[low] + part * picture[low]
    return np.moveaxis(np.diff(sums, axis=0) * (to / len(picture)), 0, axis).astype(picture.dtype)


def reduce_to(picture, height, width):
    """The mean of the area under each pixel of the result, fractions of pixels included."""
    return _reduced(_reduced(picture, height, 0), width, 1)


def reduce_by(picture, factor):
    """Means of squares of `factor` pixels a side; what is left over at the right and the bottom goes."""
    height, width = picture.shape[0] // factor, picture.shape[1] // factor
    whole = picture[:height * factor, :width * factor]
    return whole.reshape((height, factor, width, factor) + picture.shape[2:]).mean(axis=(1, 3)).astype(picture.dtype)
