#!/usr/bin/env python3
"""Draws the program's icons into PNG files beside this script (standard library only).

tallyport.png  program icon: a ledger sheet on a blue tile with an arrow through it
import.png     button picture: an arrow into a tray
export.png     button picture: an arrow out of a tray
hicolor/NxN/apps/tallyport.png  the program icon at the sizes desktops look for (installed)
Run it again after changing a shape; the PNGs are committed.
"""
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write_png(path, size, pixels):
    raw = b"".join(b"\x00" + bytes(row) for row in pixels)

    def chunk(tag, data):
        body = tag + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw, 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


def render(size, layers, samples=4):
    """layers: list of (inside(x, y) -> bool over the unit square, (r, g, b, a))."""
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            acc = [0.0, 0.0, 0.0, 0.0]
            for sy in range(samples):
                for sx in range(samples):
                    x = (px + (sx + 0.5) / samples) / size
                    y = (py + (sy + 0.5) / samples) / size
                    colour = (0, 0, 0, 0)
                    for inside, c in layers:
                        if inside(x, y):
                            colour = c
                    a = colour[3] / 255.0
                    acc[0] += colour[0] * a
                    acc[1] += colour[1] * a
                    acc[2] += colour[2] * a
                    acc[3] += a
            n = samples * samples
            alpha = acc[3] / n
            if alpha > 0:
                rgb = [min(255, int(round(acc[i] / acc[3]))) for i in range(3)]
            else:
                rgb = [0, 0, 0]
            row.extend(rgb + [int(round(alpha * 255))])
        rows.append(row)
    return rows


def rounded_rect(x0, y0, x1, y1, r):
    def inside(x, y):
        if not (x0 <= x <= x1 and y0 <= y <= y1):
            return False
        cx = min(max(x, x0 + r), x1 - r)
        cy = min(max(y, y0 + r), y1 - r)
        return (x - cx) ** 2 + (y - cy) ** 2 <= r * r
    return inside


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x <= x1 and y0 <= y <= y1


def polygon(points):
    def inside(x, y):
        hit = False
        n = len(points)
        for i in range(n):
            (xa, ya), (xb, yb) = points[i], points[(i + 1) % n]
            if (ya > y) != (yb > y) and x < (xb - xa) * (y - ya) / (yb - ya) + xa:
                hit = not hit
        return hit
    return inside


def arrow_right(x0, x1, yc, shaft, head_w, head_len):
    return polygon([(x0, yc - shaft), (x1 - head_len, yc - shaft), (x1 - head_len, yc - head_w),
                    (x1, yc), (x1 - head_len, yc + head_w), (x1 - head_len, yc + shaft),
                    (x0, yc + shaft)])


def arrow_down(y0, y1, xc, shaft, head_w, head_len):
    return polygon([(xc - shaft, y0), (xc + shaft, y0), (xc + shaft, y1 - head_len),
                    (xc + head_w, y1 - head_len), (xc, y1), (xc - head_w, y1 - head_len),
                    (xc - shaft, y1 - head_len)])


def arrow_up(y0, y1, xc, shaft, head_w, head_len):
    return polygon([(xc - shaft, y1), (xc + shaft, y1), (xc + shaft, y0 + head_len),
                    (xc + head_w, y0 + head_len), (xc, y0), (xc - head_w, y0 + head_len),
                    (xc - shaft, y0 + head_len)])


BLUE = (31, 94, 168, 255)
DARK = (20, 60, 112, 255)
WHITE = (255, 255, 255, 255)
PAPER = (246, 248, 252, 255)
LINE = (150, 170, 200, 255)
ORANGE = (236, 140, 36, 255)
GREEN = (46, 140, 72, 255)
TRAY = (90, 100, 115, 255)


ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256)


def program_icon():
    layers = [
        (rounded_rect(0.03, 0.03, 0.97, 0.97, 0.16), DARK),
        (rounded_rect(0.05, 0.05, 0.95, 0.95, 0.14), BLUE),
        (rect(0.22, 0.14, 0.70, 0.86), PAPER),
    ]
    for i in range(6):
        y = 0.27 + i * 0.1
        layers.append((rect(0.29, y, 0.63, y + 0.025), LINE))
    layers.append((arrow_right(0.36, 0.90, 0.60, 0.065, 0.16, 0.2), ORANGE))
    return layers


def tray(colour):
    return [(rect(0.12, 0.70, 0.88, 0.80), colour), (rect(0.12, 0.52, 0.22, 0.80), colour),
            (rect(0.78, 0.52, 0.88, 0.80), colour)]


def import_icon():
    return tray(TRAY) + [(arrow_down(0.08, 0.72, 0.5, 0.08, 0.22, 0.26), GREEN)]


def export_icon():
    return tray(TRAY) + [(arrow_up(0.08, 0.70, 0.5, 0.08, 0.22, 0.26), ORANGE)]


if __name__ == "__main__":
    write_png(os.path.join(HERE, "tallyport.png"), 64, render(64, program_icon()))
    write_png(os.path.join(HERE, "import.png"), 32, render(32, import_icon()))
    write_png(os.path.join(HERE, "export.png"), 32, render(32, export_icon()))
    for size in ICON_SIZES:
        folder = os.path.join(HERE, "hicolor", "%dx%d" % (size, size), "apps")
        os.makedirs(folder, exist_ok=True)
        # Large sizes have pixels enough to smooth the edges with fewer samples.
        samples = 4 if size <= 64 else 2
        write_png(os.path.join(folder, "tallyport.png"), size, render(size, program_icon(), samples))
