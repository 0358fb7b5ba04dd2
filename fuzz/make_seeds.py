#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into fuzz/corpus/<target>/.

The seeds are committed; run this again only to change them. Each seed is a
small input that reaches one behaviour the fuzzer should start from.
"""
import pathlib
import re
import struct

root = pathlib.Path(__file__).resolve().parent / "corpus"


def write(target, name, data):
    directory = root / target
    directory.mkdir(parents=True, exist_ok=True)
    (directory / name).write_bytes(data)


# Configuration files for the assembler's reader.
config = {
    "empty": b"",
    "libraries": b"sample\nteam_skills\n# disabled\nteam_effectors\n",
    "comment_only_at_column_0": b"# comment\n  #value\n",
    "single_characters": b"a\n  b  \n \n",
    "blanks_and_tabs": b"  \tfoo\t  \n  ab  \nab  \n",
    "tabs_only": b"ok\n\t\t\nlost\n",
    "carriage_return_and_no_final_newline": b"ab\r\nlast",
}
for name, data in config.items():
    write("config_reader_fuzzer", name, data)


def frame(payload):
    return struct.pack(">I", len(payload)) + payload


def piece(data):
    return b"p" + struct.pack(">H", len(data)) + data


def filled_frame(length, count, byte):
    return b"f" + struct.pack(">IH", length, count) + bytes([byte])


def filler(count, byte):
    return b"z" + struct.pack(">H", count) + bytes([byte])


init = frame(b"(init)")
comm = {
    "whole_frame": piece(init) + b"r",
    "two_pieces": piece(init[:6]) + piece(init[6:]) + b"r",
    "three_pieces": piece(init[:5]) + piece(init[5:7]) + piece(init[7:]) + b"r",
    "nul_in_payload": piece(frame(b"(a\x00b)")) + b"r",
    "two_frames_one_piece": piece(init + frame(b"(next)")) + b"r",
    "drip": b"".join(piece(bytes([c])) + b"r" for c in init),
    "prefix_split": piece(init[:2]) + b"r" + piece(init[2:]) + b"r",
    "huge_length": filled_frame(0xFFFFFFFF, 16380, ord("a")) + filler(4000, ord("b")) + b"r",
    "largest_whole": filled_frame(16380, 16380, ord("c")) + b"r",
    "longer_than_buffer": filled_frame(20000, 8000, ord("d")) + filler(8000, ord("e"))
    + filler(4000, ord("f")) + b"r",
    "ended_inside_frame": piece(init[:8]) + b"xr",
    "ended": piece(init) + b"xrr",
}
for name, data in comm.items():
    write("comm_unit_fuzzer", name, data)


# Frame sequences for the lossless reader: a limit, frames, cuts and reads.
# A frame from the input is written as the connection's piece is.
def limit(value):
    return struct.pack(">H", value)


def repeated_frame(count, byte):
    return b"f" + struct.pack(">H", count) + bytes([byte])


def cut(after):
    return b"c" + struct.pack(">H", after - 1)


perception = b"(time (now 12.34))(GS (t 0.00) (pm BeforeKickOff))" + b"(HJ (n hj1) (ax 0.0))" * 40
reader = {
    "one_frame": limit(4096) + piece(b"(init)"),
    "pair_per_read": limit(4096) + piece(perception) + piece(perception) + b"r",
    "split_prefix": limit(64) + piece(b"(see)") + piece(b"(hear)") + cut(7) + b"r"
    + cut(3) + b"r",
    "drip": limit(64) + piece(b"(a)") + piece(b"") + piece(b"(b)")
    + b"".join(cut(1) + b"r" for _ in range(20)),
    "ten_in_one_read": limit(64) + b"".join(piece(bytes([48 + i])) for i in range(10)) + b"r",
    "empty_frames": limit(0) + piece(b"") + piece(b"") + cut(5) + b"r",
    "larger_than_a_read": limit(65535) + repeated_frame(40000, ord("x")) + piece(b"(after)")
    + cut(20000) + b"r",
    "oversize_after_frames": limit(16) + piece(b"(ok)") + b"o" + struct.pack(">I", 0)
    + piece(b"(never)") + cut(6) + b"r",
    "oversize_frame": limit(8) + piece(b"(too long)") + b"r",
    "largest_prefix": limit(65535) + b"o" + struct.pack(">I", 0xFFFFFFFF),
    "ends_mid_frame": limit(256) + piece(b"(last)") + b"h" + struct.pack(">H", 100) + b"r",
}
for name, data in reader.items():
    write("frame_reader_fuzzer", name, data)


# Perception messages: every message recorded from a real server, and one
# made-up message with every kind of element the reader knows.
recorded = pathlib.Path(__file__).resolve().parent.parent / "tests" / "perception" / "data"
for recording in ("server-messages.txt", "team-messages.txt", "nonfinite-messages.txt"):
    lines = (recorded / recording).read_bytes().splitlines()
    for number, line in enumerate(lines, 1):
        write("perception_reader_fuzzer", f"{recording[:-4]}-{number:02}", line)
write(
    "perception_reader_fuzzer",
    "every_element",
    b"(time (now 12.5))(GS (unum 11) (team right) (sl 2) (sr 3) (t 304.5) (pm corner_kick_left))"
    b"(GYR (n torso) (rt 1 -2 3.5))(ACC (n torso) (a 0.1 0.2 9.75))(HJ (n llj7) (ax 12.5))"
    b"(HJ (ax -3) (n rlj7))(FRP (n lf1) (c 0.01 0.02 -0.01) (f 1 2 30))(mypos -3.25 2 0.35)"
    b"(See (F1L (pol 1 2 3)) (G2R (pol 10 11 12)) (B (pol 0.5 -10 -20)) (P (team orvo) (id 7) "
    b"(rfoot (pol 2 3 4)) (head (pol 1 2 3))) (L (pol 1 2 3) (pol 4 5 6)))"
    b"(hear orvo 12.40 -90.5 pass)(hear 12.42 self go)",
)

# Monitor streams, one message per line: the start of the server's recorded
# stream (a whole scene, then updates), and a made-up one-robot scene small
# enough for the fuzzer to change in every part.
sample = pathlib.Path(__file__).resolve().parent.parent / "tests" / "monitor" / "data"
monitor_lines = (sample / "monitor-sample.txt").read_bytes().splitlines()
write("monitor_reader_fuzzer", "recorded_scene_and_updates", b"\n".join(monitor_lines[:3]))
write("monitor_reader_fuzzer", "recorded_update_alone", monitor_lines[1])
identity = b"(SLT 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1)"
write(
    "monitor_reader_fuzzer",
    "one_robot",
    b"((time 0)(play_mode 0)(team_left a)(score_left 0))(RSG 0 1)((nd TRF " + identity
    + b"(nd TRF (SLT 1 0 0 0 0 1 0 0 0 0 1 0 -2 1 0.4 1)(nd TRF " + identity
    + b"(nd StaticMesh (load models/naobody4.obj) (resetMaterials matNum3 matRight))))"
    + b"(nd TRF (SLT 1 0 0 0 0 1 0 0 0 0 1 0 -2 1 0.1 1)(nd TRF " + identity
    + b"(nd StaticMesh (load models/lfoot.obj)))))(nd TRF " + identity
    + b"(nd StaticMesh (load models/soccerball.obj))))\n"
    b"((time 0.04)(play_mode 3))(RDS 0 1)((nd(nd (SLT 0 1 0 0 -1 0 0 0 0 0 1 0 1 2 0.3 1)"
    b"(nd(nd)))(nd(nd(nd))))(nd (SLT 1 0 0 0 0 1 0 0 0 0 1 0 3 -1 0.04 1)(nd)))",
)

# Values that are not numbers, which cost only their element: the field line
# a real server sent in a game of eleven robots, and the message above with
# its numbers replaced in turn by "nan", "inf" and "-inf".
write(
    "perception_reader_fuzzer",
    "nan_field_line",
    b"(time (now 80.12))(GS (t 20.30) (pm PlayOn))(See (L (pol nan nan nan) "
    b"(pol 8.46 -60.16 -3.84)) (B (pol 1 2 3)))(HJ (n hj1) (ax -0.00))",
)
every = (root / "perception_reader_fuzzer" / "every_element").read_bytes()
bad = [b"nan", b"inf", b"-inf"]
numbers = iter(range(1 << 30))
write(
    "perception_reader_fuzzer",
    "not_finite_everywhere",
    re.sub(rb"(?<= )-?[0-9.]+(?=[ )])", lambda m: bad[next(numbers) % 3], every),
)
