#pragma once

#include <string>
#include <vips/vips8>

#include "photo/decode/tiff/TiffDirectories.h"

namespace Photo {

/// Whether the page's samples are of a kind that libvips does not read and OpenTiffSamples does: floats of 16
/// and 64 bits, and integers of 9 to 15.
bool AreOddSamples(const sTiffDirectory& pPage);

/// Opens a page of such samples, counted from 0: floats become floats of 32 bits, integers those of 16, full
/// samples full ones. Rows are read when they are asked for: each once, from top to bottom, unless pIsRandom,
/// when all are read first. Throws vips::VError.
vips::VImage OpenTiffSamples(const std::string& pFile, int pPage, bool pIsRandom);

/// The name of the field that says how many bits a sample has in the file.
inline constexpr char kStoredBits[] = "quorvane-stored-bits";

}  // namespace Photo
