#!/usr/bin/env python3
"""Times the real program through its whole start-up chain with full web lists.

A local HTTP server serves every web service from hand-made answers: 500 POTA
spots, 100 SOTA spots, 200 NetLogger nets, 60 nets, 100 MW stations and the
solar feed. The program is started against tolvane-sim with --connect and
--service addresses of that server, and TOLVANE_TRACE=1. For the first 16
seconds (the five lists, the band conditions at 10 s and the on-open sequence
up to 12.5 s) the script collects the program's "trace stall" marks (any
event-loop turn longer than 20 ms) and the marks of each list shown, and
reports the longest stall and, for each stall over 50 ms, the list shown
during it, if any.

Usage: bench/weblists_timing.py [path/to/tolvane [path/to/tolvane-sim]] [--runs N]
"""
import datetime
import functools
import http.server
import os
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import trace_lines  # noqa: E402

args = [a for a in sys.argv[1:] if not a.startswith("--")]
RUNS = int(sys.argv[sys.argv.index("--runs") + 1]) if "--runs" in sys.argv else 3
if "--runs" in sys.argv:
    args = [a for a in args if a != str(RUNS)]
EXE = args[0] if args else os.path.join(os.path.dirname(__file__), "..", "build", "src", "desktop", "tolvane")
SIM = args[1] if len(args) > 1 else os.path.join(os.path.dirname(EXE), "..", "sim", "tolvane-sim")


def utc(minutes_ago):
    t = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(minutes=minutes_ago)
    return t.strftime("%Y-%m-%dT%H:%M:%S")


def pota(n):
    modes = ["SSB", "CW", "FT8", "FT4", "AM"]
    khz = [3560, 7185, 10106, 14285, 18110, 21300, 24930, 28400]
    spots = []
    for i in range(n):
        pos = "" if i % 10 == 0 else ', "latitude": 44.3517, "longitude": -68.2733'
        comments = "null" if i % 17 == 0 else '"59 both ways, thanks"'
        spots.append(
            f'{{"spotId": {i}, "activator": "K{i % 10}ABC", "frequency": "{khz[i % 8]}.{i % 10}", '
            f'"mode": "{modes[i % 5]}", "reference": "US-{i:04d}", "spotTime": "{utc(i % 60)}", '
            f'"spotter": "W{i % 10}XYZ", "comments": {comments}, "name": "State Park number {i}", '
            f'"locationDesc": "US-ME", "grid4": "FN54"{pos}}}')
    return "[" + ",\n".join(spots) + "]"


def sota(n):
    spots = []
    for i in range(n):
        spots.append(
            f'{{"timeStamp": "{utc(i % 30)}.{i:03d}", "comments": "QRV", "activatorCallsign": "G{i}ABC/P", '
            f'"activatorName": "Alan", "frequency": "{[7.032, 14.062, 10.118, 144.3][i % 4]}", "mode": "cw", '
            f'"summitCode": "G/LD-{i:03d}", "summitDetails": "Summit {i}, Lake District, {i % 10 + 1} pts"}}')
    return "[" + ",\n".join(spots) + "]"


def netlogger(n):
    nets = "".join(f"<Net>\n<NetName>Evening Net {i}</NetName>\n<Frequency>{3900 + i * 7 % 400}</Frequency>\n"
                   f"<Mode>SSB</Mode>\n<SubscriberCount>{i * 37 % 101}</SubscriberCount>\n</Net>\n" for i in range(n))
    return f'<?xml version="1.0" encoding="UTF-8"?>\n<NetLoggerXML>\n<NetList>\n{nets}</NetList>\n</NetLoggerXML>\n'


def nets(n):
    return "<nets>\n" + "".join(
        f"<net><NetName>Net {i}</NetName><Frequency>{3.9 + i / 1000:.3f} MHz</Frequency><UTC>{i % 24:02d}:00</UTC>"
        f"<Mode>LSB</Mode><URL>https://net.example/{i}</URL><Confirmed>{i % 5}</Confirmed><NetID>{100 + i}</NetID></net>\n"
        for i in range(n)) + "</nets>\n"


