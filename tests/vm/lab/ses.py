"""An enclosure with bays, fans, power supplies and sensors, as its SES pages tell of it (SES-3)."""
import dataclasses
import struct

from lab.scsi import NoSuchField, Unit, page

OK, CRITICAL, NON_CRITICAL, UNRECOVERABLE, NOT_INSTALLED, UNKNOWN = 1, 2, 3, 4, 5, 6


@dataclasses.dataclass
class Part:
    """A fan, a power supply or a sensor. A reading is revolutions a minute of a fan or degrees of a sensor."""
    name: str
    code: int = OK
    reading: int = 0


@dataclasses.dataclass
class Bay:
    """Number is the one that is printed on the box. A bay without a disk is empty."""
    number: int
    disk: object = None
    code: int = None
    predicts_failure: bool = False

    @property
    def name(self):
        return f"Bay {self.number}"

    def status_code(self):
        return self.code if self.code is not None else OK if self.disk else NOT_INSTALLED


@dataclasses.dataclass(eq=False)
class Enclosure(Unit):
    vendor: str
    product: str
    revision: str
    serial: str
    wwn: int
    bays: list
    fans: list
    power_supplies: list
    sensors: list

    kind = 0x0D
    encloses = True

    def _types(self):
        """Element types in the order of the pages: code, name, elements and the form of one element's status."""
        return [(0x17, "Bays", self.bays, self._bay), (0x02, "Power", self.power_supplies, self._power_supply),
                (0x03, "Fans", self.fans, self._fan), (0x04, "Temperature", self.sensors, self._sensor)]

    @staticmethod
    def _bay(bay):
        return bytes([bay.status_code() | (0x40 if bay.predicts_failure else 0), 0, 0, 0])

    @staticmethod
    def _power_supply(part):
        return bytes([part.code, 0, 0, 0x60 if part.code == CRITICAL else 0x20])

    @staticmethod
    def _fan(part):
        speed = part.reading // 10
        return bytes([part.code, speed >> 8 & 0x07, speed & 0xFF, (0x40 if part.code == CRITICAL else 0) | 0x24])

    @staticmethod
    def _sensor(part):
        return bytes([part.code, 0, part.reading + 20, 0])

    def _execute_own(self, cdb, data):
        if cdb[0] == 0x1D:
            return b""  # lamps are not modelled
        if cdb[0] != 0x1C:
            return super()._execute_own(cdb, data)
        pages = {0x00: self._supported, 0x01: self._configuration, 0x02: self._status, 0x07: self._descriptors,
                 0x0A: self._additional_status}
        if cdb[2] not in pages:
            raise NoSuchField
        return pages[cdb[2]]()[:struct.unpack(">H", cdb[3:5])[0]]

    GENERATION = bytes(4)

    def _supported(self):
        return page(0x00, bytes([0x00, 0x01, 0x02, 0x07, 0x0A]))

    def _configuration(self):
        types = self._types()
        descriptor = bytes([0x11, 0, len(types), 36]) + self.wwn.to_bytes(8, "big")
        descriptor += self.vendor.encode().ljust(8) + self.product.encode().ljust(16) + self.revision.encode().ljust(4)
        heads = b"".join(bytes([code, len(elements), 0, len(name)]) for code, name, elements, _ in types)
        names = b"".join(name.encode() for _, name, _, _ in types)
        return page(0x01, self.GENERATION + descriptor + heads + names)

    def _status(self):
        body = self.GENERATION
        codes = set()
        for _, _, elements, form in self._types():
            body += bytes(4) + b"".join(form(element) for element in elements)
            codes |= {form(element)[0] & 0x0F for element in elements}
        flags = (0x01 if UNRECOVERABLE in codes else 0) | (0x02 if CRITICAL in codes else 0)
        return page(0x02, body, flags | (0x04 if NON_CRITICAL in codes else 0))

    def _descriptors(self):
        def descriptor(name):
            return struct.pack(">HH", 0, len(name)) + name.encode()

        return page(0x07, self.GENERATION + b"".join(
            descriptor(name) + b"".join(descriptor(element.name) for element in elements)
            for _, name, elements, _ in self._types()))

    def _additional_status(self):
        """Which SAS address is in which bay."""
        body = self.GENERATION
        for index, bay in enumerate(self.bays):
            address = bay.disk.sas_address if bay.disk else 0
            phy = bytes([0x10 if address else 0, 0, 0, 0x08 if address else 0]) + self.wwn.to_bytes(8, "big")
            phy += address.to_bytes(8, "big") + bytes([index]) + bytes(7)
            slot = bytes([0, index, 1, 0, 0, bay.number]) + phy
            body += bytes([0x16, len(slot)]) + slot
        return page(0x0A, body)
