#!/usr/bin/env python3
"""Draws the manual's figures from real renders of the plug-in.

    bash tools/make-manual-figures.sh          (installs matplotlib, builds, runs this)
    python3 tools/manual-figures.py ZOLK_RENDER OUTPUT_FOLDER

Every curve comes from signals rendered by zolk-render, the plug-in's own processor
run block by block, so that the figures follow the sound whenever it changes. The
renders run with a home folder of their own: no user preset or preference of the
machine takes part.
"""
import json
import os
import struct
import subprocess
import sys
import tempfile

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

RATE = 48000

# Every parameter set explicitly: compression at its least, no wow, no lo-fi colour
# beyond the fixed response, noise off. Each figure changes what it shows.
NEUTRAL = {
    "MasterOnOff": 1, "InputGain": 0, "CompressionAmount": 0, "WowFlutterAmount": 0,
    "LoFiAmount": 0, "OutputGain": 0, "MasterMix": 100, "CompAttackTimeConstant": 1,
    "CompReleaseTimeConstant": 1, "CompStereoLink": 1, "WowFlutterMix": 100,
    "WowFlutterSpeed": 0, "WowFlutterPhase": 0, "LoFiNoiseGain": -96, "LoFiType": 0,
    "LoFiCrunch": 0, "HQMode": 0, "DigitalRefLevel": -18, "SidechainListen": 0,
    "SidechainExternal": 0, "SidechainTilt": 0,
}

RED = "#c24e54"
INK = "#2b2b2b"


def write_wav(path, signal):
    """A 32-bit float WAV of (channels, frames)."""
    signal = np.asarray(signal, dtype="<f4")
    channels, frames = signal.shape
    data = signal.T.tobytes()
    header = b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVE"
    header += b"fmt " + struct.pack("<IHHIIHH", 16, 3, channels, RATE, RATE * 4 * channels, 4 * channels, 32)
    header += b"data" + struct.pack("<I", len(data))
    with open(path, "wb") as f:
        f.write(header + data)


def read_wav(path):
    """(channels, frames) of a 32-bit float WAV as JUCE writes it."""
    with open(path, "rb") as f:
        blob = f.read()
    position, channels, data = 12, 0, None
    while position + 8 <= len(blob):
        tag, size = blob[position:position + 4], struct.unpack("<I", blob[position + 4:position + 8])[0]
        body = blob[position + 8:position + 8 + size]
        if tag == b"fmt ":
            audio_format, channels = struct.unpack("<HH", body[:4])
            bits = struct.unpack("<H", body[14:16])[0]
            if bits != 32 or audio_format not in (3, 0xFFFE):
                raise ValueError("expected 32-bit float WAV from zolk-render")
        elif tag == b"data":
            data = np.frombuffer(body, dtype="<f4")
        position += 8 + size + (size & 1)
    return data.reshape(-1, channels).T.astype(np.float64)


class Renderer:
    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.env = dict(os.environ, HOME=folder)
        self.count = 0

    def render(self, signal, settings, sidechain=None):
        """The output aligned with the input: the reported latency taken off."""
        self.count += 1
        source = os.path.join(self.folder, "in%d.wav" % self.count)
        target = os.path.join(self.folder, "out%d.wav" % self.count)
        write_wav(source, signal)
        command = [self.program, "--json", "--block", "256"]
        for name, value in {**NEUTRAL, **settings}.items():
            command += ["--set", "%s=%s" % (name, value)]
        if sidechain is not None:
            side = os.path.join(self.folder, "side%d.wav" % self.count)
            write_wav(side, sidechain)
            command += ["--sidechain", side]
        command += [source, target]
        report = json.loads(subprocess.run(command, check=True, capture_output=True, text=True,
                                           env=self.env).stdout)
        output = read_wav(target)
        latency = int(report["latency_samples"])
        return output[:, latency:latency + signal.shape[1]]


def db(x):
    return 20.0 * np.log10(np.maximum(x, 1e-12))


def style(axes, title, xlabel, ylabel):
    axes.set_title(title, loc="left", fontsize=11, color=INK)
    axes.set_xlabel(xlabel)
    axes.set_ylabel(ylabel)
    axes.grid(True, color="#dddddd", linewidth=0.7)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def save(figure, folder, name):
    figure.tight_layout()
    figure.savefig(os.path.join(folder, name), dpi=110)
    plt.close(figure)
    print("wrote", name)


