#pragma once

#include <OpenEXR/ImfInputPart.h>

#include <string>

namespace Cli {

/// The lines, of pixels, that a file's part stores together.
int CountChunkLines(const Imf::Header& pHeader);

/// Refuses a part that has chunks with less than their pixels take: the library would make up the rest from
/// memory as it finds it. Throws cFailure in the name of pFile, and what the library throws.
void CheckExrChunks(const std::string& pFile, Imf::InputPart& pFrom);

}  // namespace Cli
