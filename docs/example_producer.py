#!/usr/bin/env python3
"""A small Producer, written from protocol.md. Companions edit its two shows; quick key 1 changes to the other one."""
import asyncio
import struct
from math import isfinite

HERE, COMPANION_PORT, MOST_UNREAD, LONGEST_FRAME = ("0.0.0.0", 62330), 62331, 64 << 20, 16 << 20
MEDIA, TEXTURE, SCREEN, NO_ITEM, VIDEO = 1, 2, 3, 0xFFFFFFFF, 2
NONE, KEYSTONE, BEZIER, CURVE = -1, 0, 1, 2

# The fields of each payload; of an ItemDataEvent (28) the two integers that a request needs.
FIELDS = {code: struct.Struct(">" + fields) for code, fields in {
    1: "256s", 2: "iI", 3: "II256s?", 4: "iIII256s?", 6: "iII256sII?", 7: "iiIII256sII?", 8: "iIII256sII?",
    9: "iIIIIIId256s?", 10: "IIIIId256s?I", 11: "IIIId256s?I?", 17: "III256sIddd??", 18: "III256sIddd??",
    19: "II256sIddd??", 22: "III256s8s", 25: "I", 26: "III", 28: "ii"}.items()}
BLINDS, MODES, MOVES = {MEDIA: 4, TEXTURE: 4, SCREEN: 3}, {MEDIA: 7, TEXTURE: 7, SCREEN: 6}, {1: 17, 2: 18, 3: 19}
# Of the edits, the kind of item (None: it is the first field) and the index of its identifier.
EDITS = {3: (SCREEN, 0), 4: (None, 1), 6: (SCREEN, 1), 7: (None, 2), 17: (MEDIA, 0), 18: (TEXTURE, 0), 19: (SCREEN, 0)}


def payload(code, *values):
    return FIELDS[code].pack(*(value.encode() if isinstance(value, str) else value for value in values))


def message(code, content, announced):
    return struct.pack(">iiIb", 9 + len(content), 9, announced, code) + content


def event(code, *values):
    return message(code, payload(code, *values), FIELDS[code].size)


class Item:
    def __init__(self, kind, ids, index, name, width, height):
        self.kind, self.ids, self.index, self.name = kind, ids, index, name
        self.element = () if kind == SCREEN else (kind,)
        self.size, self.blinded, self.bending = (width, height, 0, 0.), False, NONE  # 0: reserved, rotation
        self.bend(KEYSTONE, 2, 2, True)

    def bend(self, bending, rows, columns, reset):
        rows, columns = (rows, columns) if bending in (BEZIER, CURVE) else (2, 2)
        uv = [(u / (columns - 1), v / (rows - 1)) for v in range(rows) for u in range(columns)]
        points = {True: [((u - .5) * self.size[0], (v - .5) * self.size[1]) for u, v in uv], False: uv}
        if NONE not in (bending, self.bending):  # keeps roughly the shape: between points it counts as flat
            for xy in (False,) if reset else (False, True):
                points[xy] = [self.at(xy, u, v) for u, v in uv]
        self.bending, self.rows, self.columns, self.points = bending, rows, columns, points

    def at(self, xy, u, v):
        column, row = min(int(u * (self.columns - 1)), self.columns - 2), min(int(v * (self.rows - 1)), self.rows - 2)
        s, t, first = u * (self.columns - 1) - column, v * (self.rows - 1) - row, row * self.columns + column
        corners = (self.points[xy][first + step] for step in (0, 1, self.columns, self.columns + 1))
        return tuple((a * (1 - s) + b * s) * (1 - t) + (c * (1 - s) + d * s) * t for a, b, c, d in zip(*corners))

    def added(self):
        return event(*{MEDIA: (9, VIDEO, *self.ids, self.index, *self.size, self.name, False),
                       TEXTURE: (10, *self.ids, *self.size, self.name, False, self.index),
                       SCREEN: (11, *self.ids, *self.size, self.name, self.blinded, self.index, False)}[self.kind])

    def blind(self):
        return event(BLINDS[self.kind], *self.element, *self.ids, 0, self.name, self.blinded)

    def mesh(self):
        item = (*self.ids, self.index, self.name)
        modes = {6: (NONE, NO_ITEM, 0, "", 0, 0, False), 8: (NONE, NO_ITEM, NO_ITEM, 0, "", 0, 0, False),
                 7: (0, NONE, NO_ITEM, NO_ITEM, 0, "", 0, 0, False),
                 MODES[self.kind]: (*self.element, self.bending, *item, self.rows, self.columns, False)}
        points = [payload(MOVES[self.kind], *item, point, x, y, 0., xy, False) for xy in (True, False)
                  for point, (x, y) in enumerate(self.points[xy]) if self.bending != NONE]
        lists = (points if kind == self.kind else [] for kind in (SCREEN, None, TEXTURE, MEDIA))
        content = b"".join([payload(28, self.index, 0), *(payload(code, *values) for code, values in modes.items()),
                            *(struct.pack(">q", len(points)) + b"".join(points) for points in lists)])
        return message(28, content, len(content) - 4 * 8)


