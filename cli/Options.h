#pragma once

#include <string>

#include "photo/encode/OutputOptions.h"
#include "photo/picture/PictureChoice.h"

namespace CLI {
class App;
}

namespace Tool {

/// The options that verbs share, each with its range, unit and default in the help. The records must outlive
/// the parsing. pDefault: what the help says of the depth where none is asked for.
void AddDepthOption(CLI::App& pVerb, int& pDepth, const std::string& pDefault);
void AddFileOptions(CLI::App& pVerb, Photo::sFileOptions& pOptions);
void AddChoiceOptions(CLI::App& pVerb, Photo::sPictureChoice& pChoice);
/// Which page of a file that holds several.
void AddPageOption(CLI::App& pVerb, Photo::sPictureChoice& pChoice);
void AddOutputOptions(CLI::App& pVerb, Photo::sOutputOptions& pOptions);

}  // namespace Tool
