#!/usr/bin/env python3
"""A simulation device against `radiosim serve`: registers, checks the confirmation, unpacks and
reads the scenario, reports Loading and Loaded, lists the devices, and leaves when told to stop.
Usage: pydevice.py PORT ID"""
import socket
import sys
import time
from xml.sax.saxutils import escape

from wire import Connection, confirmation, parse, record_text, record_values, state_text, unpack


def main():
    port, device_id = int(sys.argv[1]), sys.argv[2]
    values = {"Id": device_id, "Name": "Python <device> & co", "StationId": "st",
              "StationName": "Hill", "Machine": "pyhost", "MachineId": "PY-1",
              "DeviceType": "python", "PositionLongitude": "8.5", "PositionLatitude": "48.25"}
    peer = Connection(socket.create_connection(("127.0.0.1", port), timeout=10))
    peer.send("RegisterSimulation", ' Id="%s"' % device_id,
              "<SimulationDevice>%s</SimulationDevice>" % escape(record_text(values)))

    accept = peer.receive_until("AcceptSimulationDevice")
    if accept.attributes.get("Id") == device_id and \
            accept.text_of("Confirmation") == confirmation(values):
        print("confirmation matches", flush=True)
    load = peer.receive_until("LoadScenario")
    scenario = parse(unpack(load.text_of("ScenarioData")))
    emitters = [e for e in scenario.children if e.name == "Emitter"]
    print("scenario %s with %d emitters" % (scenario.attributes.get("Name"), len(emitters)),
          flush=True)
    start = peer.receive_until("StartScenario")
    stamp, scenario_time = int(start.text_of("Timestamp")), int(start.text_of("ScenarioTime"))
    if abs(stamp - time.time() * 1e6) < 5e6:
        print("started at scenario time %d, stamped now" % scenario_time, flush=True)

    for state in (1, 2):
        peer.send("SimulationDeveiceStateUpdate", ' Id="%s"' % device_id,
                  "<State>%s</State>" % escape(state_text(state)))
    peer.send("RequestSimulationDevices")
    response = peer.receive_until("ResponseSimulationDevices")
    listed = []
    index = 0
    while response.child("Device%d" % index) is not None:
        record, root = record_values(response.child("Device%d" % index).text_of("Data"))
        listed.append("%s (%s) at %s,%s" % (record["Id"], root, record["PositionLongitude"],
                                            record["PositionLatitude"]))
        index += 1
    print("listed: " + "; ".join(listed), flush=True)

    if peer.receive_until("StopScenario") is not None:
        print("stop received", flush=True)
        peer.send("UnregisterSimulation", ' Id="%s"' % device_id)
    time.sleep(0.2)
    peer.sock.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
