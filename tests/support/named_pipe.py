"""A pipe with a name, by which a program that is not a child of the test shows that it is at work, and that it has ended."""
import os
import select


class NamedPipe:
    """Its reading end. The program writes to the other end, and holds it for as long as it lives."""

    def __init__(self, name):
        self.name = name

    def __enter__(self):
        os.mkfifo(self.name)
        self.end = os.open(self.name, os.O_RDONLY | os.O_NONBLOCK)
        return self

    def __exit__(self, *_):
        os.close(self.end)
        os.remove(self.name)

    def read(self, seconds):
        """What was written, nothing once the program has ended; a failure where neither comes in time."""
        if not select.select([self.end], [], [], seconds)[0]:
            raise AssertionError("nothing happened in %d s" % seconds)
        return os.read(self.end, 4096)
