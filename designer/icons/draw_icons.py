#!/usr/bin/env python3
"""Draws the widget-box icons of the Designer plugin (32x32 PNG) into this folder.

Plain Python (zlib) so that it runs anywhere; rerun it after changing a drawing.
"""
import os
import struct
import zlib

SIZE = 32
INK = (40, 60, 110, 255)
FIELD = (255, 255, 255, 255)
LABEL = (150, 160, 180, 255)
TICK = (20, 130, 60, 255)
BAR = (70, 110, 190, 255)


class Canvas:
    def __init__(self):
        self.px = [[(0, 0, 0, 0)] * SIZE for _ in range(SIZE)]

    def fill(self, x0, y0, x1, y1, colour):
        for y in range(max(y0, 0), min(y1, SIZE)):
            for x in range(max(x0, 0), min(x1, SIZE)):
                self.px[y][x] = colour

    def box(self, x0, y0, x1, y1, inside, edge=INK):
        self.fill(x0, y0, x1, y1, edge)
        self.fill(x0 + 1, y0 + 1, x1 - 1, y1 - 1, inside)

    def triangle(self, cx, cy, half, direction, colour):
        # direction -1 points left, +1 right, 0 down
        for d in range(half + 1):
            span = half - d
            for s in range(-span, span + 1):
                if direction == 0:
                    x, y = cx + s, cy + d
                else:
                    x, y = cx + direction * d, cy + s
                if 0 <= x < SIZE and 0 <= y < SIZE:
                    self.px[y][x] = colour

    def tick(self, x, y, colour=TICK):
        for i in range(3):
            self.fill(x + i, y + i, x + i + 2, y + i + 2, colour)
        for i in range(5):
            self.fill(x + 3 + i, y + 3 - i, x + 5 + i, y + 5 - i, colour)

    def png(self, path):
        raw = b"".join(b"\0" + bytes(c for p in row for c in p) for row in self.px)

        def chunk(kind, data):
            body = kind + data
            return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

        header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)
        with open(path, "wb") as out:
            out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                      + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def text_rows(c, top, rows, arrow=False):
    for r in range(rows):
        y = top + r * 9
        c.fill(2, y + 2, 11, y + 5, LABEL)
        c.box(13, y, 30, y + 7, FIELD)
        if arrow:
            c.fill(24, y + 1, 29, y + 6, LABEL)
            c.triangle(26, y + 3, 2, 0, INK)


def check_row(c, x, y, ticked):
    c.box(x, y, x + 9, y + 9, FIELD)
    if ticked:
        c.tick(x + 1, y + 2)
    c.fill(x + 12, y + 3, x + 26, y + 6, LABEL)


def navigator(c):
    c.box(1, 6, 31, 26, (225, 232, 245, 255))
    c.fill(2, 7, 30, 13, BAR)
    c.triangle(5, 10, 2, -1, FIELD)
    c.triangle(26, 10, 2, 1, FIELD)
    c.fill(9, 9, 22, 11, FIELD)
    for i in range(4):
        c.box(3 + i * 7, 16, 9 + i * 7, 24, (200, 210, 230, 255))


DRAWINGS = {
    "mvplxrecs.png": navigator,
    "mvname.png": lambda c: text_rows(c, 3, 3),
    "mvvitext.png": lambda c: text_rows(c, 3, 3, arrow=True),
    "mvchecks.png": lambda c: (check_row(c, 2, 3, True), check_row(c, 2, 13, False),
                               check_row(c, 2, 23 - 1, True)),
    "mvchkwithtxt.png": lambda c: (check_row(c, 2, 1, True), text_rows(c, 13, 2)),
}

if __name__ == "__main__":
    here = os.path.dirname(os.path.abspath(__file__))
    for name, draw in DRAWINGS.items():
        canvas = Canvas()
        draw(canvas)
        canvas.png(os.path.join(here, name))
