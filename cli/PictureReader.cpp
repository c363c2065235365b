#include "cli/PictureReader.h"

#include "cli/ExrReader.h"
#include "cli/FileKind.h"
#include "cli/PfmReader.h"
#include "cli/VipsReader.h"

namespace Cli {

sPicture OpenPicture(const std::string& pFile) {
  switch (TellFileKind(pFile)) {
    case eFileKind::kExr:
      return OpenExr(pFile);
    case eFileKind::kPfm:
      return OpenPfm(pFile);
    default:
      return OpenWithVips(pFile);
  }
}

sPicture ReadPicture(const std::string& pFile) {
  sPicture picture = OpenPicture(pFile);
  LoadRows(pFile, picture);
  return picture;
}

}  // namespace Cli
