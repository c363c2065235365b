#pragma once

#include "engine/ToneMapImage.h"
#include "export/quorvane.h"

/// The engine's values of the host's record (see engine/ToneSliders.h). Stores the mapped White Clip, a
/// twentieth, back into the record: hosts rely on that change.
TmEngine::sToneParameters MapSettings(tm_quorvane_settings& pSettings);
