"""What the desktop bus scripts share: an X server of their own, a local
POTA service with one spot, tolvane-sim on a pseudo-terminal with its wire
log, the real program started against both, and waits on the wire log.

Each script runs inside its own D-Bus session (dbus-run-session); a script
that cannot have what it needs exits with SKIPPED (77).
"""
import datetime
import http.server
import json
import os
import random
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time

SKIPPED = 77
# The web lists a run does not use: their addresses are left empty.
OTHER_LISTS = ("sota", "netlogger", "nets", "mw", "hamqsl")


def skip(why):
    print("SKIPPED: " + why)
    sys.exit(SKIPPED)


def spot_server(spot):
    """A local POTA service answering the activator list with the one spot
    (callsign, kHz, mode, park, reference); every other list is empty."""
    call, khz, mode, name, reference = spot

    class Spots(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            now = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%S")
            one = {"activator": call, "frequency": khz, "mode": mode, "comments": "", "name": name,
                   "spotTime": now, "locationDesc": "US-ME", "reference": reference}
            body = json.dumps([one] if self.path == "/spot/activator" else []).encode()
            self.send_response(200)
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)

        def log_message(self, *args):
            pass

    server = http.server.HTTPServer(("127.0.0.1", 0), Spots)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server


class Session:
    """Starts what a run needs and ends it, newest first, on leaving."""

    def __init__(self, prefix):
        self.work = tempfile.mkdtemp(prefix=prefix)
        self.wire = os.path.join(self.work, "wire.log")
        self.display = None
        self.keep = False  # set on a failure: the work folder (logs, speech) stays for reading
        self._processes = []

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        for p in reversed(self._processes):
            if p.poll() is None:
                p.terminate()
                try:
                    p.wait(10)
                except subprocess.TimeoutExpired:
                    p.kill()
                    p.wait()
        if self.keep or exc[0] is not None:
            print("Logs kept in " + self.work)
        else:
            shutil.rmtree(self.work, ignore_errors=True)
        return False

    def x_server(self, size="1440x1024x24"):
        """An Xvfb of its own on a free display; the session bus's activated
        services (the accessibility bus and registry) are told to use it.

        The display is chosen here, not by the server: a server of another
        run in a private /tmp (its lock file unseen) still answers on the
        abstract socket of its number, and a client would reach that one.
        A number (drawn at random, so runs at the same time rarely meet) is
        taken only where nothing answers on either socket, and kept only once
        this server is seen listening on it: two servers started at once on
        one number leave one of them answering for both."""
        start = random.randrange(1000, 30000)
        for number in (str(n) for n in range(start, start + 40)):
            if self._x_answers(number) or os.path.exists("/tmp/.X%s-lock" % number):
                continue
            try:
                xvfb = subprocess.Popen(["Xvfb", ":" + number, "-nolisten", "tcp", "-screen", "0", size],
                                        stderr=open(os.path.join(self.work, "xvfb.err"), "a"))
            except FileNotFoundError:
                skip("no Xvfb")
            # The accessibility registry opens the display once, when it
            # starts: the server must take connections by then.
            end = time.time() + 10
            while xvfb.poll() is None and time.time() < end and not self._listens(xvfb.pid, number):
                time.sleep(0.05)
            if xvfb.poll() is None and self._listens(xvfb.pid, number):
                break
            if xvfb.poll() is None:
                xvfb.kill()
            xvfb.wait()
        else:
            skip("Xvfb did not start (see %s)" % os.path.join(self.work, "xvfb.err"))
        self._processes.append(xvfb)
        self.display = ":" + number
        os.environ["DISPLAY"] = self.display
        import dbus
        dbus.SessionBus().get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").UpdateActivationEnvironment(
            {"DISPLAY": self.display}, dbus_interface="org.freedesktop.DBus")
        return self.display

    @staticmethod
    def _listens(pid, number):
        """Whether the server of that process is the one listening on the
        display's abstract socket (another run's server may answer there)."""
        try:
            ours = {os.readlink("/proc/%d/fd/%s" % (pid, fd)) for fd in os.listdir("/proc/%d/fd" % pid)}
            with open("/proc/net/unix") as table:
                for line in table.readlines()[1:]:
                    fields = line.split()
                    if len(fields) >= 8 and fields[7] == "@/tmp/.X11-unix/X" + number:
                        if "socket:[%s]" % fields[6] in ours:
                            return True
        except OSError:
            pass
        return False

    @staticmethod
    def _x_answers(number):
        """Whether an X server takes connections on the display, through its
        abstract socket or its socket file."""
        for address in ("\0/tmp/.X11-unix/X" + number, "/tmp/.X11-unix/X" + number):
            probe = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            try:
                probe.connect(address)
                return True
            except OSError:
                pass
            finally:
                probe.close()
        return False

    def simulator(self, sim):
        """tolvane-sim on a pseudo-terminal, logging the wire; returns the
        terminal's name."""
        p = subprocess.Popen([sim, "--boot", "0", "--log", self.wire], stdout=subprocess.PIPE)
        self._processes.append(p)
        return p.stdout.readline().decode().strip()

    def program(self, exe, pty, pota_port, platform="xcb", extra_env=None):
        """The real program on the simulator's terminal, the POTA list from
        the local service, every other list off, no sharing servers."""
        env = dict(os.environ, QT_QPA_PLATFORM=platform, XDG_CONFIG_HOME=self.work, XDG_DATA_HOME=self.work)
        if platform == "xcb":
            env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        env.update(extra_env or {})
        args = [exe, "--port", pty, "--connect", "--rigctld-port", "0", "--flrig-port", "0",
                "--service", "pota=http://127.0.0.1:%d" % pota_port]
        for name in OTHER_LISTS:
            args += ["--service", name + "="]
        p = subprocess.Popen(args, env=env, stdout=subprocess.DEVNULL,
                             stderr=open(os.path.join(self.work, "app.err"), "w"))
        self._processes.append(p)
        return p

    # The wire log: one line per write or answer, "direction text".
    def lines(self):
        if not os.path.exists(self.wire):
            return 0
        with open(self.wire) as f:
            return len(f.readlines())

    def sent_since(self, before):
        if not os.path.exists(self.wire):
            return ""
        with open(self.wire) as f:
            return "".join(line.rstrip("\n").split(None, 1)[1] for line in f.readlines()[before:]
                           if len(line.split()) > 1)

    def wired(self, before, texts, timeout=20.0, pump=None):
        """Waits until one of the texts is on the wire after line `before`."""
        texts = (texts,) if isinstance(texts, str) else texts
        end = time.time() + timeout
        while time.time() < end:
            sent = self.sent_since(before)
            if any(t in sent for t in texts):
                return True
            (pump or time.sleep)(0.1)
        return False
