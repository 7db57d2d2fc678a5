"""Arrays of the md driver over disks of an adapter: members, spares, a failure, the rebuilding and its end."""
import time

from lab.case import MachineCase
from lab.provider import ProviderMachine, empty_file, hba, temporary_folder

OK, DEGRADED, REBUILD = 2, 3, 11
DISKS = ["MD0001", "MD0002", "MD0003", "MD0004"]
MIB = 1 << 20
ARRAY_MIB = 96
VOLUME = 'StorageVolume:1000"'  # arrays are numbered from 1000 on: this is md0


class MirrorWithASpare(MachineCase):
    @classmethod
    def make_machine(cls):
        folder = temporary_folder()
        cls.addClassCleanup(folder.cleanup)
        options = hba()
        for number, serial in enumerate(DISKS):
            file = empty_file(f"{folder.name}/{serial}", 128 * MIB)
            options += ["-blockdev", f"driver=file,node-name=medium{number},filename={file},discard=unmap",
                        "-device", f"scsi-hd,id=disk{number},bus=hba0.0,scsi-id={number},drive=medium{number},vendor=ACME,"
                                   f"product=SPINDLE,ver=0001,serial={serial},wwn={0x5000A72000000100 + number * 16},"
                                   "rotation_rate=10500"]
        machine = ProviderMachine("arrays", devices=options, modules=["mptsas", "md-mod", "raid1"])
        machine.boot()
        cls.machine = machine
        machine.run(f"while [ $(ls /sys/block | grep -c ^sd) -lt {len(DISKS)} ]; do usleep 100000; done")
        names = machine.run("for disk in /sys/block/sd*; do echo $(tail -c +5 $disk/device/vpd_pg80) $(basename $disk);"
                            " done")
        cls.node = {serial: f"/dev/{name}" for serial, name in (line.split() for line in names.splitlines())}
        first, second, spare, _ = (cls.node[serial] for serial in DISKS)
        machine.run("mdadm --create /dev/md0 --run --metadata=1.2 --level=1 --raid-devices=2 --spare-devices=1 "
                    f"--assume-clean --size={ARRAY_MIB}M {first} {second} {spare} 2>&1")
        machine.serve()
        machine.wait_refreshing("all disks to be asked", lambda: machine.status()["health"] == "OK")
        return machine

    @classmethod
    def fail_slowly(cls, serial):
        """A member fails, and the rebuilding goes at a pace at which it can be looked at."""
        cls.machine.run("echo 200 >/sys/block/md0/md/sync_speed_max; echo 100 >/sys/block/md0/md/sync_speed_min; "
                        f"mdadm /dev/md0 --fail {cls.node[serial]} 2>&1")

    def volume(self):
        volume, = self.machine.instances("KDV_SASStorageVolume")
        return volume

    def uses(self):
        return {disk["id"]: disk["use"] for disk in self.machine.status()["disks"]}

    def roles(self):
        """Serial numbers of members, spares and the drive that is being rebuilt, as another reader of the machine has
        them: which drive belongs to which volume is published as it was when the server started."""
        hba, = self.machine.records()["hbas"]
        serials = {drive["driveNumber"]: drive["serialNumber"] for drive in hba["physicalDrives"]}
        volume, = hba["logicalDrives"]
        return ([serials[number] for number in volume["members"]], [serials[number] for number in volume["spares"]],
                serials.get(volume.get("rebuildingDrive")))

    def test_a_mirror_fails_rebuilds_on_its_spare_and_is_whole_again(self):
        self.assert_fields(self.volume(), ElementName="Logical Volume 1000 (RAID 1)", OSName="/dev/md0",
                           OperationalStatus=[OK], BlockSize=512)
        self.assertEqual(self.machine.records()["hbas"][0]["logicalDrives"][0]["size"], ARRAY_MIB)
        published, = self.machine.status()["volumes"]
        self.assertEqual(published["members"], ["MD0001", "MD0002"])
        self.assertEqual(self.roles(), (["MD0001", "MD0002"], ["MD0003"], None))
        self.assertEqual(self.uses(), {"MD0001": "member", "MD0002": "member", "MD0003": "spare",
                                       "MD0004": "unassigned"})

        mark = self.machine.listener.mark()
        self.fail_slowly("MD0002")
        begin = time.monotonic()
        alert = self.machine.listener.wait(103, VOLUME, mark)
        self.measure("member of a mirror failed until the alert is here, nobody asking", alert.received - begin)
        self.assert_fields(alert, MessageID="KDVSAS0103", EventCategory="3", PerceivedSeverity="5",
                           Summary="Logical drive is not redundant")
        volume = self.volume()
        self.assert_fields(volume, OperationalStatus=[DEGRADED])
        self.machine.wait_refreshing("the rebuilding to show", lambda: self.volume()["ExtentStatus"] == [REBUILD])
        self.assertEqual(self.roles(), (["MD0001", "MD0003"], [], "MD0003"))
        self.assertEqual(self.uses()["MD0003"], "member")

        # At full speed the spare takes the place.
        mark = self.machine.listener.mark()
        self.machine.run("echo system >/sys/block/md0/md/sync_speed_max; echo 500000 >/sys/block/md0/md/sync_speed_min")
        alert = self.machine.listener.wait(101, VOLUME, mark, self.machine.refresh, seconds=120)
        self.assert_fields(alert, MessageID="KDVSAS0101", PerceivedSeverity="2")
        self.assert_fields(self.volume(), OperationalStatus=[OK])
        self.assertEqual(self.roles(), (["MD0001", "MD0003"], [], None))
        self.assertNotEqual(self.volume()["ExtentStatus"], [REBUILD])
        self.assertEqual(self.machine.run("cat /sys/block/md0/md/degraded"), "0")

        # The failed disk is taken out and put in again as the new spare.
        failed = self.node["MD0002"]
        self.machine.run(f"mdadm /dev/md0 --remove {failed} 2>&1 && mdadm --zero-superblock {failed} && "
                         f"mdadm /dev/md0 --add {failed} 2>&1")
        self.machine.wait_refreshing("the new spare", lambda: self.uses()["MD0002"] == "spare")
        self.assertEqual(self.roles(), (["MD0001", "MD0003"], ["MD0002"], None))
        self.assertEqual([str(alert) for alert in self.machine.listener.since(mark)][1:], [])
