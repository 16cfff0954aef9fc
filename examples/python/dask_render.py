"""A large render on a Dask cluster, written block by block into a tiled EXR file.

Starts a local cluster of two single-thread worker processes (or connects to the scheduler
given as the second argument), renders the default example at 8192 x 8192 in 1024-pixel
blocks and writes each block into the file as soon as a worker has it: the whole image is
never in memory.

    PYTHONPATH=build/release/python python3 examples/python/dask_render.py [OUT.exr] [SCHEDULER]
"""

import pathlib
import sys
import time

import distributed

import texture
import texture.dask

here = pathlib.Path(__file__).resolve().parent
out = sys.argv[1] if len(sys.argv) > 1 else "default-8192.exr"


def main():
    if len(sys.argv) > 2:
        client = distributed.Client(sys.argv[2])
    else:
        client = distributed.Client(distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None))
    with client:
        doc = texture.load(here.parent / "default.texture.json")
        image = texture.dask.render(doc, "out", (8192, 8192), chunks=1024)
        start = time.perf_counter()
        texture.dask.store_image(image, out, tiled=True)
        seconds = time.perf_counter() - start
    print(f"{out}: 8192 x 8192 in {image.npartitions} blocks, {seconds:.1f} s")


if __name__ == "__main__":
    main()
