"""Programs that turn light into pictures: Quorvane's tool, and independent ones of Debian to compare with."""
import shutil
import subprocess

import numpy as np

from . import color, pictures

# Operators by what their result is: light of the screen, or coded already. The light is coded as sRGB.
PFSTOOLS = {"mai11": (["pfstmo_mai11"], "coded"), "fattal02": (["pfstmo_fattal02"], "light"),
            "reinhard02 local": (["pfstmo_reinhard02", "--scales"], "light"),
            "drago03": (["pfstmo_drago03"], "light"), "mantiuk06": (["pfstmo_mantiuk06"], "light")}
LUMINANCE_HDR = {"fattal": "light", "mantiuk06": "coded", "reinhard02": "light", "lischinski": "light"}
MOST_SECONDS = 600


def run(words, given=None):
    command = " ".join(map(str, words))
    try:
        done = subprocess.run([str(word) for word in words], input=given, capture_output=True, timeout=MOST_SECONDS)
    except subprocess.TimeoutExpired as late:
        raise pictures.Failure(f"{command}: not done after {MOST_SECONDS} seconds") from late
    if done.returncode:
        raise pictures.Failure(f"{command}:\n{done.stderr.decode(errors='replace').strip()}")
    return done.stdout


class Tool:
    """One set of options of `quorvane tonemap`."""

    def __init__(self, name, program, options):
        if shutil.which(program) is None:
            raise pictures.Failure(f"{program}: no such program; build it, or name another with --tool")
        self.name, self.program, self.options = name, program, options
        self.has_previews = True

    def results(self, sources, folder, depth, *more):
        """One run over all sources, so that options for a series see the series."""
        run([self.program, "tonemap", *sources, "--out-dir", folder, "--name", "{index}.{ext}", "--format", "tif",
             "--depth", depth, "--compression", 0, "--overwrite", *self.options, *more])
        return [pictures.read_tiff(folder / f"{place:04}.tif") for place in range(1, len(sources) + 1)]

    def result(self, source, folder, depth, *more):
        target = folder / "result.tif"
        run([self.program, "tonemap", source, "-o", target, "--depth", depth, "--compression", 0, "--overwrite",
             *self.options, *more])
        return pictures.read_tiff(target)


class Peer:
    """A tone mapper of others: one floating-point result, rounded to each depth."""
    has_previews = False

    def __init__(self, name, result_is):
        self.name, self.result_is = name, result_is
        self._last = None, None

    def results(self, sources, folder, depth):
        return [self.result(source, folder, depth) for source in sources]

    def result(self, source, folder, depth):
        if self._last[0] != source:
            given = folder / "light.pfm"
            pictures.write_pfm(given, pictures.read_light(source).clip(0))  # these know no colours beyond sRGB
            drawn = np.nan_to_num(self.drawn(given, folder), nan=0, posinf=1, neginf=0)
            self._last = source, color.encode(drawn) if self.result_is == "light" else drawn
        return pictures.quantised(self._last[1], depth)


class Pfstools(Peer):
    def __init__(self, name, words, result_is):
        super().__init__("pfstools " + name, result_is)
        self.words = words
        require(["pfsinpfm", "pfsoutpfm", words[0]], "pfstools and pfstmo")

    def drawn(self, given, folder):
        target = folder / "result.pfm"
        run(["pfsoutpfm", target], run(self.words, run(["pfsinpfm", given])))
        return pictures.read_pfm(target)


class LuminanceHdr(Peer):
    def __init__(self, operator, result_is):
        super().__init__("Luminance HDR " + operator, result_is)
        self.operator = operator
        require(["luminance-hdr-cli", "pfsinpfm", "pfsoutexr"], "luminance-hdr and pfstools")

    def drawn(self, given, folder):
        exr, target = folder / "light.exr", folder / "result.tif"
        run(["pfsoutexr", exr], run(["pfsinpfm", given]))
        run(["env", "QT_QPA_PLATFORM=offscreen", "luminance-hdr-cli", "-l", exr, "--tmo", self.operator,
             "--ldrTiff", "16b", "--ldrTiffDeflate", "false", "-o", target])
        return pictures.read_tiff(target)


def require(programs, packages):
    missing = [program for program in programs if shutil.which(program) is None]
    if missing:
        raise pictures.Failure(f"--peers: {', '.join(missing)} not found; install the packages {packages}")


def peers():
    return ([Pfstools(name, *how) for name, how in PFSTOOLS.items()] +
            [LuminanceHdr(*entry) for entry in LUMINANCE_HDR.items()])
