"""Pictures in files: the bytes and records of the tool."""

import errno
import json
import os
import time

import numpy as np
import PIL.Image
import pytest
import quorvane
from conftest import make_light, write_pfm


@pytest.mark.parametrize("name, options, settings", [
    ("a.png", [], {}),
    ("a.jpg", ["--preset", "vivid", "--strength", "60", "--quality", "80"],
     {"preset": "vivid", "strength": 60, "quality": 80}),
    ("d.png", ["--dither"], {"dither": True}),
    ("a.tif", ["--auto", "--depth", "16", "--colorspace", "adobergb", "--compression", "1"],
     {"auto": True, "depth": 16, "color_space": "adobergb", "compression": 1}),
    ("a.webp", ["--preview", "50", "--wrap", "horizontal", "--metadata", "none"],
     {"preview": 50, "wrap": True, "keep": []}),
])  # fmt: skip
def test_results_and_records_are_those_of_the_tool(tmp_path, run_tool, pfm, name, options, settings):
    record = json.loads(run_tool("tonemap", pfm, "-o", name, "--json", *options))
    own = quorvane.tonemap_file(pfm, tmp_path / ("own-" + name), **settings)
    assert (tmp_path / name).read_bytes() == (tmp_path / ("own-" + name)).read_bytes()
    for key in "output", "milliseconds", "peak_memory":
        record.pop(key)
    record["settings"] = {key.replace("-", "_"): value for key, value in record["settings"].items()}
    assert {key: own[key] for key in record} == record


def test_inspection_is_that_of_the_tool(run_tool, pfm):
    record = json.loads(run_tool("inspect", "--json", pfm))
    del record["options"]
    record["suggested"] = {key.replace("-", "_"): value for key, value in record["suggested"].items()}
    assert quorvane.inspect(pfm) == record


def test_light_that_is_read_has_the_bytes_of_the_tool(tmp_path, run_tool, pfm, light):
    photo = quorvane.read(pfm, source="xyz-d50")
    run_tool("tonemap", pfm, "-o", "out.png", "--wrap", "none")
    quorvane.write(tmp_path / "own.png", quorvane.tonemap(photo.pixels, source="xyz-d50"))
    assert quorvane.compare(tmp_path / "out.png", tmp_path / "own.png")["all"]["largest"] == 0
    np.testing.assert_allclose(quorvane.read(pfm).pixels, light, rtol=1e-4, atol=1e-6)
    assert (photo.format, photo.depth, photo.profile) == ("PFM", 32, "linear light, sRGB primaries")


def test_what_is_written_is_read_again(tmp_path, codes):
    image = np.dstack([codes, codes[..., 1]])
    for name, used in ("a.png", image), ("a.tif", image), ("a.jxl", image), ("b.png", (image >> 8).astype(np.uint8)):
        quorvane.write(tmp_path / name, used, compression=1 if name[-3:] != "jxl" else None,
                       quality=100 if name[-3:] == "jxl" else None)
        photo = quorvane.read(tmp_path / name)
        assert photo.pixels.shape == image.shape and photo.depth == 8 * used.itemsize
        np.testing.assert_allclose(photo.pixels[..., 3], used[..., 3] / np.iinfo(used.dtype).max, atol=1e-4)
    assert quorvane.write(tmp_path / "a.jpg", (image >> 8).astype(np.uint8)) == [
        "JPEG holds no transparency: colours are written as they are, alpha is left out"]
    quorvane.write(tmp_path / "a.avif", codes)
    assert quorvane.inspect(tmp_path / "a.avif")["depth"] == 12


def test_metadata_go_from_a_photograph_to_a_result(tmp_path, pfm, codes):
    exif = PIL.Image.Exif()
    exif.update({0x10F: "Maker", 0x110: "Model 1", 0x8298: "Someone"})
    PIL.Image.new("RGB", (9, 9)).save(tmp_path / "a.jpg", exif=exif)
    metadata = quorvane.read(tmp_path / "a.jpg").metadata
    assert metadata.summary == {"camera": "Maker Model 1", "copyright": "Someone"}
    assert b"Someone" in metadata.exif
    for name in "b.tif", "b.png":
        quorvane.write(tmp_path / name, codes, metadata=metadata)
        assert quorvane.read(tmp_path / name).metadata.summary == metadata.summary
    quorvane.write(tmp_path / "c.tif", codes, metadata=metadata, keep=["xmp"])
    assert quorvane.read(tmp_path / "c.tif").metadata.summary == {}
    assert quorvane.read(pfm).metadata.xmp == quorvane.read(pfm).metadata.exif == b""


