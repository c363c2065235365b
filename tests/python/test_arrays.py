"""Pictures in arrays: the bytes of the exported function and of the tool, from every layout of memory."""

import json

import numpy as np
import pytest
import quorvane
from conftest import exported_function, make_light, write_pfm


def same(a, b):
    assert a.dtype == b.dtype
    np.testing.assert_array_equal(a, b)


@pytest.mark.parametrize("color_space", ["srgb", "adobergb", "prophoto"])
@pytest.mark.parametrize("depth", [8, 16])
@pytest.mark.parametrize("bits", [8, 16])
def test_codes_become_the_bytes_of_the_exported_function(codes, bits, depth, color_space):
    image = codes if bits == 16 else (codes >> 8).astype(np.uint8)
    for sliders in {}, {"strength": -20.0, "white_clip": 20.0, "lighting": 4.0, "microcontrast": -3.0}:
        expected = exported_function(image, depth, color_space, **sliders)
        same(quorvane.tonemap(image, depth=depth, color_space=color_space, **sliders), expected)
    expected = exported_function(image, depth, color_space, wrap=1.0)
    same(quorvane.tonemap(image, depth=depth, color_space=color_space, wrap=True), expected)


def layouts(image):
    """The same picture with other strides, among them addresses that no sample is aligned to."""
    height, width, samples = image.shape
    padded = np.zeros((height, width + 5, samples), image.dtype)
    padded[:, :width] = image
    yield padded[:, :width]
    yield image[::-1].copy()[::-1]
    yield np.repeat(image, 2, axis=1)[:, ::2]
    yield image.transpose(2, 0, 1).copy().transpose(1, 2, 0)
    yield image[..., ::-1].copy()[..., ::-1]
    raw = np.zeros(image.nbytes + 1, np.uint8)
    raw[1:] = np.frombuffer(image.tobytes(), np.uint8)
    yield raw[1:].view(image.dtype).reshape(image.shape)


@pytest.mark.parametrize("make", [lambda c: c, lambda c: (c >> 8).astype(np.uint8),
                                  lambda c: (c / 9999).astype(np.float32), lambda c: (c / 9999).astype(np.float16)])
def test_strides_do_not_matter(codes, make):
    image = make(codes)
    expected = quorvane.tonemap(image)
    for view in layouts(image):
        same(quorvane.tonemap(view), expected)
        for out in layouts(np.zeros_like(expected)):
            assert quorvane.tonemap(view, out=out) is out
            same(np.ascontiguousarray(out), expected)
    if image.dtype == np.uint8:
        same(quorvane.tonemap(image, out=image), expected)


def test_dither_ends_next_to_the_finer_codes(tmp_path, run_tool, light):
    image = np.repeat(light[..., :1], 3, axis=2)
    fine = quorvane.tonemap(image, depth=16) / 257
    result = quorvane.tonemap(image, dither=True)
    assert (abs(result - fine) < 1).all()
    assert (result[..., 0] == result[..., 1])[fine[..., 0] == fine[..., 1]].all()
    assert abs((result - fine).mean()) < abs((quorvane.tonemap(image) - fine).mean()) / 4 + 0.01
    for out in layouts(np.zeros_like(result)):
        same(np.ascontiguousarray(quorvane.tonemap(image, dither=True, out=out)), result)
    renderer = quorvane.Renderer(image)
    same(renderer.render(), quorvane.tonemap(image))
    same(renderer.render(dither=True), result)
    panorama = np.hstack([image, image[:, ::-1]])
    write_pfm(tmp_path / "in.pfm", panorama)
    for wrap in "none", "horizontal":
        run_tool("tonemap", "in.pfm", "-o", wrap + ".png", "--wrap", wrap, "--dither")
        quorvane.write(tmp_path / "array.png", quorvane.tonemap(panorama, wrap=wrap, dither=True), overwrite=True)
        assert quorvane.compare(tmp_path / (wrap + ".png"), tmp_path / "array.png")["all"]["largest"] == 0
    with pytest.raises(ValueError, match="dither is for results of depth 8"):
        quorvane.tonemap(image, dither=True, depth=16)


def test_alpha_is_passed_on(light, codes):
    alpha = np.linspace(-0.2, 1.2, light[..., 0].size, dtype=np.float32).reshape(light.shape[:2])
    image = np.dstack([light, alpha])
    result = quorvane.tonemap(image, depth=16)
    same(result[..., :3], quorvane.tonemap(light, depth=16))
    np.testing.assert_allclose(result[..., 3], np.clip(alpha, 0, 1) * 65535, atol=0.51)
    narrow = np.dstack([codes >> 8, codes[..., 0] >> 8]).astype(np.uint8)
    same(quorvane.tonemap(narrow)[..., 3], narrow[..., 3])
    same(quorvane.tonemap(narrow, depth=16)[..., 3], narrow[..., 3] * np.uint16(257))
    same(quorvane.equalize(narrow, saturation="0:0.2")[..., 3], narrow[..., 3])


