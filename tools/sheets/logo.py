"""The title picture and the application's icon."""

import numpy as np
from PIL import Image, ImageFilter, ImageFont

from . import palette, shapes
from .paint import Layer, display, linear, noise, smooth
from .panel import FONT, text_mask
from .players import gloss, orb

WIDTH, HEIGHT = 763, 608
# The part of the title picture that takes clicks: left, top, right, bottom in pixels.
PLATE = (12, 340, 249, 405)


def blurred(mask, radius):
    """A blurred copy of a mask of 0 to 1. The radius is in samples."""
    image = Image.fromarray(np.rint(np.clip(mask, 0, 1) * 255).astype(np.uint8), "L")
    return np.asarray(image.filter(ImageFilter.GaussianBlur(radius))) / 255.0


class Tail:
    """The distance to a curve and the position along it (0 old end, 1 ball), computed only near the curve."""

    def __init__(self, layer, points, thin, thick, reach=26.0, steps=16):
        line = np.array(shapes.curve(points, steps))
        lengths = np.concatenate([[0], np.cumsum(np.hypot(*np.diff(line, axis=0).T))])
        along = lengths / lengths[-1]
        self.distance = np.full(layer.x.shape, 1e6)
        self.along = np.zeros(layer.x.shape)
        s = layer.scale
        for i in range(len(line) - 1):
            (ax, ay), (bx, by) = line[i], line[i + 1]
            margin = reach + thick
            left = max(int((min(ax, bx) - margin) * s), 0)
            right = max(int((max(ax, bx) + margin) * s), 0)
            top = max(int((min(ay, by) - margin) * s), 0)
            bottom = max(int((max(ay, by) + margin) * s), 0)
            window = np.s_[top:bottom, left:right]
            x, y = layer.x[window], layer.y[window]
            if x.size == 0:
                continue
            dx, dy = bx - ax, by - ay
            t = np.clip(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy), 0, 1)
            place = along[i] + t * (along[i + 1] - along[i])
            distance = np.hypot(x - ax - t * dx, y - ay - t * dy) - (thin + (thick - thin) * place) / 2
            nearer = distance < self.distance[window]
            self.distance[window] = np.where(nearer, distance, self.distance[window])
            self.along[window] = np.where(nearer, place, self.along[window])
        self.half = (thin + (thick - thin) * self.along) / 2

    def paint(self, layer, colour, reach=7.0):
        fade = 0.16 + 0.84 * self.along
        near = self.distance < 100
        layer.add(np.exp(-np.clip(self.distance, 0, None) / reach) * 0.28 * fade * near, colour)
        depth = np.clip(-self.distance / np.maximum(self.half, 0.3), 0, 1)
        hot = (depth**2 * 0.62)[..., None]
        body = colour * (0.72 + 0.28 * depth)[..., None]
        layer.fill(self.distance, np.clip(body * (1 - hot) + hot, 0, 1), fade)


def player_ball(layer, cx, cy, radius, colour):
    base = palette.PLAYERS[colour]
    x, y = layer.centred(cx, cy)
    outside = np.clip(np.hypot(x, y) - radius, 0, None)
    layer.add(np.exp(-outside / (radius * 0.42)) * 0.50, base)
    orb(layer, cx, cy, radius, base, life=0.9, plasma=0.6 * colour)
    gloss(layer, cx, cy, radius, 0.85)
    if radius < 6:
        return
    mark = palette.sign(colour, x, y, radius * 0.38)
    light = palette.SIGNS_LIGHT[colour]
    layer.fill(mark - radius * 0.05, base * 0.3 if light else 1 - (1 - base) * 0.3, 0.6, soft=radius * 0.07)
    layer.fill(mark, 1 - (1 - base) * 0.12 if light else base * 0.2, soft=radius * 0.04)


