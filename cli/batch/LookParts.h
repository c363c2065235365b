#pragma once

#include <string>

#include "photo/SetLook.h"

namespace Tool {

/// What a worker answers of a picture, on a line.
std::string LookPartToText(const Photo::sLookPart& pPart);

/// Throws std::exception for what LookPartToText did not make.
Photo::sLookPart LookPartFromText(const std::string& pText);

}  // namespace Tool
