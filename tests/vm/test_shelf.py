"""Disks in an enclosure: what its pages tell, and the alerts when a part of it or a disk fails."""
import time

from lab.case import MachineCase, only
from lab.iscsi import Target
from lab.provider import LOG, ProviderMachine, hba
from lab.scsi import Disk
from lab.ses import CRITICAL, NON_CRITICAL, OK, Bay, Enclosure, Part
from lab.waiting import wait_for

DRIVE_OK, DRIVE_ERROR, DRIVE_PREDICTS, DRIVE_UNKNOWN = 2, 6, 5, 0
ADAPTER = "QEMU MPT Fusion 0000111122223333"
PROCESSOR = 'KDV_SASStorageEnclosureProcessor.CreationClassName="KDV_SASStorageEnclosureProcessor",' \
            'Name="KDV_SASStorageEnclosureProcessor-0-1"'


class Shelf:
    """An enclosure with six bays, three disks in it and one that waits in the cupboard."""

    def __init__(self):
        self.spindle = Disk("ACME", "SPINDLE 1200", "TT31", "SP0001", 0x5000A72000000010, 1200243695616, 10500,
                            hours=21)
        self.flash = Disk("GLOBEX", "FLASH 960", "GXA0", "FL0002", 0x5000A72000000020, 960197124096, 1, hours=5012,
                          endurance_used=7)
        self.third = Disk("ACME", "SPINDLE 600", "0803", "SP0003", 0x5000A72000000030, 600127266816, 15000, hours=9)
        # The emulated adapter gives a disk its name as address, and its driver is not told when another disk comes.
        self.spare = Disk("ACME", "SPINDLE 600", "0803", "SP0004", 0x5000A72000000040, 600127266816, 15000, hours=9,
                          sas_address=self.third.sas_address)
        self.bays = [Bay(1, self.spindle), Bay(2, self.flash), Bay(3), Bay(4, self.third), Bay(5), Bay(6)]
        self.enclosure = Enclosure(
            "GLOBEX", "SHELF 6", "0212", "GS6-0001", 0x5000A72000001000, self.bays,
            fans=[Part("Fan 1", reading=5200), Part("Fan 2", reading=5100)],
            power_supplies=[Part("PSU A"), Part("PSU B")],
            sensors=[Part("Ambient", reading=24), Part("Midplane", reading=38)])
        self.disks = [self.spindle, self.flash, self.third]
        self.target = Target([*self.disks, self.spare, self.enclosure])

    def devices(self):
        options = hba()
        for number, unit in enumerate([*self.disks, self.enclosure]):
            options += self.target.drive(f"unit{number}", unit)
            options += ["-device", f"scsi-generic,id=unit{number},bus=hba0.0,scsi-id={number},drive=unit{number}"]
        return options + self.target.drive("spare", self.spare)

    def bay_of(self, disk):
        return next(bay for bay in self.bays if bay.disk is disk)

    def place_of(self, disk):
        """Each disk has a port of the adapter to itself; the enclosure's own port is in the name of the box."""
        return f"Port {self.disks.index(disk)} Box 1 Bay {self.bay_of(disk).number}"


