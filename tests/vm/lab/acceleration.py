"""Whether the processor may run the guest. A /dev/kvm that can be opened promises nothing: inside some virtual machines
a guest starts on it and then stands still, so the kernel itself is tried once."""
import os
import subprocess

from lab.places import KEPT


def _kernel_runs(kernel):
    """Without a root file system the kernel gives up within two seconds, and the emulator ends with it."""
    trial = ["qemu-system-x86_64", "-accel", "kvm", "-machine", "q35", "-cpu", "host", "-m", "256", "-nodefaults",
             "-no-reboot", "-display", "none", "-kernel", str(next((kernel / "boot").glob("vmlinuz-*"))),
             "-append", "panic=-1"]
    try:
        return subprocess.run(trial, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              timeout=15).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def accelerator(kernel):
    """"kvm" or "tcg", as KDV_VM_ACCEL says, or as was found out on this host before."""
    if chosen := os.environ.get("KDV_VM_ACCEL"):
        return chosen
    if not os.access("/dev/kvm", os.R_OK | os.W_OK):
        return "tcg"
    known = KEPT / "accelerator"
    host = os.uname().release
    if known.exists():
        found, _, of_host = known.read_text().partition(" ")
        if of_host == host:
            return found
    found = "kvm" if _kernel_runs(kernel) else "tcg"
    known.write_text(f"{found} {host}")
    return found