def mw(n):
    return "<stations>\n" + "".join(
        f"<s><Station>Station {i}</Station><Frequency>{540 + i * 10} kHz</Frequency><City>City {i}</City>"
        f"<Power>{i % 50 + 1}</Power><URL>https://mw.example/{i}</URL></s>\n" for i in range(n)) + "</stations>\n"


def solar():
    lines = ["\t\t<blank>0</blank>"] * 40
    lines[4] = "\t\t<updated> 01 May 2024 1015 GMT</updated>"
    lines[5] = "\t\t<solarflux>152</solarflux>"
    for i in range(20, 28):
        lines[i] = '\t\t\t<band name="80m-40m" time="day">Good</band>'
    lines[33] = '\t\t\t<phenomenon name="E-Skip">Band Closed</phenomenon>'
    lines[37] = "\t\t<signalnoise>S1-S2</signalnoise>"
    return "\r\n".join(lines) + "\r\n"


def write(root, path, text):
    full = os.path.join(root, path.lstrip("/"))
    os.makedirs(os.path.dirname(full), exist_ok=True)
    with open(full, "w", newline="") as f:
        f.write(text)


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *a):
        pass


def run_once(base, cfg):
    sim = subprocess.Popen([SIM, "--pace", "--boot", "0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    pty = sim.stdout.readline().strip()
    services = []
    for name in ("pota", "sota", "netlogger", "nets", "mw", "hamqsl"):
        services += ["--service", f"{name}={base}"]
    env = dict(os.environ, TOLVANE_TRACE="1", XDG_CONFIG_HOME=cfg)
    env.setdefault("QT_QPA_PLATFORM", "offscreen")
    p = subprocess.Popen([EXE, "--port", pty, "--connect", "--rigctld-port", "0", "--flrig-port", "0"] + services,
                         env=env, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    events, stalls, loop = [], [], None
    for line, parts in trace_lines(p, 16):
        if line.startswith("trace loop"):
            loop = int(parts[2])
        elif line.startswith("trace stall"):
            stalls.append((int(parts[2]), int(parts[-1])))
        elif line.startswith("trace rows") or line.startswith("trace title bandBox"):
            events.append((int(parts[-1]), " ".join(parts[1:-1])))
    p.terminate()
    p.wait()
    sim.terminate()
    sim.wait()
    return loop, events, stalls


def main():
    with tempfile.TemporaryDirectory() as root:
        write(root, "/spot/activator", pota(500))
        write(root, "/api/spots/-3/all", sota(100))
        write(root, "/api/GetActiveNets.php", netlogger(200))
        write(root, "/nets.php", nets(60))
        write(root, "/mw.php", mw(100))
        write(root, "/solarxml.php", solar())
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Quiet, directory=root))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        base = f"http://127.0.0.1:{server.server_address[1]}"
        longest, over = 0, []
        for run in range(RUNS):
            with tempfile.TemporaryDirectory() as cfg:
                loop, events, stalls = run_once(base, cfg)
            shown = [f"{(t - loop) / 1e6:.0f} ms {what}" for t, what in events if loop]
            print(f"run {run + 1}: " + "; ".join(shown))
            for ms, at in stalls:
                longest = max(longest, ms)
                if ms > 50:
                    # A list shown inside the stall's span is what the stall held up.
                    during = [what for t, what in events if at - (ms + 10) * 1_000_000 <= t <= at]
                    over.append(f"{ms} ms ending {(at - loop) / 1e6:.0f} ms after the first loop turn"
                                f" ({'during: ' + ', '.join(during) if during else 'no list shown during it'})")
            at = ", ".join(f"{ms} ms at {(t - loop) / 1e6:.0f} ms" for ms, t in stalls)
            print(f"  stalls over 20 ms: {len(stalls)} ({at})")
        server.shutdown()
    print(f"longest event-loop stall over {RUNS} runs: {longest} ms; over 50 ms: {len(over)}")
    for o in over:
        print("  " + o)


if __name__ == "__main__":
    main()
