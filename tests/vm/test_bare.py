"""A machine without any SAS hardware."""
import json

from lab.case import MachineCase
from lab.provider import LOG, ProviderMachine


class NoAdapter(MachineCase):
    @classmethod
    def make_machine(cls):
        machine = ProviderMachine("bare", devices=["-device", "ahci,id=sata0", "-blockdev",
                                                   "driver=null-co,node-name=medium,size=1073741824,read-zeroes=on",
                                                   "-device", "ide-hd,bus=sata0.0,drive=medium"], modules=["ahci"])
        machine.boot()
        machine.run("while ! test -e /sys/block/sda; do usleep 100000; done")
        machine.serve()
        machine.refresh()
        machine.refresh()
        return machine

    def test_there_is_no_adapter_and_no_disk_although_there_is_one_that_is_not_sas(self):
        self.assertEqual(self.machine.instances("KDV_SASArraySystem"), [])
        self.assertEqual(self.machine.instances("KDV_SASDiskDrive"), [])
        status = json.loads(self.machine.ask("status", good=(0, 1, 2, 3)))
        self.assertEqual([status[kind] for kind in ("adapters", "boxes", "volumes", "disks")], [[], [], [], []])

    def test_the_log_says_so_in_one_line_and_has_no_error(self):
        lines = [line for line in self.machine.log().splitlines() if "no SAS adapter found" in line]
        self.assertEqual(len(lines), 1, lines)
        self.assertIn("/sys/class/scsi_host", lines[0])
        self.assertIn("KDV_SAS_SCENARIO", lines[0])
        self.assertEqual(self.machine.run(f"grep -i error {LOG} || true"), "")

    def test_no_alert_came(self):
        self.assertEqual([str(alert) for alert in self.machine.listener.since(0)], [])
