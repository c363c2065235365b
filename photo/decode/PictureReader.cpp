#include "photo/decode/PictureReader.h"

#include "photo/base/Failure.h"
#include "photo/decode/FileKind.h"
#include "photo/decode/PfmReader.h"
#include "photo/decode/VipsReader.h"
#include "photo/decode/exr/ExrReader.h"

namespace Photo {

sOpenedPicture OpenPicture(const std::string& pFile, const sPictureChoice& pChoice,
                           const tMemoryGate& pGate) {
  const eFileKind kind = DetectFileKind(pFile);
  if (kind != eFileKind::kVips && pChoice.fPage > 1) {
    throw cFailure(eFailure::kCannotRead, "has no pages; leave {page} out");
  }
  if (kind == eFileKind::kExr) return OpenExr(pFile, pChoice, pGate);
  if (!pChoice.IsDefault()) {
    throw cFailure(eFailure::kCannotRead, "is not OpenEXR, whose parts {part} and {layer} choose");
  }
  return kind == eFileKind::kPfm ? OpenPfm(pFile, pGate) : OpenWithVips(pFile, pChoice, pGate);
}

sPicture ReadPicture(const std::string& pFile, const sPictureChoice& pChoice, const tMemoryGate& pGate) {
  return LoadPicture(OpenPicture(pFile, pChoice, pGate));
}

}  // namespace Photo
