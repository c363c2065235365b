#pragma once

#include <string>
#include <vector>

namespace Tool {

/// The names in a list of files: one a line, or, with pNulSeparated, each with a NUL byte after it. Empty
/// ones are passed over. Lines may end in CR and LF, and the list may begin with a byte order mark; with NUL
/// bytes, names are taken byte for byte. pFile: the list, for messages. Throws cFailure (usage) for a NUL
/// byte where none belongs: it would cut a name short.
std::vector<std::string> ParseNames(const std::string& pFile, const std::string& pText, bool pNulSeparated);

/// Reads a list to its end; "-" is standard input. Throws cFailure, also where reading breaks off: a part of
/// a list is never used.
std::vector<std::string> ReadNames(const std::string& pFile, bool pNulSeparated);

}  // namespace Tool
