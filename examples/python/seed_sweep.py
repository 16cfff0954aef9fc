"""Renders one document with eight seeds of its noise and writes them as PNG files.

    PYTHONPATH=build/release/python python3 examples/python/seed_sweep.py [OUT_FOLDER]
"""

import pathlib
import sys

import texture

here = pathlib.Path(__file__).resolve().parent
out = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "seed-sweep")
out.mkdir(parents=True, exist_ok=True)

doc = texture.load(here.parent / "hello-perlin.texture.json")
for seed in range(8):
    doc["noise"]["seed"] = seed
    texture.write_image(out / f"seed-{seed}.png", doc.render())
    print(f"wrote {out / f'seed-{seed}.png'}")

# The same sweep on a Dask scheduler (a distributed.Client, when one is running):
#     import texture.dask
#     texture.dask.sweep(doc, {"noise.seed": range(8)}, str(out / "seed-{noise.seed}.png"))
