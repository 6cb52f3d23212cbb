#!/usr/bin/env python3
"""Draws the pictures of the language libraries: the logo and the three two-sided pictures.

    draw_bitmaps.py             writes the .bmp files beside this script
    draw_bitmaps.py FOLDER      writes them there
    draw_bitmaps.py --check     compares them with those beside this script; exit code 1 when one differs

8-bit bitmaps, since only a colour table can be made transparent: the entry of the first pixel, GROUND,
becomes the colour of the dialog. Shapes are drawn with SAMPLES x SAMPLES points a pixel; edges are blended
with GROUND, which lies between the dialog colours in use.
"""
import math
import struct
import sys
from pathlib import Path

SAMPLES = 4
GROUND = (232, 230, 227)
NAVY, TEAL, GREY, PAPER, BACK = (27, 50, 95), (20, 138, 150), (92, 98, 108), (255, 255, 254), (205, 219, 235)


class Stroke:
    """A line of round ends through points."""

    def __init__(self, points, width):
        self.points, self.radius = points, width / 2

    def holds(self, x, y):
        for (ax, ay), (bx, by) in zip(self.points, self.points[1:]):
            dx, dy = bx - ax, by - ay
            length = dx * dx + dy * dy
            t = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / length)) if length else 0.0
            if math.hypot(x - ax - t * dx, y - ay - t * dy) <= self.radius:
                return True
        return False

    def box(self):
        xs, ys = zip(*self.points)
        return min(xs) - self.radius, min(ys) - self.radius, max(xs) + self.radius, max(ys) + self.radius


class Polygon:
    def __init__(self, points):
        self.points = points

    def holds(self, x, y):
        inside = False
        for (ax, ay), (bx, by) in zip(self.points, self.points[1:] + self.points[:1]):
            if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
                inside = not inside
        return inside

    def box(self):
        xs, ys = zip(*self.points)
        return min(xs), min(ys), max(xs), max(ys)


def arc(cx, cy, rx, ry, start, end):
    """Points of an ellipse from one angle to another, in degrees clockwise from the right."""
    steps = max(8, int(abs(end - start) / 6))
    angles = [math.radians(start + (end - start) * i / steps) for i in range(steps + 1)]
    return [(cx + rx * math.cos(a), cy + ry * math.sin(a)) for a in angles]