def test_a_file_that_changes_is_read_anew(tmp_path, codes):
    for step in range(3):
        image = np.roll(codes, step, axis=0)
        for name in "a.png", "a.tif":
            quorvane.write(tmp_path / name, image, overwrite=True)
            assert quorvane.compare(tmp_path / name, tmp_path / name)["all"]["largest"] == 0
        write_pfm(tmp_path / "b.pfm", np.full((4, 4, 3), 1 + step, np.float32))
        assert quorvane.read(tmp_path / "b.pfm", source="xyz-d50").pixels[0, 0, 1] == pytest.approx(1 + step)
        first = quorvane.read(tmp_path / "a.png").pixels
        np.testing.assert_array_equal(first, quorvane.read(tmp_path / "a.tif").pixels)
        if step:
            assert (first != before).any()
        before = first


def test_names_may_hold_any_bytes(tmp_path, pfm):
    target = os.path.join(os.fsencode(tmp_path), b"na\xefve [x].png")
    record = quorvane.tonemap_file(pfm, os.fsdecode(target))
    assert record["status"] == "done" and os.path.exists(target)
    with pytest.raises(FileExistsError) as caught:
        quorvane.tonemap_file(pfm, os.fsdecode(target))
    assert os.fsencode(caught.value.filename) == target


def test_presets_are_the_users_then_those_of_the_package(tmp_path, monkeypatch, pfm):
    monkeypatch.setenv("XDG_CONFIG_HOME", str(tmp_path))
    folder = tmp_path / "quorvane/presets"
    folder.mkdir(parents=True)
    own = '{"quorvane-preset": 1, "name": "Mine", "settings": {"black-clip": 0.3, "wrap": "none"}}'
    (folder / "mine.json").write_text(own)
    (folder / "vivid.json").write_text(own)
    (folder / "broken.json").write_text("{")
    assert sorted(quorvane.presets) == ["dramatic", "mine", "natural", "night", "panorama", "vivid"]
    assert quorvane.presets["mine"] == quorvane.presets["vivid"] == {"black_clip": 0.3, "wrap": "none"}
    assert len(quorvane.presets) == 6 and "broken" not in quorvane.presets
    with pytest.raises(KeyError):
        quorvane.presets["nobody"]
    record = quorvane.tonemap_file(pfm, tmp_path / "a.png", preset=folder / "mine.json", strength=1)
    assert record["settings"]["black_clip"] == 0.3 and record["settings"]["strength"] == 1


def attempt(tmp_path, source="scene.pfm", target="x.png", **options):
    return quorvane.tonemap_file(tmp_path / source, tmp_path / target, **options)


