#!/usr/bin/env python3
"""Times the real desktop program.

1. Start to window shown (first frame on screen) and resident memory when idle,
   over several launches (offscreen platform unless DISPLAY is set).
2. A front-panel change on tolvane-sim to the new title of the VFO A button:
   the program is connected to tolvane-sim on its pseudo-terminal; once the
   on-open sequence is over this script turns the simulator's knob through
   its front panel (--panel), one turn at a time, and reads the program's
   trace marks (TOLVANE_TRACE) of each new title. It runs once with answers
   at the line speed of 38400 baud (--pace) and once without.
3. The longest event-loop stall seen during start-up and the on-open sequence.

Usage: bench/desktop_timing.py [path/to/tolvane [path/to/tolvane-sim]]
"""
import os
import select
import subprocess
import sys
import tempfile
import time

EXE = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "build", "src", "desktop", "tolvane")
SIM = sys.argv[2] if len(sys.argv) > 2 else os.path.join(os.path.dirname(EXE), "..", "sim", "tolvane-sim")


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


def latency(paced, turns=200):
    sim_args = [SIM, "--panel", "--boot", "0", "--log", "-"] + (["--pace"] if paced else [])
    sim = subprocess.Popen(sim_args, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    path = sim.stdout.readline().strip()
    os.set_blocking(sim.stderr.fileno(), False)
    with tempfile.TemporaryDirectory() as cfg:
        p = subprocess.Popen([EXE, "--port", path, "--connect"], env=env(cfg), stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, text=True)
        os.set_blocking(p.stderr.fileno(), False)
        buf, wire, stalls, titles = "", "", [], []

        def pump(timeout):
            nonlocal buf, wire
            r, _, _ = select.select([sim.stderr, p.stderr], [], [], timeout)
            if sim.stderr in r:
                wire += sim.stderr.read() or ""
            if p.stderr in r:
                buf += p.stderr.read() or ""
                *lines, buf = buf.split("\n")
                for line in lines:
                    parts = line.split()
                    if line.startswith("trace stall"):
                        stalls.append(int(parts[2]))
                    elif line.startswith("trace title tlFreqAButton"):
                        titles.append((parts[3], int(parts[-1])))

        # The simulator logs every command it receives; "AI1;" comes with the start-up poll.
        deadline = time.monotonic() + 20
        while "AI1;" not in wire and time.monotonic() < deadline:
            pump(0.05)
        if "AI1;" not in wire:
            p.terminate()
            sim.terminate()
            raise SystemExit("the program never switched auto-information on")
        end = time.monotonic() + 5  # let the on-open sequence finish
        while time.monotonic() < end:
            pump(0.05)
        # The knob starts where the poll left VFO A.
        start_title = titles[-1][0] if titles else "14.074.000"
        hz = int(start_title.replace(".", ""))
        samples = []
        for i in range(turns):
            step = 1000 if i % 2 == 0 else -500
            hz += step
            text = f"{hz // 1_000_000}.{hz // 1000 % 1000:03d}.{hz % 1000:03d}"
            seen = len(titles)
            t0 = time.monotonic_ns()
            sim.stdin.write(f"knob {step}\n")
            sim.stdin.flush()
            stop = time.monotonic() + 1
            while time.monotonic() < stop:
                pump(0.01)
                hit = [t for (title, t) in titles[seen:] if title == text]
                if hit:
                    samples.append((hit[0] - t0) / 1e6)
                    break
            time.sleep(0.02)
        p.terminate()
        p.wait()
    sim.terminate()
    sim.wait()
    return samples, stalls


def main():
    shown, rss, stalls1 = start_and_memory()
    print(f"start to window shown: median {percentile(shown, 50):.0f} ms, max {max(shown):.0f} ms ({len(shown)} runs)")
    print(f"resident memory when idle: median {percentile(rss, 50):.1f} MB, max {max(rss):.1f} MB")
    stalls = stalls1
    for paced in (True, False):
        samples, more = latency(paced)
        stalls += more
        label = "at 38400 baud" if paced else "unpaced"
        if not samples:
            print(f"knob turn to VFO A title ({label}): no title seen")
            continue
        print(f"knob turn to VFO A title ({label}): p50 {percentile(samples, 50):.2f} ms, "
              f"p99 {percentile(samples, 99):.2f} ms, max {max(samples):.2f} ms ({len(samples)} of 200 seen)")
    print(f"event-loop stalls over 20 ms: {len(stalls)}, longest {max(stalls) if stalls else 0} ms")


if __name__ == "__main__":
    main()
