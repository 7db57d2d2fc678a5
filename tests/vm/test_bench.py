"""The provider over a machine that the module kdvbench makes: expanders, boxes, second ways, a volume, real plug events.

What is there is written in module/machine.c; what can go wrong, in module/control.c.
"""
from lab.case import MachineCase
from lab.provider import ProviderMachine, QUICK
from lab.waiting import wait_for
from module import CONTROL, UNITS, kernel_module

# Serial number: place in words, number, and the OperationalStatus at the start.
DRIVES = {
    "ADA000000001": ("Port 0 Box 1 Bay 1", 1001, 2),
    "ADB000000002": ("Port 0 Box 1 Bay 2", 1002, 2),
    "FCC000000003": ("Port 0 Box 1 Bay 3", 1003, 2),
    "ADD000000004": ("Port 0 Box 1 Bay 4", 1004, 2),
    "ADE000000005": ("Port 0 Box 1 Bay 5", 1005, 2),
    "ADF000000006": ("Port 0 Box 1 Bay 6", 1006, 2),
    "ADH000000008": ("Port 0 Box 2 Bay 0", 2000, 2),
    "FCI000000009": ("Port 0 Box 2 Bay 1", 2001, 5),  # worn out
    "ADK000000011": ("Port 6 Device 6", 6, 2),
    "FCL000000012": ("Port 7 Device 7", 7, 2),
}
BOX_A = "KDV_SASStorageEnclosureProcessor-0-1"
BOX_B = "KDV_SASStorageEnclosureProcessor-0-2"
VOLUME = "StorageVolume:0"

# Of the captured machine that is not well; what they make of its records is in tests/unit/sysfs/captures.
FAULTS = ["unplug a1/2", "sleep a1 on", "unplug a2", "plug a7", "predict a3 on", "slot a 3 critical", "ready a5 off",
          "hang a6 on", "slotpredict b 0 on", "fan a 1 noncritical", "supply b 0 critical", "temperature b noncritical",
          "volume resyncing"]

# Passes of the provider come every 30 seconds without an event, so what is there sooner came with one.
SOONER_THAN_A_PASS = 15


