#pragma once

#include "photo/Presets.h"

namespace Tool {

/// $XDG_CONFIG_HOME/quorvane/presets, by default ~/.config/quorvane/presets, and share/quorvane/presets
/// beside the folder of the running program.
Photo::sPresetFolders GetPresetFolders();

}  // namespace Tool
