#!/usr/bin/env python3
"""A keyboard walk of every page through the accessibility bus, as a
screen-reader user makes it.

Run inside its own D-Bus session (dbus-run-session): starts Xvfb, a local POTA
service with one spot, tolvane-sim on a pseudo-terminal and the real program
with the accessibility bridge on (see desktop_session.py). Then, by keyboard
alone (xdotool's test keyboard, or the bus's device event controller), Tab
goes round every page and sub-page (Connection, Operate, Memories, Messages,
Settings and its four pages, Spots and its five lists, Log, Preferences,
About). At each focus stop it judges what a screen reader is given: a name
made of words (or the label the control is labelled by), a role, a value or
text (a pop-up's entry), a state, no pane without a name, a field announced
before its caret moves. Each interactive control must offer what its role
needs (an action, editable text, a value, rows). Then a band button's and a
mode button's accessible actions, text set over the bus and Return on a POTA
row reached by Tab and Down are checked by the simulator's wire log and the
window's state.

Where Orca and speech-dispatcher are installed, a real Orca runs during the
walk with its speech captured to a file (see screen_reader.py): every stop
must be spoken with its name, and no bare "layered pane". TOLVANE_WALK_ORCA=0
leaves Orca out; without Orca the walk judges the bus alone and says so.
TOLVANE_WALK_VERBOSE=1 prints every stop (and what Orca said, and how soon).

Exits 0 on success, 1 with the faults, 77 when no X server can be started or
python3-dbus or python3-gi is missing (skipped).

Usage: dbus-run-session -- atspi_walk.py path/to/tolvane path/to/tolvane-sim
"""
import os
import re
import shutil
import subprocess
import sys
import time

try:
    import dbus
    from dbus.mainloop.glib import DBusGMainLoop
    from gi.repository import GLib
except ImportError:
    print("SKIPPED: no python3-dbus or python3-gi")
    sys.exit(77)

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import screen_reader  # noqa: E402
from desktop_session import Session, spot_server  # noqa: E402

EXE, SIM = sys.argv[1], sys.argv[2]
ACC = "org.a11y.atspi.Accessible"
PROPS = "org.freedesktop.DBus.Properties"
DEC = "org.a11y.atspi.DeviceEventController"
# X key codes of the keys the walk presses, for the bus's device event
# controller where xdotool is not installed (modifier first in a chord).
KEYCODES = {"Tab": (23,), "Return": (36,), "Down": (116,), "Escape": (9,), "ctrl+comma": (37, 59),
            "alt+h": (64, 43), "alt+Down": (64, 116), "a": (38,)}
XDOTOOL = shutil.which("xdotool")
LABELLED_BY = 2
STATE_CHECKED, STATE_ENABLED, STATE_FOCUSED = 4, 8, 12
# A name made from an identifier: "Pota table", "Band box", "Pota status label".
MADE_UP = re.compile(r"^[A-Z][a-z]+ (table|box|label|status label|refresh|field|button|pop up)$")
# Controls that are read, not worked: no action needed.
BUTTONS = ("push button", "toggle button", "check box", "radio button", "page tab list", "page tab")
TABLES = ("table", "tree", "tree table", "list")
VERBOSE = bool(os.environ.get("TOLVANE_WALK_VERBOSE"))
READ_ONLY = {"label", "status bar", "progress bar", "table cell", "page tab list", "page tab", "text"}


def fail(step):
    print("FAILED: " + step)
    sys.exit(1)


