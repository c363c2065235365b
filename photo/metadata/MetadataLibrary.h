#pragma once

#include <map>
#include <string>
#include <vector>

#include "photo/io/MetadataKinds.h"
#include "photo/metadata/MetadataBlocks.h"

namespace Photo {

/// A field of EXIF under the name that Exiv2 gives it ("Exif.Photo.FNumber"), and its value as text: a
/// fraction is "28/5", further numbers follow after spaces.
struct sExifField {
  std::string fKey;
  std::string fText;
};
using tExifTexts = std::map<std::string, std::string>;

/// What metadata state about the picture that they are written with.
struct sPictureFacts {
  int fWidth = 0;
  int fHeight = 0;
  int fExifColorSpace = 0;         ///< 1 sRGB, 65535 another, 0 whatever the input's metadata say.
  const char* fInteropIndex = "";  ///< EXIF's: "R98" sRGB, "R03" Adobe RGB (1998), "" another.
};

/// What a result's metadata are corrected to.
struct sCorrections {
  sPictureFacts fFacts;
  sMetadataKinds fKinds;   ///< Only these are kept.
  std::string fThumbnail;  ///< A JPEG file, for pictures that bring a thumbnail.
  std::string fSettings;   ///< The tool's own, as JSON, for XMP, in place of those of the input.
};

/// Reads, corrects and writes blocks. Nothing throws for damaged ones; what is left out becomes a warning.
class cMetadataLibrary {
 public:
  virtual ~cMetadataLibrary() = default;

  /// pFound: what libvips found. pFile: the file that it is from, to look for more; empty when that is all.
  virtual sMetadataBlocks Read(const std::string& pFile, const sMetadataBlocks& pFound,
                               std::vector<std::string>& pWarnings) const = 0;
  /// Blocks of these fields alone.
  virtual sMetadataBlocks Make(const std::vector<sExifField>& pExif,
                               std::vector<std::string>& pWarnings) const = 0;
  /// The fields of EXIF but the notes of makers, by their names.
  virtual tExifTexts ListExif(const sMetadataBlocks& pBlocks) const = 0;
  /// The blocks as they are right for the result, for libvips to write. EXIF is cut to the 64 KB of a JPEG's
  /// segment, the least important first.
  virtual sMetadataBlocks Correct(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                                  std::vector<std::string>& pWarnings) const = 0;
  /// Whether it writes JPEG, PNG, TIFF and WebP files; libvips writes blocks into them otherwise.
  virtual bool WritesFiles() const = 0;
  /// Corrects blocks and writes them into such a file, in memory first. Throws std::runtime_error when the
  /// file cannot be written.
  virtual void Write(const std::string& pPath, const sMetadataBlocks& pBlocks,
                     const sCorrections& pCorrections, std::vector<std::string>& pWarnings) const = 0;
};

/// Exiv2, in builds with it, or else what GetPlainLibrary gives.
const cMetadataLibrary& GetMetadataLibrary();

/// Passes blocks on as libvips reads and writes them, and corrects XMP.
const cMetadataLibrary& GetPlainLibrary();

/// Whether the build has Exiv2.
bool HasExiv2();
/// Empty without it.
std::string GetExiv2Version();

}  // namespace Photo
