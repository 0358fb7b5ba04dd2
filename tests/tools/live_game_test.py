#!/usr/bin/env python3
"""The live page of a game on the real server, in a real browser: a staged game
(robots of two teams placed by the trainer, paced in real time) plays, the
viewer follows the server's monitor port, an agent sends what it believes, and
headless Chromium shows the robots where the server has them, the score, the
play mode and the clock, with the belief drawn over them; in a wide window and
in a phone-sized one. A recorder beside the viewer records the game, and the
statistics of its record name every robot.

    live_game_test.py VIEWER STAGED_GAME RECORDER STATS CHROMIUM [SCREENSHOT_DIR [PER_TEAM]]

Screenshots (live-game.png, live-game-phone.png) go to SCREENSHOT_DIR when
given; PER_TEAM robots a team play then (default: 3 left, 2 right). Exits 77
(skipped) when CHROMIUM or the real server is not there (fails without the
server when CI=true).
"""
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from browser_test import WAIT, DevTools, missing, near, rgb_pixels, shape, wait_for_file  # noqa: E402

LEFT_ROBOT = (253, 216, 53)
BELIEF, BALL_BELIEF = (255, 0, 255), (255, 128, 0)
WIDE, PHONE = (1280, 800), (390, 844)


def believe(port, stop):
    """Agent 2 of the left team draws where it believes it and the ball are: off their true places."""
    out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    me, ball = (-6.4, 2.2), (0.4, -0.3)
    while not stop.is_set():
        out.sendto(bytes([3, 0, 2]), ("127.0.0.1", port))
        out.sendto(shape(0x10, 2, "me", BELIEF, [me]), ("127.0.0.1", port))
        out.sendto(shape(0x10, 2, "ball", BALL_BELIEF, [ball]), ("127.0.0.1", port))
        out.sendto(shape(0x11, 2, "to_ball", BELIEF, [me, ball]), ("127.0.0.1", port))
        time.sleep(0.04)
    out.close()


def stop(process):
    if process and process.poll() is None:
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(WAIT)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def open_page(browser, http_port, size, robots):
    browser.call("Emulation.setDeviceMetricsOverride", width=size[0], height=size[1],
                 deviceScaleFactor=1, mobile=size[0] < size[1])
    browser.call("Page.navigate", url=f"http://127.0.0.1:{http_port}/")
    browser.until("document.getElementById('status').textContent.startsWith('live')", "a live connection")
    browser.until(f"document.querySelectorAll('g.robot').length == {robots}", f"{robots} robots")
    browser.until("document.querySelector('circle.point') != null", "the belief of agent 2")
    browser.until("document.querySelector('#game .score').textContent.includes('home')", "the score")


def check_wide(browser, work):
    """Robot 2 of the left team shows in its team's colour where the server has it."""
    header = browser.evaluate("document.getElementById('game').textContent")
    assert "home" in header and "away" in header and ":" in header, header
    assert any(mode in header for mode in ("PlayOn", "Goal_Left", "KickOff_Right")), header
    box = browser.evaluate("""(() => {
        const c = document.querySelector('g.robot[data-side=left][data-unum="2"] circle');
        const b = c.getBoundingClientRect();
        return [Math.round(b.x + b.width / 2), Math.round(b.y + b.height / 2) - 8];
    })()""")
    _, _, pixel = rgb_pixels(browser.screenshot(os.path.join(work, "live-game.png")))
    assert near(pixel(*box), LEFT_ROBOT, 30), f"robot 2 not drawn at {box}: {pixel(*box)}"
    return header


def check_phone(browser, work, robots):
    """Upright, the field is turned to fill the screen and every robot is on it."""
    inside = browser.evaluate(f"""(() => {{
        const svg = document.querySelector('#field svg');
        const view = svg.viewBox.baseVal;
        const robots = Array.from(document.querySelectorAll('g.robot'), r => r.getBoundingClientRect());
        return view.height > view.width && robots.length == {robots} &&
            robots.every(b => b.x >= 0 && b.right <= {PHONE[0]} && b.y >= 0 && b.bottom <= {PHONE[1]});
    }})()""")
    assert inside, "the field does not fit the phone's screen"
    browser.screenshot(os.path.join(work, "live-game-phone.png"))


