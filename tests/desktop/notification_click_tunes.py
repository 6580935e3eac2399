#!/usr/bin/env python3
"""A watched station's desktop notification, clicked, tunes the radio.

Run inside its own D-Bus session (dbus-run-session): this script is the
session's notification service (org.freedesktop.Notifications). It starts a
local POTA service with one spot, K7CAR/P on 14062 kHz CW, tolvane-sim on a
pseudo-terminal and the real program with a watch list of "K7CAR*" kept from
an earlier run. The program must send a "Watched station spotted"
notification that offers the default action; the script then clicks it (the
ActionInvoked signal) and the simulator's log must show the tune string.
Exits 0 on success, 1 with the failed step, 77 when python3-dbus or
python3-gi is missing (skipped).

Usage: dbus-run-session -- notification_click_tunes.py path/to/tolvane path/to/tolvane-sim
"""
import datetime
import http.server
import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time

try:
    import dbus
    import dbus.mainloop.glib
    import dbus.service
    from gi.repository import GLib
except ImportError:
    print("SKIPPED: no python3-dbus or python3-gi")
    sys.exit(77)

EXE, SIM = sys.argv[1], sys.argv[2]
IFACE = "org.freedesktop.Notifications"


class Spots(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        now = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%S")
        spot = {"activator": "K7CAR/P", "frequency": "14062", "mode": "CW", "comments": "", "name": "Mount Park",
                "spotTime": now, "locationDesc": "US-WA", "reference": "US-3844"}
        body = json.dumps([spot] if self.path == "/spot/activator" else []).encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *args):
        pass


class Notifications(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/Notifications")
        self.shown = []  # (id, summary, body, actions)

    @dbus.service.method(IFACE, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, app, replaces, icon, summary, body, actions, hints, timeout):
        nid = len(self.shown) + 1
        self.shown.append((nid, str(summary), str(body), [str(a) for a in actions]))
        return dbus.UInt32(nid)

    @dbus.service.method(IFACE, in_signature="u", out_signature="")
    def CloseNotification(self, nid):
        pass

    @dbus.service.method(IFACE, in_signature="", out_signature="as")
    def GetCapabilities(self):
        return ["actions", "body"]

    @dbus.service.method(IFACE, in_signature="", out_signature="ssss")
    def GetServerInformation(self):
        return ["test", "tolvane", "1", "1.2"]

    @dbus.service.signal(IFACE, signature="us")
    def ActionInvoked(self, nid, action):
        pass


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    name = dbus.service.BusName(IFACE, bus)  # noqa: F841 (held for the run)
    service = Notifications(bus)
    loop = GLib.MainContext.default()

    def wait(what, test, timeout=40.0):
        end = time.time() + timeout
        while time.time() < end:
            while loop.iteration(False):
                pass
            value = test()
            if value:
                return value
            time.sleep(0.05)
        print("FAILED: " + what)
        sys.exit(1)

    work = tempfile.mkdtemp(prefix="tolvane-notify-")
    os.makedirs(os.path.join(work, "Tolvane"))
    with open(os.path.join(work, "Tolvane", "Tolvane.conf"), "w") as conf:
        conf.write("[General]\nwatchList=K7CAR*\n")
    server = http.server.HTTPServer(("127.0.0.1", 0), Spots)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    wire = os.path.join(work, "wire.log")
    sim = subprocess.Popen([SIM, "--boot", "0", "--log", wire], stdout=subprocess.PIPE)
    pty = sim.stdout.readline().decode().strip()
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=work, XDG_DATA_HOME=work)
    pota = "pota=http://127.0.0.1:%d" % server.server_port
    app = subprocess.Popen([EXE, "--port", pty, "--connect", "--rigctld-port", "0", "--flrig-port", "0",
                            "--service", pota, "--service", "sota=", "--service", "netlogger=",
                            "--service", "nets=", "--service", "mw=", "--service", "hamqsl="], env=env,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        def watched():
            for nid, summary, body, actions in service.shown:
                if summary == "Watched station spotted":
                    return (nid, body, actions)
            return None

        nid, body, actions = wait("a notification for the watched station", watched)
        if body != "K7CAR/P at US-3844 on 20 m, CW (14062.0 kHz).":
            print("FAILED: the notification reads %r" % body)
            return 1
        if "default" not in actions[0::2]:
            print("FAILED: the notification offers no default action: %r" % actions)
            return 1
        # The radio has answered the on-open reads before the click is judged.
        wait("the radio link is up", lambda: "FA;" in open(wire).read() if os.path.exists(wire) else False)
        before = len(open(wire).readlines())
        service.ActionInvoked(dbus.UInt32(nid), "default")

        def tuned():
            sent = "".join(line.split()[1] for line in open(wire).readlines()[before:] if len(line.split()) > 1)
            # On the side the radio reports in use: VFO A or B.
            return "FA014062000;" in sent or "FB014062000;" in sent

        wait("the click tunes the radio to 14062 kHz", tuned, 20)
        print("OK: the clicked notification tuned the radio")
        return 0
    finally:
        app.terminate()
        app.wait()
        sim.terminate()
        sim.wait()
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