class Bus:
    """The accessibility bus: tree look-ups, keys, and the focus and caret
    events in the order they arrive."""

    def __init__(self):
        session = dbus.SessionBus()
        address = session.get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(dbus_interface="org.a11y.Bus")
        self.bus = dbus.bus.BusConnection(address)
        self.events = []  # (kind, (sender, path))
        self.known = {}
        self.bus.add_signal_receiver(self._state, signal_name="StateChanged",
                                     dbus_interface="org.a11y.atspi.Event.Object",
                                     sender_keyword="sender", path_keyword="path")
        self.bus.add_signal_receiver(self._caret, signal_name="TextCaretMoved",
                                     dbus_interface="org.a11y.atspi.Event.Object",
                                     sender_keyword="sender", path_keyword="path")
        registry = self.bus.get_object("org.a11y.atspi.Registry", "/org/a11y/atspi/registry")
        for event in ("object:state-changed:focused", "object:text-caret-moved"):
            try:
                registry.RegisterEvent(event, dbus.Array([], signature="s"), "",
                                       dbus_interface="org.a11y.atspi.Registry")
            except dbus.DBusException:
                registry.RegisterEvent(event, dbus_interface="org.a11y.atspi.Registry")
        self.controller = self.bus.get_object("org.a11y.atspi.Registry",
                                              "/org/a11y/atspi/registry/deviceeventcontroller")
        self.root = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")

    def _state(self, detail, detail1, detail2, data, *rest, sender=None, path=None):
        if str(detail) == "focused" and int(detail1) == 1:
            self.events.append(("focus", (str(sender), str(path))))

    def _caret(self, detail, detail1, detail2, data, *rest, sender=None, path=None):
        self.events.append(("caret", (str(sender), str(path))))

    def pump(self, seconds):
        context = GLib.MainContext.default()
        end = time.time() + seconds
        while True:
            while context.pending():
                context.iteration(False)
            if time.time() >= end:
                return
            time.sleep(0.01)

    def node(self, ref):
        return self.bus.get_object(str(ref[0]), str(ref[1]))

    def prop(self, ref, iface, name):
        return self.node(ref).Get(iface, name, dbus_interface=PROPS)

    def name(self, ref):
        return str(self.prop(ref, ACC, "Name"))

    def role(self, ref):
        return str(self.node(ref).GetRoleName(dbus_interface=ACC))

    def states(self, ref):
        words = self.node(ref).GetState(dbus_interface=ACC)
        return {bit + 32 * i for i, word in enumerate(words) for bit in range(32) if int(word) >> bit & 1}

    def labels(self, ref):
        out = []
        for kind, targets in self.node(ref).GetRelationSet(dbus_interface=ACC):
            if int(kind) == LABELLED_BY:
                out += [self.name(t) for t in targets]
        return out

    def find(self, role, name, ref=None):
        ref = ref or self.root
        r = self.role(ref)
        if r == role and self.name(ref) == name:
            return ref
        if r in ("table", "combo box", "list"):
            return None
        for child in self.node(ref).GetChildren(dbus_interface=ACC):
            found = self.find(role, name, child)
            if found:
                return found
        return None

    def wait_find(self, role, name, timeout=30.0):
        # A page tab or button once found stays where it is; a walk of the
        # whole tree costs hundreds of calls, so it is made once.
        known = self.known.get((role, name))
        try:
            if known and self.role(known) == role and self.name(known) == name:
                return known
        except dbus.DBusException:
            pass
        end = time.time() + timeout
        while time.time() < end:
            try:
                found = self.find(role, name)
                if found:
                    self.known[(role, name)] = found
                    return found
            except dbus.DBusException:
                pass
            self.pump(0.2)
        fail("no %s %r on the bus" % (role, name))

    def find_any(self, roles, name):
        for role in roles:
            found = self.find(role, name)
            if found:
                return found
        fail("no %s %r on the bus" % (" or ".join(roles), name))

    def act(self, ref, index=0):
        self.node(ref).DoAction(index, dbus_interface="org.a11y.atspi.Action")

    def key(self, name):
        """A key (or chord) from the keyboard: xdotool's test keyboard where
        installed (the bus's device event controller presses Tab and Return
        alike, but its Alt does not reach the menu bar), else the controller."""
        if XDOTOOL and "+" in name:
            # A chord as fingers make it: the modifier held a moment before
            # and after the key (a screen reader that listens to the keys
            # holds each one up until it has seen it).
            modifier, key = name.split("+")
            subprocess.run([XDOTOOL, "keydown", modifier, "sleep", "0.15", "key", key, "sleep", "0.15",
                            "keyup", modifier], timeout=20)
            return
        if XDOTOOL:
            subprocess.run([XDOTOOL, "key", name], timeout=20)
            return
        codes = KEYCODES[name]
        for modifier in codes[:-1]:
            self.controller.GenerateKeyboardEvent(modifier, "", 0, dbus_interface=DEC)
        self.controller.GenerateKeyboardEvent(codes[-1], "", 2, dbus_interface=DEC)
        for modifier in reversed(codes[:-1]):
            self.controller.GenerateKeyboardEvent(modifier, "", 1, dbus_interface=DEC)

    def focused_in(self, ref):
        """The innermost object with the focus (a button box reports the
        focus of the button it holds)."""
        for child in self.node(ref).GetChildren(dbus_interface=ACC):
            found = self.focused_in(child)
            if found:
                return found
        return ref if STATE_FOCUSED in self.states(ref) else None

    def top_levels(self):
        """The program's windows: (role, name, ref) of each."""
        out = []
        for app in self.node(self.root).GetChildren(dbus_interface=ACC):
            for top in self.node(app).GetChildren(dbus_interface=ACC):
                out.append((self.role(top), self.name(top), top))
        return out

    def wait_window(self, roles, name, timeout):
        end = time.time() + timeout
        while True:
            try:
                for role, title, ref in self.top_levels():
                    if role in roles and title == name:
                        return ref
            except dbus.DBusException:
                pass
            if time.time() >= end:
                return None
            self.pump(0.1)

    def press(self, code):
        """Presses a key and returns the object that then has the focus
        (None if the focus stayed) and the events that came with it."""
        start = len(self.events)
        self.key(code)
        end = time.time() + 8  # a loaded machine may take seconds
        while time.time() < end and not any(k == "focus" for k, _ in self.events[start:]):
            self.pump(0.02)
        self.pump(0.08)  # a table's cell follows its table
        new = self.events[start:]
        focused = [ref for k, ref in new if k == "focus"]
        return (focused[-1] if focused else None), new