@pytest.mark.parametrize("damage", ["none", "nan", "infinite", "outlier", "negative", "late"])
def test_floats_become_the_bytes_of_the_tool(tmp_path, run_tool, light, damage):
    if damage == "nan":
        light[3, 4, 1] = np.nan
    elif damage == "infinite":
        light[40, 50] = np.inf
        light[41, 50, 2] = -np.inf
    elif damage == "outlier":
        light[10, 20, 0] = 1e29
    elif damage == "late":
        light[-1, -1, 2] = 3e28
    elif damage == "negative":
        light[20:30, :, 2] = -5
    before = light.copy()
    write_pfm(tmp_path / "in.pfm", light)
    run_tool("tonemap", "in.pfm", "-o", "out.png", "--depth", "16", "--colorspace", "prophoto",
             "--contrast", "-5", "--saturation", "30")
    renderer = quorvane.Renderer(light, color_space="prophoto")
    result = renderer.render(depth=16, contrast=-5, saturation=30)
    same(light, before)
    record = quorvane.tonemap_file(tmp_path / "in.pfm", tmp_path / "own.png", depth=16,
                                   color_space="prophoto", contrast=-5, saturation=30)
    assert renderer.repairs == record["repaired"]
    quorvane.write(tmp_path / "array.png", result, color_space="prophoto")
    assert quorvane.compare(tmp_path / "out.png", tmp_path / "array.png")["all"]["largest"] == 0
    same(quorvane.tonemap(light, depth=16, contrast=-5, saturation=30, color_space="prophoto"), result)


@pytest.mark.parametrize("rendering", ["color", "engine"])
def test_both_renderings_are_those_of_the_tool(tmp_path, run_tool, light, rendering):
    write_pfm(tmp_path / "in.pfm", light)
    run_tool("tonemap", "in.pfm", "-o", "out.png", "--wrap", "none", "--rendering", rendering)
    result = quorvane.tonemap(light, rendering=rendering)
    quorvane.write(tmp_path / "array.png", result)
    assert quorvane.compare(tmp_path / "out.png", tmp_path / "array.png")["all"]["largest"] == 0
    same(quorvane.Renderer(light).render(rendering=rendering), result)
    assert (result == quorvane.tonemap(light)).all() == (rendering == "color")
    codes = (np.clip(light, 0, 1) * 65535).astype(np.uint16)
    assert (quorvane.tonemap(codes, rendering=rendering) == quorvane.tonemap(codes)).all() == (rendering == "engine")


@pytest.mark.parametrize("wrap", [True, "auto"])
def test_panoramas_become_the_bytes_of_the_tool(tmp_path, run_tool, wrap):
    panorama = np.hstack([make_light(64, 64), make_light(64, 64)[:, ::-1]])
    write_pfm(tmp_path / "in.pfm", panorama)
    run_tool("tonemap", "in.pfm", "-o", "out.png", "--wrap", "horizontal" if wrap is True else wrap)
    quorvane.write(tmp_path / "array.png", quorvane.tonemap(panorama, wrap=wrap))
    assert quorvane.compare(tmp_path / "out.png", tmp_path / "array.png")["all"]["largest"] == 0
    assert (quorvane.tonemap(panorama, wrap=wrap) != quorvane.tonemap(panorama)).any()


MATRICES = {  # to linear sRGB, of the spaces' definitions
    "linear-display-p3": [[1.22494, -0.22494, 0], [-0.04206, 1.04206, 0], [-0.01964, -0.07864, 1.09828]],
    "linear-rec2020": [[1.66049, -0.58764, -0.07285], [-0.12455, 1.1329, -0.00835], [-0.01815, -0.10058, 1.11873]],
    "linear-adobergb": [[1.39836, -0.39836, 0], [0, 1, 0], [0, -0.04293, 1.04293]],
    "linear-prophoto": [[2.03427, -0.72772, -0.30655], [-0.22882, 1.23174, -0.00292], [-0.00856, -0.15328, 1.16184]],
    "acescg": [[1.70505, -0.62179, -0.08326], [-0.13026, 1.1408, -0.01055], [-0.024, -0.12897, 1.15297]],
    "aces2065-1": [[2.52169, -1.13413, -0.38756], [-0.27648, 1.37272, -0.09624], [-0.01538, -0.15298, 1.16835]],
    "xyz-d50": [[3.13386, -1.61687, -0.49061], [-0.97877, 1.91614, 0.03345], [0.07195, -0.22899, 1.40524]],
}


@pytest.mark.parametrize("source", MATRICES)
def test_sources_are_the_spaces_of_their_names(light, source):
    samples = (light @ np.linalg.inv(np.array(MATRICES[source])).T).astype(np.float32)
    difference = quorvane.compare(quorvane.tonemap(samples, source=source), quorvane.tonemap(light))
    assert difference["all"]["mean"] < 0.05 and difference["quantile_99"] <= 1


