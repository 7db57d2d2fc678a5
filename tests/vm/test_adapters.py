"""Several adapters at once: two of one model with one serial number, and one that shows its driver volumes only."""
from lab.case import MachineCase, only
from lab.provider import ProviderMachine, hba

OK, UNKNOWN = 2, 0
GIB = 1 << 30
TWINS = {"SP0001": 3, "SP0002": 4}  # serial numbers of disks, and the slots of their adapters


def disk(number, bus, target, serial):
    return ["-blockdev", f"driver=null-co,node-name=medium{number},size={4 * GIB},read-zeroes=on",
            "-device", f"scsi-hd,bus={bus}.0,scsi-id={target},drive=medium{number},vendor=ACME,product=SPINDLE,ver=0001,"
                       f"serial={serial},wwn={0x5000A72000000200 + number * 16},rotation_rate=7200"]


class ThreeAdapters(MachineCase):
    @classmethod
    def make_machine(cls):
        options = (hba("hba3", 3) + hba("hba4", 4) + hba("hba5", 5, "megasas") + disk(0, "hba3", 0, "SP0001") +
                   disk(1, "hba4", 0, "SP0002") + disk(2, "hba5", 1, "SP0003"))
        machine = ProviderMachine("adapters", devices=options, modules=["mptsas", "megaraid_sas"])
        machine.boot()
        cls.machine = machine
        machine.run("while [ $(ls /sys/block | grep -c ^sd) -lt 3 ]; do usleep 100000; done")
        machine.serve()
        machine.wait_refreshing("the disks to be asked", lambda: all(
            part["health"] == "OK" for part in machine.status()["disks"]))
        return machine

    def system_in_slot(self, slot):
        return only(self.machine.instances("KDV_SASArraySystem"), ElementName=f"SAS HBA in Slot {slot}")["Name"]

    def test_each_has_a_name_of_its_own(self):
        names = [self.system_in_slot(slot) for slot in (3, 4, 5)]
        self.assertEqual(len(set(names)), 3, names)
        self.assertEqual({system["OperationalStatus"][0] for system in
                          self.machine.instances("KDV_SASArraySystem")}, {OK})

    def test_each_has_its_own_disks(self):
        drives = self.machine.instances("KDV_SASDiskDrive")
        self.assertEqual({drive["DeviceID"]: drive["SystemName"] for drive in drives},
                         {serial: self.system_in_slot(slot) for serial, slot in TWINS.items()})

    def test_a_volume_of_firmware_is_a_volume_and_nothing_is_guessed_of_it(self):
        volume, = self.machine.instances("KDV_SASStorageVolume")
        node = self.machine.run("basename $(ls -d /sys/bus/scsi/devices/*:2:1:0/block/*)")
        self.assert_fields(volume, SystemName=self.system_in_slot(5), OSName=f"/dev/{node}", BlockSize=512,
                           NumberOfBlocks=4 * GIB // 512, OperationalStatus=[UNKNOWN])
        published, = self.machine.status()["volumes"]
        self.assertEqual(published["members"], [])
