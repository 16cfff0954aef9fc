import json

import numpy as np
import pytest

import texture
from conftest import run_command


def test_catalogue_is_the_command_listing():
    import subprocess
    from conftest import BIN

    listed = subprocess.run([str(BIN / "texture"), "nodes", "--json"], capture_output=True,
                            text=True, check=True).stdout
    catalogue = texture.nodes()
    assert catalogue == json.loads(listed)
    perlin = next(t for t in catalogue if t["type"] == "Perlin Texture")
    octaves = next(a for a in perlin["attributes"] if a["name"] == "octaves")
    assert (octaves["min"], octaves["max"]) == (0, 8) and octaves["description"]


def test_edits_read_back_and_survive_save_and_load(tmp_path, perlin_document):
    doc = perlin_document
    doc["noise"]["seed"] = 7
    doc["noise"].update(color_b=(1, 0.5, np.float32(0.25), 1), lacunarity=np.float64(2.5))
    extra = doc.add("Voronoi Texture")
    assert extra.id == "voronoi" and doc.add("Voronoi Texture").id == "voronoi-2"
    assert doc["noise"]["seed"] == 7
    assert doc["noise"]["color_b"] == [1, 0.5, 0.25, 1]
    doc.save(tmp_path / "a.texture.json")
    again = texture.load(tmp_path / "a.texture.json")
    assert [n.id for n in again] == ["noise", "out", "voronoi", "voronoi-2"]
    assert again.display == "out"
    for node in doc:
        assert again[node.id].attributes() == node.attributes()
    assert np.array_equal(again.render(), doc.render())


BAD_EDITS = [
    (lambda d: d["noise"].__setitem__("octaves", 9),
     "node 'noise' (Perlin Texture): attribute 'octaves': must be between 0 and 8"),
    (lambda d: d["noise"].__setitem__("octaves", "many"),
     "node 'noise' (Perlin Texture): attribute 'octaves' (number): expected a number, got a string"),
    (lambda d: d["noise"].update(seed=3, frequency=-1),
     "node 'noise' (Perlin Texture): attribute 'frequency': must be between"),
    (lambda d: d["noise"].__setitem__("colour", 1),
     "node 'noise' (Perlin Texture): unknown attribute 'colour'"),
    (lambda d: d["out"].__setitem__("frame", [0, 0, 10]),
     "node 'out' (Render 2D Texture): attribute 'frame' (frame): expected a frame"),
    (lambda d: d.add("Perlin Texture", "p", seed=1, octaves=-1),
     "node 'p' (Perlin Texture): attribute 'octaves': must be between 0 and 8"),
    (lambda d: d.add("Perlin Texture", "noise"), "node 'noise': duplicate id"),
    (lambda d: d.add("Perlin Textur"),
     "node 'perlin': unknown node type 'Perlin Textur' (close matches: 'Perlin Texture')"),
    (lambda d: d.link("noise.texture", "out.nothing"),
     "node 'out' (Render 2D Texture) has no input or attribute 'nothing'"),
    (lambda d: d.link("out.image", "noise.texture"),
     "node 'noise' (Perlin Texture) has no input or attribute 'texture'"),
    (lambda d: d.link("ghost.texture", "out.texture"), "unknown node id 'ghost'"),
    (lambda d: d.render(size=(0, 5)), "size must be (width, height) of at least 1 x 1"),
    (lambda d: d.render("noise"), "node 'noise' (Perlin Texture) has no image output"),
]


@pytest.mark.parametrize("edit, message", BAD_EDITS)
def test_bad_edits_raise_the_document_message_and_change_nothing(perlin_document, edit, message):
    doc = perlin_document
    before = {node.id: node.attributes() for node in doc}
    with pytest.raises(ValueError) as raised:
        edit(doc)
    assert str(raised.value).startswith(message)
    assert {node.id: node.attributes() for node in doc} == before


def test_a_link_that_closes_a_cycle_is_refused(perlin_document):
    doc = perlin_document
    doc.add("Texture Transform", "a")
    doc.add("Texture Transform", "b")
    doc.link("a.texture", "b.texture")
    with pytest.raises(ValueError, match=r"cycle \(.*a.*b.*a\)"):
        doc.link("b.texture", "a.texture")


@pytest.mark.parametrize("text, place", [
    ('{"format": "texture-graph", "version": 1, "nodes": [{"id": "n", "type": "Perlin Texture",'
     ' "attributes": {"octaves": 9}}]}', "node 'n' (Perlin Texture): attribute 'octaves'"),
    ('{"format": "texture-graph", "version": 1, "nodes": [', "line 1, column"),
])
def test_load_errors_are_the_command_messages(tmp_path, text, place):
    path = tmp_path / "bad.texture.json"
    path.write_text(text)
    with pytest.raises(ValueError) as raised:
        texture.load(path)
    code, stderr = run_command("check", path)
    assert code == 2 and place in str(raised.value)
    assert stderr.strip() == "error: " + str(raised.value)


def test_a_failed_node_is_a_runtime_error_naming_it(perlin_document):
    doc = perlin_document
    doc.add("Image File", "photo", file="/no/such/picture.png")
    with pytest.raises(RuntimeError, match="node 'photo' \\(Image File\\).*/no/such/picture.png"):
        doc.render("photo")


def test_documents_pickle_as_their_text(perlin_document):
    import pickle

    copy = pickle.loads(pickle.dumps(perlin_document))
    assert copy.display == "out" and copy["noise"].attributes() == perlin_document["noise"].attributes()


def test_the_installed_package_finds_its_plug_in(tmp_path):
    import os
    import subprocess
    import sys

    build = os.environ.get("TEXTURE_BUILD_DIR")
    if not build:
        pytest.skip("needs the build tree (run through ctest)")
    subprocess.run(["cmake", "--install", build, "--prefix", str(tmp_path)], check=True,
                   capture_output=True)
    site = next(tmp_path.glob("lib/python3*/dist-packages"))
    env = {"PATH": os.environ["PATH"], "PYTHONPATH": str(site)}
    code = "import texture; print(texture._native.plugin_path(), len(texture.nodes()))"
    out = subprocess.run([sys.executable, "-c", code], env=env, cwd=tmp_path, check=True,
                         capture_output=True, text=True).stdout.split()
    assert out == [str(site / "texture" / "libTexture.so"), str(len(texture.nodes()))]
