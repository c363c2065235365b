#!/usr/bin/python3
"""Figures of scripts/quality on pictures whose answer is known."""
import math
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))
from quality import appearance, color, filters, halo, noise, pictures, report, series, tmqi  # noqa: E402

draw = np.random.default_rng(1)


def colours(size=(64, 64)):
    return draw.uniform(0.05, 0.8, (*size, 3))


def from_oklab(lab):
    return (lab @ np.linalg.inv(color.OPPONENTS).T) ** 3 @ np.linalg.inv(color.CONES).T


def landscape(size=(352, 352), decades=3.0):
    """Grey light of many sizes of structures over so many decades."""
    plane = sum(filters.gaussian(draw.standard_normal(size), sigma) * sigma for sigma in (1, 4, 16, 48))
    plane = (plane - plane.min()) / np.ptp(plane)
    return np.repeat((10 ** (decades * (plane - 1)))[..., None], 3, axis=2)


class Colour(unittest.TestCase):
    def test_codes_and_light_are_each_others_inverse(self):
        codes = np.linspace(0, 1, 1001)
        np.testing.assert_allclose(color.encode(color.decode(codes)), codes, atol=1e-6)
        self.assertAlmostEqual(float(color.decode(0.5)), 0.2140411, 6)
        self.assertAlmostEqual(float(color.lightness(np.full((1, 1, 3), 0.5))), 53.389, 2)

    def test_oklab_of_known_colours(self):
        np.testing.assert_allclose(color.oklab(np.array([[1, 1, 1], [1, 0, 0], [0, 0, 1]])),
                                   [[1, 0, 0], [0.62796, 0.22486, 0.12585], [0.45201, -0.03246, -0.31153]], atol=2e-4)

    def test_same_colours_at_any_exposure_have_no_error(self):
        light = colours()
        found = appearance.fidelity(light * 300, color.encode(light))
        self.assertLess(found["hue_95"], 1e-3)
        self.assertAlmostEqual(found["purity"], 1, 5)
        self.assertIsNone(found["clipped_hue"])

    def test_finds_turned_hues_and_doubled_purity(self):
        lab = np.zeros((40, 40, 3))
        lab[..., 0] = 0.7
        angle, chroma = draw.uniform(-np.pi, np.pi, (40, 40)), draw.uniform(0.045, 0.05, (40, 40))
        lab[..., 1], lab[..., 2] = chroma * np.cos(angle), chroma * np.sin(angle)
        turned = lab.copy()
        turned[..., 1], turned[..., 2] = 2 * chroma * np.cos(angle + 0.2), 2 * chroma * np.sin(angle + 0.2)
        found = appearance.fidelity(from_oklab(lab), color.encode(from_oklab(turned)))
        self.assertAlmostEqual(found["hue"], np.degrees(0.2), 3)
        self.assertAlmostEqual(found["purity"], 2, 3)

    def test_clipped_pixels_count_apart(self):
        light = np.tile([0.9, 0.3, 0.1], (10, 10, 1)).astype(float)
        exposed = np.where(np.arange(10)[:, None, None] < 3, 3, 0.5) * light
        found = appearance.fidelity(light, pictures.quantised(color.encode(exposed), 16))
        self.assertLess(found["hue"], 0.01)
        self.assertGreater(found["clipped_hue"], 5)

    def test_counts_only_colours_that_have_a_hue(self):
        red, turned = [0.5, 0.3, 0.3], [0.3, 0.5, 0.3]
        for light, coded, counts in ((red, turned, True), ([0.5, 0.48, 0.48], turned, False),
                                     (red, [0.5, 0.505, 0.5], False), ([0.5, -0.1, 0.3], turned, False),
                                     (red, [0.3, 0.5, 0.015], True), (red, [0.3, 0.5, 0.005], False),
                                     (red, [0.3, 0.99, 0.1], True), (red, [0.3, 0.998, 0.1], False)):
            found = appearance.fidelity(np.tile(light, (8, 8, 1)), np.tile(coded, (8, 8, 1)))
            self.assertEqual(found["hue"] is not None, counts, (light, coded))

    def test_shares_of_pixels_at_the_ends(self):
        coded = np.full((10, 10, 3), 0.5)
        coded[0], coded[1, :, 0], coded[2, :5] = 1, 1, 0
        self.assertEqual(appearance.clipping(coded), {"white_any": 20, "white_all": 10, "black_all": 5})
        shares = appearance.light(coded)
        self.assertEqual((shares["dark"], shares["light"]), (5, 10))


