"""An iSCSI target (RFC 7143) as small as one initiator needs: the emulator, which attaches each unit to its adapter.

One session a connection, one connection a unit, no digests, no authentication, loopback only. Units may be changed
while the target serves them.
"""
import socketserver
import struct
import threading

from lab.scsi import CheckCondition

NAME = "iqn.2026-01.test.lab:shelf"

NOP, COMMAND, TASK, LOGIN, TEXT, DATA_OUT, LOGOUT = 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06
NOP_IN, RESPONSE, TASK_DONE, LOGIN_DONE, DATA_IN, LOGOUT_DONE, READY_TO_TRANSFER, REJECT = (
    0x20, 0x21, 0x22, 0x23, 0x25, 0x26, 0x31, 0x3F)
FINAL = 0x80
NO_TAG = b"\xff" * 4


class Closed(Exception):
    pass


class _Write:
    """A command whose data are still on their way."""

    def __init__(self, head, data, expected):
        self.head = head
        self.data = bytearray(data)
        self.expected = expected


class _Session(socketserver.BaseRequestHandler):
    OFFERS = {"HeaderDigest": "None", "DataDigest": "None", "InitialR2T": "Yes", "ImmediateData": "Yes",
              "MaxConnections": "1", "MaxOutstandingR2T": "1", "ErrorRecoveryLevel": "0", "DefaultTime2Retain": "0",
              "DataPDUInOrder": "Yes", "DataSequenceInOrder": "Yes", "AuthMethod": "None"}
    AS_ASKED = ("MaxBurstLength", "FirstBurstLength", "DefaultTime2Wait")

    def setup(self):
        self._sending = threading.Lock()
        self._status_number = 0
        self._expected_command = 0
        self._most_data_in = 8192
        self._writes = {}

    def handle(self):
        serve = {NOP: self._nop, COMMAND: self._command, TASK: self._task, LOGIN: self._login,
                 DATA_OUT: self._data_out, LOGOUT: self._logout}
        try:
            while True:
                head, data = self._receive()
                kind = head[0] & 0x3F
                immediate = head[0] & 0x40
                if kind != DATA_OUT:
                    number = struct.unpack(">I", head[24:28])[0]
                    self._expected_command = number if immediate else (number + 1) & 0xFFFFFFFF
                serve.get(kind, self._reject)(head, data)
        except (Closed, OSError):
            pass

    # Messages

    def _exactly(self, count):
        data = bytearray()
        while len(data) < count:
            piece = self.request.recv(count - len(data))
            if not piece:
                raise Closed
            data += piece
        return bytes(data)

    def _receive(self):
        head = self._exactly(48)
        self._exactly(head[4] * 4)
        length = int.from_bytes(head[5:8], "big")
        return head, self._exactly(length + -length % 4)[:length]

    def _send(self, kind, tag, flags=FINAL, data=b"", advances=True, **fields):
        """Fields are given as at<offset>=bytes. Counters of both directions go into every message."""
        head = bytearray(48)
        head[0], head[1] = kind, flags
        head[5:8] = len(data).to_bytes(3, "big")
        head[16:20] = tag
        for place, value in fields.items():
            offset = int(place[2:])
            head[offset:offset + len(value)] = value
        with self._sending:
            most = (self._expected_command + 31) & 0xFFFFFFFF
            head[24:36] = struct.pack(">III", self._status_number, self._expected_command, most)
            if advances:
                self._status_number = (self._status_number + 1) & 0xFFFFFFFF
            self.request.sendall(bytes(head) + data + b"\0" * (-len(data) % 4))

    def _reject(self, head, _):
        self._send(REJECT, NO_TAG, data=head, at2=b"\x05")

    def _nop(self, head, data):
        if head[16:20] != NO_TAG:
            self._send(NOP_IN, head[16:20], data=data, at20=NO_TAG)

    def _logout(self, head, _):
        self._send(LOGOUT_DONE, head[16:20])
        raise Closed

    # Beginning

    def _login(self, head, data):
        asked = dict(pair.decode().split("=", 1) for pair in data.split(b"\0") if b"=" in pair)
        answers = {key: self.OFFERS[key] for key in asked if key in self.OFFERS}
        answers.update({key: asked[key] for key in self.AS_ASKED if key in asked})
        if "MaxRecvDataSegmentLength" in asked:
            self._most_data_in = int(asked["MaxRecvDataSegmentLength"])
            answers["MaxRecvDataSegmentLength"] = "262144"
        if "TargetName" in asked:
            answers["TargetPortalGroupTag"] = "1"
        next_stage = head[1] & 0x03
        full_feature = head[1] & FINAL and next_stage == 3
        session = b"\0\1" if full_feature else head[14:16]
        text = b"".join(f"{key}={value}\0".encode() for key, value in answers.items())
        self._send(LOGIN_DONE, head[16:20], flags=head[1], data=text, at8=head[8:14], at14=session)

    # Commands

    def _command(self, head, data):
        expected = struct.unpack(">I", head[20:24])[0]
        writes = head[1] & 0x20
        if writes and len(data) < expected:
            self._writes[head[16:20]] = _Write(head, data, expected)
            self._ask_for_data(self._writes[head[16:20]])
        else:
            self._execute(head, data)

    def _ask_for_data(self, write):
        rest = min(write.expected - len(write.data), 262144)
        self._send(READY_TO_TRANSFER, write.head[16:20], advances=False, at8=write.head[8:16], at20=b"\0\0\0\1",
                   at40=struct.pack(">II", len(write.data), rest))

    def _data_out(self, head, data):
        write = self._writes.get(head[16:20])
        if not write:
            return
        write.data += data
        if len(write.data) >= write.expected:
            del self._writes[head[16:20]]
            self._execute(write.head, bytes(write.data))
        elif head[1] & FINAL:
            self._ask_for_data(write)

    def _execute(self, head, data):
        unit = self.server.units.get(head[9])
        tag = head[16:20]
        expected = struct.unpack(">I", head[20:24])[0]
        sense = reply = b""
        try:
            if not unit:
                raise CheckCondition(0x05, 0x25)  # logical unit not supported
            reply = unit.execute(head[32:48], data)[:expected]
        except CheckCondition as condition:
            sense = condition.sense
        if head[1] & 0x40:
            for offset in range(0, len(reply), self._most_data_in):
                piece = reply[offset:offset + self._most_data_in]
                last = offset + len(piece) == len(reply)
                self._send(DATA_IN, tag, flags=FINAL if last else 0, data=piece, advances=False, at20=NO_TAG,
                           at36=struct.pack(">II", offset // self._most_data_in, offset))
        missing = 0 if head[1] & 0x20 else expected - len(reply)
        self._send(RESPONSE, tag, flags=FINAL | (0x02 if missing else 0), at3=b"\x02" if sense else b"\0",
                   data=struct.pack(">H", len(sense)) + sense if sense else b"", at44=struct.pack(">I", missing))

    def _task(self, head, _):
        """Commands end before anything else is received, so there is nothing to abort."""
        self._send(TASK_DONE, head[16:20])


class _Server(socketserver.ThreadingMixIn, socketserver.TCPServer):
    daemon_threads = True
    allow_reuse_address = True


class Target:
    """Serves units, which are numbered as they come, at a port of the loopback address that it chooses."""

    def __init__(self, units):
        self._server = _Server(("127.0.0.1", 0), _Session)
        self._server.units = dict(enumerate(units))
        self.port = self._server.server_address[1]
        self._thread = threading.Thread(target=self._server.serve_forever, daemon=True)
        self._thread.start()

    def stop(self):
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()

    def drive(self, node, unit):
        """Options of the emulator that make a unit a drive with the name of a node."""
        number = next(number for number, known in self._server.units.items() if known is unit)
        return ["-blockdev", f"driver=iscsi,node-name={node},transport=tcp,portal=127.0.0.1:{self.port},"
                             f"target={NAME},lun={number},initiator-name=iqn.2026-01.test.lab:emulator"]
