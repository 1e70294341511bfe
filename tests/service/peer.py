#!/usr/bin/env python3
"""A device written with nothing but Python's socket module. It sends hand-written command
documents (split across writes, two in one write, one incomplete, one with a foreign root and a
malformed one last), answers nothing, and checks the server's replies on its own."""
import base64
import hashlib
import socket
import sys
import time
from xml.sax.saxutils import escape

SALT = "204815036172;7341;62904;81526;47713"
FIELDS = [("Id", "py-1"), ("Name", "Empfänger <1> & Co"), ("StationId", "s1"),
          ("StationName", "Nord"), ("Machine", "pyhost"), ("MachineId", "py-machine"),
          ("DeviceType", "PYRX"), ("PositionLongitude", "151.2"),
          ("PositionLatitude", "-33.875")]


def expected_confirmation():
    values = dict(FIELDS)
    text = ";".join([SALT] + [values[k] for k in ("Id", "Machine", "MachineId", "DeviceType")])
    return base64.b64encode(hashlib.sha1(text.encode("utf-8")).digest()).decode("ascii")


def main():
    sock = socket.create_connection(("127.0.0.1", int(sys.argv[1])), timeout=10)
    root = "Simulation::SimulationDeviceConfiguration"
    record = "<%s>%s</%s>" % (root, "".join("<%s>%s</%s>" % (k, escape(v), k)
                                            for k, v in FIELDS), root)
    register = ('<Command>\n    <RegisterSimulation Id="py-1">\n        <SimulationDevice>%s'
                '</SimulationDevice>\n    </RegisterSimulation>\n</Command>\n'
                % escape(record)).encode("utf-8")
    for part in (register[:7], register[7:60], register[60:]):
        sock.sendall(part)
        time.sleep(0.05)
    sock.sendall(b"<Command><StartScenario><Timestamp>18446744073709551615</Timestamp>"
                 b"<ScenarioTime>4294967295</ScenarioTime></StartScenario></Command>\n"
                 b"\t\r\n<Command><PauseScenario><ScenarioTime>77</ScenarioTime>"
                 b"</PauseScenario></Command>")
    sock.sendall(b"<Command><TestMode><On>1</On></TestMode></Command>\n")
    sock.sendall(b"<Shutdown/>\n<Command><HeartBeat/></Command>\n")

    received = b""
    while b"HeartBeatReply" not in received or b"</AcceptSimulationDevice>" not in received:
        data = sock.recv(4096)
        if not data:
            break
        received += data
    text = received.decode("utf-8")
    if "<HeartBeatReply/>" in text:
        print("heart beat answered")
    start = text.find("<Confirmation>") + len("<Confirmation>")
    confirmation = text[start:text.find("</Confirmation>")]
    if confirmation == expected_confirmation():
        print("confirmation matches")
    else:
        print("confirmation differs: %r" % confirmation)

    sock.sendall(b"<Command><UnloadScenario></Command>\n<Command><UnloadScenario/></Command>\n")
    time.sleep(0.2)
    sock.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
