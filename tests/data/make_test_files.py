#!/usr/bin/env python3
"""Writes the small hand-made picture files the platform tests read. Run from this folder."""
import struct
import zlib


def png_chunk(kind, payload):
    return struct.pack(">I", len(payload)) + kind + payload + struct.pack(">I", zlib.crc32(kind + payload))


def huge_header_png():
    # Declares 20000 x 20000 RGBA pixels but carries one short row: only the size check may refuse it.
    ihdr = struct.pack(">IIBBBBB", 20000, 20000, 8, 6, 0, 0, 0)
    idat = zlib.compress(bytes(64))
    return b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", ihdr) + png_chunk(b"IDAT", idat) + png_chunk(b"IEND", b"")


def stripes_gif(width=48, height=32):
    # 16 colours from red to blue, in vertical stripes three pixels wide.
    palette = b"".join(bytes((255 - i * 17, 0, i * 17)) for i in range(16))
    pixels = [(x // 3) % 16 for y in range(height) for x in range(width)]
    # LZW without compression: literal codes only, with a clear code before the table would make
    # the code size grow.
    min_code_size = 4
    clear, end = 1 << min_code_size, (1 << min_code_size) + 1
    codes = []
    for i, p in enumerate(pixels):
        if i % ((1 << min_code_size) - 2) == 0:
            codes.append(clear)
        codes.append(p)
    codes.append(end)
    bits, nbits, out = 0, 0, bytearray()
    for c in codes:
        bits |= c << nbits
        nbits += min_code_size + 1
        while nbits >= 8:
            out.append(bits & 0xFF)
            bits >>= 8
            nbits -= 8
    if nbits:
        out.append(bits & 0xFF)
    blocks = b"".join(bytes((len(out[i:i + 255]),)) + out[i:i + 255] for i in range(0, len(out), 255))
    screen = struct.pack("<HHBBB", width, height, 0xF3, 0, 0)
    image = b"\x2c" + struct.pack("<HHHHB", 0, 0, width, height, 0)
    return b"GIF89a" + screen + palette + image + bytes((min_code_size,)) + blocks + b"\x00\x3b"


if __name__ == "__main__":
    with open("huge-header.png", "wb") as f:
        f.write(huge_header_png())
    with open("stripes.gif", "wb") as f:
        f.write(stripes_gif())
