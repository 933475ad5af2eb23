"""icon.py ICON PNG...: writes an icon file from pictures of the sizes in their names (icon-32.png)."""

import pathlib
import re
import struct
import sys

icon, *names = sys.argv[1:]
pictures = [pathlib.Path(name) for name in names]
offset = 6 + 16 * len(pictures)
entries = b""
for picture in pictures:
    side = int(re.search(r"-(\d+)\.png$", picture.name)[1])
    size = picture.stat().st_size
    # 0 stands for 256.
    entries += struct.pack("<BBBBHHII", side % 256, side % 256, 0, 0, 1, 32, size, offset)
    offset += size
header = struct.pack("<HHH", 0, 1, len(pictures))
pathlib.Path(icon).write_bytes(header + entries + b"".join(picture.read_bytes() for picture in pictures))
