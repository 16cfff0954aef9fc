import numpy as np
import pytest

import texture
from conftest import EXAMPLES, bits, run_command


@pytest.mark.parametrize("example", ["hello-perlin", "warp", "rust-over-bricks", "bake-cube"])
def test_render_equals_the_command_exr(tmp_path, example):
    path = EXAMPLES / f"{example}.texture.json"
    exr = tmp_path / "out.exr"
    assert run_command("render", path, "-o", exr, "-q")[0] == 0
    rendered = texture.load(path).render(threads=1)
    assert rendered.dtype == np.float32 and rendered.shape[2] == 4
    assert np.array_equal(bits(rendered), bits(texture.read_image(exr)))


def test_large_renders_go_in_bands_with_the_same_bits(tmp_path, perlin_document):
    doc = perlin_document
    doc["out"]["frame"] = [0, 0, 2100, 2050]
    doc.save(tmp_path / "big.texture.json")
    assert run_command("render", tmp_path / "big.texture.json", "-o", tmp_path / "big.exr", "-q")[0] == 0
    assert np.array_equal(bits(doc.render()), bits(texture.read_image(tmp_path / "big.exr")))


def test_the_array_is_the_render_buffer_with_row_0_at_the_top(perlin_document):
    doc = perlin_document
    first, second = doc.render(), doc.render()
    assert not first.flags.owndata and np.shares_memory(first, second)
    # The 96 x 64 image spans x in [0, 2] and y in [0, 1]; the top row is the highest y.
    corners = np.array([[1 / 96, 1 - 0.5 / 64, 0], [1 / 96, 0.5 / 64, 0]])
    top_left, bottom_left = doc.sample("noise", corners)
    assert np.allclose(first[0, 0], top_left, atol=1e-5)
    assert np.allclose(first[-1, 0], bottom_left, atol=1e-5)
    assert not np.allclose(top_left, bottom_left, atol=1e-3)


WINDOWS = [(0, 0, 96, 64), (10, 5, 50, 40), (95, 63, 96, 64), (0, 32, 96, 33)]


@pytest.mark.parametrize("window", WINDOWS)
def test_windows_are_the_same_pixels_of_the_whole_image(perlin_document, window):
    x0, y0, x1, y1 = window
    whole = perlin_document.render(size=(96, 64))
    part = perlin_document.render(size=(96, 64), window=window, threads=2)
    assert np.array_equal(bits(part), bits(whole[y0:y1, x0:x1]))


def test_size_renders_the_same_rectangle_at_another_resolution(perlin_document):
    doc = perlin_document
    doc["out"]["frame"] = [0, 0, 200, 150]
    assert np.array_equal(bits(doc.render(size=(200, 150))), bits(doc.render()))
    assert doc.render(size=(30, 20)).shape == (20, 30, 4)


def test_images_round_trip_through_files(tmp_path, perlin_document):
    image = perlin_document.render()
    texture.write_image(tmp_path / "a.exr", image)
    assert np.array_equal(bits(texture.read_image(tmp_path / "a.exr")), bits(image))
    texture.write_image(tmp_path / "a.png", image[:, :, :3])
    eight = texture.read_image(tmp_path / "a.png")
    assert np.abs(eight[:, :, :3] - np.clip(image[:, :, :3], 0, 1)).max() <= 0.5 / 255 + 1e-6
    assert np.all(eight[:, :, 3] == 1)
    with pytest.raises(ValueError, match="no image format is known for '.xyz'"):
        texture.write_image(tmp_path / "a.xyz", image)


def test_nodes_without_sizes_or_windows_refuse_them(tmp_path, perlin_document):
    texture.write_image(tmp_path / "a.png", np.zeros((4, 6, 4), np.float32))
    doc = perlin_document
    doc.add("Image File", "photo", file=str(tmp_path / "a.png"))
    assert doc.render("photo").shape == (4, 6, 4)
    with pytest.raises(ValueError, match=r"'photo' \(Image File\) rendered 6 x 4 pixels instead "
                                         r"of the 3 x 2 asked for"):
        doc.render("photo", window=(0, 0, 3, 2))


def test_ctrl_c_stops_a_banded_render(perlin_document):
    import _thread
    import threading

    doc = perlin_document
    doc["out"]["frame"] = [0, 0, 4096, 4096]
    threading.Timer(0.05, _thread.interrupt_main).start()
    with pytest.raises(KeyboardInterrupt):
        doc.render(threads=1)


def test_files_written_block_by_block_equal_the_one_piece_file(tmp_path, perlin_document):
    image = perlin_document.render()
    origins = [(64, 32), (0, 0), (32, 32), (0, 32), (64, 0), (32, 0)]
    for name, tiled in [("tiled.exr", True), ("rows.png", False)]:
        with texture.ImageWriter(tmp_path / name, 96, 64, tiled=tiled, tile_side=32,
                                 compression="none") as out:
            for x, y in origins:
                out.write(x, y, image[y:y + 32, x:x + 32])
        texture.write_image(tmp_path / f"whole-{name}", image, compression="small")
        assert np.array_equal(bits(texture.read_image(tmp_path / name)),
                              bits(texture.read_image(tmp_path / f"whole-{name}")))
        assert (tmp_path / name).stat().st_size > (tmp_path / f"whole-{name}").stat().st_size
    with pytest.raises(ValueError):
        with texture.ImageWriter(tmp_path / "partial.exr", 96, 64) as out:
            out.write(0, 0, image[:32])
    assert not any(path.name.startswith((".partial", "partial")) for path in tmp_path.iterdir())


def test_tileable_renders_wrap_the_texture_and_refuse_graphs_that_cannot(perlin_document):
    perlin_document["noise"]["frequency"] = 4.3  # snapped to whole cells of the 2 x 1 range
    plain = perlin_document.render()
    tiled = perlin_document.render(tileable=True)
    assert not np.array_equal(tiled, plain)
    assert np.array_equal(perlin_document.render(), plain)
    # Across the wrap the image steps no more than between interior neighbours.
    inside = np.abs(np.diff(tiled, axis=1)).mean()
    assert np.abs(tiled[:, -1] - tiled[:, 0]).mean() < 2 * inside
    perlin_document.add("Texture Transform", "turn", rotation_z=30)
    perlin_document.link("noise.texture", "turn.texture")
    perlin_document.link("turn.texture", "out.texture")
    with pytest.raises(RuntimeError, match="'Texture Transform' cannot repeat: its rotation"):
        perlin_document.render(tileable=True)
