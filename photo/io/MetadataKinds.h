#pragma once

namespace Photo {

/// Which of a picture's metadata its result gets. Comments and resolution come with all of them only.
struct sMetadataKinds {
  bool fExif = true;  ///< GPS included.
  bool fXmp = true;
  bool fIptc = true;

  bool AreAll() const { return fExif && fXmp && fIptc; }
};

}  // namespace Photo
