#!/usr/bin/env python3
"""Adds the tile images and the content stamp to the generated drawing and
gzips it. Usage: finish.py <drawing.json> <out.json.gz> <tiles-dir>"""
import base64
import gzip
import hashlib
import json
import random
import struct
import sys
import zlib


def png(width, height, rows):
    """Grey-and-alpha PNG from rows of (grey, alpha) byte pairs."""
    raw = b"".join(b"\x00" + bytes(r) for r in rows)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", width, height, 8, 4, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def grain(grey, seed):
    """A sparse paper grain: short fibres at fixed random places, the same
    every run, so the committed file only changes when the design does."""
    size = 500
    rnd = random.Random(seed)
    alpha = [[0] * size for _ in range(size)]
    for _ in range(2600):
        x, y = rnd.randrange(size), rnd.randrange(size)
        length = rnd.choice((2, 3, 4, 6))
        horizontal = rnd.random() < 0.5
        strength = rnd.choice((90, 140, 200, 255))
        for k in range(length):
            px, py = (x + k) % size if horizontal else x, y if horizontal else (y + k) % size
            alpha[py][px] = max(alpha[py][px], strength)
    rows = []
    for y in range(size):
        row = []
        for x in range(size):
            row += (grey, alpha[y][x])
        rows.append(row)
    return png(size, size, rows)


def replace(node, tiles):
    if isinstance(node, dict):
        return {k: replace(v, tiles) for k, v in node.items()}
    if isinstance(node, list):
        return [replace(v, tiles) for v in node]
    if isinstance(node, str) and node in tiles:
        return tiles[node]
    return node


def main():
    src, dst, tiles_dir = sys.argv[1:4]
    light, dark = grain(40, 7), grain(255, 11)
    with open(f"{tiles_dir}/tile-light.png", "wb") as f:
        f.write(light)
    with open(f"{tiles_dir}/tile-dark.png", "wb") as f:
        f.write(dark)
    tiles = {"@tile-light": base64.b64encode(light).decode(), "@tile-dark": base64.b64encode(dark).decode()}
    with open(src, encoding="utf-8") as f:
        doc = replace(json.load(f), tiles)
    doc["md5"] = ""
    body = json.dumps(doc, ensure_ascii=False, separators=(",", ":"))
    doc["md5"] = hashlib.md5(body.encode()).hexdigest()
    text = json.dumps(doc, ensure_ascii=False, separators=(",", ":")).encode()
    with open(dst, "wb") as out:
        with gzip.GzipFile(filename="0002-code.json", mode="wb", fileobj=out, compresslevel=9, mtime=0) as gz:
            gz.write(text)
    print(f"{dst}: {len(text)} bytes of JSON")


if __name__ == "__main__":
    main()
