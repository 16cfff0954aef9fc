import numpy as np
import pytest

import texture
from conftest import bits

GRAPHS = {
    "perlin": [("Perlin Texture", "t", {"octaves": 4, "seed": 3})],
    "voronoi": [("Voronoi Texture", "t", {"frequency": 3})],
    "turbulent ridges": [("Ridged Multi Texture", "r", {}), ("Texture Turbulence", "t", {})],
    "blend": [("Billow Texture", "a", {}), ("Checkerboard Texture", "b", {}),
              ("Texture Blend", "t", {})],
}
LINKS = {"turbulent ridges": [("r.texture", "t.texture")],
         "blend": [("a.texture", "t.tex_fg"), ("b.texture", "t.tex_bg"), ("a.texture", "t.tex_mask")]}


def graph(name):
    doc = texture.Document()
    for type_name, node_id, attributes in GRAPHS[name]:
        doc.add(type_name, node_id, **attributes)
    for link in LINKS.get(name, []):
        doc.link(*link)
    return doc


@pytest.mark.parametrize("name", GRAPHS)
@pytest.mark.parametrize("threads", [1, 2])
def test_runs_equal_the_one_point_path(name, threads):
    rng = np.random.default_rng(5)
    # A count that is no multiple of the run length, points near zero and far out.
    points = np.concatenate([rng.uniform(-2, 2, (40000, 3)), rng.uniform(-1e5, 1e5, (1001, 3))])
    doc = graph(name)
    sampled = doc.sample("t", points, threads=threads)
    assert sampled.shape == (len(points), 4) and sampled.dtype == np.float32
    assert np.array_equal(bits(sampled), bits(doc.sample("t", points, runs=False)))


def test_points_of_any_layout_give_the_same_colours():
    doc = graph("perlin")
    points = np.random.default_rng(1).uniform(-3, 3, (300, 3))
    expected = doc.sample("t", points)
    fortran = np.asfortranarray(points)
    assert np.array_equal(bits(doc.sample("t", fortran)), bits(expected))
    assert np.array_equal(bits(doc.sample("t", points.astype(np.float32))),
                          bits(doc.sample("t", points.astype(np.float32).astype(np.float64))))
    assert doc.sample("t", np.empty((0, 3))).shape == (0, 4)


@pytest.mark.parametrize("points, node, message", [
    (np.zeros((5, 2)), "t", r"points must be an array of shape \(N, 3\), got shape \(5, 2\)"),
    (np.zeros(3), "t", r"got shape \(3\)"),
    (np.zeros((1, 3)), "missing", "unknown node id 'missing'"),
])
def test_bad_requests(points, node, message):
    with pytest.raises(ValueError, match=message):
        graph("perlin").sample(node, points)


def test_render_nodes_have_no_texture_to_sample(perlin_document):
    with pytest.raises(ValueError, match="node 'out' \\(Render 2D Texture\\) has no texture output"):
        perlin_document.sample("out", np.zeros((1, 3)))