def test_settings_are_chosen_as_the_tool_does(run_tool, pfm, light):
    suggested = json.loads(run_tool("inspect", "--json", pfm))["suggested"]
    assert quorvane.auto_settings(light) == {name.replace("-", "_"): v for name, v in suggested.items()}


def test_curves_change_the_bytes_that_the_tool_changes(run_tool, tmp_path, codes):
    quorvane.write(tmp_path / "in.png", codes)
    for mode in "smooth", "linear", "flat":
        run_tool("equalize", "in.png", "-o", "out.png", "--overwrite", "--mode", mode, "--hue-shift", "40:0.5,90:0.7",
                 "--saturation", "10:0.8", "--lightness", "200:0.4,10:0.6")
        result = quorvane.equalize(codes, hue_shift=[(90, 0.7), (40, 0.5)], saturation="10:0.8",
                                   lightness="200:0.4,10:0.6", mode=mode)
        quorvane.write(tmp_path / "array.png", result, overwrite=True)
        assert quorvane.compare(tmp_path / "out.png", tmp_path / "array.png")["all"]["largest"] == 0
        quorvane.equalize_file(tmp_path / "in.png", tmp_path / "file.png", hue_shift="40:0.5,90:0.7", mode=mode,
                               saturation="10:0.8", lightness="200:0.4,10:0.6", overwrite=True)
        assert (tmp_path / "out.png").read_bytes() == (tmp_path / "file.png").read_bytes()
        assert (result != codes).any()


def broken(change, image=None):
    return lambda light: quorvane.tonemap(light if image is None else image(light), **change)


@pytest.mark.parametrize("call, error, text", [
    (broken({"strength": float("nan")}), ValueError, "strength is nan; it must be a number from -200 to 150"),
    (broken({"black_clip": 51}), ValueError, "black_clip is 51; it must be a number from 0 to 50"),
    (broken({"contrast": "high"}), TypeError, "must be real number"),
    (broken({"wrap": "around"}), ValueError, "wrap is around; it must be True, False, 'none'"),
    (broken({"color_space": "cmyk"}), ValueError, "color_space is 'cmyk'; it must be srgb, adobergb or prophoto"),
    (broken({"source": "srgb"}), ValueError, "source is 'srgb'; it must be one of linear-srgb, "),
    (broken({"depth": 12}), ValueError, "depth is 12; it must be 8 or 16"),
    (broken({"out": [1]}), TypeError, "out must be an array"),
    (broken({"out": np.zeros((90, 130, 4), np.uint8)}), ValueError, "out has another shape than image"),
    (broken({"out": np.zeros((90, 130, 3), np.uint16)}), ValueError, "samples of uint16; depth 8 makes uint8"),
    (broken({"out": np.broadcast_to(np.uint8(0), (90, 130, 3))}), ValueError, "out is read-only"),
    (broken({}, lambda light: light[..., 0]), ValueError, r"image has the shape \(90, 130\); it must be"),
    (broken({}, lambda light: light[:0]), ValueError, "image has no pixels"),
    (broken({}, lambda light: light.astype(np.float64)), ValueError, "image has samples of float64; use astype"),
    (broken({}, lambda light: light.astype(">f4")), ValueError, "image has samples of >f4; use astype"),
    (broken({"source": "acescg"}, lambda light: light.astype(np.uint8)), ValueError, "source is for samples of floats"),
    (broken({}, lambda light: np.zeros((1, 748981, 3), np.uint8)), quorvane.Error, "at most 748980 are possible"),
    (lambda light: quorvane.equalize(light), ValueError, "image must have samples of uint8 or uint16"),
    (lambda light: quorvane.equalize(light.astype(np.uint8), hue_shift="400:1"), ValueError, "hue_shift: .*400"),
    (lambda light: quorvane.equalize(light.astype(np.uint8), mode="odd"), ValueError, "mode is 'odd'; it must be"),
    (lambda light: quorvane.compare(light.astype(np.uint8), light[1:].astype(np.uint8)), ValueError,
     "the size of b is 130 x 89, that of a 130 x 90"),
])  # fmt: skip
def test_errors_name_the_argument_and_the_way_out(light, call, error, text):
    with pytest.raises(error, match=text):
        call(light)


def test_comparisons_are_those_of_the_tool(run_tool, tmp_path, codes):
    other = np.where(codes > 60000, codes - 900, codes).astype(np.uint16)
    quorvane.write(tmp_path / "a.png", codes)
    quorvane.write(tmp_path / "b.tif", other)
    expected = json.loads(run_tool("compare", "--json", "a.png", "b.tif"))
    expected["largest_at"] = tuple(expected["largest_at"])
    assert quorvane.compare(codes, other) == expected
    assert quorvane.compare(tmp_path / "a.png", tmp_path / "b.tif") == expected
    with pytest.raises(TypeError):
        quorvane.compare(codes, tmp_path / "b.tif")
