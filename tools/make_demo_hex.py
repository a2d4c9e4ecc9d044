#!/usr/bin/env python3
"""Writes data/projects/demo.hex: 8 KiB of a recognisable pattern for the demo project, as Intel HEX.

The data is a greeting followed by a counting pattern, so that a read-back or a hex view shows at a
glance whether it arrived. Run it again only to change the demo data.
"""
import os

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "data", "projects", "demo.hex")


def record(addr, kind, data):
    body = bytes([len(data), (addr >> 8) & 0xFF, addr & 0xFF, kind]) + data
    return ":" + (body + bytes([(-sum(body)) & 0xFF])).hex().upper() + "\r\n"


def main():
    data = b"Tarvelix demo data\n" + bytes((i * 7 + 3) & 0xFF for i in range(8192 - 19))
    lines = [record(a, 0, data[a:a + 16]) for a in range(0, len(data), 16)]
    with open(OUT, "w", newline="") as f:
        f.write("".join(lines) + ":00000001FF\r\n")


if __name__ == "__main__":
    main()
