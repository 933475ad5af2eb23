"""Signed distances, in pixels: negative inside. All work on whole arrays; y grows downward."""

import numpy as np


def circle(x, y, radius):
    return np.hypot(x, y) - radius


def ring(x, y, radius, width):
    return np.abs(np.hypot(x, y) - radius) - width / 2


def box(x, y, half_width, half_height, corner=0.0):
    dx = np.abs(x) - (half_width - corner)
    dy = np.abs(y) - (half_height - corner)
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - corner


def segment(x, y, a, b, width):
    """A stroke with round ends."""
    ax, ay = a
    bx, by = b[0] - ax, b[1] - ay
    t = np.clip(((x - ax) * bx + (y - ay) * by) / (bx * bx + by * by), 0, 1)
    return np.hypot(x - ax - t * bx, y - ay - t * by) - width / 2


def stroke(x, y, points, width):
    """A chain of strokes. `width` is one number, or one per point for a tapering stroke."""
    widths = np.broadcast_to(np.asarray(width, dtype=float), (len(points),))
    result = np.full(np.shape(x), np.inf)
    for i in range(len(points) - 1):
        (ax, ay), (bx, by) = points[i], points[i + 1]
        dx, dy = bx - ax, by - ay
        t = np.clip(((x - ax) * dx + (y - ay) * dy) / max(dx * dx + dy * dy, 1e-9), 0, 1)
        distance = np.hypot(x - ax - t * dx, y - ay - t * dy)
        result = np.minimum(result, distance - (widths[i] + t * (widths[i + 1] - widths[i])) / 2)
    return result


def polygon(x, y, points):
    """Any simple polygon."""
    best = np.full(np.shape(x), np.inf)
    inside = np.zeros(np.shape(x), dtype=bool)
    count = len(points)
    for i in range(count):
        ax, ay = points[i]
        bx, by = points[(i + 1) % count]
        dx, dy = bx - ax, by - ay
        t = np.clip(((x - ax) * dx + (y - ay) * dy) / max(dx * dx + dy * dy, 1e-9), 0, 1)
        best = np.minimum(best, np.hypot(x - ax - t * dx, y - ay - t * dy))
        if ay != by:
            crosses = (ay > y) != (by > y)
            inside ^= crosses & (x < (y - ay) / (by - ay) * dx + ax)
    return np.where(inside, -best, best)


def regular(corners, radius, turn=0.0):
    """The corners of a regular polygon, the first one straight up."""
    angles = turn + 2 * np.pi * np.arange(corners) / corners
    return [(radius * np.sin(a), -radius * np.cos(a)) for a in angles]


def star(x, y, radius, tips, inner):
    outer = regular(tips, radius)
    dents = regular(tips, radius * inner, np.pi / tips)
    return polygon(x, y, [point for pair in zip(outer, dents) for point in pair])


def turned(x, y, angle):
    """Coordinates in a frame rotated clockwise by `angle` radians."""
    c, s = np.cos(angle), np.sin(angle)
    return c * x + s * y, -s * x + c * y


def curve(points, steps=24):
    """A smooth curve through the points (Catmull-Rom), as a list of points."""
    p = [np.array(q, dtype=float) for q in points]
    p = [2 * p[0] - p[1]] + p + [2 * p[-1] - p[-2]]
    result = []
    for i in range(1, len(p) - 2):
        for t in np.arange(steps) / steps:
            a, b, c, d = p[i - 1 : i + 3]
            q = 0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t**2 + (3 * b - a - 3 * c + d) * t**3)
            result.append((q[0], q[1]))
    result.append((p[-2][0], p[-2][1]))
    return result
