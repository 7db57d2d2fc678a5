"""What the schema tests share: where things are, the loaded schema, and the table of expected classes."""

import os
import pathlib
import sys

SOURCE = pathlib.Path(os.environ["KDV_SOURCE_DIR"])
SHARE = pathlib.Path(os.environ["KDV_SHARE_DIR"])
TOOLS = SOURCE / "tools" / "mof"
CORE = SOURCE / "schema" / "core" / "cim-core.mof"
OURS = SOURCE / "schema" / "kdv-sas.mof"
PUBLISHED = SOURCE / "schema" / "published.json"

sys.path.insert(0, str(TOOLS))

import classtable  # noqa: E402  (the path above comes first)
import mofinfo  # noqa: E402


class Expected:
    """One line of expected-classes.txt."""

    def __init__(self, cells, association):
        self.name, self.superclass = cells[0], None if cells[1] == "-" else cells[1]
        self.association = association
        self.roles, self.keys, self.local, self.nulls, self.further = [], [], {}, [], {}
        if association:
            self.roles = [tuple(cell.split(":")) for cell in cells[2:4]]
            self.keys = [role for role, _ in self.roles]
            self.further = self._typed(cells[4])
        else:
            self.keys = self._names(cells[2])
            self.local = self._typed(cells[3])
            self.nulls = self._names(cells[4])

    @staticmethod
    def _names(cell):
        return [] if cell == "-" else [one.strip() for one in cell.split(",")]

    @classmethod
    def _typed(cls, cell):
        return dict(one.split(":") for one in cls._names(cell))


def expected():
    result = []
    association = False
    for line in (pathlib.Path(__file__).parent / "expected-classes.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("# associations"):
            association = True
        if line and not line.startswith("#"):
            result.append(Expected([cell.strip() for cell in line.split("|")], association))
    return result


def load():
    return mofinfo.load(CORE, OURS)


def published():
    return classtable.published(PUBLISHED)


def our_classes(schema):
    return [one for one in schema.classes if one.name.startswith("KDV_")]


def type_text(element):
    return element.type + ("[]" if element.array else "")


def superclass_properties(schema, name):
    superclass = schema[name].superclass
    return schema.resolved(superclass) if superclass else {}
