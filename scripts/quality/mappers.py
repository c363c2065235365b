"""Programs that turn light into pictures: Quorvane's tool, and independent ones of Debian to compare with."""
import shutil
import subprocess

from . import color, pictures

# Operators of pfstools (the result is light of the screen, or coded already) and of Luminance HDR.
PFSTOOLS = {"mai11": (["pfstmo_mai11"], "coded"), "fattal02": (["pfstmo_fattal02"], "coded"),
            "reinhard02 local": (["pfstmo_reinhard02", "--scales"], "light"),
            "drago03": (["pfstmo_drago03"], "light"), "mantiuk06": (["pfstmo_mantiuk06"], "light"),
            "ferradans11": (["pfstmo_ferradans11"], "coded")}
LUMINANCE_HDR = ("fattal", "mantiuk06", "reinhard02")


def run(words, given=None):
    done = subprocess.run([str(word) for word in words], input=given, capture_output=True)
    if done.returncode:
        raise pictures.Failure(f"{' '.join(map(str, words))}:\n{done.stderr.decode(errors='replace').strip()}")
    return done.stdout


class Tool:
    """One set of options of `quorvane tonemap`."""

    def __init__(self, name, program, options):
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

    def __init__(self):
        self._last = None, None

    def results(self, sources, folder, depth):
        return [self.result(source, folder, depth) for source in sources]

    def result(self, source, folder, depth):
        if self._last[0] != source:
            light = pictures.read_light(source).clip(0)  # these know no colours beyond sRGB
            given = folder / "light.pfm"
            pictures.write_pfm(given, light)
            self._last = source, self.coded(given, folder)
        return pictures.quantised(self._last[1], depth)


class Pfstools(Peer):
    def __init__(self, name, words, result_is):
        super().__init__()
        self.name, self.words, self.result_is = "pfstools " + name, words, result_is
        require(["pfsinpfm", "pfsoutpfm", words[0]], "pfstools pfstmo")

    def coded(self, given, folder):
        target = folder / "result.pfm"
        run(["pfsoutpfm", target], run(self.words, run(["pfsinpfm", given])))
        result = pictures.read_pfm(target)
        return color.encode(result) if self.result_is == "light" else result


class LuminanceHdr(Peer):
    def __init__(self, operator):
        super().__init__()
        self.name, self.operator = "Luminance HDR " + operator, operator
        require(["luminance-hdr-cli", "pfsinpfm", "pfsoutexr"], "luminance-hdr pfstools")

    def coded(self, given, folder):
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
            [LuminanceHdr(operator) for operator in LUMINANCE_HDR])
