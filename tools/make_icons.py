#!/usr/bin/env python3
"""Draws the application's icon sets (0 small, 1 large) as PNG files and writes src/app/icons.qrc.

The icons are simple geometric pictograms defined below in a unit square, so both sets come from one
definition. Run it after changing a shape; the PNGs and the .qrc are committed.
"""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "src", "app", "images")
SIZES = {0: 24, 1: 40}


def png(path, size, pixel):
    rows = b""
    for y in range(size):
        rows += b"\x00" + b"".join(bytes(pixel((x + 0.5) / size, (y + 0.5) / size)) for x in range(size))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n")
        f.write(chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)))
        f.write(chunk(b"IDAT", zlib.compress(rows, 9)))
        f.write(chunk(b"IEND", b""))


CLEAR = (0, 0, 0, 0)


def triangle(x, y):
    return 0.25 <= x <= 0.8 and abs(y - 0.5) <= (0.8 - x) * 0.55


def shape(name):
    green, red, blue, grey, amber = (30, 140, 60, 255), (190, 40, 40, 255), (40, 90, 170, 255), (90, 90, 90, 255), (200, 140, 20, 255)
    shapes = {
        "run": lambda x, y: green if triangle(x, y) else CLEAR,
        "run_all": lambda x, y: green if triangle(x, y) or triangle(x + 0.15, y) else CLEAR,
        "stop": lambda x, y: red if 0.22 <= x <= 0.78 and 0.22 <= y <= 0.78 else CLEAR,
        "pause": lambda x, y: amber if 0.2 <= y <= 0.8 and (0.25 <= x <= 0.42 or 0.58 <= x <= 0.75) else CLEAR,
        "ok": lambda x, y: green if (x - 0.5) ** 2 + (y - 0.5) ** 2 <= 0.12 else CLEAR,
        "error": lambda x, y: red if (x - 0.5) ** 2 + (y - 0.5) ** 2 <= 0.12 else CLEAR,
        "new": lambda x, y: grey if 0.25 <= x <= 0.75 and 0.15 <= y <= 0.85 and not (0.3 < x < 0.7 and 0.2 < y < 0.8) else CLEAR,
        "open": lambda x, y: amber if 0.15 <= x <= 0.85 and 0.3 <= y <= 0.8 else CLEAR,
        "save": lambda x, y: blue if 0.18 <= x <= 0.82 and 0.18 <= y <= 0.82 and not (0.32 < x < 0.68 and 0.18 <= y < 0.4) else CLEAR,
        "app": lambda x, y: (grey if 0.25 <= x <= 0.75 and 0.25 <= y <= 0.75 else
                             (blue if (0.1 <= x < 0.25 or 0.75 < x <= 0.9) and int(y * 10) % 2 == 1 and 0.3 < y < 0.7 else CLEAR)),
    }
    return shapes[name]


NAMES = ["run", "run_all", "stop", "pause", "ok", "error", "new", "open", "save", "app"]


def main():
    entries = []
    for s, size in SIZES.items():
        os.makedirs(os.path.join(OUT, str(s)), exist_ok=True)
        for n in NAMES:
            png(os.path.join(OUT, str(s), n + ".png"), size, shape(n))
            entries.append("        <file>images/%d/%s.png</file>" % (s, n))
    with open(os.path.join(HERE, "..", "src", "app", "icons.qrc"), "w") as f:
        f.write("<RCC>\n    <qresource prefix=\"/\">\n" + "\n".join(entries) + "\n    </qresource>\n</RCC>\n")


if __name__ == "__main__":
    main()
