"""A direct connection to the X server, for measuring latency."""

import ctypes
import time


class DirectScreen:
    """Moves the mouse and reads a pixel within a fraction of a millisecond."""

    def __init__(self, display):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.xtst = ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XGetImage.restype = ctypes.c_void_p
        self.x11.XGetPixel.restype = ctypes.c_ulong
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.connection = ctypes.c_void_p(self.x11.XOpenDisplay(display.environment["DISPLAY"].encode()))
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.connection))

    def jump(self, x, y):
        """Moves the mouse and returns the time at which the server has done so."""
        self.xtst.XTestFakeMotionEvent(self.connection, -1, x, y, ctypes.c_ulong(0))
        self.x11.XSync(self.connection, 0)
        return time.monotonic()

    def brightest(self, x, y, reach):
        """The brightest channel near a point."""
        image = ctypes.c_void_p(self.x11.XGetImage(self.connection, self.root, x - reach, y - reach, 2 * reach,
                                                   2 * reach, ctypes.c_ulong(0xFFFFFF), 2))
        pixels = [self.x11.XGetPixel(image, column, row) for row in range(0, 2 * reach, 2)
                  for column in range(0, 2 * reach, 2)]
        self.x11.XDestroyImage(image)
        return max(max(pixel >> 16, pixel >> 8 & 255, pixel & 255) for pixel in pixels)

    def close(self):
        self.x11.XCloseDisplay(self.connection)
