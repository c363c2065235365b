#!/usr/bin/env python3
"""Time of quorvane.tonemap over that of the exported function, on the same picture, by turns.

  PYTHONPATH=build/release/python bench/python.py build/release/libquorvane.so [ROUNDS]
"""

import ctypes
import os
import sys
import time

import numpy as np
import quorvane

HEIGHT, WIDTH = 3000, 4000


def make_codes():
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH].astype(np.float32)
    level = np.exp(4 * np.sin(x / 700) + 3 * np.cos(y / 500)) / 500
    texture = np.random.default_rng(1).uniform(0.8, 1.2, (HEIGHT, WIDTH, 3))
    return (np.clip(level[..., None] * texture, 0, 1) ** (1 / 2.2) * 65535).astype(np.uint16)


def call_library(function, codes, out):
    image = (ctypes.c_int32 * 10)(WIDTH, HEIGHT, 3, 16, 8, 0, 3 * WIDTH)
    settings = (ctypes.c_float * 16)(70.0, 0.0, 0.0, 5.0, 0.1)
    pointer = lambda array: array.ctypes.data_as(ctypes.c_void_p)
    assert function(image, None, 0, settings, pointer(codes), pointer(out)) == 1


def seconds(call):
    """On the clock, and of the processor."""
    starts = time.perf_counter(), time.process_time()
    call()
    return np.array([time.perf_counter() - starts[0], time.process_time() - starts[1]])


def main(library, rounds="25"):
    function = ctypes.CDLL(library).cpp_tm_quorvane
    os.dup2(os.open("/dev/null", os.O_WRONLY), 2)  # the library's log
    codes = make_codes()
    host, own = np.zeros((2, *codes.shape), np.uint8)
    ratios = []
    for _ in range(int(rounds)):
        alone = seconds(lambda: call_library(function, codes, host))
        ratios.append(seconds(lambda: quorvane.tonemap(codes, out=own)) / alone)
    assert (host == own).all()
    for name, column in zip(("clock", "processor"), np.transpose(ratios)):
        low, middle, high = np.percentile(column, (25, 50, 75))
        print(f"{name}: ratio {middle:.3f}, {low:.3f} to {high:.3f} in the middle half of {rounds} rounds")


if __name__ == "__main__":
    main(*sys.argv[1:])
