"""A renderer that is used again: the bytes of new ones, at the cost of what changed."""

import itertools

import numpy as np
import pytest
import quorvane
from conftest import make_light

STAGES = ["preparation", "phase1", "phase2", "final_rendering"]
CHANGES = [  # and the first stage that runs again
    ({"contrast": -40}, "final_rendering"),
    ({"saturation": 60}, "final_rendering"),
    ({"saturation": 0, "contrast": -40}, "final_rendering"),
    ({"depth": 16}, "final_rendering"),
    ({"rendering": "engine"}, "final_rendering"),
    ({"strength": 20}, "phase2"),
    ({"tone_compression": 50}, "phase2"),
    ({"white_clip": 60}, "phase2"),
    ({"black_clip": 9}, "phase2"),
    ({"lighting": 8}, "phase1"),
    ({"microcontrast": -7}, "phase1"),
]


@pytest.mark.parametrize("dtype", [np.float32, np.uint16])
def test_a_change_runs_what_depends_on_it(dtype):
    image = make_light(300, 400)
    if dtype == np.uint16:
        image = (np.clip(image, 0, 1) * 65535).astype(dtype)
    renderer = quorvane.Renderer(image)
    renderer.render()
    settings = {}
    for change, first in CHANGES:
        before = renderer.stage_seconds
        settings.update(change)
        result = renderer.render(**settings)
        after = renderer.stage_seconds
        assert [stage for stage in STAGES if after[stage] != before[stage]] == STAGES[STAGES.index(first):]
        np.testing.assert_array_equal(result, quorvane.tonemap(image, **settings))
    np.testing.assert_array_equal(renderer.render(), quorvane.tonemap(image))
    np.testing.assert_array_equal(renderer.render(wrap=True), quorvane.tonemap(image, wrap=True))
    np.testing.assert_array_equal(renderer.render(wrap=False), quorvane.tonemap(image))


def test_pictures_that_are_flat_for_some_settings_are_rendered_as_new_ones():
    for shape, levels in ((1, 1), (1.0,)), ((1, 2), (0.0, 1.0)), ((2, 2), (1e-12, 1e12)), ((9, 9), (0.2, 0.200001)):
        image = np.full((*shape, 3), levels[0], np.float32)
        image[:, shape[1] // 2:] = levels[-1]
        renderer = quorvane.Renderer(image)
        for lighting, microcontrast, strength in itertools.product((-14, 10), (-11, 10), (-200, 0, 150)):
            settings = {"lighting": lighting, "microcontrast": microcontrast, "strength": strength, "depth": 16}
            np.testing.assert_array_equal(renderer.render(**settings), quorvane.tonemap(image, **settings))


@pytest.mark.parametrize("spoil", [False, True])
def test_a_renderer_goes_on_after_it_was_cancelled(spoil):
    image = make_light(2000, 2400)
    if spoil:
        image[300, 300] = np.inf
    renderer = quorvane.Renderer(image)
    cancelled = 0
    for share in 0.0, 0.001, 0.1, 0.2, 0.35, 0.35:
        try:
            renderer.render(strength=100 * share, lighting=-share, progress=lambda done: done < share)
        except quorvane.Cancelled:
            cancelled += 1
    assert cancelled > 3  # a quick call may be over before it is asked
    np.testing.assert_array_equal(renderer.render(strength=33), quorvane.tonemap(image, strength=33))
