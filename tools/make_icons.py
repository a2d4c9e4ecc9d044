#!/usr/bin/env python3
"""Renders the icon sets (0 small, 1 large) from the SVG sources in src/app/icons-svg/ and writes
src/app/icons.qrc.

Run it after changing a drawing; the PNGs and the .qrc are committed, so building never needs the
renderer. It needs rsvg-convert (Debian package librsvg2-bin).
"""
import os
import subprocess

HERE = os.path.dirname(os.path.abspath(__file__))
APP = os.path.join(HERE, "..", "src", "app")
SVG = os.path.join(APP, "icons-svg")
SIZES = {0: 32, 1: 48}


def main():
    names = sorted(f[:-4] for f in os.listdir(SVG) if f.endswith(".svg"))
    files = []
    for icon_set, size in SIZES.items():
        out = os.path.join(APP, "images", str(icon_set))
        os.makedirs(out, exist_ok=True)
        for name in names:
            png = os.path.join(out, name + ".png")
            subprocess.check_call(["rsvg-convert", "-w", str(size), "-h", str(size), "-o", png,
                                   os.path.join(SVG, name + ".svg")])
            files.append("images/%d/%s.png" % (icon_set, name))
    with open(os.path.join(APP, "icons.qrc"), "w", encoding="utf-8") as f:
        f.write("<RCC>\n    <qresource prefix=\"/\">\n")
        for name in files:
            f.write("        <file>%s</file>\n" % name)
        f.write("    </qresource>\n</RCC>\n")


if __name__ == "__main__":
    main()