def judge(bus, ref, events):
    """What a screen reader is given at one focus stop: (problems, role, words)."""
    problems = []
    role = bus.role(ref)
    name = bus.name(ref)
    labels = bus.labels(ref)
    states = bus.states(ref)
    # A button says its own name; a field or pop-up its label (the label
    # beside it comes first, the title of its box after).
    spoken = name if role in BUTTONS or not labels else labels[0]
    if not spoken.strip():
        problems.append("no name and no label")
    if MADE_UP.match(name):
        problems.append("a name made from an identifier")
    if role in ("layered pane", "scroll pane", "panel", "filler", "unknown", "viewport") and not name:
        problems.append("an unnamed pane takes the focus")
    if STATE_ENABLED not in states:
        problems.append("a disabled control takes the focus")
    interfaces = set(str(i) for i in bus.node(ref).GetInterfaces(dbus_interface=ACC))
    value = ""
    if role == "combo box":
        value = combo_entry(bus, ref)
        if not labels and not name:
            problems.append("a pop-up without a label or name")
        if not value:
            problems.append("a pop-up that does not say its entry")
    elif role in ("text", "entry", "password text"):
        value = str(bus.node(ref).GetText(0, -1, dbus_interface="org.a11y.atspi.Text"))
        mine = [k for k, r in events if r == ref]
        if "caret" in mine and "focus" in mine and mine.index("caret") < mine.index("focus"):
            problems.append("the caret moved before the focus was announced")
        if "org.a11y.atspi.EditableText" not in interfaces and role != "text":
            problems.append("a field that cannot be edited")
    elif role == "slider":
        value = str(bus.prop(ref, "org.a11y.atspi.Value", "CurrentValue"))
    elif role in TABLES:
        value = "%d rows" % int(bus.prop(ref, "org.a11y.atspi.Table", "NRows"))
    elif role in ("push button", "toggle button", "check box", "radio button"):
        value = "checked" if STATE_CHECKED in states else ("not checked" if role != "push button" else "")
    if role not in READ_ONLY and "org.a11y.atspi.Action" not in interfaces and role not in TABLES + ("slider",) \
            and "org.a11y.atspi.EditableText" not in interfaces:
        problems.append("nothing to act with")
    return problems, role, "%s, %s%s" % (spoken, role, (", " + value) if value else ""), [name] + labels