def static_curves(renderer, folder):
    """Output level against input level, at rest, for five amounts."""
    levels = np.arange(-90.0, 0.1, 2.0)
    step = RATE  # one second per level, rising: the curve at rest, after each attack
    t = np.arange(step) / RATE
    tone = np.sin(2 * np.pi * 1000.0 * t)
    signal = np.concatenate([10 ** (level / 20) * tone for level in levels])
    signal = np.vstack([signal, signal])

    figure, axes = plt.subplots(figsize=(7.2, 5.0))
    axes.plot(levels, levels, color="#aaaaaa", linewidth=1, linestyle="--", label="unchanged")
    shades = ["#e3a5a8", "#d47b80", RED, "#8f2f35", INK]
    for amount, colour in zip((0, 25, 50, 75, 100), shades):
        out = renderer.render(signal, {"CompressionAmount": amount})[0]
        peaks = [np.max(np.abs(out[i * step + 3 * step // 4:(i + 1) * step])) for i in range(len(levels))]
        axes.plot(levels, db(np.array(peaks)), color=colour, linewidth=2, label="Compression %d" % amount)
    style(axes, "Compressor: level out against level in, at rest (1 kHz tone, Digital Ref Level -18 dB)",
          "input peak level (dBFS)", "output peak level (dBFS)")
    axes.set_xlim(-90, 0)
    axes.set_ylim(-90, 6)
    axes.legend(loc="lower right", frameon=False)
    save(figure, folder, "compressor-curves.png")


def drum_loop(seconds):
    """Kick on every beat, snare on two and four, closed hats on the eighths, at 120 BPM."""
    rng = np.random.default_rng(1)
    n = int(seconds * RATE)
    out = np.zeros(n)
    beat = RATE // 2

    def add(start, sound):
        end = min(n, start + len(sound))
        out[start:end] += sound[:end - start]

    t = np.arange(int(0.4 * RATE)) / RATE
    kick = 0.9 * np.sin(2 * np.pi * (50 + 90 * np.exp(-t / 0.03)) * t) * np.exp(-t / 0.12)
    snare = (0.45 * rng.standard_normal(len(t)) + 0.3 * np.sin(2 * np.pi * 190 * t)) * np.exp(-t / 0.07)
    th = np.arange(int(0.05 * RATE)) / RATE
    hat = 0.12 * rng.standard_normal(len(th)) * np.exp(-th / 0.012)
    for i in range(int(seconds * 2)):
        add(i * beat, kick)
        if i % 2 == 1:
            add(i * beat, snare)
        add(i * beat, hat)
        add(i * beat + beat // 2, hat)
    return out


def pilot_gain(channel, frequency, amplitude):
    """The gain applied to a pilot tone, sample by sample, by demodulating one cycle at a time."""
    n = len(channel)
    t = np.arange(n) / RATE
    period = int(round(RATE / frequency))
    i = np.convolve(channel * np.cos(2 * np.pi * frequency * t), np.ones(period) / period, "same")
    q = np.convolve(channel * np.sin(2 * np.pi * frequency * t), np.ones(period) / period, "same")
    return 2 * np.sqrt(i * i + q * q) / amplitude


def gain_reduction_over_time(renderer, folder):
    """The drum loop on the left; a quiet pilot tone on the right shares the linked gain and shows it."""
    lead = int(0.5 * RATE)
    drums = np.concatenate([np.zeros(lead), drum_loop(3.0)])
    t = np.arange(len(drums)) / RATE
    pilot_amplitude = 10 ** (-80 / 20)
    pilot = pilot_amplitude * np.sin(2 * np.pi * 1000.0 * t)
    signal = np.vstack([drums, pilot])

    figure, (top, bottom) = plt.subplots(2, 1, figsize=(7.2, 5.6), sharex=True,
                                         gridspec_kw={"height_ratios": [1, 2.2]})
    top.plot(t, drums, color="#999999", linewidth=0.5)
    style(top, "Drum-like input", "", "sample")
    top.set_ylim(-1, 1)
    settings = [(0.25, 0.25, "#e3a5a8", "Attack 0.25, Release 0.25"),
                (1.0, 1.0, RED, "Attack 1, Release 1 (as fitted)"),
                (4.0, 4.0, INK, "Attack 4, Release 4")]
    for attack, release, colour, label in settings:
        out = renderer.render(signal, {"CompressionAmount": 50, "CompAttackTimeConstant": attack,
                                       "CompReleaseTimeConstant": release})
        gain = db(pilot_gain(out[1], 1000.0, pilot_amplitude))
        rest = np.median(gain[lead // 4:lead - RATE // 50])  # the makeup, before the first hit
        bottom.plot(t, gain - rest, color=colour, linewidth=1.6, label=label)
    style(bottom, "Gain reduction at Compression 50", "time (s)", "gain reduction (dB)")
    bottom.set_xlim(0.3, t[-1])
    bottom.legend(loc="lower right", frameon=False)
    save(figure, folder, "compressor-timing.png")


def response(renderer, settings, level_db, sidechain=False):
    """Magnitude of the linear transfer from white noise, by averaged cross-spectra."""
    rng = np.random.default_rng(7)
    n = 8 * RATE
    noise = rng.standard_normal((2, n)) * 10 ** (level_db / 20)
    out = renderer.render(noise, settings, sidechain=noise if sidechain else None)
    size, skip = 8192, RATE
    window = np.hanning(size)
    sxy = np.zeros(size // 2 + 1, dtype=complex)
    sxx = np.zeros(size // 2 + 1)
    for start in range(skip, n - size, size // 2):
        x = np.fft.rfft(noise[0, start:start + size] * window)
        y = np.fft.rfft(out[0, start:start + size] * window)
        sxy += np.conj(x) * y
        sxx += np.abs(x) ** 2
    frequencies = np.fft.rfftfreq(size, 1.0 / RATE)
    return frequencies, db(np.abs(sxy / sxx))


def lofi_responses(renderer, folder):
    """The three lo-fi types at two amounts. The noise lies below the compressor's threshold
    and inside the crunch curve's straight middle, so that what is measured is the colour alone."""
    figure, panels = plt.subplots(1, 2, figsize=(9.6, 4.4), sharey=True)
    types = [(0, RED, "Analog", "-"), (2, INK, "1980's Digital", "-"), (1, "#d47b80", "1990's Digital", "--")]
    reference = None
    for axes, amount in zip(panels, (50, 100)):
        for value, colour, label, line in types:
            f, magnitude = response(renderer, {"LoFiAmount": amount, "LoFiType": value}, -80.0)
            if reference is None:
                reference = np.interp(100.0, f, magnitude)
            axes.semilogx(f[1:], magnitude[1:] - reference, color=colour, linewidth=1.8, linestyle=line,
                          label=label)
        style(axes, "Lo-Fi Amount %d" % amount, "frequency (Hz)", "level (dB)" if amount == 50 else "")
        axes.set_xlim(20, 22000)
        axes.set_ylim(-48, 6)
    panels[0].legend(loc="lower left", frameon=False)
    figure.suptitle("Lo-fi types: frequency response (0 dB at 100 Hz)", x=0.01, ha="left", fontsize=11)
    save(figure, folder, "lofi-response.png")


def tilt_responses(renderer, folder):
    """What the detector hears at five tilts, through Sidechain Listen."""
    figure, axes = plt.subplots(figsize=(7.2, 4.6))
    shades = [INK, "#8f2f35", "#999999", "#d47b80", RED]
    for tilt, colour in zip((-100, -50, 0, 50, 100), shades):
        f, magnitude = response(renderer, {"SidechainListen": 1, "SidechainTilt": tilt}, -30.0,
                                sidechain=True)
        axes.semilogx(f[1:], magnitude[1:], color=colour, linewidth=1.8, label="Tilt %+d" % tilt)
    style(axes, "Sidechain tilt: the detector's frequency response", "frequency (Hz)", "level (dB)")
    axes.set_xlim(20, 22000)
    axes.legend(loc="upper right", frameon=False, ncol=2)
    save(figure, folder, "sidechain-tilt.png")


def instantaneous_frequency(channel, low, high):
    spectrum = np.fft.fft(channel)
    f = np.fft.fftfreq(len(channel), 1.0 / RATE)
    spectrum[(f < low) | (f > high)] = 0  # one side only: the analytic signal of the band
    phase = np.unwrap(np.angle(np.fft.ifft(spectrum)))
    return np.gradient(phase) * RATE / (2 * np.pi)


def wow_flutter(renderer, folder):
    """Pitch of a steady 1 kHz tone through the wow and flutter stage at full amount."""
    seconds = 6
    t = np.arange(seconds * RATE) / RATE
    tone = 0.1 * np.sin(2 * np.pi * 1000.0 * t)
    signal = np.vstack([tone, tone])
    figure, panels = plt.subplots(3, 1, figsize=(7.2, 6.4), sharex=True, sharey=True)
    for axes, (speed, label) in zip(panels, [(0, "33\u2153 RPM"), (1, "45 RPM"), (2, "78 RPM")]):
        out = renderer.render(signal, {"WowFlutterAmount": 100, "WowFlutterSpeed": speed})[0]
        frequency = instantaneous_frequency(out, 700.0, 1300.0)
        cents = 1200 * np.log2(np.maximum(frequency, 1.0) / 1000.0)
        shown = (t >= 2.0) & (t < 5.0)  # after the amount's one-second glide
        axes.plot(t[shown] - 2.0, cents[shown], color=RED, linewidth=1.2)
        style(axes, label, "time (s)" if speed == 2 else "", "cents")
    figure.suptitle("Wow and flutter at Amount 100: pitch deviation of a 1 kHz tone", x=0.01, ha="left",
                    fontsize=11)
    save(figure, folder, "wow-flutter.png")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    program, folder = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    os.makedirs(folder, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="zolk-figures-") as scratch:
        renderer = Renderer(program, scratch)
        static_curves(renderer, folder)
        gain_reduction_over_time(renderer, folder)
        lofi_responses(renderer, folder)
        tilt_responses(renderer, folder)
        wow_flutter(renderer, folder)


if __name__ == "__main__":
    main()
