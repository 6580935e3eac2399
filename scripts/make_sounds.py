#!/usr/bin/env python3
"""Writes the program's short sound files (16-bit mono AIFF) into resources/Sounds/.

Each sound is a few sine partials under an exponential decay envelope, so the
files are tiny, royalty free and can be regenerated at any time.
"""
import math
import os
import struct
import sys
import warnings

with warnings.catch_warnings():
    warnings.simplefilter("ignore", DeprecationWarning)
    import aifc

RATE = 22050


def tone(parts, seconds, decay, attack=0.004):
    """parts: list of (start_s, frequency_hz, amplitude)."""
    n = int(RATE * seconds)
    out = [0.0] * n
    for start, freq, amp in parts:
        s0 = int(start * RATE)
        for i in range(s0, n):
            t = (i - s0) / RATE
            env = min(1.0, t / attack) * math.exp(-t / decay)
            out[i] += amp * env * math.sin(2 * math.pi * freq * t)
    peak = max(1e-9, max(abs(v) for v in out))
    return [int(32000 * v / peak * 0.8) for v in out]


def sweep(f0, f1, seconds, decay):
    n = int(RATE * seconds)
    out, phase = [], 0.0
    for i in range(n):
        t = i / RATE
        f = f0 + (f1 - f0) * (t / seconds)
        phase += 2 * math.pi * f / RATE
        out.append(int(26000 * min(1.0, t / 0.004) * math.exp(-t / decay) * math.sin(phase)))
    return out


SOUNDS = {
    # Connected: a rising two-note chime.
    "Seatbelts": tone([(0.0, 880, 1.0), (0.0, 1760, 0.3), (0.16, 1175, 1.0), (0.16, 2350, 0.3)], 0.55, 0.12),
    # A short, soft, low knock.
    "Funk": tone([(0.0, 196, 1.0), (0.0, 392, 0.5)], 0.25, 0.05),
    # Port closed: a hollow pop.
    "System-Bottle": sweep(520, 300, 0.18, 0.05),
    # Port error: two quick croaks.
    "System-Frog": tone([(0.0, 140, 1.0), (0.0, 280, 0.6), (0.11, 120, 1.0), (0.11, 240, 0.6)], 0.3, 0.04),
    # Rejected entry: a low buzz.
    "System-Basso": tone([(0.0, 110, 1.0), (0.0, 220, 0.7), (0.0, 330, 0.4)], 0.4, 0.12),
    # A bright ping.
    "System-Glass": tone([(0.0, 1568, 1.0), (0.0, 3136, 0.25)], 0.5, 0.1),
}


def main():
    out_dir = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "resources", "Sounds")
    os.makedirs(out_dir, exist_ok=True)
    for name, samples in SOUNDS.items():
        path = os.path.join(out_dir, name + ".aiff")
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", DeprecationWarning)
            f = aifc.open(path, "wb")
            f.setnchannels(1)
            f.setsampwidth(2)
            f.setframerate(RATE)
            f.writeframes(struct.pack(">%dh" % len(samples), *samples))
            f.close()
        print(path)


if __name__ == "__main__":
    main()
