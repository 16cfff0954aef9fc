"""Speed of the Python module against the texture command and against plane renders.

Run with the build tree's package on the path:
    PYTHONPATH=build/release/python python3 python/bench/benchmark.py [--dask]

Prints, for a 2048 x 2048 Perlin document: the render node's own time inside the texture
command, doc.render's wall time, and doc.sample of the same million-odd pixels' points; with
--dask, a 4096 x 4096 chunked render in 1024-pixel blocks on one and on two single-thread
worker processes, of that document and of examples/default.texture.json (a render heavy
enough that the blocks' trip to the client no longer dominates).
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
import time

import numpy as np

import texture


def best_of(repeats, action):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return min(times)


def document(size):
    doc = texture.Document()
    doc.add("Perlin Texture", "noise", frequency=4, octaves=3)
    doc.add("Render 2D Texture", "out", frame=[0, 0, size, size], range=[2, 2])
    doc.link("noise.texture", "out.texture")
    doc.display = "out"
    return doc


def command_render_ms(doc, folder):
    """The render node's own time inside the command (its info line), best of three."""
    path = os.path.join(folder, "bench.texture.json")
    doc.save(path)
    command = os.path.join(os.path.dirname(texture._native.plugin_path()), "..", "..", "bin", "texture")
    times = []
    for _ in range(3):
        done = subprocess.run([command, "render", path, "-o", os.path.join(folder, "b.exr")],
                              capture_output=True, text=True, check=True)
        times.append(int(re.search(r"Render image: (\d+) ms", done.stderr).group(1)))
    return min(times)


def fresh_render(doc):
    # A changed seed makes the engine evaluate again, as the command does for a new document.
    fresh_render.seed = getattr(fresh_render, "seed", 0) + 1
    doc["noise"]["seed"] = fresh_render.seed % 2
    doc.render()


def dask_seconds(doc, workers):
    """Seconds to render the blocks on the cluster (kept there), and to gather them as well."""
    import distributed

    import texture.dask

    with distributed.LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, \
            distributed.Client(cluster) as client:
        def fresh():
            # Another start each time gives new block keys, so nothing is served from memory.
            fresh.runs = getattr(fresh, "runs", 0) + 1
            doc["out"]["start_z"] = fresh.runs / 8
            return texture.dask.render(doc, "out", (4096, 4096), chunks=1024)

        fresh().compute()  # warm the workers (plug-in loaded, document parsed)
        return (best_of(3, lambda: distributed.wait(client.persist(fresh()))),
                best_of(3, lambda: fresh().compute()))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--dask", action="store_true", help="also measure chunked Dask renders")
    arguments = parser.parse_args()
    doc = document(2048)
    with tempfile.TemporaryDirectory() as folder:
        print(f"texture command, render node: {command_render_ms(doc, folder)} ms")
    print(f"doc.render 2048 x 2048:        {best_of(5, lambda: fresh_render(doc)) * 1000:.0f} ms")
    xs = np.arange(1024) * (2 / 1024)
    points = np.stack(np.broadcast_arrays(xs[None, :], xs[:, None], 0.0), -1).reshape(-1, 3)
    small = document(1024)
    print(f"plane render 1024 x 1024:      {best_of(5, lambda: fresh_render(small)) * 1000:.0f} ms")
    print(f"doc.sample of 1048576 points:  {best_of(5, lambda: small.sample('noise', points)) * 1000:.0f} ms")
    if arguments.dask:
        examples = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples")
        for name, document_to_render in [("perlin", doc),
                                         ("default", texture.load(os.path.join(examples, "default.texture.json")))]:
            one, two = dask_seconds(document_to_render, 1), dask_seconds(document_to_render, 2)
            for what, index in [("rendered on the cluster", 0), ("gathered by the client", 1)]:
                print(f"dask {name} 4096 x 4096 in 1024 chunks, {what}: 1 worker "
                      f"{one[index]:.2f} s, 2 workers {two[index]:.2f} s, "
                      f"{one[index] / two[index]:.2f}x")


if __name__ == "__main__":
    sys.exit(main())