class DisksInAShelf(MachineCase):
    @classmethod
    def make_machine(cls):
        cls.shelf = Shelf()
        cls.addClassCleanup(cls.shelf.target.stop)
        machine = ProviderMachine("shelf", devices=cls.shelf.devices(), modules=["ses", "mptsas"],
                                  files={"/etc/passwd": b"root::0:0::/:/bin/sh\nnobody::65534:65534::/:/bin/sh\n",
                                         "/etc/group": b"root::0:\nnobody::65534:\n"})
        machine.boot()
        cls.machine = machine
        cls.wait_for_devices(disks=3)
        machine.serve()
        machine.wait_refreshing("all devices to be asked", lambda: machine.status()["health"] == "OK")
        return machine

    @classmethod
    def wait_for_devices(cls, disks):
        cls.machine.run(f"while [ $(ls /sys/block | grep -c ^sd) -lt {disks} ] || "
                        "! ls -d /sys/class/enclosure/*/components; do usleep 100000; done >/dev/null 2>&1")

    def setUp(self):
        self.mark = self.machine.listener.mark()

    def change(self, element, **values):
        """Makes a fault in the target, which ends with the test at the latest."""
        for name, value in values.items():
            self.addCleanup(setattr, element, name, getattr(element, name))
            setattr(element, name, value)

    def serials(self):
        return {drive["DeviceID"] for drive in self.machine.instances("KDV_SASDiskDrive")}

    def drive(self, disk):
        return only(self.machine.instances("KDV_SASDiskDrive"), DeviceID=disk.serial)

    def alert(self, event, element, meanwhile=None, **expected):
        """Waits for an alert, refreshing if nothing else is done meanwhile; later ones are looked at from its place."""
        alert = self.machine.listener.wait(event, element, self.mark, meanwhile or self.machine.refresh)
        self.assert_fields(alert, MessageID=f"KDVSAS{event:04}", **expected)
        self.mark = self.machine.listener.mark()
        return alert

    def sensors(self):
        box, = self.machine.status()["boxes"]
        return {sensor["name"]: sensor["health"] for sensor in box["sensors"]}

    # What there is

    def test_the_enclosure_has_its_names_bays_and_parts(self):
        enclosure, = self.machine.instances("KDV_SASStorageEnclosure")
        self.assert_fields(enclosure, ElementName="Port 3 Box 1", Manufacturer="GLOBEX", Model="SHELF 6",
                           SerialNumber="GS6-0001")
        cage, = self.machine.instances("KDV_SASDriveCage")
        self.assert_fields(cage, DriveBays=6, SerialNumber="GS6-0001")
        firmware, = self.machine.instances("KDV_SASEnclosureFirmware")
        self.assertEqual(firmware["VersionString"], "0212")
        self.assertEqual(self.sensors(), {"Fans": "OK", "Power supplies": "OK", "Temperature": "OK"})

    def test_the_disks_are_in_their_bays(self):
        drives = self.machine.instances("KDV_SASDiskDrive")
        self.assertEqual({drive["DeviceID"]: drive["ElementName"] for drive in drives},
                         {disk.serial: self.shelf.place_of(disk) for disk in self.shelf.disks})
        self.assertEqual({disk["id"]: disk["box"] for disk in self.machine.status()["disks"]},
                         {disk.serial: "KDV_SASDriveCage-0-1" for disk in self.shelf.disks})
        packages = self.machine.instances("KDV_SASDiskPhysicalPackage")
        for disk in self.shelf.disks:
            self.assert_fields(only(packages, Tag=disk.serial), HotSwappable=True, Manufacturer=disk.vendor,
                               Model=disk.product)

    def test_a_solid_state_disk_tells_its_wear_and_hours(self):
        self.assert_fields(self.drive(self.shelf.flash), SSDTotalPowerOnHours=5012, SSDPercentageEnduranceUsed=7,
                           SSDLifeRemaining=93, SSDWearStatus=0, OperationalStatus=[DRIVE_OK])
        self.assert_fields(self.drive(self.shelf.spindle), SSDTotalPowerOnHours=None, SSDPercentageEnduranceUsed=None,
                           SSDLifeRemaining=None, DriveRotationalSpeed=10000, OperationalStatus=[DRIVE_OK])

    # Parts of the enclosure

    def test_a_fan_that_fails_and_recovers(self):
        fan = self.shelf.enclosure.fans[1]
        self.change(fan, code=CRITICAL, reading=0)
        self.alert(305, PROCESSOR, PerceivedSeverity="5", HWSerialNumber="GS6-0001", HWLogicalLocation="Port 3 Box 1",
                   DeviceModel="SHELF 6", EventCategory="5", Summary="Fan of a storage box failed")
        self.assertEqual(self.sensors(), {"Fans": "FAILED", "Power supplies": "OK", "Temperature": "OK"})
        fan.code, fan.reading = OK, 5100
        self.alert(304, PROCESSOR, PerceivedSeverity="2")
        self.assertEqual(self.sensors()["Fans"], "OK")

    def test_a_power_supply_that_fails_and_recovers(self):
        supply = self.shelf.enclosure.power_supplies[0]
        self.change(supply, code=CRITICAL)
        self.alert(301, PROCESSOR, PerceivedSeverity="5")
        self.assertEqual(self.sensors(), {"Fans": "OK", "Power supplies": "FAILED", "Temperature": "OK"})
        supply.code = OK
        self.alert(302, PROCESSOR, PerceivedSeverity="2")

    def test_a_temperature_that_rises_and_falls(self):
        sensor = self.shelf.enclosure.sensors[1]
        self.change(sensor, code=NON_CRITICAL, reading=55)
        self.alert(308, PROCESSOR, PerceivedSeverity="3")
        sensor.code, sensor.reading = CRITICAL, 70
        self.alert(309, PROCESSOR, PerceivedSeverity="6")
        sensor.code, sensor.reading = OK, 38
        self.alert(307, PROCESSOR, PerceivedSeverity="2")

    # Disks

    def test_a_disk_that_predicts_its_failure(self):
        disk = self.shelf.spindle
        self.change(disk, predicts_failure=True)
        self.alert(204, f'DeviceID="{disk.serial}"', PerceivedSeverity="3", HWSerialNumber=disk.serial,
                   HWLogicalLocation="Port 0 Box 1 Bay 1", DeviceModel="SPINDLE 1200", EventCategory="4")
        self.assertEqual(self.drive(disk)["OperationalStatus"], [DRIVE_PREDICTS])
        disk.predicts_failure = False
        self.alert(201, f'DeviceID="{disk.serial}"', PerceivedSeverity="2")
        self.assertEqual(self.drive(disk)["OperationalStatus"], [DRIVE_OK])

    def test_a_disk_whose_failure_the_enclosure_predicts(self):
        disk = self.shelf.flash
        bay = self.shelf.bay_of(disk)
        self.change(bay, predicts_failure=True)
        self.alert(204, f'DeviceID="{disk.serial}"')
        bay.predicts_failure = False
        self.alert(201, f'DeviceID="{disk.serial}"')

    def test_a_disk_that_the_enclosure_calls_failed(self):
        disk = self.shelf.third
        bay = self.shelf.bay_of(disk)
        self.change(bay, code=CRITICAL)
        self.alert(202, f'DeviceID="{disk.serial}"', HWLogicalLocation="Port 2 Box 1 Bay 4")
        self.assertEqual(self.drive(disk)["OperationalStatus"], [DRIVE_ERROR])
        bay.code = None
        self.alert(201, f'DeviceID="{disk.serial}"')

    def test_a_disk_that_is_not_ready(self):
        disk = self.shelf.third
        self.change(disk, not_ready=True)
        self.alert(202, f'DeviceID="{disk.serial}"', HWSerialNumber=disk.serial)
        self.assertEqual(self.drive(disk)["OperationalStatus"], [DRIVE_ERROR])
        disk.not_ready = False
        self.alert(201, f'DeviceID="{disk.serial}"')

    def test_a_solid_state_disk_that_is_worn_out(self):
        disk = self.shelf.flash
        self.change(disk, endurance_used=100)
        self.alert(401, f'DeviceID="{disk.serial}"')
        self.assert_fields(self.drive(disk), SSDPercentageEnduranceUsed=100, SSDLifeRemaining=0, SSDWearStatus=-1)
        disk.endurance_used = 7
        self.alert(201, f'DeviceID="{disk.serial}"')

    def test_a_disk_is_exchanged_for_one_that_predicts_its_failure(self):
        old, new, bay = self.shelf.third, self.shelf.spare, self.shelf.bay_of(self.shelf.third)
        node = self.machine.run(f"grep -l {old.serial} /sys/block/sd*/device/vpd_pg80").split("/")[3]
        self.machine.qmp.command("device_del", id="unit2")
        bay.disk = None
        self.machine.run(f"echo 1 >/sys/block/{node}/device/delete")
        _, seconds = wait_for("the old disk to go", lambda: old.serial not in self.serials())
        self.measure("disk of a box pulled until its instance is gone", seconds)
        self.assertNotIn(old.serial, str(self.machine.instances("KDV_SASStorageExtent")))

        new.predicts_failure = True
        bay.disk = new
        self.machine.qmp.command("device_add", driver="scsi-generic", id="unit2", bus="hba0.0", drive="spare",
                                 **{"scsi-id": 2})
        self.machine.run("echo '- - -' >/sys/class/scsi_host/host0/scan")
        _, seconds = wait_for("the new disk to come", lambda: new.serial in self.serials())
        self.measure("disk of a box inserted until its instance is there", seconds)
        begin = time.monotonic()
        alert = self.alert(204, f'DeviceID="{new.serial}"', lambda: None, HWLogicalLocation="Port 2 Box 1 Bay 4")
        self.measure("instance of the inserted disk there until its alert is here", alert.received - begin)
        self.assert_fields(self.drive(new), ElementName="Port 2 Box 1 Bay 4", OperationalStatus=[DRIVE_PREDICTS])
        new.predicts_failure = False
        self.alert(201, f'DeviceID="{new.serial}"')
        self.shelf.third, self.shelf.spare = new, old
        self.shelf.disks[2] = new

    # Last by its name: the server is another one afterwards

    def test_z_without_privileges_the_rest_is_published(self):
        self.machine.stop_serving()
        self.machine.run(f"mv {LOG} {LOG}.root; rm -rf /tmp/state; chmod 777 /tmp")
        self.machine.serve(user="nobody")
        self.machine.refresh()
        drives = {drive["DeviceID"]: drive for drive in self.machine.instances("KDV_SASDiskDrive")}
        self.assertEqual(set(drives), {disk.serial for disk in self.shelf.disks})
        self.assertEqual({drive["OperationalStatus"][0] for drive in drives.values()}, {DRIVE_UNKNOWN})
        self.assertEqual({drive["ElementName"] for drive in drives.values()},
                         {"Port 0 Box 1 Bay 1", "Port 1 Box 1 Bay 2", "Port 2 Box 1 Bay 4"})
        self.assertEqual(self.sensors(), {"Fans": "UNKNOWN", "Power supplies": "UNKNOWN", "Temperature": "UNKNOWN"})
        reports = [line for line in self.machine.log().splitlines() if "no permission to ask devices" in line]
        self.assertEqual(len(reports), 1, reports)
