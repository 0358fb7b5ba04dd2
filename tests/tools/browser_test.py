#!/usr/bin/env python3
"""The live page in a real browser: headless Chromium opens the viewer's page,
drawings of 22 agents arrive once the page is live, and the pixels of a
screenshot show every agent's cell.

    browser_test.py VIEWER CHROMIUM

Exits 77 (skipped) when CHROMIUM is not there.
"""
import base64
import json
import os
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import zlib

WAIT = 20  # seconds any single step may take
LEFT, RIGHT = (255, 0, 255), (0, 255, 255)
GRASS = (46, 125, 50)


def shape(kind, header, name, colour, corners):
    data = bytes([kind, header, len(name)]) + name.encode() + bytes(colour) + bytes([len(corners)])
    for x, y in corners:
        data += struct.pack(">ii", round(x * 1000), round(y * 1000))
    return data


def agents():
    """(header, x, y) of 11 agents a side, in each team's own frame."""
    return [(side << 7 | number, -12 + 3 * ((number - 1) % 4), -6 + 4 * ((number - 1) // 4))
            for side in (0, 1) for number in range(1, 12)]


def send_cycles(port, stop):
    out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    while not stop.is_set():
        for header, x, y in agents():
            colour = RIGHT if header & 0x80 else LEFT
            out.sendto(bytes([3, 0, header]), ("127.0.0.1", port))
            cell = [(x - 0.8, y - 0.8), (x + 0.8, y - 0.8), (x + 0.8, y + 0.8), (x - 0.8, y + 0.8)]
            out.sendto(shape(0x12, header, "cell", colour, cell), ("127.0.0.1", port))
            out.sendto(shape(0x10, header, "me", colour, [(x, y)]), ("127.0.0.1", port))
        time.sleep(0.02)
    out.close()


class DevTools:
    """Chromium's DevTools protocol over the pipe it reads on fd 3 and writes on fd 4."""

    def __init__(self, chromium, profile, *options):
        """Headless Chromium on about:blank, the commands going to its page."""
        command = [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                   "--no-first-run", "--disable-background-networking", "--disable-component-update",
                   "--disable-sync", "--user-data-dir=" + profile, *options, "--remote-debugging-pipe",
                   "about:blank"]
        to_browser, self.commands = os.pipe()
        self.events, from_browser = os.pipe()

        def plumb():
            os.dup2(to_browser, 3)
            os.dup2(from_browser, 4)

        self.process = subprocess.Popen(command, pass_fds=(3, 4), preexec_fn=plumb,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.next_id = 0
        self.pending = b""
        self.session = None
        target = next(t for t in self.call("Target.getTargets")["targetInfos"] if t["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"],
                                 flatten=True)["sessionId"]

    def call(self, method, **params):
        self.next_id += 1
        message = {"id": self.next_id, "method": method, "params": params}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        deadline = time.time() + WAIT
        while time.time() < deadline:
            while b"\0" in self.pending:
                text, self.pending = self.pending.split(b"\0", 1)
                answer = json.loads(text)
                if answer.get("id") == self.next_id:
                    if "error" in answer:
                        raise RuntimeError(f"{method}: {answer['error']}")
                    return answer["result"]
            chunk = os.read(self.events, 1 << 16)
            if not chunk:
                raise RuntimeError("the browser went away")
            self.pending += chunk
        raise RuntimeError(f"{method}: no answer")

    def evaluate(self, expression):
        return self.call("Runtime.evaluate", expression=expression, returnByValue=True)["result"].get("value")

    def until(self, expression, what):
        deadline = time.time() + WAIT
        while time.time() < deadline:
            if self.evaluate(expression):
                return
            time.sleep(0.1)
        raise RuntimeError("the page never showed " + what)

    def screenshot(self, path):
        """The page as a PNG, kept at `path` for a look."""
        shot = base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])
        open(path, "wb").write(shot)
        return shot

    def close(self):
        self.process.kill()
        self.process.wait(WAIT)


def rgb_pixels(png):
    """Width, height and a pixel reader of an 8-bit RGB or RGBA PNG."""
    assert png[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG"
    at, idat = 8, b""
    while at < len(png):
        length, kind = struct.unpack(">I4s", png[at:at + 8])
        body = png[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour_type = struct.unpack(">IIBB", body[:10])
            assert depth == 8 and colour_type in (2, 6), "unexpected PNG format"
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    step = 3 if colour_type == 2 else 4
    raw, stride = zlib.decompress(idat), width * step
    rows, previous = [], bytearray(stride)
    for y in range(height):
        kind, row = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = row[i - step] if i >= step else 0
            up, corner = previous[i], previous[i - step] if i >= step else 0
            if kind == 1:
                row[i] = (row[i] + left) & 255
            elif kind == 2:
                row[i] = (row[i] + up) & 255
            elif kind == 3:
                row[i] = (row[i] + (left + up) // 2) & 255
            elif kind == 4:
                guess = left + up - corner
                near = min((abs(guess - left), 0), (abs(guess - up), 1), (abs(guess - corner), 2))[1]
                row[i] = (row[i] + (left, up, corner)[near]) & 255
        rows.append(row)
        previous = row
    return width, height, lambda x, y: tuple(rows[y][x * step:x * step + 3])


def wait_for_file(path, what, process, seconds=WAIT):
    """The words of the file a starting program writes when it is ready."""
    deadline = time.time() + seconds
    while not os.path.exists(path):
        assert process.poll() is None, what + " ended early"
        assert time.time() < deadline, what + " did not start"
        time.sleep(0.05)
    return open(path).read().split()


def missing(chromium):
    """Why the test cannot run here, or None."""
    if not shutil.which(chromium):
        return f"{chromium} is missing (scripts/install-deps.sh --test installs it)"
    return None


def near(colour, expected, tolerance=12):
    return all(abs(a - b) <= tolerance for a, b in zip(colour, expected))


def blend(colour, opacity=0.35):
    return tuple(round(opacity * c + (1 - opacity) * g) for c, g in zip(colour, GRASS))


def main():
    viewer, chromium = sys.argv[1], sys.argv[2]
    reason = missing(chromium)
    if reason:
        print(reason)
        return 77
    started = time.time()
    work = tempfile.mkdtemp(prefix="orvo-browser-")
    ports = os.path.join(work, "ports")
    page = subprocess.Popen([viewer, "--drawing-port", "0", "--http-port", "0", "--ports-file", ports],
                            stdout=subprocess.PIPE, text=True)
    stop, browser = threading.Event(), None
    try:
        udp_port, http_port = map(int, wait_for_file(ports, "the viewer", page))
        browser = DevTools(chromium, os.path.join(work, "profile"), "--window-size=640,480")
        browser.call("Page.navigate", url=f"http://127.0.0.1:{http_port}/")
        browser.until("document.getElementById('status').textContent.startsWith('live')",
                      "a live connection")
        assert browser.evaluate("document.querySelectorAll('polygon').length") == 0

        # Only now do the agents draw: whatever shows came over the live connection.
        sender = threading.Thread(target=send_cycles, args=(udp_port, stop))
        sender.start()
        browser.until("document.querySelectorAll('polygon.cell').length == 22", "22 cells")
        # Inside each cell, clear of the point in its middle.
        insides = browser.evaluate("""Array.from(document.querySelectorAll('polygon.cell'), cell => {
            const box = cell.getBoundingClientRect();
            return [cell.dataset.side, Math.round(box.x + box.width / 4), Math.round(box.y + box.height / 2)];
        })""")
        shot = browser.screenshot(os.path.join(work, "live.png"))
        stop.set()
        sender.join()

        width, height, pixel = rgb_pixels(shot)
        wrong = [(side, x, y, pixel(x, y)) for side, x, y in insides
                 if not near(pixel(x, y), blend(LEFT if side == "left" else RIGHT))]
        assert not wrong, f"cells not drawn at (side, x, y, colour): {wrong}"
        assert near(pixel(width // 2 + 40, height - 40), GRASS), "the field is not drawn"

        page.terminate()
        output = page.communicate(timeout=WAIT)[0]
        assert page.returncode == 0, f"the viewer ended with {page.returncode}"
        assert " 0 malformed, 0 dropped by the system" in output, output
        print(f"22 agents' cells drawn in the browser; {time.time() - started:.1f} s")
    except Exception:
        print(f"kept for a look: {work}", file=sys.stderr)
        raise
    finally:
        stop.set()
        if browser:
            browser.close()
        if page.poll() is None:
            page.kill()
            page.wait()
    shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
