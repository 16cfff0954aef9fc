"""Terrain statistics from a height texture, with numpy only.

Samples the "height" node of examples/terrain.texture.json (ridges plus hills, before the
colouring) on a grid of 1024 x 1024 points over the map's 2 x 2 units, treats its value as
elevation and reports how much of the land lies above the sea and how steep it is.

    PYTHONPATH=build/release/python python3 examples/python/terrain_slopes.py
"""

import pathlib

import numpy as np

import texture

SIZE = 1024
EXTENT = 2.0        # texture units across the map, as the document's render range
SEA_LEVEL = 0.4     # the document's constant sea level
RELIEF = 1000.0     # metres from height 0 to height 1, to give slopes a scale
CELL = 40000.0 / SIZE  # metres per grid step: the map is 40 km across

doc = texture.load(pathlib.Path(__file__).resolve().parent.parent / "terrain.texture.json")
coordinates = (np.arange(SIZE) + 0.5) * (EXTENT / SIZE)
x, y = np.meshgrid(coordinates, coordinates[::-1])  # row 0 at the top (highest y)
points = np.stack([x, y, np.zeros_like(x)], axis=-1).reshape(-1, 3)
heights = doc.sample("height", points)[:, 0].reshape(SIZE, SIZE).astype(np.float64)

land = heights > SEA_LEVEL
elevation = (heights - SEA_LEVEL).clip(min=0) * RELIEF
dz_dy, dz_dx = np.gradient(elevation, CELL)
slope = np.degrees(np.arctan(np.hypot(dz_dx, dz_dy)))[land]

print(f"land: {land.mean():.1%} of the map, highest point {elevation.max():.0f} m")
print(f"slope on land: mean {slope.mean():.1f} deg, median {np.median(slope):.1f} deg, "
      f"95th percentile {np.percentile(slope, 95):.1f} deg")
for low, high in [(0, 5), (5, 15), (15, 30), (30, 90)]:
    share = np.mean((slope >= low) & (slope < high))
    print(f"  {low:2d}-{high:2d} deg: {share:6.1%} {'#' * int(share * 50)}")
