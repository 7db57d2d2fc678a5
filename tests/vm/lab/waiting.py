"""Waiting for a condition. Emulated machines are slow and shared ones slower, so the patience is large."""
import os
import time

# All times that a test is ready to wait are multiplied with this.
PATIENCE = float(os.environ.get("KDV_VM_PATIENCE", "1"))


class TooLate(AssertionError):
    pass


def wait_for(what, condition, seconds=60, pause=0.1):
    """The first value of condition() that counts as true, and the seconds until it came."""
    begin = time.monotonic()
    end = begin + seconds * PATIENCE
    while True:
        value = condition()
        if value:
            return value, time.monotonic() - begin
        if time.monotonic() > end:
            raise TooLate(f"waited {seconds * PATIENCE:.0f} s in vain for {what}")
        time.sleep(pause)
