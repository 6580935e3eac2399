#!/usr/bin/env python3
"""What the heap holds at idle: runs Tolvane under heaptrack with the start-up
benchmark's arguments (every web list served by a local server, both sharing
servers on), ends it after the start-up chain has settled, and prints the
memory still allocated then, in all and by the program's own call sites.

    python3 bench/idle_heap.py BUILD [--seconds 16] [--top 25] [--keep FILE]

Needs heaptrack and heaptrack_print (Debian package heaptrack)."""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
import startup_timing as bench  # noqa: E402  (the lists, the arguments)


def option(args, name, default):
    if name in args:
        i = args.index(name)
        value = args[i + 1]
        del args[i:i + 2]
        return value
    return default


def main():
    args = sys.argv[1:]
    seconds = float(option(args, "--seconds", "16"))
    top = int(option(args, "--top", "25"))
    keep = option(args, "--keep", None)
    build = args[0] if args else os.path.join(HERE, "..", "build")
    exe = os.path.join(build, "src", "desktop", "tolvane")
    for tool in ("heaptrack", "heaptrack_print"):
        if not shutil.which(tool):
            raise SystemExit(f"{tool} is missing (Debian package heaptrack)")
    with tempfile.TemporaryDirectory() as root:
        server, base = bench.serve_lists(root)
        out = os.path.join(root, "idle")
        p = subprocess.Popen(["heaptrack", "-o", out, exe] + bench.program_args(base),
                             env=bench.environment(root, trace=False), stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        time.sleep(seconds)
        # The program ends at once on SIGKILL, so what it holds at idle is
        # what heaptrack reports as never freed.
        for line in subprocess.run(["pgrep", "-s", str(p.pid), "-x", "tolvane"], capture_output=True,
                                   text=True).stdout.split():
            os.kill(int(line), signal.SIGKILL)
        p.wait()
        server.shutdown()
        data = next(os.path.join(root, f) for f in os.listdir(root) if f.startswith("idle"))
        if keep:
            shutil.copy(data, keep)
        stacks = os.path.join(root, "stacks")
        subprocess.run(["heaptrack_print", "-f", data, "--print-leaks", "0", "--print-peaks", "0",
                        "--print-allocators", "0", "--print-temporary", "0", "--flamegraph-cost-type", "leaked",
                        "-F", stacks], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        with open(stacks) as f:
            report(f.read().splitlines(), seconds, top)


def own_function(frame):
    """The program's own function in a frame ("tolvane::ui::CellStore::add"), or None."""
    name = frame.split(" (")[0]
    at = name.find("tolvane::")
    if at < 0:
        return None
    return name[at:].split("(")[0]


def report(lines, seconds, top):
    total = 0
    backing = 0
    by_function = {}
    for line in lines:
        stack, _, count = line.rpartition(" ")
        if not count.isdigit():
            continue
        size = int(count)
        total += size
        frames = stack.split(";")
        if any("QBackingStore::resize" in f for f in frames):
            backing += size
        # Inclusive: every own function on the stack is charged once.
        for name in {n for n in map(own_function, frames) if n}:
            by_function[name] = by_function.get(name, 0) + size
    print(f"live at {seconds:.0f} s: {total / 1e6:.2f} MB, of which the window's backing store {backing / 1e6:.2f} MB")
    print(f"the program's own functions holding most (inclusive, top {top}):")
    for name, size in sorted(by_function.items(), key=lambda kv: -kv[1])[:top]:
        print(f"  {size / 1e6:8.3f} MB  {name[:120]}")


if __name__ == "__main__":
    main()
