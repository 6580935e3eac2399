#!/usr/bin/env python3
"""Replays two sharing sessions against the real program on tolvane-sim:

- a WSJT-X "Rig" split session over the rigctld protocol, as Hamlib's network
  client sends it (open, polling, split with the transmit frequency and mode
  on VFO B, keying);
- an fldigi session over flrig XML-RPC (connect, polling, settings, CW).

Each step is a literal request and the literal answer it must get; the
simulator's wire log must show the radio commands each session implies, and
the split session must never write the transmit frequency to VFO A.

Usage: share_replay.py TOLVANE TOLVANE_SIM
Exit 0 when every step passed, 1 with the failing step otherwise.
"""
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def wait_for(path, text, seconds):
    end = time.time() + seconds
    while time.time() < end:
        try:
            with open(path) as f:
                if text in f.read():
                    return True
        except FileNotFoundError:
            pass
        time.sleep(0.05)
    return False


class Rigctl:
    def __init__(self, port):
        self.sock = socket.create_connection(("127.0.0.1", port), timeout=5)
        self.buffer = b""

    def ask(self, line, lines):
        """Sends one command line and reads the given number of answer lines."""
        self.sock.sendall(line.encode() + b"\n")
        while self.buffer.count(b"\n") < lines:
            chunk = self.sock.recv(65536)
            if not chunk:
                break
            self.buffer += chunk
        parts = self.buffer.split(b"\n")
        answer, self.buffer = b"\n".join(parts[:lines]) + b"\n", b"\n".join(parts[lines:])
        return answer.decode()


def xmlrpc(port, method, params=""):
    body = ('<?xml version="1.0"?>\r\n<methodCall><methodName>%s</methodName><params>%s</params></methodCall>\r\n'
            % (method, params)).encode()
    head = ("POST /RPC2 HTTP/1.1\r\nHost: 127.0.0.1:%d\r\nUser-Agent: XMLRPC++ 0.8\r\nContent-Type: text/xml\r\n"
            "Content-length: %d\r\n\r\n" % (port, len(body))).encode()
    with socket.create_connection(("127.0.0.1", port), timeout=5) as s:
        s.sendall(head + body)
        got = b""
        while b"</methodResponse>" not in got:
            chunk = s.recv(65536)
            if not chunk:
                break
            got += chunk
    text = got.decode()
    return text[text.find("<methodResponse>"):].replace("\r\n", "").replace("\t", "")


def value(v):
    return "<methodResponse><params><param>%s</param></params></methodResponse>" % v


# Hamlib's network client, as WSJT-X drives it: open, poll, split, key.
WSJTX = [
    ("\\chk_vfo", 1, "1\n"),
    ("v", 1, "VFOA\n"),
    ("f VFOA", 1, "14074000\n"),
    ("f VFOB", 1, "7074000\n"),
    ("s VFOA", 2, "0\nVFOA\n"),
    ("m VFOA", 2, "PKTUSB\n3000\n"),
    ("\\get_powerstat", 1, "1\n"),
    ("V VFOA", 1, "RPRT 0\n"),
    ("S VFOA 1 VFOB", 1, "RPRT 0\n"),
    ("I VFOA 14076000.000000", 1, "RPRT 0\n"),
    ("X VFOA PKTUSB 3000", 1, "RPRT 0\n"),
    ("f VFOA", 1, "14074000\n"),
    ("s VFOA", 2, "1\nVFOB\n"),
    ("f VFOB", 1, "14076000\n"),
    ("x VFOA", 2, "PKTUSB\n3000\n"),
    ("T VFOA 1", 1, "RPRT 0\n"),
    ("t VFOA", 1, "1\n"),
    ("T VFOA 0", 1, "RPRT 0\n"),
    ("+\\get_split_vfo", 4, "get_split_vfo:\nSplit: 1\nTX VFO: VFOB\nRPRT 0\n"),
    ("S VFOA 0 VFOA", 1, "RPRT 0\n"),
]

I4 = "<value><i4>%d</i4></value>"
DOUBLE = "<param><value><double>%s</double></value></param>"
STRING = "<param><value>%s</value></param>"
INT = "<param><value><i4>%d</i4></value></param>"