@pytest.mark.parametrize("call, error, text", [
    (lambda at: attempt(at, source="none.exr"), FileNotFoundError, "No such file or directory"),
    (lambda at: attempt(at, source="."), IsADirectoryError, "is a folder; give the name of a picture"),
    (lambda at: attempt(at, source="text.exr"), quorvane.Error, "text.exr: not a picture of a known format"),
    (lambda at: attempt(at, target="old.png"), FileExistsError, "overwrite replaces it, skip_existing leaves it"),
    (lambda at: attempt(at, target="no/x.png"), FileNotFoundError, "does not exist; create it first"),
    (lambda at: attempt(at, target="scene.pfm.gif"), ValueError, "unknown extension"),
    (lambda at: attempt(at, target="x.jpg", depth=16), ValueError, "JPEG holds 8 bits only; use depth 8"),
    (lambda at: attempt(at, depth=9), ValueError, "depth is 9; it must be 8, 12 or 16"),
    (lambda at: attempt(at, quality=0), ValueError, "quality is 0; it must be from 1 to 100"),
    (lambda at: attempt(at, depth="8"), TypeError, "depth is '8', which has another type"),
    (lambda at: attempt(at, alpha="x"), ValueError, "alpha is 'x'; it must be keep, ignore or a colour"),
    (lambda at: attempt(at, keep=["gps"]), ValueError, "'gps' is none of exif, xmp and iptc"),
    (lambda at: attempt(at, page=2), quorvane.Error, "has no pages; leave page out"),
    (lambda at: attempt(at, preset="nobody"), ValueError, "quorvane.presets shows those"),
    (lambda at: quorvane.read(at / "scene.pfm", layer="a"), quorvane.Error, "part and layer choose"),
    (lambda at: quorvane.equalize_file(at / "scene.pfm", at / "x.png"), quorvane.Error, "tone-map it first"),
    (lambda at: quorvane.equalize_file(at / "old.png", at / "old.png", overwrite=True), ValueError, "the input itself"),
    (lambda at: quorvane.write(at / "old.png", np.zeros((1, 1, 3), np.uint8)), FileExistsError, "exists already"),
    (lambda at: quorvane.write(at / "x.png", np.zeros((1, 1, 3))), ValueError, "samples of float64"),
    (lambda at: quorvane.write(at / "x.jpg", np.zeros((1, 1, 3), np.uint16)), ValueError, "JPEG holds 8 bits"),
    (lambda at: quorvane.write("/proc/x.png", np.zeros((1, 1, 3), np.uint8)), OSError, "/proc"),
])  # fmt: skip
def test_errors_name_the_file_and_the_way_out(tmp_path, pfm, call, error, text):
    (tmp_path / "text.exr").write_text("no picture")
    (tmp_path / "old.png").write_bytes(b"old")
    with pytest.raises(error, match=text) as caught:
        call(tmp_path)
    assert not (isinstance(caught.value, OSError) and caught.value.errno in (None, errno.ENOEXEC))
    assert sorted(file.name for file in tmp_path.iterdir()) == ["old.png", "scene.pfm", "text.exr"]
    assert (tmp_path / "old.png").read_bytes() == b"old"


def test_a_result_that_exists_can_be_skipped_or_replaced(tmp_path, pfm):
    (tmp_path / "x.png").write_bytes(b"old")
    assert attempt(tmp_path, skip_existing=True)["status"] == "skipped"
    assert (tmp_path / "x.png").read_bytes() == b"old"
    assert attempt(tmp_path, overwrite=True)["status"] == "done"


@pytest.mark.parametrize("name", ["x.png", "x.tif"])
def test_a_file_that_is_being_written_is_given_up(tmp_path, name):
    light = np.random.default_rng(1).uniform(0.1, 1, (1200, 1600, 3)).astype(np.float32)
    image = quorvane.tonemap(light, depth=16)
    start = time.perf_counter()
    quorvane.write(tmp_path / name, image, compression=9)
    whole = time.perf_counter() - start
    write_pfm(tmp_path / "scene.pfm", light)
    stopped = []

    def stop(share):
        if share >= 0.99 and not stopped:
            stopped.append(time.perf_counter())
        return not stopped

    with pytest.raises(quorvane.Cancelled):
        attempt(tmp_path, target=name, depth=16, compression=9, overwrite=True, progress=stop)
    assert time.perf_counter() - stopped[0] < 0.1 + whole / 4
    np.testing.assert_array_equal(quorvane.read(tmp_path / name).pixels.shape, light.shape)
    assert len(list(tmp_path.iterdir())) == 2


def test_a_result_that_is_stopped_does_not_appear(tmp_path):
    write_pfm(tmp_path / "scene.pfm", make_light(900, 1200))
    for stop in 0.0, 0.2, 0.5:
        with pytest.raises(quorvane.Cancelled):
            attempt(tmp_path, progress=lambda share: share < stop)
    for spoilt in np.inf, 1e30:  # not streamed
        light = make_light(900, 1200)
        light[700, 3] = spoilt
        write_pfm(tmp_path / "scene.pfm", light)
        with pytest.raises(ZeroDivisionError):
            attempt(tmp_path, progress=lambda share: share < 0.5 or 1 / 0)
    assert [file.name for file in tmp_path.iterdir()] == ["scene.pfm"]
    shares = []
    attempt(tmp_path, progress=shares.append)
    assert shares[0] == 0 and shares[-1] == 1 and shares == sorted(shares)
