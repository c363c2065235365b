#pragma once

#include <string>
#include <vector>

namespace Photo {

// Names of files and texts in them may hold anything, also what a terminal takes for a command.

/// With control characters and marks that turn the direction of text as "\x1b" and "\u202e", and bytes that
/// are not UTF-8 as "\xff". What is printable already stays as it is.
std::string ToPrintable(const std::string& pText);
std::vector<std::string> ToPrintable(const std::vector<std::string>& pTexts);

/// JSON text of the same value, with all of those characters as "\u009b". pJson: valid UTF-8.
std::string ToPrintableJson(const std::string& pJson);

/// Whether all of it is UTF-8.
bool IsUtf8(const std::string& pText);

}  // namespace Photo