# fldigi's flrig client: connect, poll, change frequency and mode, CW speed.
FLDIGI = [
    ("rig.get_xcvr", "", value("<value>Transceiver</value>")),
    ("rig.get_AB", "", value("<value>A</value>")),
    ("rig.get_vfo", "", value("<value>14074000</value>")),
    ("rig.get_mode", "", value("<value>DATA-U</value>")),
    ("rig.get_sideband", "", value("<value>U</value>")),
    ("rig.get_bws", "", value("<value><array><data><value><array><data><value>Bandwidth</value><value>3000</value>"
                              "</data></array></value></data></array></value>")),
    ("rig.get_notch", "", value(I4 % 0)),
    ("rig.get_ptt", "", value(I4 % 0)),
    ("rig.get_pwrmeter", "", value(I4 % 0)),
    ("rig.get_swrmeter", "", value(I4 % 0)),
    ("rig.get_power", "", value(I4 % 100)),
    ("rig.get_smeter", "", value(I4 % 0)),
    ("rig.cwio_get_wpm", "", value(I4 % 20)),
    ("rig.set_vfo", DOUBLE % "7040000.000000", value(I4 % 0)),
    ("rig.get_vfo", "", value("<value>7040000</value>")),
    ("rig.set_mode", STRING % "RTTY-L", value(I4 % 0)),
    ("rig.get_mode", "", value("<value>RTTY-L</value>")),
    ("rig.cwio_set_wpm", INT % 25, value(I4 % 0)),
    ("rig.cwio_get_wpm", "", value(I4 % 25)),
    ("rig.set_power", INT % 50, value(I4 % 0)),
    ("rig.get_power", "", value(I4 % 50)),
    ("rig.cat_string", STRING % "TX1;", None),
]


def main():
    tolvane, sim = sys.argv[1], sys.argv[2]
    work = tempfile.mkdtemp(prefix="tolvane-replay-")
    wire = os.path.join(work, "wire.log")
    procs = []
    failures = []
    try:
        simp = subprocess.Popen([sim, "--pace", "--boot", "0", "--log", wire], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, text=True)
        procs.append(simp)
        pty = simp.stdout.readline().strip()
        rigctld, flrig = free_port(), free_port()
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=work)
        procs.append(subprocess.Popen([tolvane, "--port", pty, "--connect", "--rigctld-port", str(rigctld),
                                       "--flrig-port", str(flrig)], env=env, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL))
        if not wait_for(wire, "AI1;", 20) or not wait_for(wire, "EX040302;", 15):
            print("the program did not open the simulator")
            return 1

        client = Rigctl(rigctld)
        for line, lines, expected in WSJTX:
            got = client.ask(line, lines)
            if got != expected:
                failures.append("rigctld %r: %r, expected %r" % (line, got, expected))
        for command in ("ST1;", "FB014076000;", "MD1C;", "TX1;", "TX0;", "ST0;"):
            if not wait_for(wire, command, 5):
                failures.append("the radio never got %s" % command)
        with open(wire) as f:
            if "FA014076000;" in f.read():
                failures.append("the transmit frequency went to VFO A")

        for method, params, expected in FLDIGI:
            got = xmlrpc(flrig, method, params)
            if expected is None:
                if "<fault>" not in got:
                    failures.append("xmlrpc %s %s was not refused: %s" % (method, params, got))
            elif got != expected:
                failures.append("xmlrpc %s %s: %s, expected %s" % (method, params, got, expected))
        for command in ("FA007040000;", "MD06;", "KS025;", "PC050;"):
            if not wait_for(wire, command, 5):
                failures.append("the radio never got %s" % command)
        with open(wire) as f:
            if f.read().count("TX1;") != 1:
                failures.append("rig.cat_string keyed the transmitter")
    finally:
        for p in reversed(procs):
            p.terminate()
            p.wait(timeout=10)
        shutil.rmtree(work, ignore_errors=True)
    for line in failures:
        print(line)
    print("%d steps, %d failed" % (len(WSJTX) + len(FLDIGI), len(failures)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
