#include "photo/metadata/MetadataLibrary.h"

// For builds without Exiv2.

namespace Photo {

const cMetadataLibrary& GetMetadataLibrary() {
  return GetPlainLibrary();
}

bool HasExiv2() {
  return false;
}

std::string GetExiv2Version() {
  return "";
}

}  // namespace Photo
