"""The rules of steering, implemented independently, for comparison with the program's reports."""

import math
import struct

TOP_SPEED = 300.0
WORLD = 100000.0


def f32(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def centre(canvas):
    """The centre of a canvas with this size in pixels, in twips, each coordinate rounded down."""
    return (canvas[0] * 15) // 2, (canvas[1] * 15) // 2


def bearing(canvas, pixel):
    """Angle and quadrant of a canvas pixel seen from the centre. 350 make a full circle."""
    cx, cy = centre(canvas)
    x, y = pixel[0] * 15, pixel[1] * 15
    fx, fy = float(x - cx), float(cy - y)
    if fy == 0:
        fy = f32(0.0001)
    angle = f32(abs(f32(math.atan(fx / fy)) * 350.0 / 6.283185308))
    if x > cx and y < cy:
        return angle, 1
    if x > cx and y > cy:
        return angle, 4
    if x < cx and y < cy:
        return angle, 2
    if x < cx and y > cy:
        return angle, 3
    return angle, 1  # on the axes through the centre, on either side


def clamped(speed):
    return max(-TOP_SPEED, min(TOP_SPEED, speed))


def velocity(canvas, pixel, factor=1.0):
    """World units per frame of a player who steers by this pixel, at the design pace."""
    cx, cy = centre(canvas)
    distance = math.hypot(pixel[0] * 15 - cx, pixel[1] * 15 - cy)
    s = min(distance / cy, 1.0) * TOP_SPEED * factor
    angle, quadrant = bearing(canvas, pixel)
    steer = round(angle)
    t = math.tan(3.14159 / 180 * (steer % 45))
    h = t * 0.5 * s if steer < 45 else (t + 1.0) * s * 0.5
    x = h if quadrant in (1, 4) else -h
    y = -(s - h) if quadrant in (1, 2) else s - h
    return clamped(x), clamped(y)


def step(position, v):
    """The next position. A player who would leave the world is placed 1000 inside it."""
    result = []
    for coordinate, change in zip(position, v):
        coordinate += change
        if coordinate < 0:
            coordinate = 1000.0
        if coordinate > WORLD:
            coordinate = WORLD - 1000.0
        result.append(coordinate)
    return tuple(result)


def is_flight(before, after, v):
    """True if these can be successive reports, four frames apart. A frame counts for more than one while painting takes
    longer than 10 ms on average, as on a busy machine. This time scale has tenths."""
    # Beyond the top speed, a larger scale changes nothing.
    speeds = list(dict.fromkeys(tuple(clamped(speed * tenths / 10) for speed in v) for tenths in range(10, 200)))
    for early in speeds:
        for late in speeds:
            for change in range(4):
                position = before
                for frame in range(4):
                    position = step(position, early if frame < change else late)
                # Reports have seven digits, here down to hundredths, and each frame rounds.
                if all(abs(a - b) < 0.1 for a, b in zip(position, after)):
                    return True
    return False
