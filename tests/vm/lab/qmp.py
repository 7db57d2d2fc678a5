"""The emulator's control socket: JSON commands and events, one a line."""
import json
import socket

from lab.waiting import PATIENCE


class QmpError(Exception):
    pass


class Qmp:
    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(60 * PATIENCE)
        self._socket.connect(str(path))
        self._lines = self._socket.makefile("rb")
        self.events = []
        self._read()  # its greeting
        self.command("qmp_capabilities")

    def _read(self):
        line = self._lines.readline()
        if not line:
            raise QmpError("the emulator closed its control socket")
        return json.loads(line)

    def command(self, name, **arguments):
        self._socket.sendall(json.dumps({"execute": name, "arguments": arguments}).encode() + b"\n")
        while True:
            reply = self._read()
            if "event" in reply:
                self.events.append(reply)
            elif "error" in reply:
                raise QmpError(f"{name}: {reply['error'].get('desc')}")
            else:
                return reply["return"]

    def human(self, line):
        """A command of the older monitor, for what has no JSON form."""
        return self.command("human-monitor-command", **{"command-line": line})

    def close(self):
        self._lines.close()
        self._socket.close()
