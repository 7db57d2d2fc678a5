"""Disks right at an adapter, without a box: what is published of them, and how they come and go."""
import dataclasses
import shutil
import subprocess

from lab.case import MachineCase, only
from lab.provider import PORT, ProviderMachine, hba
from lab.waiting import wait_for

OK, ERROR, PREDICTIVE_FAILURE = 2, 6, 5


@dataclasses.dataclass
class EmulatedDisk:
    vendor: str
    model: str
    revision: str
    serial: str
    wwn: int
    size: int
    rotation: int
    block: int = 512
    physical_block: int = 512

    def published_block(self):
        """The block that a count of 32 bits can count the disk in: the medium's where the system's is too small."""
        return self.block if self.size // self.block < 1 << 32 else self.physical_block


DISKS = [
    EmulatedDisk("ACME", "SPINDLE 1200", "TT31", "SP0001", 0x5000A72000000010, 1200243695616, 10500),
    EmulatedDisk("ACME", "SPINDLE 4000", "N5Z1", "SP0002", 0x5000A72000000020, 4000787030016, 7200,
                 physical_block=4096),
    EmulatedDisk("GLOBEX", "FLASH 960", "GXA0", "FL0003", 0x5000A72000000030, 960197124096, 1),
    EmulatedDisk("GLOBEX", "SPINDLE 600 4K", "0803", "SP0004", 0x5000A72000000040, 600127266816, 15000, 4096, 4096),
]
ADAPTER = "QEMU MPT Fusion 0000111122223333"


def disk_options(index, disk):
    return {"driver": "scsi-hd", "id": f"disk{index}", "bus": "hba0.0", "scsi-id": index, "drive": f"medium{index}",
            "vendor": disk.vendor, "product": disk.model, "ver": disk.revision, "serial": disk.serial,
            "wwn": disk.wwn, "port_wwn": disk.wwn + 1, "rotation_rate": disk.rotation,
            "logical_block_size": disk.block, "physical_block_size": disk.physical_block}


def devices():
    options = hba()
    for index, disk in enumerate(DISKS):
        options += ["-blockdev", f"driver=null-co,node-name=medium{index},size={disk.size},read-zeroes=on"]
        given = disk_options(index, disk)
        options += ["-device", given.pop("driver") + "".join(f",{name}={value}" for name, value in given.items())]
    return options


