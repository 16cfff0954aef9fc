"""Procedural textures from Python: graph documents, renders into numpy arrays, point sampling.

The module loads the Texture plug-in like the ``texture`` command does: the library named by the
environment variable ``TEXTURE_PLUGIN``, otherwise ``libTexture.so`` beside this package.

Images are numpy arrays of shape ``(height, width, 4)``, float32, channels red, green, blue and
opacity, **row 0 at the top** (numpy's image convention; the host itself counts rows from the
bottom). Every bad value raises ``ValueError`` with the message the ``texture`` command prints for
the same fault in a document, and a failed edit changes nothing.
"""

import json as _json
import operator as _operator

import numpy as _np

from . import _native

__all__ = ["Document", "ImageWriter", "Node", "load", "nodes", "read_image", "write_image"]


def nodes():
    """The node catalogue, as ``texture nodes --json`` lists it: one dict per node type.

    Plug-in types come first, then the host's. Each has ``type`` (the display name used by
    :meth:`Document.add`), ``class``, ``code``, ``category``, ``library``, ``inputs`` and
    ``outputs`` (``name`` and ``plug_type``: 8 image, 9 texture) and ``attributes``: ``name``,
    ``kind`` (number, bool, choice, colour, point, frame, mesh, text), ``default``,
    ``description``, and ``min``, ``max``, ``step``, ``decimals`` for numbers, points and
    frames, ``items`` for choices.
    """
    return _json.loads(_native.catalogue_json())


def load(path):
    """Loads a graph document (``*.texture.json``); ``ValueError`` names the file and the place."""
    document = Document()
    document._native.load(str(path))
    return document


def read_image(path):
    """Reads a picture file as a float32 array (height, width, 4), row 0 at the top.

    One channel gives grey, two grey and opacity; a missing opacity is 1; integer formats scale
    to 0...1.
    """
    return _native.read_image(str(path))


def write_image(path, pixels, bits=8, compression="fast"):
    """Writes a (height, width, 4 or 3) array, row 0 at the top, by the file's extension.

    ``.exr`` keeps float32 values exactly; ``.png`` and ``.tif`` clamp to 0...1 and store
    ``bits`` (8 or 16) per channel. ``compression`` is lossless whatever it is, as the
    command's ``--compression``: ``"none"``, ``"fast"``, ``"small"`` or a zip level 0 to 9.
    The file is replaced atomically.
    """
    _native.write_image(str(path), _np.asarray(pixels, dtype=_np.float32), int(bits),
                        str(compression))


class ImageWriter:
    """A picture file written block by block, never holding the whole image.

    ``ImageWriter(path, width, height, bits=0, tiled=True, tile_side=256, compression="fast")``:
    the format follows the extension; ``bits`` 0 means 32-bit float for EXR and 8 bits for PNG
    and TIFF (16 is half float for EXR); ``compression`` as in :func:`write_image`. A tiled EXR or TIFF file stores each tile as soon as its pixels are
    in; a scanline file keeps rows until the rows above them came. Every pixel must be written
    exactly once, in any order. The file appears under its name only when closed complete::

        with texture.ImageWriter("big.exr", 8192, 8192) as out:
            out.write(x, y, block)   # (rows, columns, 4) array, (x, y) its top-left pixel
    """

    def __init__(self, path, width, height, bits=0, tiled=True, tile_side=256,
                 compression="fast"):
        self._native = _native.ImageWriter(str(path), int(width), int(height), int(bits),
                                           bool(tiled), int(tile_side), str(compression))

    def write(self, x, y, pixels):
        """Writes a block of pixels whose top-left pixel is (x, y), rows counted from the top."""
        self._native.write(int(x), int(y), _np.asarray(pixels, dtype=_np.float32))

    def close(self):
        """Completes the file; ``ValueError`` when pixels are missing."""
        self._native.close()

    def __enter__(self):
        return self

    def __exit__(self, kind, value, traceback):
        try:
            if kind is None:
                self.close()
        finally:
            self._native = None  # an unfinished file is removed


def _plain(value):
    """A document value (JSON types) for a Python, numpy or tuple value."""
    if isinstance(value, _np.ndarray):
        return value.tolist()
    if isinstance(value, _np.generic):
        return value.item()
    if isinstance(value, (tuple, list)):
        return [_plain(item) for item in value]
    return value


def _encode(attributes):
    try:
        return _json.dumps({name: _plain(value) for name, value in attributes.items()})
    except TypeError as error:
        raise ValueError(f"attribute values must be numbers, booleans, strings or lists: {error}")


class Node:
    """One node of a document: ``node["seed"] = 7`` sets an attribute, ``node["seed"]`` reads it.

    Values take the document's forms: numbers, booleans, a choice's item text (or index),
    colours ``[r, g, b, opacity]``, points ``[x, y]``, frames ``[x, y, width, height]``, meshes
    ``[model, submesh, flag]``.
    """

    def __init__(self, document, node_id):
        self._document = document
        self.id = node_id

    @property
    def type(self):
        """The node type's display name."""
        return self._document._native.node_type(self.id)

    def attributes(self):
        """Every attribute's current value, in declaration order."""
        return _json.loads(self._document._native.get(self.id))

    def __getitem__(self, name):
        values = self.attributes()
        if name not in values:
            raise KeyError(f"node '{self.id}' ({self.type}) has no attribute '{name}'")
        return values[name]

    def __setitem__(self, name, value):
        self.update({name: value})

    def update(self, values=(), **attributes):
        """Sets several attributes at once; when one is bad, none is set."""
        merged = dict(values, **attributes)
        self._document._native.set(self.id, _encode(merged))

    def __repr__(self):
        return f"<texture.Node '{self.id}' ({self.type})>"


