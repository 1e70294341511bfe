"""The command connection as its wire format tells it: XML documents with the root Command, one
after the other, no framing; large payloads are zlib streams behind a 4-byte big-endian length,
in Base64; device records travel as escaped XML text. Written with the standard library only."""
import base64
import hashlib
import xml.parsers.expat
import zlib
from xml.sax.saxutils import escape

SALT = "204815036172;7341;62904;81526;47713"
RECORD = "Simulation::SimulationDeviceConfiguration"
STATE = "Simulation::SimulationDeviceState"
FIELDS = ["Id", "Name", "StationId", "StationName", "Machine", "MachineId", "DeviceType",
          "PositionLongitude", "PositionLatitude"]


class Element:
    def __init__(self, name, attributes):
        self.name, self.attributes, self.children, self.text = name, attributes, [], ""

    def child(self, name):
        return next((c for c in self.children if c.name == name), None)

    def text_of(self, name):
        found = self.child(name)
        return found.text if found is not None else None


def parse(data):
    """A tree of Elements. expat without namespaces takes names with colons as they stand."""
    parser = xml.parsers.expat.ParserCreate()
    stack, roots = [], []

    def start(name, attributes):
        element = Element(name, attributes)
        (stack[-1].children if stack else roots).append(element)
        stack.append(element)

    def end(_name):
        stack.pop()

    def text(data_):
        if stack:
            stack[-1].text += data_

    parser.StartElementHandler, parser.EndElementHandler = start, end
    parser.CharacterDataHandler = text
    parser.Parse(data, True)
    return roots[0]


class Connection:
    def __init__(self, sock):
        self.sock, self.buffer = sock, b""

    def send(self, message, attributes="", body=""):
        self.sock.sendall(("<Command>\n    <%s%s>%s</%s>\n</Command>\n"
                           % (message, attributes, body, message)).encode("utf-8"))

    def receive(self):
        """The next message element, or None once the peer has closed."""
        while b"</Command>" not in self.buffer:
            data = self.sock.recv(65536)
            if not data:
                return None
            self.buffer += data
        end = self.buffer.index(b"</Command>") + len(b"</Command>")
        document, self.buffer = self.buffer[:end], self.buffer[end:].lstrip()
        command = parse(document)
        return command.children[0] if command.children else Element("", {})

    def receive_until(self, name, answer_heart_beats=True):
        """Skips other messages, answering heart beats; None if the peer closed first."""
        while True:
            message = self.receive()
            if message is None or message.name == name:
                return message
            if message.name == "HeartBeat" and answer_heart_beats:
                self.send("HeartBeatReply")


def record_text(values):
    return "<%s>%s</%s>" % (RECORD, "".join("<%s>%s</%s>" % (k, escape(values[k]), k)
                                           for k in FIELDS), RECORD)


def record_values(text):
    record = parse(text.encode("utf-8"))
    return {field: record.text_of(field) for field in FIELDS}, record.name


def state_text(value):
    return "<%s><ScenarioDataState>%d</ScenarioDataState></%s>" % (STATE, value, STATE)


def confirmation(values):
    text = ";".join([SALT] + [values[k] for k in ("Id", "Machine", "MachineId", "DeviceType")])
    return base64.b64encode(hashlib.sha1(text.encode("utf-8")).digest()).decode("ascii")


def pack(data):
    return base64.b64encode(len(data).to_bytes(4, "big") + zlib.compress(data)).decode("ascii")


def unpack(text):
    raw = base64.b64decode(text)
    data = zlib.decompress(raw[4:])
    assert len(data) == int.from_bytes(raw[:4], "big"), "length field disagrees"
    return data
