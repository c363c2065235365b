#!/usr/bin/env python3
"""Tone-maps a folder that all machines of a Dask cluster see: cluster.py PHOTOS RESULTS [SCHEDULER]

Without the address of a scheduler, a cluster of this machine's cores is started.
"""

import pathlib
import sys

import dask.distributed
from folder import KINDS, tonemap


def main(photos: str, results: str, scheduler: str = "") -> None:
    folder = pathlib.Path(results).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    sources = [file for file in pathlib.Path(photos).resolve().iterdir() if file.suffix.lower() in KINDS]
    cluster = scheduler or dask.distributed.LocalCluster(threads_per_worker=1, dashboard_address=None)
    with dask.distributed.Client(cluster) as client:
        client.upload_file(str(pathlib.Path(__file__).with_name("folder.py")))
        jobs = [client.submit(tonemap, source, folder / (source.stem + ".jpg")) for source in sorted(sources)]
        for job in dask.distributed.as_completed(jobs):
            print(job.result())
    if not scheduler:
        cluster.close()


if __name__ == "__main__":
    main(*sys.argv[1:])
