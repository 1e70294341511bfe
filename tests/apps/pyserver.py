#!/usr/bin/env python3
"""A simulation server for `radiosim device`: prints "port N", accepts one device, confirms it
(wrongly in the mode "wrong"), sends a scenario packed as the wire wants it and starts it, and
reports what the device sent until it leaves.
Usage: pyserver.py SCENARIO good|wrong"""
import socket
import sys
import time

from wire import Connection, confirmation, pack, parse, record_values


def main():
    scenario, mode = sys.argv[1], sys.argv[2]
    listener = socket.socket()
    listener.bind(("127.0.0.1", 0))
    listener.listen(1)
    listener.settimeout(20)
    print("port %d" % listener.getsockname()[1], flush=True)
    sock, _ = listener.accept()
    sock.settimeout(20)
    peer = Connection(sock)

    register = peer.receive_until("RegisterSimulation")
    values, root = record_values(register.text_of("SimulationDevice"))
    print("registered %s as %s: type %s at %s,%s" % (
        register.attributes.get("Id"), root, values["DeviceType"], values["PositionLongitude"],
        values["PositionLatitude"]), flush=True)
    answer = confirmation(values) if mode == "good" else confirmation(dict(values, Id="other"))
    with open(scenario, "rb") as f:
        packed = pack(f.read())
    states = []
    try:
        peer.send("AcceptSimulationDevice", ' Id="%s"' % values["Id"],
                  "<Confirmation>%s</Confirmation>" % answer)
        peer.send("LoadScenario", "", "<ScenarioData>%s</ScenarioData>" % packed)
        peer.send("StartScenario", "", "<Timestamp>%d</Timestamp><ScenarioTime>250</ScenarioTime>"
                  % int(time.time() * 1e6))
    except OSError:
        pass  # a device that refuses the confirmation closes at once

    while True:
        try:
            message = peer.receive()
        except OSError:
            message = None
        if message is None:
            break
        if message.name == "SimulationDeveiceStateUpdate":
            state = parse(message.text_of("State").encode("utf-8"))
            states.append(state.text_of("ScenarioDataState"))
        elif message.name == "UnregisterSimulation":
            print("unregistered %s" % message.attributes.get("Id"), flush=True)
        elif message.name == "HeartBeat":
            peer.send("HeartBeatReply")
    print("states: %s" % " ".join(states), flush=True)
    print("closed", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
