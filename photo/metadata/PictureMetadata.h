#pragma once

#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "photo/metadata/Metadata.h"
#include "photo/metadata/MetadataLibrary.h"

namespace Photo {

/// The metadata of pFile, which pImage was opened from and turned upright.
std::shared_ptr<const cMetadata> ReadMetadata(const std::string& pFile, const vips::VImage& pImage);

/// The metadata of a result. Some go through libvips with the picture, the rest into the file that libvips
/// has written: first PutInto, then Complete or CompleteJxl. What had to be left out is added to pWarnings.
class cResultMetadata {
 public:
  /// pMetadata: null for none. A thumbnail is made anew, of pPicture. pIsCompleted: the file will
  /// be JPEG, PNG, TIFF or WebP, which Complete can write into.
  cResultMetadata(const cMetadata* pMetadata, const vips::VImage& pPicture, const sPictureFacts& pFacts,
                  const sMetadataKinds& pKinds, const std::string& pSettings, bool pIsCompleted,
                  std::vector<std::string>& pWarnings);

  /// Throws vips::VError.
  void PutInto(const vips::VImage& pTo) const;
  /// Throws std::runtime_error when the file cannot be written.
  void Complete(const std::string& pPath, std::vector<std::string>& pWarnings) const;
  /// For the JPEG XL file that libvips has written without them. Throws as Complete does.
  void CompleteJxl(const std::string& pPath) const;

 private:
  sMetadataBlocks fBlocks;
  sCorrections fCorrections;
  bool fIsUpright;  ///< Other metadata than the tool's own are there, and may state another orientation.
  bool fIsCompleted;
};

/// The settings that the tool wrote into a result; "" for none, or for a file that is no picture.
std::string ReadStoredSettings(const std::string& pFile);

}  // namespace Photo