def combo_entry(bus, ref):
    """A pop-up's current entry: its text."""
    try:
        return str(bus.node(ref).GetText(0, -1, dbus_interface="org.a11y.atspi.Text"))
    except dbus.DBusException:
        return ""


class Walk:
    def __init__(self, bus, reader):
        self.bus = bus
        self.reader = reader
        self.stops = {}  # ref -> (page, problems, words)
        self.faults = []

    def round(self, page, window=None, mark=None, limit=400):
        """Tab round the window as it stands; every new stop is judged. A
        window with one control keeps the focus on it: that one is judged."""
        first = None
        for _ in range(limit):
            spoken_before = mark if first is None and mark is not None else self.reader.mark()
            ref, events = self.bus.press("Tab")
            if ref is None and window and first is None:
                ref = self.bus.focused_in(window)
            elif ref is None and window and self.bus.focused_in(window) == first:
                return  # the focus stays on the window's one control
            elif ref is None:
                self.faults.append("%s: Tab moved the focus nowhere" % page)
                return
            if ref == first:
                return
            first = first or ref
            if ref in self.stops:
                continue
            problems, role, words, names = judge(self.bus, ref, events)
            began = time.time()
            heard = self.reader.heard_since(spoken_before, names)
            if self.reader.running:
                if not heard:
                    problems.append("nothing was spoken")
                elif not screen_reader.says(heard, [screen_reader.normal(n) for n in names if n.strip()]):
                    problems.append("the screen reader did not say its name")
                if any(screen_reader.normal(h) == "layered pane" for h in heard):
                    problems.append("an unnamed pane was spoken")
            self.stops[ref] = (page, problems, words)
            if VERBOSE:
                print("%-22s %s%s%s" % (page, words, ("  <- " + "; ".join(problems)) if problems else "",
                                        ("  [%.1f s: %s]" % (time.time() - began, " / ".join(heard)))
                                        if self.reader.running else ""), flush=True)
            for p in problems:
                self.faults.append("%s: %s: %s" % (page, words, p))
        self.faults.append("%s: Tab never came round" % page)

    def page(self, *tabs):
        # The tab's action turns the page before it answers, and every page
        # is built by the time the walk starts (the memory read is over).
        for t in tabs:
            self.bus.act(self.bus.wait_find("page tab", t))
        self.bus.pump(0.05)
        self.round(" > ".join(tabs))


