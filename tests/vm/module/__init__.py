"""The test module kdvbench, built for the kernel of the guests."""
import subprocess

from lab import packages
from lab.modules import ModuleTree
from lab.places import KEPT, SOURCES

CONTROL = "/sys/kernel/debug/kdvbench/control"
UNITS = "/sys/kernel/debug/kdvbench/units"


def kernel_module():
    """The file's path. Headers are fetched in the kernel's own version the first time."""
    release = ModuleTree(packages.kernel()).release
    common = release.removesuffix("-amd64") + "-common"
    kbuild = packages.newest_dependency(f"linux-headers-{release}", "linux-kbuild-")
    if not kbuild:
        raise packages.NotAvailable(f"apt knows no package linux-headers-{release}: there is a newer kernel, "
                                    f"remove {packages.PACKAGES}")
    folders = [packages.unpacked(name)
               for name in (f"linux-headers-{release}", f"linux-headers-{common}", kbuild, "linux-compiler-gcc-12-x86")]
    built = KEPT / "module" / release / "kdvbench.ko"
    done = subprocess.run([SOURCES / "tests" / "vm" / "module" / "build", built, *folders], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        raise AssertionError(done.stdout)
    return built
