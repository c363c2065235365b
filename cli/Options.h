#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include "engine/cColorSpace.h"
#include "export/quorvane.h"

namespace Cli {

/// How a picture is tone-mapped: the sliders and the wrap flag, in the host's record.
struct sToneOptions {
  sToneOptions();  ///< The defaults of the tool.

  tm_quorvane_settings fSettings{};
};

/// What the result is.
struct sOutputOptions {
  int fDepth = 8;
  TmEngine::eColorSpaceID fColorSpace = TmEngine::eColorSpaceID_sRGB;
};

/// The options that verbs share, each with its range, unit and default in the help. The records must outlive
/// the parsing. pDefault: what the help says of the depth where none is asked for.
void AddToneOptions(CLI::App& pVerb, sToneOptions& pOptions);
void AddDepthOption(CLI::App& pVerb, int& pDepth, const std::string& pDefault);
void AddOutputOptions(CLI::App& pVerb, sOutputOptions& pOptions);

}  // namespace Cli