class Bench(MachineCase):
    @classmethod
    def make_machine(cls):
        machine = ProviderMachine(
            "bench", settings={**QUICK, "deviceDeadlineSeconds": 4},
            devices=["-device", "pcie-root-port,id=slot3,slot=3,chassis=3", "-device", "edu,bus=slot3"],
            modules=["ses", "scsi_transport_sas", "raid_class"],
            files={"/modules/kdvbench.ko": kernel_module().read_bytes()})
        machine.boot()
        machine.run("mount -t debugfs debug /sys/kernel/debug")
        machine.serve()
        return machine

    def setUp(self):
        self.machine.wait_refreshing("everything to be as at the start",
                                     lambda: self.states() == self.states_at_start())

    # Asking

    def drives(self):
        return {drive["DeviceID"]: drive for drive in self.machine.instances("KDV_SASDiskDrive")}

    def states(self):
        return {serial: drive["OperationalStatus"][0] for serial, drive in self.drives().items()}

    @staticmethod
    def states_at_start():
        return {serial: status for serial, (_, _, status) in DRIVES.items()}

    def places(self):
        """Of the drives, by their numbers."""
        return {int(place["Name"].rpartition("-")[2]): place["ElementName"]
                for place in self.machine.instances("KDV_SASDiskDriveLocation")}

    def order(self, *orders):
        self.machine.run("\n".join(f"echo {order} >{CONTROL} || exit 1" for order in orders))

    def unit(self, name):
        line = next(line for line in self.machine.run(f"cat {UNITS}").splitlines() if line.split()[0] == name)
        return dict(part.split("=") for part in line.split()[2:])

    def goes_through(self, *rounds):
        """Orders given together, and the events that they make of elements: those and no others."""
        for orders in rounds:
            mark = self.machine.listener.mark()
            self.order(*(order for order, _, _ in orders))
            for _, event, element in orders:
                self.machine.listener.wait(event, element, mark, meanwhile=self.machine.refresh)
            came = [(int(alert["EventID"]), alert["AlertingManagedElement"])
                    for alert in self.machine.listener.since(mark)]
            self.assertEqual(len(came), len(orders), came)

    def becomes(self, serial, status):
        self.machine.wait_refreshing(f"{serial} to have status {status}",
                                     lambda: self.states().get(serial) == status)

    # What is there

    def test_the_adapter_has_its_name_slot_and_firmware(self):
        adapters = self.machine.status()["adapters"]
        self.assertEqual([adapter["id"] for adapter in adapters], ["ACME SAS3508-8i ACMEHBA00042"])
        self.assertEqual(adapters[0]["name"], "SAS HBA in Slot 3")
        self.assertEqual(adapters[0]["firmware"], "16.00.12.00")
        self.assertEqual(adapters[0]["health"], "OK")

    def test_boxes_are_there_with_and_without_the_kernels_enclosure_driver(self):
        known = self.machine.run("cat /sys/class/enclosure/*/id").split()
        self.assertEqual(known, ["0x5db00000000a0000"] * 2, "both processors of box a, and not that of box b")
        boxes = self.machine.by_id("boxes")
        self.assertEqual({name: (box["name"], box["bays"], box["detail"]) for name, box in boxes.items()}, {
            "KDV_SASDriveCage-0-1": ("Port 0 Box 1", 8, "ACMEBOX SHELF8, serial SHELF-A-0001"),
            "KDV_SASDriveCage-0-2": ("Port 0 Box 2", 4, "ACMEBOX SHELF4, serial SHELF-B-0002")})
        for box in boxes.values():
            self.assertEqual([sensor["health"] for sensor in box["sensors"]], ["OK", "OK", "OK"])

    def test_drives_have_their_places_and_numbers(self):
        self.assertEqual({serial: drive["ElementName"] for serial, drive in self.drives().items()},
                         {serial: place for serial, (place, _, _) in DRIVES.items()})
        self.assertEqual(self.places(), {number: place for place, number, _ in DRIVES.values()})

    def test_drives_are_described(self):
        drives = self.drives()
        self.assertEqual({serial for serial, drive in drives.items() if drive["DriveInterface"] == 2},
                         {"ADD000000004", "FCL000000012"}, "the SATA ones")
        self.assertEqual({serial: drive["SSDLifeRemaining"] for serial, drive in drives.items()
                          if drive.get("SSDLifeRemaining") is not None},
                         {"FCC000000003": 93, "FCI000000009": 0, "FCL000000012": 100})
        self.assertEqual(drives["FCC000000003"]["SSDTotalPowerOnHours"], 9001)
        self.assertEqual({serial: drive["DriveRotationalSpeed"] for serial, drive in drives.items()
                          if drive.get("DriveRotationalSpeed")},
                         {"ADA000000001": 10000, "ADB000000002": 7200, "ADD000000004": 7200, "ADE000000005": 7200,
                          "ADF000000006": 15000, "ADH000000008": 10000, "ADK000000011": 10000})
        firmware = {entry["VersionString"] for entry in self.machine.instances("KDV_SASDiskDriveFirmware")}
        self.assertLessEqual({"SN02.117", "SBFM0001", "TT31"}, firmware, "the whole name of SATA ones")

    # Second ways

    def test_a_drive_with_two_ways_is_one_drive_until_both_are_gone(self):
        serial, number = "ADA000000001", 1001
        disks = self.machine.run("cat /sys/block/sd*/device/wwid").split()
        self.assertEqual(disks.count("naa.5db1000000000110"), 2, "the kernel has it twice")
        self.addCleanup(self.order, "plug a1")
        for way, port in (("a1/1", 4), ("a1/2", 0)):
            with self.subTest(cut=way):
                self.order(f"unplug {way}")
                self.machine.wait_refreshing(
                    "the other way to be told", lambda: self.places()[number] == f"Port {port} Box 1 Bay 1")
                self.assertEqual(self.states().get(serial), 2)
            self.order("plug a1")
        self.order("unplug a1")
        self.machine.wait_refreshing("the drive to go", lambda: serial not in self.drives())
        self.order("plug a1")
        self.machine.wait_refreshing("the drive to come back", lambda: self.states().get(serial) == 2)
        self.assertIn(number, self.places())

    # Plugging

    def everything_of(self, serial, place, number):
        """Instances in which a drive shows, as text."""
        found = [drive["DeviceID"] for drive in self.machine.instances("KDV_SASDiskDrive")]
        found += [entry["Name"] for entry in self.machine.instances("KDV_SASDiskDriveLocation")]
        found += [entry.get("SerialNumber") for entry in self.machine.instances("KDV_SASDiskPhysicalPackage")]
        return [text for text in found if text in (serial, place, f"KDV_SASDiskDriveLocation-0-{number}")]

    def test_a_pull_takes_all_instances_and_an_insert_brings_them_with_an_alert(self):
        serial, place, number = "ADB000000002", "Port 0 Box 1 Bay 2", 1002
        before = self.everything_of(serial, place, number)
        self.assertEqual(len(before), 3)
        self.addCleanup(self.order, "plug a2", "predict a2 off")
        self.machine.refresh()  # a pass by the clock is half a minute away now
        mark = self.machine.listener.mark()
        self.order("unplug a2", "predict a2 on")
        wait_for("the pull to be seen", lambda: serial not in self.drives(), SOONER_THAN_A_PASS)
        self.assertEqual(self.everything_of(serial, place, number), [])
        self.order("plug a2")
        wait_for("the insert to be seen", lambda: serial in self.drives(), SOONER_THAN_A_PASS)
        self.assertEqual(self.everything_of(serial, place, number), before, "the same number in the same bay")
        alert = self.machine.listener.wait(204, serial, mark, seconds=SOONER_THAN_A_PASS)
        self.assertEqual(alert["HWLogicalLocation"], place)
        self.assertEqual(alert["HWSerialNumber"], serial)
        self.assertEqual((alert["HWManufacturer"], alert["DeviceModel"]), ("ACMEDISK", "AD4000-7K2"))
        self.goes_through([("predict a2 off", 201, serial)])

    def test_a_drive_in_an_empty_bay_gets_the_number_of_the_bay(self):
        self.addCleanup(self.order, "unplug a7", "unplug b2")
        self.order("plug a7", "plug b2")
        wait_for("both drives", lambda: {"ADG000000007", "ADJ000000010"} <= set(self.drives()), SOONER_THAN_A_PASS)
        self.machine.wait_refreshing("the box to say where", lambda: 2002 in self.places())
        self.assertEqual((self.places()[1007], self.places()[2002]), ("Port 0 Box 1 Bay 7", "Port 0 Box 2 Bay 2"))
        self.becomes("ADG000000007", 2)
        self.becomes("ADJ000000010", 2)
        self.order("unplug a7", "unplug b2")
        wait_for("both to go", lambda: set(self.drives()) == set(DRIVES), SOONER_THAN_A_PASS)

    def test_another_drive_in_the_same_bay_is_a_pull_and_an_insert(self):
        self.addCleanup(self.order, "unplug a6", "plug a6 serial=ADF000000006")
        self.machine.refresh()
        self.order("unplug a6", "plug a6 serial=OTHER0000001")  # sooner than any pass
        wait_for("the other drive", lambda: "OTHER0000001" in self.drives(), SOONER_THAN_A_PASS)
        self.assertNotIn("ADF000000006", self.drives())
        self.assertEqual(self.places()[1006], "Port 0 Box 1 Bay 6")
        self.becomes("OTHER0000001", 2)

    # Faults

    def test_faults_of_boxes_are_alerts_of_their_processors(self):
        """Of the box that the kernel's driver knows, and of that which it passes over."""
        self.goes_through(
            [("fan a 1 critical", 305, BOX_A), ("supply a 0 unrecoverable", 301, BOX_A),
             ("temperature a noncritical", 308, BOX_A), ("supply b 1 noncritical", 303, BOX_B)],
            [("fan a 1 noncritical", 306, BOX_A), ("supply a 0 ok", 302, BOX_A), ("temperature a ok", 307, BOX_A),
             ("temperature b critical", 309, BOX_B), ("fan b 0 critical", 305, BOX_B)],
            [("fan a 1 ok", 304, BOX_A), ("supply b 1 ok", 302, BOX_B), ("temperature b ok", 307, BOX_B),
             ("fan b 0 ok", 304, BOX_B)])

    def test_faults_of_drives_are_alerts_of_the_drives(self):
        """Whether they say it themselves or their box says it of their bay."""
        self.goes_through(
            [("predict a3 on", 204, "FCC000000003"), ("ready a5 off", 202, "ADE000000005"),
             ("slot a 3 critical", 202, "ADD000000004"), ("slotpredict b 0 on", 204, "ADH000000008")],
            [("predict a3 off", 201, "FCC000000003"), ("ready a5 on", 201, "ADE000000005"),
             ("slot a 3 ok", 201, "ADD000000004"), ("slotpredict b 0 off", 201, "ADH000000008")])

    def test_the_volume_has_its_level_and_alerts(self):
        volumes = self.machine.status()["volumes"]
        self.assertEqual([volume["name"] for volume in volumes], ["Logical Volume 0 (RAID 5)"])
        self.assertIn("390 GiB", volumes[0]["detail"])
        self.goes_through([("volume degraded", 103, VOLUME)], [("volume active", 101, VOLUME)],
                          [("volume resyncing", 103, VOLUME)], [("volume offline", 102, VOLUME)],
                          [("volume active", 101, VOLUME)])

    def test_a_hung_drive_delays_no_other(self):
        hung, other = "ADF000000006", "FCC000000003"
        self.addCleanup(self.order, "hang a6 off", "predict a3 off")
        log = len(self.machine.log())
        self.order("hang a6 on")
        self.goes_through([("predict a3 on", 204, other)], [("predict a3 off", 201, other)])
        self.becomes(hung, 0)
        self.goes_through([("predict a3 on", 204, other)], [("predict a3 off", 201, other)])
        complaints = [line for line in self.machine.log()[log:].splitlines() if "does not answer in time" in line]
        self.assertEqual(len(complaints), 1, complaints)
        self.assertEqual({serial: status for serial, status in self.states().items() if serial != hung},
                         {serial: status for serial, status in self.states_at_start().items() if serial != hung})
        self.order("hang a6 off")
        self.becomes(hung, 2)

    def test_a_hung_drive_can_be_pulled(self):
        serial = "ADF000000006"
        self.addCleanup(self.order, "plug a6")
        self.order("hang a6 on")
        self.becomes(serial, 0)
        self.order("unplug a6")
        wait_for("the pull to be seen", lambda: serial not in self.drives(), SOONER_THAN_A_PASS)

    def test_a_sleeping_drive_is_left_asleep(self):
        self.addCleanup(self.order, "sleep a5 off")
        self.order("sleep a5 on")
        ready_tests = int(self.unit("a5")["ready_tests"])
        self.machine.wait_refreshing("it to be asked", lambda: int(self.unit("a5")["ready_tests"]) >= ready_tests + 2)
        self.order("forget")
        self.machine.wait_refreshing("it to be asked thrice", lambda: int(self.unit("a5")["ready_tests"]) >= 3)
        counts = self.unit("a5")
        self.assertEqual((counts["log_pages"], counts["other"]), ("0", "0"), "nothing but whether it is ready")
        self.assertEqual(self.states()["ADE000000005"], 2)

    def test_a_reset_drive_is_asked_again_and_stays_well(self):
        mark = self.machine.listener.mark()
        self.order("forget", "attention a5 on")
        self.machine.wait_refreshing("it to be asked", lambda: int(self.unit("a5")["log_pages"]) >= 2)
        self.assertEqual(self.states()["ADE000000005"], 2)
        self.assertEqual([str(alert) for alert in self.machine.listener.since(mark) if "ADE000000005" in str(alert)], [])

    # The whole adapter

    def test_the_adapter_goes_and_comes_back_with_the_same_numbers(self):
        """And then the kernel knows both boxes, from which nobody should see a difference."""
        driver = "/sys/bus/pci/drivers/kdvbench"
        function = self.machine.run(f"cd {driver} && ls -d 0000:*")
        unbind, bind = (f"echo {function} >{driver}/{verb}" for verb in ("unbind", "bind"))
        self.addCleanup(self.machine.run, f"{unbind}; echo encserv b off >{CONTROL}; {bind}")
        mark = self.machine.listener.mark()
        self.machine.run(unbind)
        wait_for("the drives to go", lambda: not self.drives(), SOONER_THAN_A_PASS)
        self.machine.listener.wait(2, "KDV_SASArrayController", mark, meanwhile=self.machine.refresh)
        self.assertEqual({box["health"] for box in self.machine.status()["boxes"]}, {"UNKNOWN"})
        self.order("encserv b on")
        self.machine.run(bind)
        wait_for("the drives to come back", lambda: set(self.drives()) == set(DRIVES), SOONER_THAN_A_PASS)
        self.machine.listener.wait(1, "KDV_SASArrayController", mark, meanwhile=self.machine.refresh)
        self.machine.wait_refreshing("them to be well", lambda: self.states() == self.states_at_start())
        self.assertEqual(len(self.machine.run("ls /sys/class/enclosure").split()), 3)
        self.test_drives_have_their_places_and_numbers()
        self.assertEqual(set(self.machine.by_id("boxes")), {"KDV_SASDriveCage-0-1", "KDV_SASDriveCage-0-2"})
