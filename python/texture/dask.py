"""Renders on Dask: chunked plane renders and parameter sweeps.

Blocks are exact windows of the plane image, so a chunked render computed on any scheduler,
a ``distributed.Client`` included, has the same bits as :meth:`texture.Document.render`.
Workers need the ``texture`` package importable and the document's files (images, models) at
the same paths. Use worker processes of one thread each: a worker renders its blocks one at a
time (each document's engine is locked while it renders), and the processes run side by side.
"""

import itertools
import os
import threading
import types

import dask
import dask.array as da
import numpy as np

import texture

__all__ = ["render", "store_image", "sweep"]

_local = threading.local()


def _document(text):
    """The document of `text`, loaded once per worker thread (renders reuse its engine)."""
    cache = getattr(_local, "documents", None)
    if cache is None:
        cache = _local.documents = {}
    if text not in cache:
        if len(cache) >= 4:
            cache.pop(next(iter(cache)))
        document = texture.Document.__new__(texture.Document)
        document.__setstate__({"text": text})
        cache[text] = document
    return cache[text]


def _render_block(text, node, size, threads, tileable, block_info=None):
    (y0, y1), (x0, x1), _ = block_info[None]["array-location"]
    return _document(text).render(
        node, size=size, window=(x0, y0, x1, y1), threads=threads, tileable=tileable
    )


def _splits(length, chunk):
    return tuple(min(chunk, length - start) for start in range(0, length, chunk))


def render(doc, node, size, chunks=4096, threads=1, tileable=False):
    """A lazy (height, width, 4) float32 dask array of a Render 2D node at ``size``.

    ``size`` is (width, height) in pixels (or one number for a square); ``chunks`` the block
    size in pixels, one number or (rows, columns). Each block renders its window on
    ``threads`` threads in whichever process runs it. Row 0 is the top row. ``tileable``
    as in ``Document.render``.
    """
    width, height = texture._pair(size)
    rows, columns = (chunks, chunks) if np.isscalar(chunks) else chunks
    text = doc.__getstate__()["text"]
    node = node or doc.display
    return da.map_blocks(
        _render_block,
        text,
        node,
        (width, height),
        threads,
        bool(tileable),
        chunks=(_splits(height, int(rows)), _splits(width, int(columns)), (4,)),
        dtype=np.float32,
        meta=np.empty((0, 0, 0), dtype=np.float32),
        name=f"texture-render-{dask.base.tokenize(text, node, width, height, tileable)}",
    )


def _block_origins(array):
    """The top-left pixel (x, y) of every block, in the order of ``array.to_delayed()``."""
    tops = np.cumsum((0,) + array.chunks[0][:-1])
    lefts = np.cumsum((0,) + array.chunks[1][:-1])
    return [(int(x), int(y)) for y in tops for x in lefts]


def store_image(array, path, bits=0, tiled=True, tile_side=256, compression="fast"):
    """Writes a (height, width, 4) dask array into a picture file block by block.

    Blocks are computed on the current scheduler and written as they arrive (see
    :class:`texture.ImageWriter` for ``bits``, ``tiled``, ``tile_side`` and ``compression``), so the whole image
    is never in memory: with a ``distributed.Client`` each block is written as soon as any
    worker has it, otherwise one row of blocks is computed at a time.
    """
    height, width = array.shape[:2]
    blocks = list(array.to_delayed().ravel())
    origins = dict(zip((block.key for block in blocks), _block_origins(array)))
    # The scheduler dask would use here: a distributed client's, or a local one.
    client = getattr(dask.base.get_scheduler(), "__self__", None)
    if type(client).__name__ != "Client":
        client = None
    with texture.ImageWriter(path, width, height, bits, tiled, tile_side, compression) as writer:
        if client is not None:
            from distributed import as_completed

            futures = client.compute(blocks)
            for future, pixels in as_completed(futures, with_results=True):
                writer.write(*origins[future.key], pixels)
        else:
            columns = len(array.chunks[1])
            for first in range(0, len(blocks), columns):
                row = blocks[first:first + columns]
                for block, pixels in zip(row, dask.compute(*row)):
                    writer.write(*origins[block.key], pixels)
    return os.fspath(path)


def _combinations(parameters):
    names = list(parameters)
    for name in names:
        if name.count(".") != 1:
            raise ValueError(f"sweep parameter '{name}' must look like \"NODE.ATTRIBUTE\"")
    for values in itertools.product(*(list(parameters[name]) for name in names)):
        yield dict(zip(names, values))


def _fields(index, combination):
    """Format fields of a file pattern: {index} and {NODE.ATTRIBUTE}."""
    nodes = {}
    for name, value in combination.items():
        node, attribute = name.split(".")
        nodes.setdefault(node, {})[attribute] = value
    fields = {node: types.SimpleNamespace(**values) for node, values in nodes.items()}
    fields["index"] = index
    return fields


def _apply(document, combination):
    by_node = {}
    for name, value in combination.items():
        node, attribute = name.split(".")
        by_node.setdefault(node, {})[attribute] = value
    for node, values in by_node.items():
        document[node].update(values)


def _render_variation(text, combination, node, path, size, bits, threads):
    document = texture.Document.__new__(texture.Document)
    document.__setstate__({"text": text})
    _apply(document, combination)
    texture.write_image(path, document.render(node, size=size, threads=threads), bits=bits)
    return path


def sweep(doc, parameters, pattern, node=None, size=None, bits=8, threads=1):
    """Renders every combination of attribute values and writes one file per combination.

    ``parameters`` maps "NODE.ATTRIBUTE" to the values to try, for example
    ``{"noise.seed": range(100)}``; several entries give their product. ``pattern`` names the
    files with ``{index}`` and the parameters as fields: ``"out/seed-{noise.seed:03d}.png"``.
    Every value is checked before anything renders (``ValueError`` as for a single edit);
    the renders run on the current Dask scheduler (a ``distributed.Client`` when one is
    active) and the written paths are returned in order.
    """
    text = doc.__getstate__()["text"]
    node = node or doc.display
    combinations = list(_combinations(parameters))
    checker = texture.Document.__new__(texture.Document)
    checker.__setstate__({"text": text})
    paths = []
    for index, combination in enumerate(combinations):
        _apply(checker, combination)
        paths.append(pattern.format_map(_fields(index, combination)))
    for folder in {os.path.dirname(path) for path in paths if os.path.dirname(path)}:
        os.makedirs(folder, exist_ok=True)
    size = texture._pair(size)
    tasks = [
        dask.delayed(_render_variation, pure=False)(text, c, node, p, size, bits, threads)
        for c, p in zip(combinations, paths)
    ]
    return list(dask.compute(*tasks))
