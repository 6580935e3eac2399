#!/usr/bin/env python3
"""Times the real desktop program.

1. Start to window shown (first frame on screen) and resident memory when idle,
   over several launches (offscreen platform unless DISPLAY is set).
2. A frequency report from the radio on a pseudo-terminal to the new title of
   the VFO A button: this script plays the radio, writes "FA...;" reports one
   at a time after the program has switched auto-information on, and reads
   the program's trace marks (TOLVANE_TRACE) of each new title.
3. The longest event-loop stall seen during start-up and the on-open sequence.

Usage: bench/desktop_timing.py [path/to/tolvane]
"""
import os
import select
import subprocess
import sys
import tempfile
import termios
import time
import tty

EXE = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "build", "src", "desktop", "tolvane")


def env(config):
    e = dict(os.environ, TOLVANE_TRACE="1", XDG_CONFIG_HOME=config)
    if "DISPLAY" not in e:
        e["QT_QPA_PLATFORM"] = "offscreen"
    return e


def rss_kib(pid):
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    return -1


def percentile(values, p):
    v = sorted(values)
    return v[min(len(v) - 1, int(round(p / 100.0 * (len(v) - 1))))]


def start_and_memory(runs=5):
    shown, rss, stalls = [], [], []
    for _ in range(runs):
        with tempfile.TemporaryDirectory() as cfg:
            t0 = time.monotonic_ns()
            p = subprocess.Popen([EXE], env=env(cfg), stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
            while True:
                line = p.stderr.readline()
                if not line:
                    break
                if line.startswith("trace shown"):
                    shown.append((int(line.split()[2]) - t0) / 1e6)
                    break
            # Idle: let start-up work settle, then read the resident set.
            end = time.monotonic() + 3
            while time.monotonic() < end:
                r, _, _ = select.select([p.stderr], [], [], 0.1)
                if r:
                    line = p.stderr.readline()
                    if line.startswith("trace stall"):
                        stalls.append(int(line.split()[2]))
            rss.append(rss_kib(p.pid) / 1024.0)
            p.terminate()
            p.wait()
    return shown, rss, stalls


def latency(reports=200):
    master, slave = os.openpty()
    tty.setraw(master)
    tty.setraw(slave)
    path = os.ttyname(slave)
    with tempfile.TemporaryDirectory() as cfg:
        p = subprocess.Popen([EXE, "--port", path, "--connect"], env=env(cfg), stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, text=True)
        os.set_blocking(p.stderr.fileno(), False)
        buf, wire, stalls, titles = "", b"", [], []

        def pump(timeout):
            nonlocal buf, wire
            r, _, _ = select.select([master, p.stderr], [], [], timeout)
            if master in r:
                try:
                    wire += os.read(master, 65536)
                except OSError:
                    pass
            if p.stderr in r:
                buf += p.stderr.read() or ""
                *lines, buf = buf.split("\n")
                for line in lines:
                    parts = line.split()
                    if line.startswith("trace stall"):
                        stalls.append(int(parts[2]))
                    elif line.startswith("trace title tlFreqAButton"):
                        titles.append((parts[3], int(parts[-1])))

        deadline = time.monotonic() + 20
        while b"AI1;" not in wire and time.monotonic() < deadline:
            pump(0.05)
        if b"AI1;" not in wire:
            p.terminate()
            raise SystemExit("the program never switched auto-information on")
        end = time.monotonic() + 5  # let the on-open sequence finish
        while time.monotonic() < end:
            pump(0.05)
        samples = []
        for i in range(reports):
            hz = 14_000_000 + 1000 * (i + 1)
            text = f"{hz // 1_000_000}.{hz // 1000 % 1000:03d}.{hz % 1000:03d}"
            t0 = time.monotonic_ns()
            os.write(master, f"FA{hz:09d};".encode())
            stop = time.monotonic() + 1
            while time.monotonic() < stop:
                pump(0.01)
                hit = [t for (title, t) in titles if title == text]
                if hit:
                    samples.append((hit[0] - t0) / 1e6)
                    break
            time.sleep(0.02)
        p.terminate()
        p.wait()
    os.close(master)
    os.close(slave)
    return samples, stalls


def main():
    shown, rss, stalls1 = start_and_memory()
    print(f"start to window shown: median {percentile(shown, 50):.0f} ms, max {max(shown):.0f} ms ({len(shown)} runs)")
    print(f"resident memory when idle: median {percentile(rss, 50):.1f} MB, max {max(rss):.1f} MB")
    samples, stalls2 = latency()
    print(f"FA report to VFO A title: p50 {percentile(samples, 50):.2f} ms, p99 {percentile(samples, 99):.2f} ms, "
          f"max {max(samples):.2f} ms ({len(samples)} of 200 seen)")
    stalls = stalls1 + stalls2
    print(f"event-loop stalls over 20 ms: {len(stalls)}, longest {max(stalls) if stalls else 0} ms")


if __name__ == "__main__":
    main()
