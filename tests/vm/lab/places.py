"""Where things are: the sources, what the tests fetch and make, and the build that is tested."""
import os
import pathlib

SOURCES = pathlib.Path(__file__).resolve().parents[3]
GUEST = SOURCES / "tests" / "vm" / "guest"

# What is fetched once and what a run leaves behind, for a look at after a failure.
KEPT = pathlib.Path(os.environ.get("KDV_VM_DIR", SOURCES / "build" / "vm"))
PACKAGES = KEPT / "packages"
RUNS = KEPT / "runs"

BUILD = pathlib.Path(os.environ.get("KDV_VM_BUILD", SOURCES / "build" / "release"))
