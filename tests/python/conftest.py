import os
import pathlib
import subprocess

import pytest

SOURCE = pathlib.Path(os.environ.get("TEXTURE_SOURCE_DIR", pathlib.Path(__file__).parents[2]))
BIN = pathlib.Path(os.environ.get("TEXTURE_BIN_DIR", SOURCE / "build" / "release" / "bin"))
EXAMPLES = SOURCE / "examples"


def run_command(*arguments):
    """The texture command's exit code and stderr."""
    done = subprocess.run([str(BIN / "texture"), *map(str, arguments)], capture_output=True,
                          text=True, timeout=120)
    return done.returncode, done.stderr


@pytest.fixture
def perlin_document():
    import texture

    doc = texture.Document()
    doc.add("Perlin Texture", "noise", frequency=4, octaves=3)
    doc.add("Render 2D Texture", "out", frame=[0, 0, 96, 64], range=[2, 1])
    doc.link("noise.texture", "out.texture")
    doc.display = "out"
    return doc


def bits(array):
    """Pixels as integers, so that comparisons are bit for bit (NaN and -0 included)."""
    import numpy

    return numpy.ascontiguousarray(array, dtype=numpy.float32).view(numpy.uint32)
