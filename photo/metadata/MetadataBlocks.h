#pragma once

#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "photo/metadata/Metadata.h"

namespace Cli {

// EXIF, IPTC and XMP as Exiv2 handles them. A build without Exiv2 has the same functions, which do nothing.

/// What a result's metadata are corrected to.
struct sCorrections {
  sPictureFacts fFacts;
  sMetadataKinds fKinds;
  std::string fThumbnail;  ///< A JPEG file, for pictures that bring a thumbnail.
  std::string fSettings;   ///< JSON; empty for none.
};

/// Whether the tool was built with Exiv2.
bool HasExiv2();
/// Empty without it.
std::string GetExiv2Version();

/// What the file holds; of formats that Exiv2 does not read, what libvips found.
std::shared_ptr<const sMetadataBlocks> ReadBlocks(const std::string& pFile, const vips::VImage& pImage,
                                                  std::vector<std::string>& pWarnings);

/// Blocks of these fields alone. A build without Exiv2 gives them to pFields instead, for libvips.
std::shared_ptr<const sMetadataBlocks> MakeBlocks(const std::vector<sExifField>& pExif, vips::VImage& pFields,
                                                  std::vector<std::string>& pWarnings);

/// The text of a field; empty for none. pBlocks may be null. pFields: what libvips knows, for builds without
/// Exiv2.
std::string GetExifText(const sMetadataBlocks* pBlocks, const vips::VImage& pFields, const std::string& pKey);

/// Whether there is a thumbnail among them. pBlocks may be null.
bool HasThumbnail(const sMetadataBlocks* pBlocks);

/// A copy, right for the result. pBlocks may be null.
std::shared_ptr<sMetadataBlocks> CorrectBlocks(const sMetadataBlocks* pBlocks,
                                               const sCorrections& pCorrections);

/// Gives libvips EXIF and XMP to write.
void HandToVips(const sMetadataBlocks& pBlocks, const vips::VImage& pTo, std::vector<std::string>& pWarnings);

/// Writes them into the file, in memory first. Throws std::runtime_error when the file cannot be written.
void WriteBlocks(const std::string& pPath, const sMetadataBlocks& pBlocks,
                 std::vector<std::string>& pWarnings);

}  // namespace Cli
