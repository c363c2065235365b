#pragma once

#include <string>
#include <vector>

namespace Photo {

/// What libvips knows by a name and no block holds: comments of PNG, and EXIF where nothing else reads it.
struct sVipsField {
  std::string fName;
  std::string fContent;
  bool fIsText = true;  ///< Bytes otherwise.
};

/// What a file holds besides its pixels, as plain blocks; empty for what it does not hold. Not the colour
/// profile, which belongs to the samples.
struct sMetadataBlocks {
  std::string fExif;                ///< From its byte order mark on.
  std::string fXmp;                 ///< A packet.
  std::string fIptc;                ///< Data sets; without Exiv2 in what libvips finds around them.
  bool fHasThumbnail = false;       ///< The file brings one, which is not among the blocks.
  double fXResolution = 1.0;        ///< Pixels a millimetre, across;
  double fYResolution = 1.0;        ///< and down. Both are 1 where they are not known.
  std::vector<sVipsField> fFields;  ///< In the order in which they are written.
};

}  // namespace Photo