def space(layer):
    x, y = layer.x, layer.y
    layer.add(np.full(x.shape, 0.0016), palette.rgb(110, 140, 255))
    warp = noise(x / 210 + 3, y / 210 + 8, 21, 3)
    cloud = noise(x / 150 + warp * 0.9 + 11, y / 150 + warp * 0.7 + 5, 22, 5)
    band = np.exp(-np.square((y - 300 + 0.32 * (x - 381)) / 210))
    layer.add(smooth(-0.2, 1.3, cloud) * band * 0.085, palette.rgb(60, 90, 255))
    veil = noise(x / 120 - warp * 0.8 + 31, y / 120 + warp + 15, 23, 5)
    layer.add(smooth(0.0, 1.3, veil) * band * 0.075, palette.rgb(190, 50, 220))
    lanes = noise(x / 90 + warp + 40, y / 90 + 22, 24, 4)
    layer.light *= (1 - 0.65 * smooth(0.1, 1.0, lanes) * band)[..., None]
    random = np.random.RandomState(4)
    light = np.zeros(x.shape)
    s = layer.scale
    for _ in range(900):
        row, column = random.randint(0, light.shape[0] - s), random.randint(0, light.shape[1] - s)
        light[row : row + s, column : column + s] += 0.02 + 0.9 * random.uniform() ** 7
    layer.add(light, palette.rgb(225, 232, 255))
    for _ in range(15):
        cx, cy, power = random.uniform(40, WIDTH - 40), random.uniform(180, HEIGHT - 40), random.uniform(0.15, 0.6)
        dx, dy = np.abs(x - cx), np.abs(y - cy)
        cross = np.exp(-dx / 3.2 - dy / 0.6) + np.exp(-dy / 3.2 - dx / 0.6)
        layer.add((cross + np.exp(-np.hypot(dx, dy) / 1.6)) * power, palette.rgb(200, 220, 255))


def arena(layer):
    """The arena from above: a faint grid, and the glowing border of the world around the picture."""
    x, y = layer.centred(WIDTH / 2, HEIGHT / 2 + 40)
    spacing = 58.0
    gx = np.abs((x / spacing + 0.5) % 1 - 0.5) * spacing
    gy = np.abs((y / spacing + 0.5) % 1 - 0.5) * spacing
    line = np.maximum(np.exp(-np.square(gx / 0.6)), np.exp(-np.square(gy / 0.6)))
    near = np.exp(-np.square(x / 330) - np.square(y / 240))
    layer.add(line * (0.008 + 0.03 * near), palette.rgb(90, 130, 255))
    border = np.abs(shapes.box(layer.x - WIDTH / 2, layer.y - HEIGHT / 2, WIDTH / 2 - 5, HEIGHT / 2 - 5))
    layer.add(np.exp(-border / 5.0) * 0.22, palette.rgb(255, 30, 20))
    layer.fill(border - 1.5, palette.rgb(255, 60, 60))


def title(layer):
    """KELVORA, with an O that is a tail closed around a ball."""
    size, cy, gap = 128, 96, 8
    s = layer.scale
    face = ImageFont.truetype(FONT, size * s)
    letters = "KELVORA"
    ring_width = 104.0
    widths = [ring_width if letter == "O" else face.getlength(letter) / s for letter in letters]
    left = (WIDTH - sum(widths) - gap * (len(letters) - 1)) / 2
    mask = np.zeros(layer.x.shape)
    ring_x = 0.0
    for letter, width in zip(letters, widths):
        middle = left + width / 2
        if letter == "O":
            ring_x = middle
        else:
            mask = np.maximum(mask, text_mask(layer, letter, size, middle, cy))
        left += width + gap
    layer.light *= (1 - 0.75 * blurred(mask, 9 * s))[..., None]
    layer.add(blurred(mask, 14 * s) * 0.42, palette.rgb(50, 110, 255))
    layer.add(blurred(mask, 4 * s) * 0.25, palette.rgb(60, 180, 255))
    # Light from above: the rim is bright at every letter's upper edge and dark at the lower one.
    down = smooth(-44, 48, layer.y - cy)[..., None]
    face_light = palette.rgb(240, 250, 255) * (1 - down) + palette.rgb(44, 128, 255) * down
    layer.light = layer.light * (1 - mask[..., None]) + linear(face_light) * mask[..., None]
    soft = blurred(mask, 1.3 * s)
    slope = np.gradient(soft, axis=0) * s
    layer.add(np.clip(slope, 0, 1) * mask * 0.9, palette.rgb(255, 255, 255))
    layer.light *= (1 - np.clip(-slope, 0, 1) * mask * 0.75)[..., None]
    layer.add(np.clip(mask - soft, 0, 1) * 0.35, palette.rgb(180, 225, 255))

    cx, radius = ring_x, 40.0
    start = -0.55
    turns = np.linspace(start - 2 * np.pi * 1.04, start, 40)
    points = [(cx + radius * np.sin(a), cy + 1 - radius * np.cos(a)) for a in turns]
    Tail(layer, points, 13.0, 21.0, steps=4).paint(layer, palette.PLAYERS[3], reach=6.0)
    player_ball(layer, cx, cy + 1, 17.0, 0)
    player_ball(layer, points[-1][0], points[-1][1], 17.0, 3)


