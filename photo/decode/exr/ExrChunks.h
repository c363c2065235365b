#pragma once

#include <OpenEXR/ImfInputPart.h>

namespace Photo {

/// The lines, of pixels, that a file's part stores together.
int CountChunkLines(const Imf::Header& pHeader);

/// Refuses a part that has chunks with less than their pixels take: the library would make up the rest from
/// memory as it finds it. (OpenEXRCore knows sizes without reading the data, but does not open some files
/// that this library reads.) Throws cFailure, and what the library throws.
void CheckExrChunks(Imf::InputPart& pFrom);

}  // namespace Photo
