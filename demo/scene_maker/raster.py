"""Sun raster files: eight big-endian words, then rows from the top, unpadded, little-endian pixels."""

import struct

import numpy as np

MAGIC = 0x59A66A95
_PIXELS = {(16, 1): "<i2", (8, 1): "u1", (32, 1): "<i4", (32, 99): "<f4", (64, 98): "<f8"}  # (depth, type word)


def write_int16(path, heights):
    rows, columns = heights.shape
    with open(path, "wb") as file:
        file.write(struct.pack(">8I", MAGIC, columns, rows, 16, rows * columns * 2, 1, 0, 0))
        file.write(np.ascontiguousarray(heights, dtype="<i2").tobytes())


def read(path):
    """The image as an array of shape (rows, columns). Raises ValueError unless header and size agree."""
    with open(path, "rb") as file:
        magic, columns, rows, depth, length, kind, _, map_length = struct.unpack(">8I", file.read(32))
        data = file.read()[map_length:]
    if magic != MAGIC or (depth, kind) not in _PIXELS:
        raise ValueError("%s: magic %08x, depth %d, type %d" % (path, magic, depth, kind))
    if not length == len(data) == rows * columns * depth // 8:
        raise ValueError("%s: length word %d, %d bytes for %d x %d" % (path, length, len(data), columns, rows))
    return np.frombuffer(data, dtype=_PIXELS[depth, kind]).reshape(rows, columns)