def captions(layer):
    """The game's idea below its name, and the basic controls at the lower edge."""
    for text, size, cx, cy, spacing, tone in (
        ("CATCH YOUR OPPONENTS IN A LOOP OF YOUR TAIL", 15, WIDTH / 2, 167, 2.6, (176, 212, 255)),
        ("Mouse: steer     Right button: brakes     F1 to F6: powerups", 13, 312, 583, 0, (150, 172, 220)),
    ):
        mask = text_mask(layer, text, size, cx, cy, spacing=spacing)
        layer.light *= (1 - 0.8 * blurred(mask, 2.5 * layer.scale))[..., None]
        layer.light = layer.light * (1 - mask[..., None]) + linear(palette.rgb(*tone)) * mask[..., None]


def scene(layer):
    """Six players. The cyan one has just closed a loop around the red one."""
    tails = [
        (4, [(20, 300), (90, 268), (170, 282), (236, 250), (292, 222)], 2, 11),
        (1, [(745, 205), (690, 232), (655, 286), (690, 338), (728, 392), (706, 452)], 2, 12),
        (5, [(30, 590), (110, 560), (170, 500), (250, 486), (318, 520)], 2, 13),
        (2, [(742, 590), (690, 556), (640, 575), (580, 590), (530, 566)], 2, 13),
        (0, [(392, 290), (420, 330), (462, 352), (486, 366)], 2, 11),
    ]
    balls = []
    for colour, points, thin, thick in tails:
        Tail(layer, points, thin, thick).paint(layer, palette.PLAYERS[colour])
        balls.append((points[-1], 15 + thick * 0.55, colour))
    loop = [(262, 318), (306, 366), (346, 436), (404, 492), (486, 504), (566, 470), (606, 400), (590, 316), (530, 258)]
    loop += [(454, 238), (384, 258), (336, 312), (312, 360), (298, 402), (294, 436)]
    Tail(layer, loop, 5, 17, reach=34).paint(layer, palette.PLAYERS[3], reach=10.0)
    # The flash where the loop closes.
    cx, cy = 307, 367
    x, y = layer.centred(cx, cy)
    r = np.hypot(x, y)
    angle = np.arctan2(y, x)
    rays = 0.5 + 0.5 * np.cos(8 * angle + 0.6)
    layer.add(np.exp(-r / 8) * 1.1 + np.exp(-r / 17) * rays**5 * 0.7, palette.rgb(190, 244, 255))
    # The inside of the loop glows in the winner's colour.
    x, y = layer.centred(470, 370)
    layer.add(np.exp(-np.square(x / 120) - np.square(y / 110)) * 0.06, palette.PLAYERS[3])
    for (bx, by), radius, colour in balls:
        player_ball(layer, bx, by, radius, colour)
    player_ball(layer, 294, 438, 25, 3)


