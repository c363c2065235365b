#pragma once

#include "engine/ToneMapImage.h"
#include "export/quorvane.h"

/// Maps the host's sliders to engine values, in double rounded once, and stores the mapped White Clip (a
/// twentieth) back into the record: hosts rely on that change.
TmEngine::sToneParameters MapSettings(tm_quorvane_settings& pSettings);
