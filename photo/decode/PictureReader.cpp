#include "photo/decode/PictureReader.h"

#include "photo/base/Failure.h"
#include "photo/decode/FileKind.h"
#include "photo/decode/PfmReader.h"
#include "photo/decode/VipsReader.h"
#include "photo/decode/exr/ExrReader.h"

namespace Cli {

sPicture OpenPicture(const std::string& pFile, const sPictureChoice& pChoice) {
  const eFileKind kind = TellFileKind(pFile);
  if (kind != eFileKind::kVips && pChoice.fPage > 1) {
    throw cFailure(eFailure::kCannotRead, pFile, "has no pages; leave --page out");
  }
  if (kind == eFileKind::kExr) return OpenExr(pFile, pChoice);
  if (!pChoice.IsDefault()) {
    throw cFailure(eFailure::kCannotRead, pFile, "is not OpenEXR, whose parts --part and --layer choose");
  }
  return kind == eFileKind::kPfm ? OpenPfm(pFile) : OpenWithVips(pFile, pChoice);
}

sPicture ReadPicture(const std::string& pFile, const sPictureChoice& pChoice) {
  sPicture picture = OpenPicture(pFile, pChoice);
  LoadRows(pFile, picture);
  return picture;
}

}  // namespace Cli
