"""What the timing scripts share: free ports, waiting for a text in a file,
and reading the program's trace marks from its standard error."""
import os
import select
import socket
import time


def free_port():
    """A TCP port of 127.0.0.1 that nothing listens on at this moment."""
    s = socket.socket()
    s.bind(("127.0.0.1", 0))
    port = s.getsockname()[1]
    s.close()
    return port


def wait_for(path, text, timeout):
    """True once the file at `path` holds `text`, false after `timeout` seconds."""
    end = time.time() + timeout
    while time.time() < end:
        try:
            with open(path) as f:
                if text in f.read():
                    return True
        except FileNotFoundError:
            pass
        time.sleep(0.05)
    return False


def trace_lines(process, seconds):
    """Each whole line the process writes to its standard error (a pipe opened
    with text=True) during `seconds`, as (line, its words)."""
    os.set_blocking(process.stderr.fileno(), False)
    buf = ""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        r, _, _ = select.select([process.stderr], [], [], 0.1)
        if not r:
            continue
        buf += process.stderr.read() or ""
        *lines, buf = buf.split("\n")
        for line in lines:
            yield line, line.split()
