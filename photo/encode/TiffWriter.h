#pragma once

#include <string>
#include <vips/vips8>

namespace Photo {

/// Writes an 8- or 16-bit RGB picture, which may have alpha as its fourth band, as TIFF with deflate and
/// horizontal prediction, and with its profile, XMP, IPTC and description. pCompression: 0 (none) to 9.
/// pIsPremultiplied: alpha is stated as associated. Strips are handed over whole: that way the TIFF library
/// packs them several times as fast as row by row. Throws vips::VError.
void WriteTiff(const vips::VImage& pImage, int pCompression, bool pIsPremultiplied, const std::string& pPath);

}  // namespace Photo
