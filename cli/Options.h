#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include "cli/OutputFormat.h"
#include "engine/cColorSpace.h"

namespace Cli {

/// What the result is, besides its look.
struct sOutputOptions {
  int fDepth = 8;
  TmEngine::eColorSpaceID fColorSpace = TmEngine::eColorSpaceID_sRGB;
  sFileOptions fFile;
};

/// The options that verbs share, each with its range, unit and default in the help. The records must outlive
/// the parsing. pDefault: what the help says of the depth where none is asked for.
void AddDepthOption(CLI::App& pVerb, int& pDepth, const std::string& pDefault);
void AddFileOptions(CLI::App& pVerb, sFileOptions& pOptions);
void AddOutputOptions(CLI::App& pVerb, sOutputOptions& pOptions);

}  // namespace Cli
