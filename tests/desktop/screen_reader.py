"""A real screen reader for the keyboard walk, run unattended: Orca with its
own preferences and debug file, speaking through a private speech-dispatcher
that runs in the foreground and whose only output module appends each
utterance to a file (sound to ALSA's null device, no autospawn). Orca is
started and ended by its process only: never with --replace, which would end
every Orca of the user.

Where orca or speech-dispatcher is not installed, nothing runs and the walk
judges the accessibility bus alone.
"""
import glob
import os
import shutil
import subprocess
import time

# What Orca says for the keys the walk presses (its key echo), not for the
# controls they reach.
KEY_ECHO = {"tab", "left tab", "escape", "return", "down", "alt", "alt h", "h", "a", "control", "comma"}


def normal(text):
    return " ".join(text.replace("\u2026", "...").lower().rstrip(".").rstrip(":").split())


def says(utterances, names):
    """Whether one of the utterances holds one of the names."""
    return any(n in normal(u) for u in utterances for n in names)


MODULES = ["/usr/lib/speech-dispatcher-modules", "/usr/lib/x86_64-linux-gnu/speech-dispatcher-modules",
           "/usr/lib/aarch64-linux-gnu/speech-dispatcher-modules"]


class ScreenReader:
    def __init__(self, work):
        self.work = work
        self.spoken = os.path.join(work, "spoken.txt")
        self.processes = []
        self.running = False
        self.why = ""

    def start(self):
        if os.environ.get("TOLVANE_WALK_ORCA") == "0":
            self.why = "switched off by TOLVANE_WALK_ORCA=0"
            return "SCREEN READER: none (%s); the walk judges the accessibility bus alone" % self.why
        orca, dispatcher = shutil.which("orca"), shutil.which("speech-dispatcher")
        modules = [m for m in MODULES if os.path.exists(os.path.join(m, "sd_generic"))]
        if not orca or not dispatcher or not modules:
            self.why = "Orca or speech-dispatcher is not installed"
            return "SCREEN READER: none (%s); the walk judges the accessibility bus alone" % self.why
        run = os.path.join(self.work, "run")
        conf = os.path.join(self.work, "speechd")
        os.makedirs(run, mode=0o700, exist_ok=True)
        os.makedirs(os.path.join(conf, "modules"), exist_ok=True)
        open(self.spoken, "w").close()
        socket = os.path.join(run, "speechd.sock")
        with open(os.path.join(conf, "speechd.conf"), "w") as f:
            f.write('CommunicationMethod "unix_socket"\nSocketPath "%s"\n' % socket)
            f.write('AudioOutputMethod "alsa"\nAudioALSADevice "default"\n')
            f.write('LogDir "%s"\nLogLevel 3\nDisableAutoSpawn\n' % self.work)
            f.write('AddModule "capture" "sd_generic" "capture.conf"\nDefaultModule capture\n')
            f.write('DefaultLanguage "en"\nDefaultVoiceType "MALE1"\n')
        with open(os.path.join(conf, "modules", "capture.conf"), "w") as f:
            f.write('GenericExecuteSynth "printf \'%%s\\\\n\' \\\'$DATA\\\' >> %s"\n' % self.spoken)
            f.write('GenericCmdDependency "printf"\n')
            f.write('AddVoice "en" "MALE1" "capture"\nGenericLanguage "en" "en" "utf-8"\n')
        env = dict(os.environ, XDG_RUNTIME_DIR=run, SPEECHD_ADDRESS="unix_socket:" + socket,
                   ALSA_CONFIG_PATH=self._alsa_null(), HOME=self.work)
        self.processes.append(subprocess.Popen(
            [shutil.which("speech-dispatcher"), "-s", "-t", "0", "-C", conf, "-m", modules[0], "-S", socket],
            env=env, stdout=subprocess.DEVNULL, stderr=open(os.path.join(self.work, "speechd.err"), "w")))
        end = time.time() + 10
        while time.time() < end and not os.path.exists(socket):
            time.sleep(0.1)
        if not os.path.exists(socket):
            self.why = "speech-dispatcher did not start"
            self.stop()
            return "SCREEN READER: none (%s); the walk judges the accessibility bus alone" % self.why
        prefs = os.path.join(self.work, "orca")
        os.makedirs(prefs, exist_ok=True)
        self.processes.append(subprocess.Popen(
            [orca, "-u", prefs, "-e", "speech", "-d", "braille", "--debug", "--debug-file",
             os.path.join(self.work, "orca-debug.txt")],
            env=env, stdout=subprocess.DEVNULL, stderr=open(os.path.join(self.work, "orca.err"), "w")))
        # Orca greets when it is ready ("Screen reader on.").
        end = time.time() + 30
        while time.time() < end and not self.utterances():
            time.sleep(0.2)
        if not self.utterances():
            self.why = "Orca said nothing within 30 s of starting"
            self.stop()
            return "SCREEN READER: none (%s); the walk judges the accessibility bus alone" % self.why
        self.running = True
        return "SCREEN READER: Orca, speech captured to %s" % self.spoken

    def _alsa_null(self):
        path = os.path.join(self.work, "asound.conf")
        with open(path, "w") as f:
            f.write("pcm.!default { type null }\nctl.!default { type hw card 0 }\n")
        return path

    def utterances(self):
        if not os.path.exists(self.spoken):
            return []
        with open(self.spoken, errors="replace") as f:
            return [line.strip() for line in f if line.strip()]

    def mark(self):
        return len(self.utterances())

    def heard_since(self, mark, names=(), timeout=5.0):
        """What was spoken since the mark, without the echo of the keys
        pressed. Waits for the announcement that says one of the names (Orca
        may lag behind the focus on a loaded machine), returning as soon as
        it is heard; at the deadline, whatever came."""
        if not self.running:
            return []
        wanted = [normal(n) for n in names if normal(n)]
        end = time.time() + timeout
        while True:
            said = [u for u in self.utterances()[mark:] if normal(u) not in KEY_ECHO]
            if said and (not wanted or says(said, wanted)):
                return said
            if time.time() >= end:
                return said
            time.sleep(0.03)

    def summary(self):
        if not self.running:
            return "Screen reader: not run (%s)" % self.why
        return "Screen reader: Orca spoke %d utterances" % len(self.utterances())

    def stop(self):
        for p in reversed(self.processes):
            if p.poll() is None:
                p.terminate()
                try:
                    p.wait(5)
                except subprocess.TimeoutExpired:
                    p.kill()
                    p.wait()
        self.processes = []
        self.running = False


def debug_logs(work):
    return glob.glob(os.path.join(work, "*.err")) + glob.glob(os.path.join(work, "orca-debug.txt"))
