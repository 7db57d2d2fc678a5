"""A listener for alerts on this machine, which a guest reaches at the address that the emulator's network gives it."""
import http.server
import threading
import time
import xml.etree.ElementTree as ElementTree

from lab.waiting import TooLate, wait_for

# The emulator passes connections to this address on to the loopback address of the host.
HOST_SEEN_FROM_GUEST = "10.0.2.2"

REPLY = ('<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="{id}" '
         'PROTOCOLVERSION="1.0"><SIMPLEEXPRSP><EXPMETHODRESPONSE NAME="ExportIndication"><IRETURNVALUE/>'
         '</EXPMETHODRESPONSE></SIMPLEEXPRSP></MESSAGE></CIM>')


class Alert(dict):
    """Properties by name, as text. received is a time of time.monotonic()."""

    def __init__(self, properties):
        super().__init__(properties)
        self.received = time.monotonic()

    def __str__(self):
        return f"{self.get('EventID')} {self.get('Summary')} ({self.get('AlertingManagedElement')})"


def _properties(instance):
    for entry in instance:
        if entry.tag == "PROPERTY":
            yield entry.get("NAME"), entry.findtext("VALUE", "")
        elif entry.tag == "PROPERTY.ARRAY":
            yield entry.get("NAME"), " ".join(value.text or "" for value in entry.iter("VALUE"))


class Listener:
    def __init__(self):
        listener = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_POST(self):
                body = self.rfile.read(int(self.headers["Content-Length"]))
                message = ElementTree.fromstring(body).find("MESSAGE")
                for instance in message.iter("INSTANCE"):
                    listener._take(Alert(_properties(instance)))
                reply = REPLY.format(id=message.get("ID")).encode()
                self.send_response(200)
                self.send_header("Content-Type", "application/xml; charset=utf-8")
                self.send_header("CIMExport", "MethodResponse")
                self.send_header("Content-Length", str(len(reply)))
                self.end_headers()
                self.wfile.write(reply)

            def log_message(self, *_):
                pass

        self.alerts = []
        self._lock = threading.Lock()
        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.url = f"http://{HOST_SEEN_FROM_GUEST}:{self._server.server_address[1]}"
        self._thread = threading.Thread(target=self._server.serve_forever, daemon=True)
        self._thread.start()

    def _take(self, alert):
        with self._lock:
            self.alerts.append(alert)

    def since(self, mark):
        with self._lock:
            return self.alerts[mark:]

    def mark(self):
        """A place in the row of alerts: what comes later is looked at from here."""
        with self._lock:
            return len(self.alerts)

    def wait(self, event, element, mark=0, meanwhile=None, seconds=60):
        """The first alert of that event about an element whose path has that text; meanwhile is called again and again."""
        def found():
            if meanwhile:
                meanwhile()
            return next((alert for alert in self.since(mark)
                         if alert["EventID"] == str(event) and element in alert["AlertingManagedElement"]), None)

        try:
            return wait_for(f"event {event} of {element}", found, seconds)[0]
        except TooLate as late:
            came = "\n  ".join(str(alert) for alert in self.since(mark)) or "none"
            raise TooLate(f"{late}; alerts that came:\n  {came}") from None

    def stop(self):
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()