class Document:
    """A graph document: nodes, links between their plugs, and the display node.

    Build one with :func:`load` or ``Document()`` and :meth:`add`; documents pickle as their
    document text, so they travel to worker processes.
    """

    def __init__(self):
        self._native = _native.Document()

    def add(self, type, id=None, **attributes):
        """Adds a node of ``type`` (display or class name, see :func:`nodes`) and returns it.

        Without ``id`` the node is named after the type's first word ("perlin", "perlin-2"...).
        The attributes are set with the node; when one is bad no node is added.
        """
        node_id = self._native.add(type, id or "", _encode(attributes))
        return Node(self, node_id)

    def link(self, from_plug, to_plug):
        """Links an output to an input: ``doc.link("noise.texture", "out.texture")``.

        The input may be a regular input or an attribute; linking it again replaces its link.
        """
        self._native.link(from_plug, to_plug)

    def __getitem__(self, node_id):
        self._native.node_type(node_id)  # ValueError for an unknown id
        return Node(self, node_id)

    def __contains__(self, node_id):
        return node_id in self._native.node_ids()

    def __iter__(self):
        return (Node(self, node_id) for node_id in self._native.node_ids())

    @property
    def display(self):
        """The id of the node :meth:`render` renders by default (empty when unset)."""
        return self._native.display

    @display.setter
    def display(self, node_id):
        self._native.display = node_id

    def save(self, path):
        """Writes the document atomically; an existing file is untouched on failure."""
        self._native.save(str(path))

    def render(self, node=None, size=None, window=None, threads=None, tileable=False):
        """Renders a node with an image output (default: the display node).

        Returns a float32 array of shape (height, width, 4), **row 0 at the top**, with the
        same bits as the ``texture`` command's EXR output. A Render 2D node renders its texture
        rectangle at ``size`` = (width, height) pixels instead of its frame's size, and
        ``window`` = (x0, y0, x1, y1) gives only the pixels [x0, x1) x [y0, y1) of that image
        (rows counted from the top), each the same as in the whole image. ``threads`` is the
        number of worker threads (default: one per processor); the bits never depend on it.
        ``tileable=True`` makes a Render 2D image repeat with its texture rectangle as the
        period: every noise fits whole cells in it, so copies placed side by side meet with no
        seam and no blending (``RuntimeError`` names a node that cannot repeat).

        The array owns the render's own buffer (no copy) up to 4 M pixels; larger renders
        go in bands of rows into a fresh array. The interpreter lock is released while
        rendering and Ctrl-C stops a banded render between bands. ``RuntimeError`` names every
        node that failed.
        """
        node = node or self._native.display
        if not node:
            raise ValueError("the document names no display node; pass node=ID")
        return self._native.render(node, _pair(size), _window(window), _threads(threads),
                                   bool(tileable))

    def sample(self, node, points, threads=None, runs=True):
        """Evaluates a texture node at arbitrary 3D points.

        ``points`` is an (N, 3) array of x, y, z (float64); the result is an (N, 4) float32
        array of red, green, blue, opacity, each bit for bit the texture's value at that point.
        The points go through the engine in whole runs on ``threads`` threads; ``runs=False``
        evaluates them one call per point instead (slow: the reference the runs are checked
        against). Ctrl-C stops it between batches.
        """
        return self._native.sample(node, points, _threads(threads), bool(runs))

    def __getstate__(self):
        import os
        import tempfile

        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "document.texture.json")
            self.save(path)
            with open(path, encoding="utf-8") as file:
                return {"text": file.read()}

    def __setstate__(self, state):
        import os
        import tempfile

        self._native = _native.Document()
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "document.texture.json")
            with open(path, "w", encoding="utf-8") as file:
                file.write(state["text"])
            self._native.load(path)

    def __repr__(self):
        return f"<texture.Document of {len(self._native.node_ids())} nodes>"


def _pair(size):
    if size is None:
        return None
    if isinstance(size, int) or isinstance(size, _np.integer):
        return (int(size), int(size))
    width, height = size
    return (_operator.index(width), _operator.index(height))


def _window(window):
    if window is None:
        return None
    x0, y0, x1, y1 = (_operator.index(v) for v in window)
    return (x0, y0, x1, y1)


def _threads(threads):
    if threads is None:
        return 0
    if threads < 1:
        raise ValueError(f"threads must be 1 or more, got {threads}")
    return int(threads)


def __getattr__(name):
    # texture.dask needs Dask; it is imported on first use only.
    if name == "dask":
        import importlib

        return importlib.import_module(".dask", __name__)
    raise AttributeError(f"module 'texture' has no attribute '{name}'")
