"""Debian packages for the guest, fetched with apt and unpacked without being installed.

Each package is fetched once: its folder below build/vm/packages appears under its name when it is complete.
"""
import os
import pathlib
import platform
import shutil
import subprocess
import tempfile

from lab.places import PACKAGES


class NotAvailable(Exception):
    """Something that every machine of the laboratory needs cannot be had here; the text says what."""


def _run(arguments, folder=None):
    done = subprocess.run(arguments, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace",
                          env={**os.environ, "LC_ALL": "C"})
    return done.returncode, done.stdout


def _download(name, folder):
    """apt's lists may be missing or too old on a fresh machine: they are fetched when the first try fails."""
    download = ["apt-get", "download", "-q", "-o", "APT::Sandbox::User=root", name]
    status, output = _run(download, folder)
    if status != 0:
        update = ["apt-get", "update", "-qq"]
        _run(update if os.geteuid() == 0 else ["sudo", "-n", *update])
        status, output = _run(download, folder)
    if status != 0:
        raise NotAvailable(f"cannot fetch the Debian package {name}; apt-get says:\n{output.strip()}")
    return next(pathlib.Path(folder).glob("*.deb"))


def unpacked(name):
    """The folder with the files of a package."""
    place = PACKAGES / name
    if place.is_dir():
        return place
    if platform.machine() != "x86_64":
        raise NotAvailable(f"the machines are x86-64 ones, and their packages cannot be had on {platform.machine()}")
    for program in ("apt-get", "dpkg"):
        if not shutil.which(program):
            raise NotAvailable(f"there is no {program} here to fetch the Debian package {name} with")
    print(f"Fetching the package {name} ...", flush=True)
    PACKAGES.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=PACKAGES, prefix=".new-") as folder:
        archive = _download(name, folder)
        content = pathlib.Path(folder, "content")
        content.mkdir()
        status, output = _run(["dpkg", "-x", str(archive), str(content)])
        if status != 0:
            raise NotAvailable(f"cannot unpack {archive.name}: {output.strip()}")
        content.chmod(0o755)
        content.rename(place)
    return place


def newest_dependency(name, prefix):
    """The package behind a name such as linux-image-amd64, which only points to the current kernel."""
    status, output = _run(["apt-cache", "depends", name])
    for line in output.splitlines() if status == 0 else []:
        word = line.split()[-1]
        if "Depends:" in line and word.startswith(prefix):
            return word
    return None


def kernel():
    """The folder of a whole kernel: the ones for cloud machines lack the drivers of SAS adapters."""
    fetched = sorted(PACKAGES.glob("linux-image-[0-9]*-amd64"))
    if fetched:
        return fetched[-1]
    name = newest_dependency("linux-image-amd64", "linux-image-")
    if not name:
        _run(["apt-get", "update", "-qq"] if os.geteuid() == 0 else ["sudo", "-n", "apt-get", "update", "-qq"])
        name = newest_dependency("linux-image-amd64", "linux-image-")
    if not name:
        raise NotAvailable("apt knows no package linux-image-amd64: are there package sources, and a network?")
    return unpacked(name)