class Picture:
    def __init__(self, width, height):
        self.width, self.height = width, height
        self.points = [[GROUND] * (width * SAMPLES) for _ in range(height * SAMPLES)]

    def draw(self, colour, *shapes):
        for shape in shapes:
            left, top, right, bottom = (v * SAMPLES for v in shape.box())
            for y in range(max(0, int(top) - 1), min(self.height * SAMPLES, int(bottom) + 2)):
                for x in range(max(0, int(left) - 1), min(self.width * SAMPLES, int(right) + 2)):
                    if shape.holds((x + 0.5) / SAMPLES, (y + 0.5) / SAMPLES):
                        self.points[y][x] = colour

    def pixel(self, x, y):
        total = [0, 0, 0]
        for j in range(SAMPLES):
            for i in range(SAMPLES):
                for c in range(3):
                    total[c] += self.points[y * SAMPLES + j][x * SAMPLES + i][c]
        # Blends are rounded to steps of 4, which keeps the colour table short; whole colours stay exact.
        first = self.points[y * SAMPLES][x * SAMPLES]
        if total == [first[c] * SAMPLES * SAMPLES for c in range(3)]:
            return first
        return tuple(min(255, (t // (SAMPLES * SAMPLES) + 2) // 4 * 4 + 1) for t in total)

    def bitmap(self):
        """The bytes of a bottom-up 8-bit .bmp file; entry 0 of its colour table is GROUND."""
        table, rows = {GROUND: 0}, []
        for y in reversed(range(self.height)):
            row = bytes(table.setdefault(self.pixel(x, y), len(table)) for x in range(self.width))
            rows.append(row + bytes(-self.width % 4))
        if len(table) > 256 or rows[0][0] != 0:
            sys.exit("more than 256 colours, or the first pixel is not the ground")
        colours = b"".join(struct.pack("<BBBx", b, g, r) for r, g, b in table)
        bits = b"".join(rows)
        offset = 14 + 40 + len(colours)
        return (struct.pack("<2sIHHI", b"BM", offset + len(bits), 0, 0, offset)
                + struct.pack("<IiiHHIIiiII", 40, self.width, self.height, 1, 8, 0, len(bits), 3780, 3780,
                              len(table), 0)
                + colours + bits)


# Letters on a grid: x from 0, y 0 at the base line, 1 at the height of an x, 1.5 at that of a capital.
# Each: width, strokes as lists of points.
def bowl(cx, start, end, r=0.5):
    return arc(cx, 0.5, r, 0.5, start, end)


LETTERS = {
    "C": (1.22, [arc(0.75, 0.75, 0.75, 0.75, 48, 312)]),
    "O": (1.5, [arc(0.75, 0.75, 0.75, 0.75, 0, 360)]),
    "o": (1.0, [bowl(0.5, 0, 360)]),
    "c": (0.86, [bowl(0.5, 48, 312)]),
    "r": (0.5, [[(0, 0), (0, 1)], [(0, 0.55)] + arc(0.45, 0.55, 0.45, 0.45, 180, 90)[1:]]),
    "v": (0.84, [[(0, 1), (0.42, 0), (0.84, 1)]]),
    "a": (1.0, [bowl(0.5, 0, 360), [(1, 1), (1, 0)]]),
    "n": (0.875, [[(0, 0), (0, 1)],
                  [(0, 0.5625)] + arc(0.4375, 0.5625, 0.4375, 0.4375, 180, 0) + [(0.875, 0)]]),
    "t": (0.56, [[(0.25, 1.38), (0.25, 0.3)] + arc(0.55, 0.3, 0.3, 0.3, 180, 270), [(0, 1), (0.56, 1)]]),
    "i": (0.0, [[(0, 0), (0, 1)], [(0, 1.42), (0, 1.43)]]),
    "s": (0.66, [arc(0.33, 0.745, 0.31, 0.255, 30, 270) + arc(0.33, 0.245, 0.33, 0.245, 90, -150)[1:]]),
    "p": (1.0, [bowl(0.5, 0, 360), [(0, 1), (0, -0.5)]]),
    " ": (0.35, []),
}


def letter_shapes(text, left, base, size, width):
    """Strokes of a line of text; size is the height of an x in pixels. Letters start at whole pixels from
    left, so that their stems are sharp. Angles of the grid run upwards."""
    shapes, x = [], left
    for letter in text:
        advance, strokes = LETTERS[letter]
        for points in strokes:
            shapes.append(Stroke([(x + px * size, base - py * size) for px, py in points], width))
        x += round(advance * size + 0.4 * size)
    return shapes


def logo():
    picture = Picture(140, 40)
    # A lens of two arcs between an upright and a bent ray.
    lens = arc(31, 20, 22, 22, 132, 228) + arc(1.6, 20, 22, 22, -48, 48)
    picture.draw(TEAL, Stroke([(2.5, 11), (16.3, 11), (30, 20)], 1.4), Stroke([(2.5, 20), (30, 20)], 1.4),
                 Stroke([(2.5, 29), (16.3, 29), (30, 20)], 1.4))
    picture.draw(NAVY, Polygon(lens))
    picture.draw(PAPER, Stroke(arc(29, 20, 16.6, 16.6, 155, 205), 1.1))
    picture.draw(NAVY, *letter_shapes("Corvantis", 42, 21, 8, 2))
    picture.draw(TEAL, *letter_shapes("Optics", 41.5, 34.5, 6, 1.4))
    return picture


def text_lines(left, right, top, count, step=4.0):
    rows = [top + i * step + 0.5 for i in range(count)]
    ends = [right if i % 3 != 2 else (left + right) / 2 for i in range(count)]
    return [Stroke([(left, y), (end, y)], 1.1) for y, end in zip(rows, ends)]


def sheet(picture, corners, fill):
    corners = [(x + 0.5, y + 0.5) for x, y in corners]
    picture.draw(fill, Polygon(corners))
    picture.draw(NAVY, Stroke(corners + corners[:1], 1.3))


def arrow(picture, curve, spread=4.2):
    """A bent arrow along points, with its head at the last."""
    picture.draw(TEAL, Stroke(curve, 1.9))
    (bx, by), (ax, ay) = curve[-1], curve[-3]
    angle = math.atan2(by - ay, bx - ax)
    wings = [(bx - spread * math.cos(angle + s), by - spread * math.sin(angle + s)) for s in (0.62, -0.62)]
    picture.draw(TEAL, Stroke([wings[0], (bx, by), wings[1]], 1.9))


def one_side():
    picture = Picture(48, 48)
    sheet(picture, [(10, 4), (30, 4), (38, 12), (38, 44), (10, 44)], PAPER)
    sheet(picture, [(30, 4), (38, 12), (30, 12)], BACK)
    picture.draw(GREY, *text_lines(15, 33, 18, 6))
    return picture


def long_edge():
    """The leaf turns about the left, long edge, as in a book."""
    picture = Picture(48, 48)
    sheet(picture, [(16, 13), (40, 13), (40, 45), (16, 45)], PAPER)
    picture.draw(GREY, *text_lines(29, 37, 19, 6))
    sheet(picture, [(16, 13), (26, 7.5), (26, 39.5), (16, 45)], BACK)
    picture.draw(NAVY, Stroke([(16, 13.5), (16, 45.5)], 2))
    arrow(picture, arc(20, 12, 16, 8.5, -12, -150))
    return picture


def short_edge():
    """The leaf turns about the upper, short edge, as on a pad."""
    picture = Picture(48, 48)
    sheet(picture, [(5, 15), (31, 15), (31, 46), (5, 46)], PAPER)
    picture.draw(GREY, *text_lines(9, 27, 33, 3))
    sheet(picture, [(5, 15), (31, 15), (36, 27), (10, 27)], BACK)
    picture.draw(NAVY, Stroke([(5.5, 15), (31.5, 15)], 2))
    arrow(picture, arc(33, 20, 9, 14, 60, -105))
    return picture


PICTURES = {"logo.bmp": logo, "dupsimple.bmp": one_side, "duplong.bmp": long_edge, "dupshort.bmp": short_edge}


def main(arguments):
    here = Path(__file__).resolve().parent
    if arguments == ["--check"]:
        stale = [name for name, draw in PICTURES.items() if (here / name).read_bytes() != draw().bitmap()]
        for name in stale:
            print(f"{name} is not what draw_bitmaps.py draws", file=sys.stderr)
        return 1 if stale else 0
    folder = Path(arguments[0]) if arguments else here
    for name, draw in PICTURES.items():
        (folder / name).write_bytes(draw().bitmap())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
