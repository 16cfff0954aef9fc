#!/usr/bin/env python3
"""Writes the small UV-mapped models shipped in host/models: cube.obj (cube-cross layout),
sphere.obj (latitude/longitude) and torus.obj. Run from anywhere; the files are committed, so
this only needs to run again when the models should change.

Every triangle is counter-clockwise both seen from outside and in UV space, and faces that meet
on the surface meet in the layout wherever the layout allows it.
"""

import math
import pathlib
import sys


class ObjWriter:
    """Collects positions, UVs and triangles, sharing equal positions and equal UVs."""

    def __init__(self, name, comment):
        self.name = name
        self.comment = comment
        self.positions = []
        self.uvs = []
        self.position_index = {}
        self.uv_index = {}
        self.triangles = []

    @staticmethod
    def _add(value, values, index):
        key = tuple(round(c, 6) + 0.0 for c in value)
        if key not in index:
            values.append(key)
            index[key] = len(values)
        return index[key]

    def corner(self, position, uv):
        return (self._add(position, self.positions, self.position_index),
                self._add(uv, self.uvs, self.uv_index))

    def triangle(self, a, b, c):
        self.triangles.append((a, b, c))

    def write(self, path):
        lines = [f"# {self.comment}", "# Written by tools/make_uv_models.py.", f"o {self.name}"]
        lines += ["v {:.6f} {:.6f} {:.6f}".format(*p) for p in self.positions]
        lines += ["vt {:.6f} {:.6f}".format(*t) for t in self.uvs]
        lines += ["f " + " ".join(f"{v}/{t}" for v, t in tri) for tri in self.triangles]
        path.write_text("\n".join(lines) + "\n")


def cube():
    obj = ObjWriter("cube", "Cube from -1 to 1, cube-cross UV layout: 4 x 3 cells, "
                    "left/front/right/back in the middle row, top above and bottom below front.")
    # face: (cell column, cell row, origin corner, right axis, up axis), seen from outside.
    faces = [
        (0, 1, (-1, -1, -1), (0, 0, 2), (0, 2, 0)),   # -X
        (1, 1, (-1, -1, 1), (2, 0, 0), (0, 2, 0)),    # +Z, front
        (2, 1, (1, -1, 1), (0, 0, -2), (0, 2, 0)),    # +X
        (3, 1, (1, -1, -1), (-2, 0, 0), (0, 2, 0)),   # -Z
        (1, 2, (-1, 1, 1), (2, 0, 0), (0, 0, -2)),    # +Y, above front
        (1, 0, (-1, -1, -1), (2, 0, 0), (0, 0, 2)),   # -Y, below front
    ]
    for column, row, origin, right, up in faces:
        corners = []
        for a, b in ((0, 0), (1, 0), (1, 1), (0, 1)):
            position = [origin[k] + a * right[k] + b * up[k] for k in range(3)]
            corners.append(obj.corner(position, ((column + a) / 4, (row + b) / 3)))
        obj.triangle(corners[0], corners[1], corners[2])
        obj.triangle(corners[0], corners[2], corners[3])
    return obj


def sphere(segments=16, rings=8):
    obj = ObjWriter("sphere", f"Unit sphere, {segments} segments x {rings} rings, "
                    "latitude/longitude UV layout (u around, v from the south pole up).")

    def corner(s, r):
        theta = math.pi * r / rings
        phi = 2 * math.pi * s / segments
        if r == 0 or r == rings:
            position = (0.0, -math.cos(theta), 0.0)
        else:
            position = (math.sin(theta) * math.cos(phi), -math.cos(theta),
                        -math.sin(theta) * math.sin(phi))
        return obj.corner(position, (s / segments, r / rings))

    for s in range(segments):
        # The poles get one UV per segment, in the middle of the segment's span.
        obj.triangle(corner(s + 0.5, 0), corner(s + 1, 1), corner(s, 1))
        for r in range(1, rings - 1):
            obj.triangle(corner(s, r), corner(s + 1, r), corner(s + 1, r + 1))
            obj.triangle(corner(s, r), corner(s + 1, r + 1), corner(s, r + 1))
        obj.triangle(corner(s, rings - 1), corner(s + 1, rings - 1), corner(s + 0.5, rings))
    return obj


def torus(segments=16, sides=8, major=1.0, minor=0.35):
    obj = ObjWriter("torus", f"Torus around y, radii {major} and {minor}, {segments} x {sides} "
                    "quads, UV layout u around the ring, v around the tube.")

    def corner(s, t):
        phi = 2 * math.pi * s / segments
        theta = 2 * math.pi * t / sides
        radius = major + minor * math.cos(theta)
        position = (radius * math.cos(phi), minor * math.sin(theta), -radius * math.sin(phi))
        return obj.corner(position, (s / segments, t / sides))

    for s in range(segments):
        for t in range(sides):
            obj.triangle(corner(s, t), corner(s + 1, t), corner(s + 1, t + 1))
            obj.triangle(corner(s, t), corner(s + 1, t + 1), corner(s, t + 1))
    return obj


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else root / "host" / "models"
    folder.mkdir(parents=True, exist_ok=True)
    for make in (cube, sphere, torus):
        obj = make()
        obj.write(folder / f"{obj.name}.obj")
        print(f"{obj.name}.obj: {len(obj.positions)} positions, {len(obj.uvs)} UVs, "
              f"{len(obj.triangles)} triangles")


if __name__ == "__main__":
    main()