def plain_s(hdr, ldr):
    """S by the paper's formulas, window by window."""
    x, y = np.mgrid[-5:6, -5:6]
    window = np.exp(-(x * x + y * y) / (2 * 1.5 ** 2))
    window /= window.sum()
    hdr = (hdr - hdr.min()) / np.ptp(hdr) * 4294967295.0
    product = 1
    for weight, f in ((0.0448, 16), (0.2856, 8), (0.3001, 4), (0.2363, 2), (0.1333, 1)):
        threshold = 128 / (1.4 * 260 * (0.0192 + 0.114 * f) * np.exp(-(0.114 * f) ** 1.1))
        values = []
        for row in range(hdr.shape[0] - 10):
            for column in range(hdr.shape[1] - 10):
                a, b = (plane[row:row + 11, column:column + 11] for plane in (hdr, ldr))
                a, b = a - (window * a).sum(), b - (window * b).sum()
                s_a, s_b = math.sqrt((window * a * a).sum()), math.sqrt((window * b * b).sum())
                p_a, p_b = (0.5 + 0.5 * math.erf((s - threshold) * 3 / threshold / math.sqrt(2)) for s in (s_a, s_b))
                values.append((2 * p_a * p_b + 0.01) / (p_a ** 2 + p_b ** 2 + 0.01) *
                              ((window * a * b).sum() + 10) / (s_a * s_b + 10))
        product *= np.mean(values) ** weight
        hdr, ldr = (p[:p.shape[0] // 2 * 2, :p.shape[1] // 2 * 2] for p in (hdr, ldr))
        hdr, ldr = ((p[::2, ::2] + p[1::2, ::2] + p[::2, 1::2] + p[1::2, 1::2]) / 4 for p in (hdr, ldr))
    return product


class Tmqi(unittest.TestCase):
    def test_a_good_mapping_beats_poor_ones(self):
        light = landscape()
        good = color.encode(light ** 0.4)
        q, s, n = tmqi.tmqi(light, good)
        for poor in (np.clip(light, 0, 0.01) * 100, color.encode(light * 0.05), draw.permuted(good, axis=0)):
            self.assertLess(tmqi.tmqi(light, poor)[0], q)
        self.assertTrue(0 < s <= 1 and 0 < n <= 1 and q > 0.8, (q, s, n))

    def test_s_is_that_of_the_plain_formulas(self):
        light = landscape((180, 182), 8)[..., 0]  # its darkest parts are below what is seen
        ldr = 40 + 12 * light ** 0.2 + draw.standard_normal(light.shape)
        self.assertAlmostEqual(tmqi.fidelity(light, ldr), plain_s(light, ldr), 6)

    def test_exposure_of_the_scene_does_not_count(self):
        light = landscape()
        good = color.encode(light ** 0.4)
        np.testing.assert_allclose(tmqi.tmqi(light * 1000, good), tmqi.tmqi(light, good), rtol=1e-9)

    def test_flat_grey_has_no_structure_and_is_not_natural(self):
        q, s, n = tmqi.tmqi(landscape(), np.full((352, 352, 3), 0.4547))
        self.assertLess(s, 0.05)
        self.assertLess(n, 1e-9)

    def test_naturalness_has_its_peak_where_photographs_have_theirs(self):
        best = 64.29 * 3.4 / 12.5
        blocks = draw.standard_normal((330, 330)).reshape(30, 11, 30, 11)
        blocks = (blocks - blocks.mean(axis=(1, 3), keepdims=True)) / blocks.std(axis=(1, 3), ddof=1, keepdims=True)
        ldr = (115.94 + best * blocks).reshape(330, 330)
        self.assertAlmostEqual(tmqi.naturalness(ldr), 1, 6)
        self.assertAlmostEqual(tmqi.naturalness(ldr + 27.99), np.exp(-0.5), 6)

    def test_a_picture_too_small_is_refused(self):
        with self.assertRaises(ValueError):
            tmqi.tmqi(np.ones((170, 400, 3)), np.ones((170, 400, 3)))


class Halo(unittest.TestCase):
    def test_reversed_slopes(self):
        light = landscape()
        good = color.encode(light ** 0.4)
        self.assertEqual(halo.reversed_slopes(light, good), 0)
        negative = good.copy()
        negative[:, :176] = 1 - negative[:, :176]
        self.assertTrue(35 < halo.reversed_slopes(light, negative) < 65)

    def test_overshoot_drawn_by_hand(self):
        size = halo.EDGE_SIZE
        tones = np.where(np.arange(size[1]) < 512, 30.0, 70.0)
        tones[480:512] -= 4
        tones[512:530] += 6

        def coded(tone):
            return color.encode(np.repeat((((tone + 16) / 116) ** 3)[None, :, None], size[0], 0).repeat(3, 2))
        np.testing.assert_allclose(halo.overshoot(coded(tones)), (4, 6), atol=1e-6)
        tones[480:530] = np.where(np.arange(480, 530) < 512, 30, 70)
        np.testing.assert_allclose(halo.overshoot(coded(tones)), (0, 0), atol=1e-6)

    def test_edge_spans_five_decades_and_its_stops(self):
        light = halo.edge_picture(3)[..., 0]
        self.assertAlmostEqual(np.log10(light.max() / light.min()), 5, 4)
        self.assertAlmostEqual(light[256, -1] / light[256, 0], 8, 4)


class Noise(unittest.TestCase):
    def test_gain_of_shadows(self):
        grain = 0.02 * draw.standard_normal((200, 300, 1))
        is_dark = np.arange(300)[None, :, None] < 75
        tones = np.where(is_dark, -6.0, -1.0)
        light = np.repeat(2.0 ** (tones + grain), 3, axis=2)
        for factor in (0.5, 1, 2):
            coded = color.encode(np.repeat(2.0 ** (tones + np.where(is_dark, factor, 0.1) * grain), 3, axis=2))
            self.assertAlmostEqual(noise.gain(light, coded), factor, 2)
        self.assertIsNone(noise.gain(np.ones((40, 40, 3)), np.ones((40, 40, 3))))


class Series(unittest.TestCase):
    def test_seam_is_what_the_scene_has_not(self):
        ramp = np.repeat(np.linspace(0, 0.5, 100)[None, :, None], 10, 0).repeat(3, 2)
        self.assertAlmostEqual(series.seam(ramp, np.roll(ramp, 50, axis=1)), 0)
        self.assertAlmostEqual(series.seam(ramp, np.full_like(ramp, 0.2)), 127.5)

    def test_preview_is_compared_in_light(self):
        whole = np.full((200, 300, 3), 0.2)
        whole[::2] = 0.9
        small = np.full((100, 150, 3), color.encode(color.decode(np.array([0.2, 0.9])).mean()))
        self.assertLess(series.preview(small, whole)["preview_99"], 1e-3)
        self.assertAlmostEqual(series.preview(small + 2 / 255, whole)["preview_smooth"], 2, 3)

    def test_look_counts_where_the_scene_stayed(self):
        first, second = np.full((20, 20, 3), 0.2), np.full((20, 20, 3), 0.2)
        second[:5] = 0.9
        found = series.same_look([first, second], [color.encode(first), color.encode(second)])
        self.assertEqual(found["same_look"], 0)
        found = series.same_look([first, second], [color.encode(first), color.encode(1.5 * second)])
        self.assertGreater(found["same_look"], 5)


class Filters(unittest.TestCase):
    def test_reduction_keeps_the_mean_at_any_ratio(self):
        picture = draw.uniform(size=(101, 77, 3))
        np.testing.assert_allclose(filters.reduce_to(picture, 40, 31).mean(), picture.mean(), rtol=1e-9)
        np.testing.assert_allclose(filters.reduce_to(picture[:100, :75], 20, 15),
                                   filters.reduce_by(picture[:100, :75], 5), rtol=1e-9)

    def test_gaussian_has_its_deviation(self):
        point = np.zeros((61, 61))
        point[30, 30] = 1
        blurred = filters.gaussian(point, 4)
        self.assertAlmostEqual(blurred.sum(), 1, 6)
        self.assertAlmostEqual(float((blurred * (np.arange(61) - 30) ** 2).sum()), 16, 0)


class Files(unittest.TestCase):
    def test_pfm_and_both_forms_of_rgbe(self):
        light = draw.uniform(0, 50, (5, 40, 3)).astype(np.float32)
        top = np.exp2(np.ceil(np.log2(light.max(axis=2, keepdims=True) * 1.001)))
        rgbe = np.concatenate([np.floor(light / top * 256), np.log2(top) + 128], axis=2).astype(np.uint8)
        packed = b"".join(b"\2\2\0\x28" + b"".join(b"\x28" + row[:, k].tobytes() for k in range(4)) for row in rgbe)
        runs = b"".join(b"\2\2\0\x28" + b"".join(bytes([168, row[0, k]]) for k in range(4)) for row in rgbe)
        head = b"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 5 +X 40\n"
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "picture"
            pictures.write_pfm(path, light)
            np.testing.assert_array_equal(pictures.read_pfm(path), light)
            for pixels, expected in ((rgbe.tobytes(), light), (packed, light), (runs, light[:, :1].repeat(40, 1))):
                path.write_bytes(head + pixels)
                np.testing.assert_allclose(pictures.read_hdr(path), expected, atol=0.5)


class Report(unittest.TestCase):
    def test_only_the_table_between_the_markers_changes(self):
        results = {"tool": {"pictures": {"a": {"tmqi": 0.8}, "b": {"tmqi": 0.9}, "c": {"tmqi": None}},
                            "edges": {1: (0.5, 1.25), 2: (3.0, 0.0)}}}
        with tempfile.TemporaryDirectory() as folder:
            page = Path(folder) / "page.md"
            page.write_text(f"before\n{report.BEGIN}\nold\n{report.END}\nafter\n")
            report.write_docs(page, results)
            text = page.read_text()
            page.write_text("no markers")
            self.assertRaises(ValueError, report.write_docs, page, results)
        self.assertTrue(text.startswith("before\n") and text.endswith("\nafter\n") and "old" not in text)
        self.assertIn("| tool | 0.850 |", text)
        self.assertIn(" 3.0 |", text)


if __name__ == "__main__":
    unittest.main()
