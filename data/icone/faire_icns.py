#!/usr/bin/env python3
"""Builds Brindex.icns, the macOS application icon, and the PNG icons of the Linux desktop's
theme, from the project's own artwork.

Renders brindex.svg at every size the format holds (ImageMagick's convert) and packs the PNG
images into the ICNS container: the 'icns' magic, the total length, then one entry per image,
each a four-letter type, its length (header included) and the PNG bytes.
"""
import os
import struct
import subprocess
import sys
import tempfile

ICI = os.path.dirname(os.path.abspath(__file__))

# Entry type and pixel size.
ENTREES = [
    ("icp4", 16), ("icp5", 32), ("ic11", 32), ("ic12", 64), ("ic07", 128), ("ic13", 256),
    ("ic08", 256), ("ic14", 512), ("ic09", 512), ("ic10", 1024),
]


def rendre(svg, taille, sortie):
    subprocess.run(["convert", "-background", "none", "-density", "384", svg,
                    "-resize", "%dx%d" % (taille, taille), "-depth", "8",
                    "-strip", "-define", "png:exclude-chunks=date,time",
                    "PNG32:" + sortie], check=True)


def main():
    svg = os.path.join(ICI, "brindex.svg")
    corps = b""
    with tempfile.TemporaryDirectory() as dossier:
        for type_, taille in ENTREES:
            png = os.path.join(dossier, "%s.png" % type_)
            rendre(svg, taille, png)
            with open(png, "rb") as f:
                donnees = f.read()
            corps += type_.encode("ascii") + struct.pack(">I", 8 + len(donnees)) + donnees
    with open(os.path.join(ICI, "Brindex.icns"), "wb") as f:
        f.write(b"icns" + struct.pack(">I", 8 + len(corps)) + corps)
    # The sizes of the hicolor theme, each drawn from the artwork rather than scaled from another.
    for taille in (16, 24, 32, 48, 64, 128, 256, 512):
        rendre(svg, taille, os.path.join(ICI, "brindex-%d.png" % taille))
    return 0


if __name__ == "__main__":
    sys.exit(main())
