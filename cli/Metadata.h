#pragma once

#include <vips/vips8>

namespace Cli {

/// What a file tells of its picture besides the pixels: EXIF, XMP, IPTC, comments and resolution. Not the
/// colour profile, which belongs to the samples.
class cMetadata {
 public:
  cMetadata() = default;  ///< Nothing.
  /// From a picture that was turned upright: whatever speaks of its orientation says "upright" from now on.
  explicit cMetadata(const vips::VImage& pFrom);

  /// Where nothing is held, pTo stays as it is. A thumbnail is made anew, of pTo. Throws vips::VError.
  void PutInto(const vips::VImage& pTo) const;
  /// Takes back what says that the samples are sRGB; for pictures that were converted.
  void ForgetColorSpace();

 private:
  vips::VImage fFields;  ///< A picture of one pixel that carries them; null for nothing.
  bool fHasThumbnail = false;
};

}  // namespace Cli