class DisksAtAnAdapter(MachineCase):
    @classmethod
    def make_machine(cls):
        machine = ProviderMachine("adapter", devices=devices(), modules=["mptsas"])
        machine.boot()
        machine.run(f"while [ $(ls /sys/block | grep -c ^sd) -lt {len(DISKS)} ]; do usleep 100000; done")
        machine.serve()
        machine.wait_refreshing("all disks to be asked", lambda: all(
            disk["health"] == "OK" for disk in machine.status()["disks"]))
        return machine

    def names_in_the_guest(self):
        """Kernel names by serial number, as the guest itself tells them."""
        lines = self.machine.run(
            "for disk in /sys/block/sd*; do echo $(basename $disk) $(tail -c +5 $disk/device/vpd_pg80); done").splitlines()
        return {serial: name for name, serial in (line.split() for line in lines)}

    def serials(self):
        return {drive["DeviceID"] for drive in self.machine.instances("KDV_SASDiskDrive")}

    def test_the_adapter_has_its_name_slot_firmware_and_status(self):
        system, = self.machine.instances("KDV_SASArraySystem")
        self.assert_fields(system, ElementName="SAS HBA in Slot 3", Name=ADAPTER, OperationalStatus=[OK])
        controller, = self.machine.instances("KDV_SASArrayController")
        self.assert_fields(controller, Name=ADAPTER, OperationalStatus=[OK])
        firmware, = self.machine.instances("KDV_SASFirmware")
        version = self.machine.run("cat /sys/class/scsi_host/host*/version_fw")
        self.assertTrue(version)
        self.assert_fields(firmware, VersionString=version)

    def test_every_disk_is_there_once_with_what_it_is(self):
        self.assertEqual(self.serials(), {disk.serial for disk in DISKS})
        drives = self.machine.instances("KDV_SASDiskDrive")
        packages = self.machine.instances("KDV_SASDiskPhysicalPackage")
        firmwares = self.machine.instances("KDV_SASDiskDriveFirmware")
        speeds = {10500: 10000, 7200: 7200, 15000: 15000, 1: None}
        for index, disk in enumerate(DISKS):
            with self.subTest(disk.serial):
                place = f"Port {index} Device {index}"
                drive = only(drives, DeviceID=disk.serial)
                self.assert_fields(drive, ElementName=place, Name=f"{disk.wwn:016X}", SystemName=ADAPTER,
                                   OperationalStatus=[OK], DriveInterface=3, Description="SAS", DriveConfiguration=4,
                                   DriveRotationalSpeed=speeds[disk.rotation],
                                   SSDWearStatus=-1 if disk.rotation == 1 else None)
                self.assert_fields(only(packages, Tag=disk.serial), ElementName=place, Manufacturer=disk.vendor,
                                   Model=disk.model, SerialNumber=disk.serial)
                self.assertEqual([firmware["VersionString"] for firmware in firmwares
                                  if disk.serial in str(firmware)], [disk.revision])

    def test_every_disk_has_its_size_and_the_name_that_the_system_gave_it(self):
        names = self.names_in_the_guest()
        extents = self.machine.instances("KDV_SASStorageExtent")
        for disk in DISKS:
            with self.subTest(disk.serial):
                self.assert_fields(only(extents, DeviceID=disk.serial), BlockSize=disk.published_block(),
                                   NumberOfBlocks=disk.size // disk.published_block(),
                                   OsName=f"/dev/{names[disk.serial]}")

    def test_a_disk_that_the_system_removes_goes_and_comes_back_without_a_request(self):
        disk = DISKS[1]
        before = only(self.machine.instances("KDV_SASDiskDrive"), DeviceID=disk.serial)
        self.machine.run(f"echo 1 >/sys/block/{self.names_in_the_guest()[disk.serial]}/device/delete")
        _, seconds = wait_for("the instances to go", lambda: disk.serial not in self.serials())
        self.measure("disk deleted in sysfs until its instance is gone", seconds)
        self.assertEqual(self.serials(), {other.serial for other in DISKS if other is not disk})
        for class_name in ("KDV_SASDiskPhysicalPackage", "KDV_SASStorageExtent", "KDV_SASDiskDriveFirmware"):
            self.assertNotIn(disk.serial, str(self.machine.instances(class_name)), class_name)

        self.machine.run("echo '- - -' >/sys/class/scsi_host/host0/scan")
        _, seconds = wait_for("the instances to come", lambda: disk.serial in self.serials())
        self.measure("bus scanned until the instance of the new disk is there", seconds)
        _, seconds = wait_for("the new disk to be as it was", lambda: only(
            self.machine.instances("KDV_SASDiskDrive"), DeviceID=disk.serial) == before)
        self.measure("instance of the new disk there until its status is", seconds)
        self.assertIn(disk.serial, str(self.machine.instances("KDV_SASStorageExtent")))

    def test_a_disk_whose_pull_the_system_does_not_notice_fails_and_recovers(self):
        # This adapter tells its driver nothing of a disk that goes; only the disk's silence does.
        disk = DISKS[3]
        path = f'KDV_SASDiskDrive.CreationClassName="KDV_SASDiskDrive",DeviceID="{disk.serial}"'
        mark = self.machine.listener.mark()
        self.machine.qmp.command("device_del", id="disk3")
        alert = self.machine.listener.wait(202, path, mark, self.machine.refresh)
        self.assert_fields(alert, MessageID="KDVSAS0202", PerceivedSeverity="5", HWSerialNumber=disk.serial,
                           HWLogicalLocation="Port 3 Device 3", DeviceModel=disk.model)
        self.assert_fields(only(self.machine.instances("KDV_SASDiskDrive"), DeviceID=disk.serial),
                           OperationalStatus=[ERROR])
        mark = self.machine.listener.mark()
        self.machine.qmp.command("device_add", **disk_options(3, disk))
        alert = self.machine.listener.wait(201, path, mark, self.machine.refresh)
        self.assert_fields(alert, MessageID="KDVSAS0201", PerceivedSeverity="2", HWSerialNumber=disk.serial)
        self.assert_fields(only(self.machine.instances("KDV_SASDiskDrive"), DeviceID=disk.serial),
                           OperationalStatus=[OK])

    def test_a_disk_that_the_system_takes_offline_fails_and_recovers(self):
        disk = DISKS[0]
        path = f'DeviceID="{disk.serial}"'
        state = f"/sys/block/{self.names_in_the_guest()[disk.serial]}/device/state"
        mark = self.machine.listener.mark()
        self.machine.run(f"echo offline >{state}")
        self.machine.listener.wait(202, path, mark, self.machine.refresh)
        mark = self.machine.listener.mark()
        self.machine.run(f"echo running >{state}")
        self.machine.listener.wait(201, path, mark, self.machine.refresh)
        self.assertEqual([str(alert) for alert in self.machine.listener.since(mark) if path not in str(alert)], [])

    def test_the_server_can_be_asked_with_another_client(self):
        if not shutil.which("wbemcli"):
            self.skipTest("there is no wbemcli here")
        disks = f"http://127.0.0.1:{self.machine.ports[PORT]}/root/vnr:CIM_DiskDrive"
        listing = subprocess.run(["wbemcli", "ein", disks], capture_output=True, text=True, timeout=120)
        self.assertEqual(listing.returncode, 0, listing.stderr)
        for disk in DISKS:
            self.assertIn(f'DeviceID="{disk.serial}"', listing.stdout)
