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
import os
import sys
import time

try:
    import dbus
    import dbus.mainloop.glib
    import dbus.service
    from gi.repository import GLib
except ImportError:
    print("SKIPPED: no python3-dbus or python3-gi")
    sys.exit(77)

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desktop_session import Session, spot_server  # noqa: E402

EXE, SIM = sys.argv[1], sys.argv[2]
IFACE = "org.freedesktop.Notifications"


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

    with Session("tolvane-notify-") as run:
        os.makedirs(os.path.join(run.work, "Tolvane"))
        with open(os.path.join(run.work, "Tolvane", "Tolvane.conf"), "w") as conf:
            conf.write("[General]\nwatchList=K7CAR*\n")
        server = spot_server(("K7CAR/P", "14062", "CW", "Mount Park", "US-3844"))
        pty = run.simulator(SIM)
        run.program(EXE, pty, server.server_port, platform="offscreen")

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
        wait("the radio link is up", lambda: "FA;" in run.sent_since(0))
        before = run.lines()
        service.ActionInvoked(dbus.UInt32(nid), "default")
        # On the side the radio reports in use: VFO A or B.
        wait("the click tunes the radio to 14062 kHz",
             lambda: any(t in run.sent_since(before) for t in ("FA014062000;", "FB014062000;")), 20)
        print("OK: the clicked notification tuned the radio")
        return 0


if __name__ == "__main__":
    sys.exit(main())
