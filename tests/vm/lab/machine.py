"""A virtual machine: an emulated PC with the kernel of a Debian package, our own first process and a shell on a port.

    with Machine("name", devices=["-device", "mptsas1068,id=hba0", ...], modules=["mptsas"],
                 files={"/etc/x": b"..."}, programs={"/sbin/mdadm": path}, forwards=[5988]) as machine:
        machine.run("cat /proc/mdstat")         # output; CommandFailed when the status is not 0
        machine.qmp.command("device_del", id="disk0")
        machine.ports[5988]                     # the port of this machine that leads to the guest's

Nothing is installed and nothing needs root: kernel and tools are unpacked packages, the network is the emulator's own.
Hardware acceleration is used where it works; KDV_VM_ACCEL=tcg or kvm decides otherwise.
"""
import os
import re
import shutil
import socket
import subprocess
import tempfile
import time

from lab import packages
from lab.acceleration import accelerator
from lab.archive import Archive
from lab.modules import ModuleTree
from lab.places import GUEST, RUNS
from lab.qmp import Qmp
from lab.waiting import PATIENCE, wait_for

SHELL_PORT = 7


class CommandFailed(AssertionError):
    pass


class BootFailed(AssertionError):
    pass


class Machine:
    ALWAYS = ["e1000", "sd_mod", "sg"]

    def __init__(self, name, devices=(), modules=(), files=None, programs=None, forwards=(), memory=512,
                 chipset="q35", kernel_options=""):
        self.name = name
        self.ports = {}
        self.qmp = None
        self.boot_seconds = None
        self.folder = RUNS / name
        self.console_file = self.folder / "console.log"
        self._devices = list(devices)
        self._modules = self.ALWAYS + list(modules)
        self._files = dict(files or {})
        self._programs = dict(programs or {})
        self._forwards = [SHELL_PORT, *forwards]
        self._memory = memory
        self._chipset = chipset
        self._kernel_options = kernel_options
        self._emulator = None
        self._sockets = None

    def __enter__(self):
        try:
            self.boot()
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_):
        self.stop()

    # Making it

    def _archive(self, kernel):
        """The guest's files. Modules beside those of the package come in through files, below /modules."""
        archive = Archive()
        archive.console()
        for folder in ("/proc", "/sys", "/tmp", "/root", "/run"):
            archive.folder(folder)
        busybox = packages.unpacked("busybox-static") / "bin" / "busybox"
        archive.file("/bin/busybox", busybox.read_bytes(), executable=True)
        archive.link("/bin/sh", "busybox")
        archive.file("/init", (GUEST / "init").read_bytes(), executable=True)
        archive.file("/bin/run-script", (GUEST / "run-script").read_bytes(), executable=True)
        order = []
        for module in ModuleTree(kernel).in_order(self._modules):
            archive.file(f"/modules/{module.name}", module.read_bytes())
            order.append(f"/modules/{module.name}\n")
        order += [f"{path}\n" for path in self._files if path.endswith(".ko")]
        archive.file("/etc/modules.order", "".join(order).encode())
        for path, source in self._programs.items():
            archive.program(path, source)
        for path, data in self._files.items():
            archive.file(path, data, executable=data[:2] == b"#!")
        return archive.content()

    def _command_line(self, kernel):
        accel = accelerator(kernel)
        # With the kernel's own hot-plug of PCI Express a slot has the number that the board gave it.
        slots = ["-global", "ICH9-LPC.acpi-pci-hotplug-with-bridge-support=off"] if self._chipset == "q35" else []
        forwards = "".join(f",hostfwd=tcp:127.0.0.1:0-:{port}" for port in self._forwards)
        return ["qemu-system-x86_64", "-accel", accel, "-machine", self._chipset,
                "-cpu", "host" if accel == "kvm" else "qemu64", "-m", str(self._memory), "-nodefaults", "-no-reboot",
                "-display", "none", "-kernel", str(next((kernel / "boot").glob("vmlinuz-*"))),
                "-initrd", str(self.folder / "initrd"),
                "-append", f"console=ttyS0 quiet loglevel=4 panic=-1 {self._kernel_options}".strip(),
                "-serial", f"file:{self.console_file}", "-qmp", f"unix:{self._sockets}/qmp,server=on,wait=off",
                "-netdev", f"user,id=net0{forwards}", "-device", "e1000,netdev=net0,romfile=",
                *slots, *self._devices]

    def boot(self, seconds=120):
        if not shutil.which("qemu-system-x86_64"):
            raise packages.NotAvailable("there is no qemu-system-x86_64 here: tools/install-packages vm brings it")
        begin = time.monotonic()
        kernel = packages.kernel()
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        (self.folder / "initrd").write_bytes(self._archive(kernel))
        self._sockets = tempfile.mkdtemp(prefix="kdv-vm-")  # the path of a socket has to be short
        with open(self.folder / "emulator.log", "wb") as log:
            self._emulator = subprocess.Popen(self._command_line(kernel), stdin=subprocess.DEVNULL, stdout=log,
                                              stderr=subprocess.STDOUT)
        wait_for("the emulator", lambda: self._ended() or os.path.exists(f"{self._sockets}/qmp"))
        self._fail_if_ended()
        self.qmp = Qmp(f"{self._sockets}/qmp")
        self._find_ports()
        wait_for(f"machine {self.name} to boot", self._is_up, seconds)
        self.boot_seconds = time.monotonic() - begin

    def _find_ports(self):
        for host, guest in re.findall(r"HOST_FORWARD\]\s+\d+\s+127\.0\.0\.1\s+(\d+)\s+\S+\s+(\d+)",
                                      self.qmp.human("info usernet")):
            self.ports[int(guest)] = int(host)

    def _ended(self):
        return self._emulator.poll() is not None

    def _fail_if_ended(self):
        if self._ended():
            raise BootFailed(f"the emulator of machine {self.name} ended:\n"
                             f"{(self.folder / 'emulator.log').read_text(errors='replace')[-2000:]}\n"
                             f"{self.console_tail()}")

    def _is_up(self):
        self._fail_if_ended()
        return "guest: ready" in self.console()

    # Using it

    def console(self):
        try:
            return self.console_file.read_text(errors="replace")
        except FileNotFoundError:
            return ""

    def console_tail(self, lines=25):
        tail = [line.rstrip() for line in self.console().splitlines() if line.strip()][-lines:]
        return f"last lines of the console of {self.name} ({self.console_file}):\n  " + "\n  ".join(tail)

    def attempt(self, script, seconds=60):
        """Runs a script in a shell of its own in the guest: its exit status, and its output as bytes."""
        try:
            with socket.create_connection(("127.0.0.1", self.ports[SHELL_PORT]), 10 * PATIENCE) as connection:
                connection.settimeout(seconds * PATIENCE)
                connection.sendall(script.encode())
                connection.shutdown(socket.SHUT_WR)
                output = b""
                while not (end := re.search(rb"\n#exit (\d+)#\n$", output[-40:])):
                    piece = connection.recv(1 << 16)
                    if not piece:
                        raise ConnectionError("the guest closed the connection")
                    output += piece
        except OSError as error:
            raise CommandFailed(f"machine {self.name} did not answer to: {script}\n{error}\n"
                                f"{self.console_tail()}") from None
        return int(end.group(1)), output[:len(output) - len(end.group(0))]

    def run(self, script, seconds=60):
        """The output of a script that has to succeed, as text without blanks at its ends."""
        status, output = self.attempt(script, seconds)
        text = output.decode(errors="replace").strip()
        if status != 0:
            raise CommandFailed(f"in machine {self.name} this ended with {status}: {script}\n{text}\n"
                                f"{self.console_tail()}")
        return text

    def read(self, path):
        """A file of the guest, byte for byte."""
        status, output = self.attempt(f"cat '{path}'")
        if status != 0:
            raise CommandFailed(f"machine {self.name} cannot read {path}: {output.decode(errors='replace')}")
        return output

    def stop(self):
        if self.qmp:
            self.qmp.close()
            self.qmp = None
        if self._emulator:
            self._emulator.terminate()
            try:
                self._emulator.wait(20)
            except subprocess.TimeoutExpired:
                self._emulator.kill()
                self._emulator.wait()
            self._emulator = None
        if self._sockets:
            shutil.rmtree(self._sockets, ignore_errors=True)
        (self.folder / "initrd").unlink(missing_ok=True)
