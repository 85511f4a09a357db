"""Reads the pixels of the virtual screen from the frame buffer file of Xvfb."""

import mmap
import pathlib
import struct

# The header of the XWD file format: big-endian 32-bit words.
HEADER_SIZE, HEIGHT, BYTES_PER_LINE, COLOURS = 0, 5, 12, 19
COLOUR_BYTES = 12


class FrameBuffer:
    def __init__(self, folder):
        with pathlib.Path(folder, "Xvfb_screen0").open("rb") as file:
            self._bytes = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        words = struct.unpack(">25I", self._bytes[:100])
        self._pixels = words[HEADER_SIZE] + words[COLOURS] * COLOUR_BYTES
        self._line = words[BYTES_PER_LINE]
        self._height = words[HEIGHT]

    def lines(self, first, last, begin=0, end=None):
        """Returns the lines from `first` to before `last`, each with its bytes from `begin` to before `end`."""
        starts = [self._pixels + line * self._line for line in range(first, last)]
        return [self._bytes[start + begin:start + (self._line if end is None else end)] for start in starts]

    def whole(self):
        return self.lines(0, self._height)


class Region:
    """The bounding rectangle of the differences between two pictures of the screen."""

    def __init__(self, buffer, one, other):
        self._buffer = buffer
        changed = [line for line in range(len(one)) if one[line] != other[line]]
        if not changed:
            raise SystemExit("nothing changed on the screen")
        columns = [column for line in changed for column in range(len(one[line]))
                   if one[line][column] != other[line][column]]
        self._area = (changed[0], changed[-1] + 1, min(columns), max(columns) + 1)

    def picture(self):
        return self._buffer.lines(*self._area)