def check_record(record, game_stats, work):
    """The record of the game so far reads whole, with every robot of both teams."""
    stop(record)
    assert record.returncode == 0, f"the recorder ended with {record.returncode}"
    stats = subprocess.run([game_stats, os.path.join(work, "game.txt"), "--plot", os.path.join(work, "game.svg")],
                           capture_output=True, text=True, timeout=WAIT)
    assert stats.returncode == 0, stats.stderr
    assert " 0 malformed." in stats.stdout, stats.stdout
    for robot in ("home (left) | 1 |", "home (left) | 3 |", "away (right) | 2 |"):
        assert robot in stats.stdout, stats.stdout


def main():
    viewer, staged_game, recorder, game_stats, chromium = sys.argv[1:6]
    shots = sys.argv[6] if len(sys.argv) > 6 else None
    teams = ["--left", sys.argv[7], "--right", sys.argv[7]] if len(sys.argv) > 7 else []
    robots = 2 * int(sys.argv[7]) if teams else 5
    if not shutil.which("rcssserver3d"):
        print("the real simulation server (rcssserver3d) is missing: scripts/install-deps.sh installs it")
        # CI always installs it: there a missing server is a failure, not a skip.
        return 1 if os.environ.get("CI") == "true" else 77
    reason = missing(chromium)
    if reason:
        print(reason)
        return 77
    started = time.time()
    work = tempfile.mkdtemp(prefix="orvo-live-game-")
    game = page = browser = record = None
    halt = threading.Event()
    try:
        game = subprocess.Popen([staged_game, "--paced", *teams, "--ready-file", os.path.join(work, "ready"),
                                 "--log", os.path.join(work, "server.log")])
        monitor_port = int(wait_for_file(os.path.join(work, "ready"), "the staged game", game, 60)[2])
        record = subprocess.Popen([recorder, "--monitor", f"127.0.0.1:{monitor_port}",
                                   "--out", os.path.join(work, "game.txt")], stdout=subprocess.DEVNULL)
        page = subprocess.Popen([viewer, "--monitor", f"127.0.0.1:{monitor_port}", "--drawing-port", "0",
                                 "--http-port", "0", "--ports-file", os.path.join(work, "ports")],
                                stdout=subprocess.PIPE, text=True)
        udp_port, http_port = map(int, wait_for_file(os.path.join(work, "ports"), "the viewer", page, 60))
        threading.Thread(target=believe, args=(udp_port, halt), daemon=True).start()
        browser = DevTools(chromium, os.path.join(work, "profile"), "--hide-scrollbars")
        open_page(browser, http_port, WIDE, robots)
        time.sleep(1.5)  # a second of pictures for the rate in the status line
        header = check_wide(browser, work)
        rate = browser.evaluate("document.getElementById('status').textContent")
        open_page(browser, http_port, PHONE, robots)
        check_phone(browser, work, robots)
        if shots:
            for name in ("live-game.png", "live-game-phone.png"):
                shutil.copy(os.path.join(work, name), os.path.join(shots, name))

        page.terminate()
        output = page.communicate(timeout=WAIT)[0]
        assert page.returncode == 0, f"the viewer ended with {page.returncode}"
        assert "monitor: " in output and ", live" in output, output
        check_record(record, game_stats, work)
        print(f"{robots} robots and a belief drawn from the real server: {header!r}; {rate!r}; "
              f"{time.time() - started:.1f} s")
    except Exception:
        print(f"kept for a look: {work}", file=sys.stderr)
        raise
    finally:
        halt.set()
        if browser:
            browser.close()
        stop(page)
        stop(record)
        stop(game)
    shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
