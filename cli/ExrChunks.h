#pragma once

#include <OpenEXR/ImfInputFile.h>

#include <string>

namespace Cli {

/// Refuses a file that has chunks with less than their pixels take: the library would make up the rest from
/// memory as it finds it. Throws cFailure in the name of pFile, and what the library throws.
void CheckExrChunks(const std::string& pFile, Imf::InputFile& pFrom);

}  // namespace Cli
