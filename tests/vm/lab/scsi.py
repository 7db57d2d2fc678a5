"""SCSI disks (SPC-4, SBC-3) as a test wants them. Every fact is an attribute and may change while the target runs."""
import dataclasses
import struct


class CheckCondition(Exception):
    def __init__(self, key, code, qualifier=0):
        super().__init__(f"sense {key:x}/{code:02x}/{qualifier:02x}")
        self.sense = bytes([0x70, 0, key, 0, 0, 0, 0, 10, 0, 0, 0, 0, code, qualifier, 0, 0, 0, 0])


class NoSuchCommand(CheckCondition):
    def __init__(self):
        super().__init__(0x05, 0x20)


class NoSuchField(CheckCondition):
    def __init__(self):
        super().__init__(0x05, 0x24)


def padded(text, width):
    return text.encode("ascii").ljust(width)[:width]


def page(code, body, subcode=0):
    """A page of the form that log and diagnostic pages share."""
    return bytes([code, subcode]) + struct.pack(">H", len(body)) + body


def parameter(code, value):
    return struct.pack(">HBB", code, 0x03, len(value)) + value


class Unit:
    """What disks and enclosures have in common. Its names are fields of the classes below."""

    kind = 0x00
    encloses = False

    def execute(self, cdb, data):
        serve = {0x00: self._test_unit_ready, 0x03: self._request_sense, 0x12: self._inquiry, 0x1A: self._mode_sense,
                 0x4D: self._log_sense, 0xA0: self._report_luns}.get(cdb[0])
        return serve(cdb) if serve else self._execute_own(cdb, data)

    def _execute_own(self, cdb, data):
        raise NoSuchCommand

    def _test_unit_ready(self, _):
        return b""

    def _request_sense(self, cdb):
        return CheckCondition(0, 0).sense[:cdb[4]]

    def _report_luns(self, _):
        return struct.pack(">II", 8, 0) + bytes(8)

    def _inquiry(self, cdb):
        most = struct.unpack(">H", cdb[3:5])[0]
        if not cdb[1] & 0x01:
            return self._standard_inquiry()[:most]
        pages = self._vital_pages()
        if cdb[2] == 0x00:
            return (bytes([self.kind, 0x00]) + struct.pack(">H", len(pages) + 1) + bytes([0, *sorted(pages)]))[:most]
        if cdb[2] not in pages:
            raise NoSuchField
        body = pages[cdb[2]]
        return (bytes([self.kind, cdb[2]]) + struct.pack(">H", len(body)) + body)[:most]

    def _standard_inquiry(self):
        flags = bytes([0x40 if self.encloses else 0, 0x02])
        texts = padded(self.vendor, 8) + padded(self.product, 16) + padded(self.revision, 4)
        data = bytes([self.kind, 0, 0x06, 0x02, 91, 0]) + flags + texts
        return data.ljust(96, b"\0")

    def _vital_pages(self):
        """The world-wide name of the unit, and the address of its port, which is another one on real disks."""
        names = bytes([0x01, 0x03, 0, 8]) + self.wwn.to_bytes(8, "big")
        names += bytes([0x61, 0x93, 0, 8]) + (self.wwn + 1).to_bytes(8, "big")
        return {0x80: self.serial.encode("ascii"), 0x83: names}

    def _mode_sense(self, cdb):
        pages = self._mode_pages()
        wanted = cdb[2] & 0x3F
        if wanted != 0x3F and wanted not in pages:
            raise NoSuchField
        body = b"".join(bytes([code, len(pages[code])]) + pages[code]
                        for code in sorted(pages) if wanted in (code, 0x3F))
        return (bytes([3 + len(body), 0, 0, 0]) + body)[:cdb[4]]

    def _mode_pages(self):
        return {}

    def _log_sense(self, cdb):
        pages = self._log_pages()
        code = cdb[2] & 0x3F
        most = struct.unpack(">H", cdb[7:9])[0]
        if code == 0x00:
            return page(0x00, bytes([0, *sorted(pages)]))[:most]
        if code not in pages:
            raise NoSuchField
        return page(code, pages[code])[:most]

    def _log_pages(self):
        return {}


@dataclasses.dataclass(eq=False)
class Disk(Unit):
    vendor: str
    product: str
    revision: str
    serial: str
    wwn: int
    size: int               # bytes
    rotation: int           # a minute; 1 for a solid-state disk
    hours: int = 0
    endurance_used: int = 0  # per cent, solid-state disks only
    temperature: int = 30
    predicts_failure: bool = False
    not_ready: bool = False
    sas_address: int = 0    # as its port has it; its name when none is given

    BLOCK = 512

    def __post_init__(self):
        self.sas_address = self.sas_address or self.wwn

    def _execute_own(self, cdb, data):
        blocks = self.size // self.BLOCK
        if cdb[0] == 0x25:
            return struct.pack(">II", min(blocks - 1, 0xFFFFFFFF), self.BLOCK)
        if cdb[0] == 0x9E and cdb[1] & 0x1F == 0x10:
            return (struct.pack(">QI", blocks - 1, self.BLOCK) + bytes(20))[:struct.unpack(">I", cdb[10:14])[0]]
        if cdb[0] == 0x28:
            return bytes(struct.unpack(">H", cdb[7:9])[0] * self.BLOCK)
        if cdb[0] == 0x88:
            return bytes(struct.unpack(">I", cdb[10:14])[0] * self.BLOCK)
        if cdb[0] in (0x1B, 0x1D, 0x2A, 0x35, 0x8A, 0x91):  # start, diagnostics, writing, emptying the cache
            return b""
        raise NoSuchCommand

    def _test_unit_ready(self, _):
        if self.not_ready:
            raise CheckCondition(0x02, 0x04, 0x03)  # manual intervention required
        return b""

    def _vital_pages(self):
        rotation = struct.pack(">H", self.rotation) + bytes([0, 3])
        return {**super()._vital_pages(), 0xB0: bytes(60), 0xB1: rotation.ljust(60, b"\0")}

    def _mode_pages(self):
        return {0x01: bytes(10), 0x08: b"\x04" + bytes(17), 0x1C: b"\0\x06" + bytes(8)}

    def _log_pages(self):
        exception = (0x5D, 0x10) if self.predicts_failure else (0x00, 0x00)
        pages = {
            0x0D: parameter(0, bytes([0, self.temperature])) + parameter(1, bytes([0, 65])),
            0x15: parameter(0, struct.pack(">I", self.hours * 60) + bytes(8)),
            0x2F: parameter(0, bytes([*exception, self.temperature, 0])),
        }
        if self.rotation == 1:
            pages[0x11] = parameter(1, bytes([0, 0, 0, self.endurance_used]))
        return pages
