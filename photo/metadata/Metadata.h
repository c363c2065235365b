#pragma once

#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "photo/io/MetadataKinds.h"

namespace Cli {

struct sMetadataBlocks;  // see MetadataBlocks.h

/// A field of EXIF under the name that Exiv2 gives it ("Exif.Photo.FNumber"), and its value as text: a
/// fraction is "28/5", further numbers follow after spaces.
struct sExifField {
  std::string fKey;
  std::string fText;
};

/// What metadata have to say of the picture that they are written with.
struct sPictureFacts {
  int fWidth = 0;
  int fHeight = 0;
  int fExifColorSpace = 0;         ///< 1 sRGB, 65535 another, 0 whatever the input's metadata say.
  const char* fInteropIndex = "";  ///< Of EXIF: "R98" sRGB, "R03" Adobe RGB (1998), "" another.
};

/// What a file tells of its picture besides the pixels: EXIF, XMP, IPTC, comments and resolution. Not the
/// colour profile, which belongs to the samples. What is damaged is left out, with a warning.
class cMetadata {
 public:
  cMetadata() = default;  ///< Nothing.
  /// From a picture that was turned upright: whatever speaks of its orientation says "upright" from now on.
  explicit cMetadata(const vips::VImage& pFrom);
  /// From the header of a file that has no EXIF, and its pixels a millimetre (0: not known).
  cMetadata(const std::vector<sExifField>& pExif, double pXResolution, double pYResolution);

  /// The text of a field of EXIF; empty for none.
  std::string GetExif(const std::string& pKey) const;

  /// What was left out of them.
  const std::vector<std::string>& GetWarnings() const { return fWarnings; }
  /// As read; empty for none.
  std::string GetXmpPacket() const;

  /// Leaves only these to be written; without XMP the settings are left out as well.
  void Keep(const sMetadataKinds& pKinds) { fKinds = pKinds; }
  /// Adds the tool's own settings, which a picture's XMP carries. They replace those of the input.
  void PutSettings(const std::string& pJson) { fSettings = pJson; }

  /// What libvips writes with pTo: everything, or only what Exiv2 does not put into the file later
  /// (pIsCompleted). A thumbnail is made anew, of pTo. Throws vips::VError.
  void PutInto(const vips::VImage& pTo, const sPictureFacts& pFacts, bool pIsCompleted,
               std::vector<std::string>& pWarnings) const;
  /// Puts in by Exiv2 what libvips leaves out of JPEG, PNG, TIFF and WebP files. Throws std::runtime_error
  /// when the file cannot be written.
  void Complete(const std::string& pPath, const vips::VImage& pPicture, const sPictureFacts& pFacts,
                std::vector<std::string>& pWarnings) const;

 private:
  friend std::shared_ptr<const cMetadata> ReadMetadata(const std::string& pFile, const vips::VImage& pImage);
  std::shared_ptr<sMetadataBlocks> Correct(const vips::VImage& pPicture, const sPictureFacts& pFacts) const;

  vips::VImage fFields;  ///< A picture of one pixel that carries what libvips knows; null for nothing.
  bool fHasThumbnail = false;
  std::shared_ptr<const sMetadataBlocks> fBlocks;  ///< What Exiv2 knows; null for nothing.
  sMetadataKinds fKinds;
  std::string fSettings;
  std::vector<std::string> fWarnings;  ///< Of reading.
};

/// Puts what PutInto gave to pPicture into the JPEG XL file that libvips has written without it. Throws
/// std::runtime_error when the file cannot be written.
void CompleteJxl(const std::string& pPath, const vips::VImage& pPicture);

/// The metadata of pFile, which pImage was opened from and turned upright.
std::shared_ptr<const cMetadata> ReadMetadata(const std::string& pFile, const vips::VImage& pImage);

/// The settings that the tool wrote into a result; "" for none, or for a file that is no picture.
std::string ReadStoredSettings(const std::string& pFile);

}  // namespace Cli
