import dask
import numpy as np
import pytest

import texture
import texture.dask
from conftest import bits

distributed = pytest.importorskip("distributed")


@pytest.fixture(scope="module")
def client():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster) as connected:
            yield connected


def test_chunked_render_on_a_cluster_equals_the_in_process_render(client, perlin_document, tmp_path):
    size = (300, 200)
    lazy = texture.dask.render(perlin_document, "out", size, chunks=(64, 128))
    assert lazy.shape == (200, 300, 4) and lazy.numblocks == (4, 3, 1)
    expected = perlin_document.render(size=size)
    assert np.array_equal(bits(lazy.compute()), bits(expected))
    for scheduler in [client, None]:
        path = tmp_path / f"tiles-{scheduler is None}.exr"
        with dask.config.set(scheduler="threads" if scheduler is None else client):
            texture.dask.store_image(lazy, path, tiled=True, tile_side=32)
        assert np.array_equal(bits(texture.read_image(path)), bits(expected))


def test_sweep_writes_one_file_per_value(client, perlin_document, tmp_path):
    pattern = str(tmp_path / "sweep" / "seed-{noise.seed:02d}-{index}.exr")
    paths = texture.dask.sweep(perlin_document, {"noise.seed": range(3)}, pattern)
    assert paths == [pattern.format_map({"noise": type("N", (), {"seed": s}), "index": s})
                     for s in range(3)]
    for seed, path in enumerate(paths):
        perlin_document["noise"]["seed"] = seed
        assert np.array_equal(bits(texture.read_image(path)), bits(perlin_document.render()))


def test_sweep_checks_every_value_before_rendering(perlin_document, tmp_path):
    with pytest.raises(ValueError, match="attribute 'octaves': must be between 0 and 8"):
        texture.dask.sweep(perlin_document, {"noise.octaves": [2, 9]}, str(tmp_path / "{index}.png"))
    assert not any(tmp_path.iterdir())
