#!/usr/bin/env python3
"""Times rig sharing under polling clients.

The real program is connected to tolvane-sim on its pseudo-terminal with
both sharing servers on free ports of 127.0.0.1. Once the on-open sequence is
over, eight clients each send "f" and "m" to the rigctld-protocol server every
100 ms for SHARE_SECONDS (60 by default) and time each round trip. Meanwhile the
simulator's front-panel knob is turned once a second and the time from the
turn to the new title of the VFO A button is taken from the program's trace
marks (TOLVANE_TRACE). Printed: the round trips' percentiles, the commands
and bytes the simulator received during the polling (reads must cause none),
the knob-to-title times with and without the clients, and the event-loop
stalls before and during the polling.

Usage: bench/share_polling.py [path/to/tolvane [path/to/tolvane-sim]]
       SHARE_SECONDS=10 bench/share_polling.py   (a shorter run)
"""
import multiprocessing
import os
import socket
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import free_port, wait_for  # noqa: E402

EXE = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "build", "src", "desktop", "tolvane")
SIM = sys.argv[2] if len(sys.argv) > 2 else os.path.join(os.path.dirname(EXE), "..", "sim", "tolvane-sim")
SECONDS = float(os.environ.get("SHARE_SECONDS", "60"))
CLIENTS = 8


def percentile(values, p):
    v = sorted(values)
    return v[min(len(v) - 1, int(round(p / 100.0 * (len(v) - 1))))]


def poller(port, stop, results):
    """One client in a process of its own: threads of one interpreter would
    wait for each other's lock and add that wait to the round trips."""
    times, errors = [], []
    s = socket.create_connection(("127.0.0.1", port))
    s.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    f = s.makefile("rb")
    next_at = time.monotonic()
    while not stop.is_set():
        t0 = time.perf_counter()
        s.sendall(b"f\nm\n")
        answer = f.readline() + f.readline() + f.readline()
        times.append((time.perf_counter() - t0) * 1000.0)
        if not answer.endswith(b"\n") or answer.startswith(b"RPRT"):
            errors.append(answer)
        next_at += 0.1
        time.sleep(max(0.0, next_at - time.monotonic()))
    s.sendall(b"q\n")
    s.close()
    results.put((times, errors))


def knob_titles(trace_path, panel, turns, start_freq):
    """Turns the knob `turns` times, one a second; returns the turn-to-title times in ms."""
    out = []
    freq = start_freq
    for _ in range(turns):
        freq += 1000
        mhz = freq // 1000000
        title = f"{mhz}.{(freq // 1000) % 1000:03d}.{freq % 1000:03d}"
        t0 = time.monotonic_ns()
        panel.write(b"knob 1000\n")
        panel.flush()
        mark = f"trace title tlFreqAButton {title} "
        end = time.time() + 2
        seen = None
        while time.time() < end and seen is None:
            with open(trace_path) as f:
                for line in f:
                    if line.startswith(mark):
                        seen = int(line.split()[-1])
            time.sleep(0.005)
        if seen is not None:
            out.append((seen - t0) / 1e6)
        time.sleep(1.0)
    return out, freq


def main():
    work = tempfile.mkdtemp(prefix="tolvane-share-bench-")
    wire = os.path.join(work, "wire.log")
    sim = subprocess.Popen([SIM, "--pace", "--boot", "0", "--panel", "--log", wire], stdin=subprocess.PIPE,
                           stdout=subprocess.PIPE, text=False)
    pty = sim.stdout.readline().decode().strip()
    rport, fport = free_port(), free_port()
    trace = os.path.join(work, "app.err")
    env = dict(os.environ, TOLVANE_TRACE="1", XDG_CONFIG_HOME=work, QT_QPA_PLATFORM="offscreen")
    app = subprocess.Popen([EXE, "--port", pty, "--connect", "--rigctld-port", str(rport), "--flrig-port", str(fport)],
                           stdout=subprocess.DEVNULL, stderr=open(trace, "w"), env=env)
    try:
        if not (wait_for(wire, "AI1;", 30) and wait_for(wire, "EX040302;", 15)):
            print("the program did not finish its on-open sequence")
            return 1
        time.sleep(1.0)
        turns = max(3, int(min(SECONDS, 20)))
        alone, freq = knob_titles(trace, sim.stdin, turns, 14074000)

        stop = multiprocessing.Event()
        results = multiprocessing.Queue()
        times, errors = [], []
        with open(wire) as f:
            before = len(f.readlines())
        threads = [multiprocessing.Process(target=poller, args=(rport, stop, results)) for _ in range(CLIENTS)]
        for t in threads:
            t.start()
        started = time.time()
        polling_from = time.monotonic_ns()
        polled, freq = knob_titles(trace, sim.stdin, turns, freq)
        while time.time() - started < SECONDS:
            time.sleep(0.2)
        stop.set()
        for _ in threads:
            t, e = results.get()
            times += t
            errors += e
        for t in threads:
            t.join()
        polling_to = time.monotonic_ns()
        with open(wire) as f:
            during = [l.split()[1] for l in f.readlines()[before:] if len(l.split()) > 1]
        # The knob's own reports make the program ask "GT0;RA0;RF0;" each time.
        caused = [c for c in during if c not in ("GT0;", "RA0;", "RF0;")]

        print(f"{CLIENTS} clients polling f and m every 100 ms for {SECONDS:.0f} s: {len(times)} round trips, "
              f"{len(errors)} errors")
        print(f"  round trip ms: p50 {percentile(times, 50):.3f}  p99 {percentile(times, 99):.3f}  "
              f"max {max(times):.3f}")
        print(f"  commands on the serial line during polling: {len(during)} "
              f"({len(during) - len(caused)} are the window's own GT0/RA0/RF0 after each knob report; "
              f"other: {len(caused)} {caused[:10]}, {sum(len(c) for c in caused)} bytes)")
        if alone and polled:
            print(f"  knob to VFO A title, ms: alone median {percentile(alone, 50):.2f} max {max(alone):.2f} "
                  f"({len(alone)} turns); with clients median {percentile(polled, 50):.2f} "
                  f"max {max(polled):.2f} ({len(polled)} turns)")
        # "trace stall N ms at T": T is the monotonic clock this script reads too.
        before_polling, polling = [], []
        with open(trace) as f:
            for line in f:
                if line.startswith("trace stall "):
                    words = line.split()
                    at = int(words[-1])
                    (polling if polling_from <= at <= polling_to else before_polling).append(int(words[2]))
        for name, stalls in (("before the polling", before_polling), ("during the polling", polling)):
            print(f"  event-loop stalls over 20 ms {name}: {len(stalls)}; longest {max(stalls) if stalls else 0} ms"
                  f" {sorted(stalls, reverse=True)[:5]}")
        return 0
    finally:
        app.terminate()
        app.wait()
        sim.terminate()
        sim.wait()


if __name__ == "__main__":
    sys.exit(main())