def give_focus(bus, pid, title, fallback):
    """Gives the X keyboard focus to a window of the program: xdotool where
    it is installed (there is no window manager), else a click."""
    if shutil.which("xdotool"):
        found = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--pid", str(pid),
                                "--name", title], capture_output=True, text=True, timeout=20).stdout.split()
        if found:
            subprocess.run(["xdotool", "windowfocus", "--sync", found[-1]], timeout=20)
            return
    x, y, w, h = bus.node(fallback).GetExtents(dbus.UInt32(0), dbus_interface="org.a11y.atspi.Component")
    bus.controller.GenerateMouseEvent(int(x + w // 2), int(y + h // 2), "b1c", dbus_interface=DEC)


def check_actions(bus, run, faults):
    """Accessible actions and text set over the bus, judged by the wire and
    the window: a band button, a mode button, the message field."""
    band = bus.find_any(("toggle button", "check box", "push button"), "Band 40 m")
    before = run.lines()
    bus.act(band)
    if not run.wired(before, "BS03;", pump=bus.pump):
        faults.append("Band 40 m: its accessible action wrote nothing to the radio")
    end = time.time() + 10
    while time.time() < end and STATE_CHECKED not in bus.states(band):
        bus.pump(0.1)
    if STATE_CHECKED not in bus.states(band):
        faults.append("Band 40 m: not checked after the radio moved to 40 m")

    cw = bus.find_any(("toggle button", "check box", "push button"), "CW-U")
    before = run.lines()
    bus.act(cw)
    if not run.wired(before, "MD03;", pump=bus.pump):
        faults.append("CW-U: its accessible action wrote nothing to the radio")
    end = time.time() + 10
    box = None
    while time.time() < end and not box:
        box = bus.find("panel", "Send CW") or bus.find("grouping", "Send CW")
        bus.pump(0.2)
    if not box:
        faults.append("the message box is not called \"Send CW\" on the bus in CW")

    field = bus.find_any(("text", "entry"), "Message text")
    bus.node(field).SetTextContents("CQ TEST", dbus_interface="org.a11y.atspi.EditableText")
    bus.pump(0.2)
    before = run.lines()
    bus.act(bus.wait_find("push button", "Send message text"))
    if not run.wired(before, "KM5CQ TEST};", pump=bus.pump):
        faults.append("text set over the bus was not the text sent")


def check_pota_return(bus, run, faults):
    """The POTA row, reached by Tab and Down, read as its cells with what
    Return does; Return pressed on it tunes the radio."""
    table = bus.wait_find("table", "POTA spots")
    for attempt in range(4):
        end = time.time() + 8
        while time.time() < end and int(bus.prop(table, "org.a11y.atspi.Table", "NRows")) != 1:
            bus.pump(0.2)
        if int(bus.prop(table, "org.a11y.atspi.Table", "NRows")) == 1:
            break
        # A loaded machine may miss the list's first wait: fetch again.
        bus.act(bus.wait_find("push button", "Refresh POTA spots"))
    else:
        faults.append("the spot never reached the POTA table")
        return
    columns = int(bus.prop(table, "org.a11y.atspi.Table", "NColumns"))
    cells = [bus.node(table).GetAccessibleAt(0, c, dbus_interface="org.a11y.atspi.Table") for c in range(columns)]
    cell = next((c for c in cells if bus.name(c) == "K1AAA"), cells[0])
    said = str(bus.prop(cell, ACC, "Description"))
    side = re.fullmatch(r"Return tunes VFO ([AB]) to 14\.074 MHz, USB\.", said)
    if bus.name(cell) != "K1AAA" or not side:
        faults.append("the POTA row reads %r / %r" % (bus.name(cell), said))
        return
    for tab in ("Spots", "POTA"):
        bus.act(bus.wait_find("page tab", tab))
    bus.pump(0.3)
    for _ in range(30):
        ref, _ = bus.press("Tab")
        if ref == table or (ref and bus.role(ref) == "table cell"):
            break
    else:
        faults.append("Tab never reached the POTA table")
        return
    # Down puts the keyboard on the row (selected or only current: Return
    # acts on the row the keyboard is on).
    bus.press("Down")
    before = run.lines()
    bus.key("Return")
    if not run.wired(before, "MD02;SF1E;F%s014074000;SS0640000;" % side.group(1), pump=bus.pump):
        faults.append("Return on the POTA row did not tune")


def check_memories_keys(bus, faults):
    """The memories table is one Tab stop after the page's buttons, and a
    row's Mode pop-up opens from the keyboard on the row."""
    bus.act(bus.wait_find("page tab", "Memories"))
    bus.pump(0.05)
    table = bus.wait_find("table", "Memory channels")
    for _ in range(12):
        ref, _ = bus.press("Tab")
        if ref == table or (ref and bus.role(ref) == "table cell"):
            break
    else:
        faults.append("Memories: the table is not among the first 12 Tab stops of its page")
        return
    bus.press("Down")
    ref, _ = bus.press("alt+Down")
    role = bus.role(ref) if ref else ""
    if role not in ("list item", "list", "menu item"):
        faults.append("Memories: Alt+Down on a row did not open its Mode pop-up (focus: %r)" % role)
        return
    ref, _ = bus.press("Escape")
    if not ref or (ref != table and bus.role(ref) != "table cell"):
        faults.append("Memories: Escape in a row's Mode pop-up did not give the keyboard back to the table")


def open_about(bus, app, reader, connection):
    """Help > About Tolvane from the keyboard (Alt+H, A). The box is a
    message box: a window of its own, role "alert message" on the bus."""
    roles = ("alert message", "alert", "dialog")
    give_focus(bus, app.pid, "Tolvane", connection)
    about = None
    if XDOTOOL:
        # Alt+H opens the Help menu; A is pressed once its first item has the
        # focus (a screen reader may hold the keys up while it speaks).
        ref, _ = bus.press("alt+h")
        if ref is None:
            bus.pump(0.5)
        bus.key("a")
        about = bus.wait_window(roles, "About Tolvane", 10)
    if not about:
        print("NOTE: no keyboard for the menu bar; About opened through the menu item's action")
        # The box runs modally inside the action: its reply is not awaited.
        bus.node(bus.wait_find("menu item", "About Tolvane")).DoAction(
            0, dbus_interface="org.a11y.atspi.Action", ignore_reply=True)
        about = bus.wait_window(roles, "About Tolvane", 20)
    return about


def main():
    with Session("tolvane-walk-") as run:
        run.x_server()
        DBusGMainLoop(set_as_default=True)
        server = spot_server(("K1AAA", "14074", "FT8", "Park A", "US-0001"))
        pty = run.simulator(SIM)
        reader = screen_reader.ScreenReader(run.work)
        app = run.program(EXE, pty, server.server_port)
        try:
            code = drive(app, run, reader)
        finally:
            reader.stop()
        run.keep = code != 0
        return code


def connect():
    """The accessibility bus; its registry is started on demand and may be
    asked again if its first start lost the race with the X server."""
    for attempt in range(5):
        try:
            return Bus()
        except dbus.DBusException as e:
            print("NOTE: the accessibility registry did not answer (%s); asking again" % e.get_dbus_name())
            time.sleep(2)
    fail("the accessibility bus does not answer")


def drive(app, run, reader):
    bus = connect()
    connection = bus.wait_find("page tab", "Connection", 60)
    # The on-open sequence is over once the memory read has finished; every
    # page is built by then.
    end = time.time() + 90
    while time.time() < end and "EX040302;" not in run.sent_since(0):
        time.sleep(0.2)
    print(reader.start(), flush=True)
    give_focus(bus, app.pid, "Tolvane", connection)
    bus.pump(0.5)
    started = time.time()

    walk = Walk(bus, reader)
    walk.page("Connection")
    walk.page("Operate")
    walk.page("Memories")
    walk.page("Messages")
    for sub in ("Radio", "CW", "Transmit", "Display"):
        walk.page("Settings", sub)
    for sub in ("POTA", "SOTA", "NetLogger", "Nets", "MW"):
        walk.page("Spots", sub)
    walk.page("Log")

    # The dialogs, opened from the keyboard: Ctrl+, and Alt+H, A.
    bus.key("ctrl+comma")
    dialog = bus.wait_window(("dialog",), "Preferences", 20)
    if not dialog:
        fail("Ctrl+, did not open the Preferences")
    give_focus(bus, app.pid, "Preferences", dialog)
    bus.pump(0.3)
    walk.round("Preferences")
    bus.key("Escape")
    before_about = reader.mark()
    about = open_about(bus, app, reader, connection)
    if not about:
        fail("the About box is not on the bus")
    give_focus(bus, app.pid, "About Tolvane", about)
    bus.pump(0.3)
    walk.round("About", about, before_about)
    bus.key("Escape")
    end = time.time() + 5
    while time.time() < end and bus.wait_window(("alert message", "alert", "dialog"), "About Tolvane", 0):
        bus.pump(0.1)
    if bus.wait_window(("alert message", "alert", "dialog"), "About Tolvane", 0):
        walk.faults.append("About: Escape did not close the box")
    give_focus(bus, app.pid, "Tolvane", connection)

    faults = walk.faults
    check_actions(bus, run, faults)
    check_memories_keys(bus, faults)
    check_pota_return(bus, run, faults)

    stops = walk.stops
    good = [r for r, (_, problems, _) in stops.items() if not problems]
    interactive = [r for r, (_, _, words) in stops.items() if words.split(", ")[1] not in READ_ONLY
                   or "table" in words]
    good_controls = [r for r in interactive if not stops[r][1]]
    print("%d of %d controls named, labelled and actionable" % (len(good_controls), len(interactive)))
    print("%d of %d focus stops announced with name, role, value and state" % (len(good), len(stops)))
    print("Walk: %d pages and dialogs in %.0f s" % (len(set(p for p, _, _ in stops.values())), time.time() - started))
    print(reader.summary())
    for f in faults:
        print("FAULT: " + f)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
