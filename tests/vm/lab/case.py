"""What all tests on machines share: one machine a class, its last words in every failure, and times worth knowing."""
import unittest

# What took how long, for the end of a run. Emulated times are told, never judged.
measured = []


class MachineCase(unittest.TestCase):
    """A class of tests makes its machine in make_machine(), which returns it started and serving."""

    machine = None

    @classmethod
    def setUpClass(cls):
        cls.machine = cls.make_machine()
        measured.append((f"machine {cls.machine.name} until its shell answers", cls.machine.boot_seconds))

    @classmethod
    def tearDownClass(cls):
        if cls.machine:
            cls.machine.stop()

    @classmethod
    def make_machine(cls):
        raise NotImplementedError

    @staticmethod
    def measure(what, seconds):
        measured.append((what, seconds))

    def _callTestMethod(self, method):
        try:
            super()._callTestMethod(method)
        except AssertionError as error:
            error.add_note(self.machine.server_tail())
            error.add_note(self.machine.console_tail())
            raise

    def assert_fields(self, properties, **expected):
        """Of all expected properties at once, so that one failure shows everything that is wrong."""
        got = {name: properties.get(name) for name in expected}
        self.assertEqual(got, expected)


def only(entries, **wanted):
    """The one entry that has these values."""
    found = [entry for entry in entries if all(entry.get(name) == value for name, value in wanted.items())]
    if len(found) != 1:
        raise AssertionError(f"{len(found)} entries with {wanted} among {entries}")
    return found[0]
