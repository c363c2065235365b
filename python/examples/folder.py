#!/usr/bin/env python3
"""Tone-maps a folder with a process per core: folder.py PHOTOS RESULTS"""

import concurrent.futures
import multiprocessing
import pathlib
import sys

import quorvane

KINDS = {".exr", ".hdr", ".pfm", ".tif", ".tiff"}


def tonemap(source: pathlib.Path, target: pathlib.Path) -> str:
    """Every picture ends with a line; a damaged one does not keep the others from being worked on."""
    try:
        record = quorvane.tonemap_file(source, target, auto=True, skip_existing=True)
    except (quorvane.Error, OSError, MemoryError) as error:
        return f"{source.name}: {error}"
    return f"{source.name}: {record['status']}"


def main(photos: str, results: str) -> None:
    folder = pathlib.Path(results)
    folder.mkdir(parents=True, exist_ok=True)
    sources = sorted(file for file in pathlib.Path(photos).iterdir() if file.suffix.lower() in KINDS)
    context = multiprocessing.get_context("spawn")
    with concurrent.futures.ProcessPoolExecutor(mp_context=context) as pool:
        jobs = [pool.submit(tonemap, source, folder / (source.stem + ".jpg")) for source in sources]
        for job in concurrent.futures.as_completed(jobs):
            print(job.result())


if __name__ == "__main__":
    main(*sys.argv[1:])