class Producer(asyncio.DatagramProtocol):
    def __init__(self):
        self.picture, self.companions = 0, set()  # the companions that have asked for the present show
        self.shows = [[Item(SCREEN, (1,), 1, "Front wall", 1920, 1080), Item(MEDIA, (7, 1), 2, "Clip", 1280, 720),
                       Item(TEXTURE, (7, 1), 3, "Noise", 1024, 1024)], [Item(SCREEN, (1,), 1, "Ceiling", 1920, 1200)]]

    def datagram_received(self, data, sender):
        if data == b"PingServers":
            self.discovery.sendto(b"PingReceived", (sender[0], COMPANION_PORT))

    def send(self, companions, *events):
        for companion in companions:
            companion.write(b"".join(events))  # does not wait
            if companion.transport.get_write_buffer_size() > MOST_UNREAD:
                companion.transport.abort()

    def receive(self, sender, code, values):
        show = self.shows[0]
        if code == 1 and values[0].rstrip(b"\0") == b"getResources":
            self.companions.add(sender)
            self.send([sender], *(item.added() for item in show), *(item.blind() for item in show if item.blinded),
                      event(26, 2, 3, 0), event(22, 1, 0, 0, "New show", "#008000"), event(2, self.picture, 0))
            print("getResources", flush=True)
        elif sender not in self.companions:
            pass  # concerns the former show
        elif code == 28:
            for item in (item for item in show if item.index == values[0]):
                self.send([sender], item.mesh())
                print("selected", item.name, flush=True)
        elif code == 2:
            self.picture = values[0]
            self.send(self.companions - {sender}, event(code, *values))
        elif code == 25 and values[0] == 1:
            self.shows.reverse()
            self.send(self.companions, event(1, "newShow"))
            self.companions.clear()
        elif code in EDITS:
            kind, first = EDITS[code]
            for item in show:
                if (item.kind, item.ids[0]) == (kind or values[0], values[first]):
                    self.edit(item, code, values, values[first - 1])

    def edit(self, item, code, values, bending):  # the type of deformation stands before the identifier
        if code in MOVES.values():
            point, x, y, _, xy, _ = values[-6:]
            if item.bending != NONE and point < len(item.points[xy]) and isfinite(x) and isfinite(y):
                item.points[xy][point] = x, y
                self.send(self.companions, event(code, *values))
                print(f"{item.name} {'xy' if xy else 'uv'} {point}: {x:.6g} {y:.6g}", flush=True)
        elif code in BLINDS.values():
            item.blinded = values[-1]
            self.send(self.companions, item.blind())
        elif NONE <= bending <= CURVE and all(2 <= count <= 64 for count in values[-3:-1]):
            item.bend(bending, *values[-3:])
            self.send(self.companions, item.mesh())

    async def serve(self, reader, companion):
        try:
            while (length := int.from_bytes(await reader.readexactly(4), "big", signed=True)) <= LONGEST_FRAME:
                frame = await reader.readexactly(max(length, 0))
                if len(frame) > 8 and frame[8] in FIELDS and len(frame) >= 9 + FIELDS[frame[8]].size:
                    self.receive(companion, frame[8], FIELDS[frame[8]].unpack_from(frame, 9))
        except (asyncio.IncompleteReadError, ConnectionError):
            pass
        self.companions.discard(companion)
        companion.close()

    async def run(self):
        server = await asyncio.start_server(self.serve, *HERE)
        self.discovery, _ = await asyncio.get_running_loop().create_datagram_endpoint(lambda: self, local_addr=HERE)
        await server.serve_forever()


asyncio.run(Producer().run())
