"""Which figures are taken of which rendering."""
import tempfile
from pathlib import Path

import numpy as np

from . import appearance, halo, noise, pictures, series, tmqi

# Groups that --figures names.
GROUPS = ("tmqi", "color", "light", "halo", "noise", "seam", "preview", "edges")
LONGEST_PREVIEW = 1000


def _preview(mapper, scene, folder):
    """Previews are for large pictures: 1000 pixels, and for pictures below 2000 half their size."""
    height, width = scene.whole_size
    side = min(LONGEST_PREVIEW, max(height, width) // 2)
    whole = mapper.result(scene.path, folder, 8)
    return series.preview(mapper.result(scene.path, folder, 8, "--preview", side), whole)


def _seam(mapper, scene, coded, folder):
    rotated = scene.written("rotated", np.roll(scene.light, scene.light.shape[1] // 2, axis=1))
    return {"seam": series.seam(coded, mapper.result(rotated, folder, 8))}


def of_picture(mapper, scene, groups):
    """Figures of one picture by name; None where the picture has nothing to measure."""
    figures = {}
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        coded, coded_16 = mapper.result(scene.source, folder, 8), mapper.result(scene.source, folder, 16)
        if coded.shape != scene.light.shape:
            raise pictures.Failure(f"{scene.path}: {mapper.name} gives {coded.shape}, expected {scene.light.shape}")
        if "tmqi" in groups:
            figures.update(zip(("tmqi", "s", "n"), tmqi.tmqi(scene.light, coded)))
        if "color" in groups:
            figures.update(appearance.fidelity(scene.light, coded_16))
            eight = appearance.fidelity(scene.light, coded)
            figures.update({"hue_8": eight["hue"], "hue_8_95": eight["hue_95"]})
            figures.update(appearance.clipping(coded))
        if "light" in groups:
            figures.update(appearance.light(coded))
        if "halo" in groups:
            figures["halo"] = halo.reversed_slopes(scene.light, coded_16)
        if "noise" in groups:
            figures["noise"] = noise.gain(scene.light, coded_16)
        if "seam" in groups and scene.is_panorama():
            figures.update(_seam(mapper, scene, coded, folder))
        if "preview" in groups and mapper.has_previews:
            figures.update(_preview(mapper, scene, folder))
    return figures


def of_edges(mapper):
    """Overshoot in L* on the dark and the light side of edges, by stops."""
    figures = {}
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for stops in halo.EDGE_STOPS:
            source = folder / f"edge-{stops}.pfm"
            pictures.write_pfm(source, halo.edge_picture(stops))
            figures[stops] = halo.overshoot(mapper.result(source, folder, 16))
    return figures


def of_neighbours(mapper, scenes):
    with tempfile.TemporaryDirectory() as name:
        coded = mapper.results([scene.source for scene in scenes], Path(name), 16)
        return series.same_look([scene.light for scene in scenes], coded)
