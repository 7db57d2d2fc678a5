"""The object manager with the provider inside a guest, asked from here as its users ask it."""
import json
import subprocess
import tempfile

from lab import cimxml, packages
from lab.alerts import Listener
from lab.machine import Machine
from lab.places import BUILD
from lab.waiting import PATIENCE, wait_for

PORT = 5988
CONFIGURATION = "/etc/cim/zt-kdv"
LOG = "/tmp/provider.log"

# Devices are asked often, so that a fault made in a test is seen soon; an emulated one on a busy host may be slow.
QUICK = {"diskPollSeconds": 1, "boxPollSeconds": 1, "deviceDeadlineSeconds": 15}


def guest_files(settings):
    share = BUILD / "share" / "kdv-sas"
    files = {f"/opt/kdv/share/kdv-sas/{file.relative_to(share)}": file.read_bytes()
             for file in share.rglob("*") if file.is_file()}
    files[f"{CONFIGURATION}/KDV_SASIndication.json"] = (share / "etc" / "KDV_SASIndication.json").read_bytes()
    files[f"{CONFIGURATION}/KDVSasHbaMRA.json"] = json.dumps(settings).encode()
    return files


def guest_programs():
    programs = {f"/opt/kdv/lib/{library.name}": library for library in (BUILD / "lib").glob("libKDV*.so")}
    programs.update({f"/opt/kdv/bin/{name}": BUILD / "bin" / name for name in ("kdv-cimhost", "kdv-sas")})
    programs["/sbin/mdadm"] = packages.unpacked("mdadm") / "sbin" / "mdadm"
    programs["/usr/sbin/smartctl"] = packages.unpacked("smartmontools") / "usr" / "sbin" / "smartctl"
    return programs


class ProviderMachine(Machine):
    """A machine that can serve its SAS hardware. The server is started by serve(), when the hardware is as wanted."""

    def __init__(self, name, settings=None, files=None, programs=None, **options):
        super().__init__(name, files={**guest_files(settings or QUICK), **(files or {})},
                         programs={**guest_programs(), **(programs or {})}, forwards=[PORT], **options)
        self.listener = None

    def serve(self, subscribed=True, user=None):
        start = (f"KDV_LOG=file:{LOG} KDV_LOG_LEVEL=info /opt/kdv/bin/kdv-cimhost --listen 10.0.2.15:{PORT} "
                 "--state-dir /tmp/state --port-file /tmp/served >/tmp/cimhost.out 2>&1 & echo $! >/tmp/cimhost.pid")
        self.run("rm -f /tmp/cimhost.*; " + (f"su {user} -c '{start}'" if user else start))
        wait_for("the object manager", self._serves)
        if subscribed:
            self.listener = Listener()
            cimxml.subscribe(self.ports[PORT], self.listener.url)

    def _serves(self):
        status, _ = self.attempt("test -s /tmp/served || ! kill -0 $(cat /tmp/cimhost.pid)")
        if status != 0:
            return False
        self.run("test -s /tmp/served || { cat /tmp/cimhost.out; exit 1; }")
        return True

    def stop_serving(self):
        """Ends it as an administrator does; its exit status has to be good."""
        if self.listener:
            self.listener.stop()
            self.listener = None
        self.run("kill $(cat /tmp/cimhost.pid); while kill -0 $(cat /tmp/cimhost.pid) 2>/dev/null; do usleep 50000;"
                 " done; rm -f /tmp/served; grep -q 'kdv-cimhost ended' /tmp/cimhost.out")

    def stop(self):
        if self.listener:
            self.listener.stop()
            self.listener = None
        super().stop()

    # Asking

    def ask(self, *words, good=(0,)):
        command = [str(BUILD / "bin" / "kdv-sas"), "--server", f"http://127.0.0.1:{self.ports[PORT]}", "--json", *words]
        done = subprocess.run(command, capture_output=True, text=True, timeout=120 * PATIENCE)
        if done.returncode not in good:
            raise AssertionError(f"kdv-sas {' '.join(words)} ended with {done.returncode}: {done.stderr.strip()}\n"
                                 f"{self.server_tail()}\n{self.console_tail()}")
        return done.stdout

    def instances(self, class_name):
        return [entry["properties"] for entry in json.loads(self.ask("list", class_name))]

    def status(self):
        """Of everything, as kdv-sas status sees it; its own exit status tells how bad that is."""
        return json.loads(self.ask("status", good=(0, 1, 2, 3)))

    def by_id(self, kind):
        """Of the parts of status(), "adapters", "boxes", "volumes" or "disks"."""
        return {part["id"]: part for part in self.status()[kind]}

    def refresh(self):
        self.ask("refresh")

    def log(self):
        return self.attempt(f"cat {LOG}")[1].decode(errors="replace")

    def server_tail(self, lines=12):
        tail = self.log().splitlines()[-lines:]
        return "last lines of the provider's log:\n  " + "\n  ".join(tail)

    def records(self):
        """What the data library makes of the guest, in the form of a scenario, read without the server."""
        self.run("/opt/kdv/bin/kdv-sas scenario /tmp/scenario.json", 120)
        return json.loads(self.read("/tmp/scenario.json"))

    def capture(self, arguments=""):
        """What kdv-sas capture makes of this guest, as bytes of an archive."""
        self.run(f"/opt/kdv/bin/kdv-sas capture {arguments} /tmp/capture.tar.gz", 120)
        return self.read("/tmp/capture.tar.gz")

    def wait_refreshing(self, what, condition, seconds=90):
        """Waits for something that shows at a refresh after devices were asked."""
        def look():
            self.refresh()
            return condition()

        return wait_for(what, look, seconds, pause=0.3)[0]


def hba(name="hba0", slot=3, model="mptsas1068,sas_address=0x500605b000112230"):
    """Options of an emulated adapter in a slot that has a number."""
    return ["-device", f"pcie-root-port,id=slot{slot},slot={slot},chassis={slot}",
            "-device", f"{model},id={name},bus=slot{slot}"]


def empty_file(path, size):
    with open(path, "wb") as file:
        file.truncate(size)
    return path


def temporary_folder():
    return tempfile.TemporaryDirectory(prefix="kdv-vm-disks-")