def connect_plate(layer):
    left, top, right, bottom = PLATE
    cx, cy = (left + right) / 2, (top + bottom) / 2
    x, y = layer.centred(cx, cy)
    plate = shapes.box(x, y, (right - left) / 2 - 3, (bottom - top) / 2 - 3, 15)
    accent = palette.rgb(70, 220, 110)
    layer.fill(plate - 2.0, (0, 0, 0), 0.6, soft=6)
    layer.add(np.exp(-np.clip(plate, 0, None) / 2.0) * 0.35 * (plate < 6), accent)
    layer.fill(plate, accent)
    down = smooth(-30, 30, y)[..., None]
    layer.fill(plate + 2.2, palette.rgb(34, 150, 66) * (1 - down) + palette.rgb(8, 58, 26) * down)
    sheen = shapes.box(x, y + 14.5, 108, 12.5, 10)
    layer.fill(np.maximum(sheen, plate + 3.5), palette.rgb(110, 230, 140), 0.30, soft=3)
    mask = text_mask(layer, "Connect to server", 20.5, cx + 17, cy)
    s = layer.scale
    shade = np.roll(np.roll(mask, int(1.5 * s), axis=0), int(1.5 * s), axis=1)
    layer.fill(0.5 - shade, (0, 0.1, 0.02), 0.8)
    triangle = shapes.polygon(x + 88, y, [(-6, -9.5), (10, 0), (-6, 9.5)]) - 1.5
    layer.fill(shapes.polygon(x + 86.5, y - 1.5, [(-6, -9.5), (10, 0), (-6, 9.5)]) - 1.5, (0, 0.1, 0.02), 0.8)
    layer.fill(triangle, (1, 1, 1))
    layer.light = layer.light * (1 - mask[..., None]) + mask[..., None]


def draw(path):
    layer = Layer(WIDTH, HEIGHT, 3)
    space(layer)
    arena(layer)
    scene(layer)
    title(layer)
    captions(layer)
    connect_plate(layer)
    picture = layer.picture()
    Image.fromarray(picture, "RGB").save(path, quality=93, subsampling=0, optimize=True, progressive=False)


def icon(size):
    """A ball inside a closed loop, on a dark tile with transparent corners."""
    layer = Layer(size, size, max(4, 1024 // size))
    u = size / 64
    x, y = layer.centred(size / 2, size / 2)
    tile = shapes.box(x, y, size / 2 - 0.5 * u, size / 2 - 0.5 * u, 13 * u)
    down = smooth(-32 * u, 32 * u, y)[..., None]
    layer.fill(tile, palette.rgb(52, 84, 160))
    layer.fill(tile + 1.6 * u, palette.rgb(26, 34, 84) * (1 - down) + palette.rgb(6, 6, 22) * down)
    start = 0.85
    turns = np.linspace(start - 2 * np.pi * 1.06, start, 48)
    radius, bold = 20.0 * u, size <= 32
    points = [(size / 2 + radius * np.sin(a), size / 2 - radius * np.cos(a)) for a in turns]
    tail = Tail(layer, points, (6 if bold else 3.5) * u, (11 if bold else 9) * u, reach=10 * u, steps=4)
    tail.paint(layer, palette.PLAYERS[3], reach=2.5 * u)
    player_ball(layer, size / 2, size / 2, (12.5 if bold else 11) * u, 0)
    player_ball(layer, points[-1][0], points[-1][1], (10 if bold else 8.5) * u, 3)
    alpha = layer.reduced((tile < 0).astype(float))
    light = layer.reduced(np.clip(layer.light, 0, 1) * (tile < 0)[..., None])
    colours = display(light / np.maximum(alpha, 1e-6)[..., None])
    return np.rint(np.dstack([colours, alpha]) * 255).astype(np.uint8)


def draw_icons(assets):
    for size in (16, 32, 48, 64, 128, 256):
        Image.fromarray(icon(size), "RGBA").save(assets / f"icon-{size}.png", optimize=True)
