"""Fails unless the file is a PNG whose pixels are not all one colour.

Decodes 8-bit RGB and RGBA images (what Chromium's screenshots are) with the standard
library alone: the chunks, zlib, and the five row filters.
"""
import struct
import sys
import zlib


def pixels(path):
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise SystemExit(f"{path}: not a PNG file")
    offset, header, compressed = 8, None, b""
    while offset < len(data):
        length, kind = struct.unpack(">I4s", data[offset:offset + 8])
        body = data[offset + 8:offset + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            compressed += body
        offset += 12 + length
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace != 0:
        raise SystemExit(f"{path}: expected an 8-bit RGB or RGBA PNG, not depth {depth} colour type {colour}")
    channels = 3 if colour == 2 else 4
    stride = width * channels
    raw = zlib.decompress(compressed)
    previous = bytearray(stride)
    rows = []
    for y in range(height):
        kind = raw[y * (stride + 1)]
        row = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for x in range(stride):
            left = row[x - channels] if x >= channels else 0
            up = previous[x]
            corner = previous[x - channels] if x >= channels else 0
            if kind == 1:
                row[x] = (row[x] + left) & 0xFF
            elif kind == 2:
                row[x] = (row[x] + up) & 0xFF
            elif kind == 3:
                row[x] = (row[x] + (left + up) // 2) & 0xFF
            elif kind == 4:
                estimate = left + up - corner
                nearest = min((abs(estimate - left), 0, left), (abs(estimate - up), 1, up),
                              (abs(estimate - corner), 2, corner))[2]
                row[x] = (row[x] + nearest) & 0xFF
        rows.append(bytes(row))
        previous = row
    return width, height, channels, rows


def main():
    path = sys.argv[1]
    width, height, channels, rows = pixels(path)
    colours = set()
    for row in rows[::8]:
        for x in range(0, len(row), channels * 8):
            colours.add(row[x:x + 3])
    # A rendered report has text in several colours on its background; a blank or failed
    # render is one or two flat colours.
    if len(colours) < 8:
        raise SystemExit(f"{path}: {width}x{height} but only {len(colours)} colours: the page looks blank")
    print(f"{path}: {width}x{height}, {len(colours)} colours sampled")


if __name__ == "__main__":
    main()
