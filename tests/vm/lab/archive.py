"""The guest's files: an archive in the form that the kernel unpacks (cpio, "newc"), written without root.

The archive is not compressed: under emulation unpacking costs more than copying.
"""
import functools
import os
import pathlib
import re
import stat
import subprocess
import tempfile


class Archive:
    """Paths are absolute ones of the guest; the folders above a file are made with it."""

    def __init__(self):
        self._parts = []
        self._known = set()

    def _put(self, path, mode, data=b"", device=(0, 0)):
        name = path.lstrip("/").encode() + b"\0"
        numbers = [len(self._parts) + 1, mode, 0, 0, 1, 0, len(data), 0, 0, *device, len(name), 0]
        head = b"070701" + b"".join(b"%08x" % number for number in numbers) + name
        self._parts.append(head + b"\0" * (-len(head) % 4) + data + b"\0" * (-len(data) % 4))
        self._known.add(path)

    def __contains__(self, path):
        return path in self._known

    def folder(self, path):
        path = path.rstrip("/")
        if path and path not in self._known:
            self.folder(os.path.dirname(path))
            self._put(path, stat.S_IFDIR | 0o755)

    def file(self, path, data, executable=False):
        self.folder(os.path.dirname(path))
        self._put(path, stat.S_IFREG | (0o755 if executable else 0o644), data)

    def link(self, path, target):
        self.folder(os.path.dirname(path))
        self._put(path, stat.S_IFLNK | 0o777, target.encode())

    def console(self):
        self.folder("/dev")
        self._put("/dev/console", stat.S_IFCHR | 0o600, device=(5, 1))

    def program(self, path, source):
        """A program or library with the libraries that it is linked to, those at the paths they have here."""
        self.file(path, stripped(source), executable=True)
        for library in libraries_of(source):
            if library not in self:
                self.file(library, stripped(pathlib.Path(library)), executable=True)

    def content(self):
        trailer = Archive()
        trailer._put("TRAILER!!!", 0)
        return b"".join(self._parts + trailer._parts)


def libraries_of(program):
    """As the loader finds them on this machine; those that come along with the program are put beside it anyway."""
    listing = subprocess.run(["ldd", str(program)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    paths = re.findall(r"(?:=> )?(/\S+) \(0x", listing.stdout)
    return [path for path in paths if "/libKDV" not in path]


@functools.lru_cache(maxsize=None)
def stripped(file):
    """Without what only a debugger reads, which is most of a library."""
    if file.read_bytes()[:4] != b"\x7fELF":
        return file.read_bytes()
    with tempfile.NamedTemporaryFile() as copy:
        done = subprocess.run(["strip", "-o", copy.name, str(file)], stderr=subprocess.DEVNULL)
        return pathlib.Path(copy.name).read_bytes() if done.returncode == 0 else file.read_bytes()
