#!/usr/bin/env python3
"""Decodes an 8- or 16-bit PNG with nothing but zlib, independently of the program's own reader.

Usage: pngpixels.py IN.png OUT.rgba
Prints "width height colour_type bit_depth" and writes the pixels as RGBA, 8 bits per channel.
"""
import struct
import sys
import zlib


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    if pa <= pb and pa <= pc:
        return a
    return b if pb <= pc else c


def main(src, dst):
    data = open(src, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        sys.exit("not a PNG")
    pos, idat, header, palette, trns = 8, b"", None, None, None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if zlib.crc32(kind + body) != struct.unpack(">I", data[pos + 8 + length:pos + 12 + length])[0]:
            sys.exit("bad CRC in " + kind.decode())
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"PLTE":
            palette = body
        elif kind == b"tRNS":
            trns = body
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, ctype, _, _, interlace = header
    if interlace:
        sys.exit("interlaced PNG not supported")
    channels = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[ctype]
    bpp = max(1, channels * depth // 8)
    stride = (width * channels * depth + 7) // 8
    raw = zlib.decompress(idat)
    rows, prev = [], bytearray(stride)
    for y in range(height):
        f = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - bpp] if i >= bpp else 0
            b = prev[i]
            c = prev[i - bpp] if i >= bpp else 0
            if f == 1:
                line[i] = (line[i] + a) & 255
            elif f == 2:
                line[i] = (line[i] + b) & 255
            elif f == 3:
                line[i] = (line[i] + (a + b) // 2) & 255
            elif f == 4:
                line[i] = (line[i] + paeth(a, b, c)) & 255
        rows.append(line)
        prev = line
    out = bytearray()
    step = depth // 8 if depth >= 8 else None
    for line in rows:
        for x in range(width):
            if depth == 8 or depth == 16:
                px = [line[(x * channels + k) * step] for k in range(channels)]
            else:
                sys.exit("bit depth %d not supported" % depth)
            if ctype == 0:
                out += bytes([px[0]] * 3 + [255])
            elif ctype == 2:
                out += bytes(px + [255])
            elif ctype == 3:
                i = px[0]
                alpha = trns[i] if trns and i < len(trns) else 255
                out += palette[i * 3:i * 3 + 3] + bytes([alpha])
            elif ctype == 4:
                out += bytes([px[0]] * 3 + [px[1]])
            else:
                out += bytes(px)
    open(dst, "wb").write(out)
    print(width, height, ctype, depth)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
