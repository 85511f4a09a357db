"""A fake of PsychoPy's display, which prints the time of each flip in ms and the text that was drawn."""
import time
from types import SimpleNamespace


class Window:
    def __init__(self, **_options):
        self.drawn = ""

    def flip(self):
        print(time.time() * 1000, self.drawn, flush=True)
        self.drawn = ""

    def close(self):
        pass


class TextStim:
    def __init__(self, window, **_options):
        self._window = window
        self.text = ""

    def draw(self):
        self._window.drawn = self.text


core = SimpleNamespace(wait=time.sleep)
visual = SimpleNamespace(Window=Window, TextStim=TextStim)
