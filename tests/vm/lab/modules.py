"""Kernel modules with what they stand on, in an order in which insmod takes them."""
import functools
import re


def plain(name):
    """Modules are called with either sign; the kernel counts both as one."""
    return name.replace("-", "_")


class ModuleTree:
    """The modules of an unpacked kernel package.

    What a module stands on is read from the module itself, so nothing has to make lists first. Algorithms are asked for
    by name at run time and stand in no list: they are named here.
    """

    ASKED_FOR_BY_NAME = {"crc_t10dif": ["crct10dif_generic"], "crc64_rocksoft": ["crc64_rocksoft_generic"]}

    def __init__(self, kernel):
        self.release = next((kernel / "lib" / "modules").iterdir()).name
        self._files = {plain(file.stem): file for file in (kernel / "lib" / "modules").rglob("*.ko")}

    @functools.lru_cache(maxsize=None)
    def _needs(self, name):
        found = re.search(rb"\0depends=([^\0]*)\0", self._files[name].read_bytes())
        names = found.group(1).decode().split(",") if found and found.group(1) else []
        return [plain(each) for each in names] + self.ASKED_FOR_BY_NAME.get(name, [])

    def in_order(self, names):
        """Files of the modules and of all below them; one that is built into the kernel is left out."""
        order = []

        def visit(name):
            if name not in self._files or self._files[name] in order:
                return
            for below in self._needs(name):
                visit(below)
            order.append(self._files[name])

        for name in names:
            visit(plain(name))
        return order

    def has(self, name):
        return plain(name) in self._files
