"""A display that nobody sees, and pictures of it."""

import os
import struct
import subprocess
import tempfile
import zlib

WIDTH, HEIGHT = 1024, 768


class Screen:
    """An Xvfb of its own; `name` is what DISPLAY must say."""

    def __init__(self):
        self._folder = tempfile.mkdtemp()
        reader, writer = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-fbdir", self._folder,
             "-nolisten", "tcp", "-noreset", "-nocursor"], pass_fds=(writer,), stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.name = f":{number}"

    def close(self):
        self._server.terminate()
        self._server.wait()

    def pixels(self):
        """The rows of the screen, each as blue, green, red, unused for every pixel."""
        with open(f"{self._folder}/Xvfb_screen0", "rb") as dump:
            data = dump.read()
        header = struct.unpack(">25I", data[:100])
        start, stride = header[0] + 12 * header[19], header[12]
        return [data[start + y * stride:start + y * stride + 4 * WIDTH] for y in range(HEIGHT)]

    def is_blank(self):
        return len(set(self.pixels())) == 1

    def picture(self, path, box):
        """Writes the box (left, top, width, height) of the screen as a PNG file."""
        left, top, width, height = box
        left, top = max(left, 0), max(top, 0)
        right, bottom = min(left + width, WIDTH), min(top + height, HEIGHT)
        rows = bytearray()
        for row in self.pixels()[top:bottom]:
            row = row[4 * left:4 * right]
            line = bytearray(3 * (right - left))
            line[0::3], line[1::3], line[2::3] = row[2::4], row[1::4], row[0::4]
            rows += b"\0" + line
        with open(path, "wb") as png:
            png.write(b"\x89PNG\r\n\x1a\n")
            png.write(_chunk(b"IHDR", struct.pack(">IIBBBBB", right - left, bottom - top, 8, 2, 0, 0, 0)))
            png.write(_chunk(b"IDAT", zlib.compress(bytes(rows), 9)))
            png.write(_chunk(b"IEND", b""))


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
