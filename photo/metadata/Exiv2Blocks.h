#pragma once

#include <exception>
#include <exiv2/exiv2.hpp>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "photo/metadata/MetadataBlocks.h"

// For the parts of cMetadataLibrary's implementation by Exiv2 alone.

namespace Photo {

/// The blocks as Exiv2 has them.
struct sParsed {
  Exiv2::ExifData fExif;
  Exiv2::IptcData fIptc;
  Exiv2::XmpData fXmp;

  bool IsEmpty() const { return fExif.empty() && fIptc.empty() && fXmp.empty(); }
};

/// Collects what Exiv2 reports while one of these lives, in place of its handler, which comes back after.
/// Exiv2 has one handler and one XMP toolkit for all threads, so these take turns.
class cFaultScope {
 public:
  cFaultScope();
  cFaultScope(const cFaultScope&) = delete;
  cFaultScope& operator=(const cFaultScope&) = delete;
  ~cFaultScope();

  /// What was wrong first, on one line; it is forgotten then. Empty for nothing.
  std::string Take();

 private:
  static void Note(int pLevel, const char* pText);

  inline static std::recursive_mutex gMutex;
  inline static std::string gFault;

  std::lock_guard<std::recursive_mutex> fLock;
  Exiv2::LogMsg::Handler fHandler;
  Exiv2::LogMsg::Level fLevel;
};

/// What pWork throws, or Exiv2 reports meanwhile; empty when all went well.
template <class tWork>
std::string FindFault(const tWork& pWork) {
  cFaultScope scope;
  try {
    pWork();
    return scope.Take();
  } catch (const std::exception& error) {
    scope.Take();
    const std::string text = error.what();
    return text.empty() ? "no reason given" : text;
  }
}

/// Adds "pWhat (pFault)", unless there was no fault.
void WarnOfFault(const std::string& pWhat, const std::string& pFault, std::vector<std::string>& pWarnings);

const Exiv2::byte* ToBytes(std::string_view pText);

/// What the file holds, if it is of a format whose files Exiv2 reads; or else what the blocks hold.
sParsed ParseFile(const std::string& pFile, const sMetadataBlocks& pFound,
                  std::vector<std::string>& pWarnings);

/// From blocks that PackBlocks has made.
sParsed ParseBlocks(const sMetadataBlocks& pBlocks);

/// pIsExifShort: EXIF is cut to the 64 KB of a JPEG's segment. What cannot be packed is left out.
void PackBlocks(const sParsed& pParsed, bool pIsExifShort, sMetadataBlocks& pTo,
                std::vector<std::string>& pWarnings);

}  // namespace Photo
