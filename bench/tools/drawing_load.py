#!/usr/bin/env python3
"""Drawing datagrams as a full team pair sends them: every 20 ms cycle, each of
22 agents sends its batch (opening, point, line, six-corner cell), as the demo
agents do. Prints the number of datagrams sent.

    drawing_load.py UDP-PORT SECONDS
"""
import math
import socket
import struct
import sys
import time


def shape(kind, header, name, colour, corners):
    data = bytes([kind, header, len(name)]) + name.encode() + bytes(colour) + bytes([len(corners)])
    for x, y in corners:
        data += struct.pack(">ii", round(x * 1000), round(y * 1000))
    return data


def batch(header, cycle):
    x = -12 + 2.2 * (header & 0x7F) % 11 + math.sin(cycle / 25)
    y = -8 + 1.5 * (header & 0x7F) % 16 + math.cos(cycle / 25)
    colour = (200, 40, 40) if header & 0x80 else (250, 220, 40)
    cell = [(x + 1.5 * math.cos(a * math.pi / 3), y + 1.5 * math.sin(a * math.pi / 3)) for a in range(6)]
    return [bytes([3, 0, header]), shape(0x10, header, "me", colour, [(x, y)]),
            shape(0x11, header, "to_centroid", colour, [(x, y), (x + 0.5, y + 0.3)]),
            shape(0x12, header, "cell", colour, cell)]


def main():
    port, seconds = int(sys.argv[1]), float(sys.argv[2])
    out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    headers = [side << 7 | number for side in (0, 1) for number in range(1, 12)]
    start, sent = time.monotonic(), 0
    for cycle in range(int(seconds * 50)):
        for header in headers:
            for datagram in batch(header, cycle):
                out.sendto(datagram, ("127.0.0.1", port))
                sent += 1
        pause = start + (cycle + 1) * 0.02 - time.monotonic()
        if pause > 0:
            time.sleep(pause)
    print(sent)


if __name__ == "__main__":
    main()
