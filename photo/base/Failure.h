#pragma once

#include <exception>
#include <string>

#include "photo/base/ParameterNames.h"
#include "photo/base/ShortText.h"

namespace Photo {

/// Why work ended. The numbers are the "code" of a job's record.
enum class eFailure : int {
  kSomePictures = 1,  ///< One or more pictures of several failed.
  kUsage = 2,         ///< What was asked for cannot be done.
  kCannotRead = 3,
  kCannotWrite = 4,
  kProcessing = 5,
};

/// The end of the work on one picture: what kind of failure, which file, and why (shortened). Where it is
/// thrown, the file need not be known: who works from file to file names it, once (see NameFile).
class cFailure : public std::exception {
 public:
  cFailure(eFailure pKind, const std::string& pReason) : cFailure(pKind, "", pReason) {}
  cFailure(eFailure pKind, const std::string& pFile, const std::string& pReason)
      : fKind(pKind), fReason(Shorten(pReason)) {
    SetFile(pFile);
  }

  eFailure GetKind() const { return fKind; }
  /// Empty where none is at fault, or named yet.
  const std::string& GetFile() const { return fFile; }
  /// Parameters are named as NameParameters takes them.
  const std::string& GetReason() const { return fReason; }
  void SetFile(const std::string& pFile) {
    fFile = pFile;
    fText = (pFile.empty() ? "" : pFile + ": ") + NameParameters(fReason);
  }

  /// "FILE: REASON", or the reason alone.
  const char* what() const noexcept override { return fText.c_str(); }

 private:
  eFailure fKind;
  std::string fFile;
  std::string fReason;
  std::string fText;
};

/// A failure for lack of memory.
class cMemoryFailure : public cFailure {
 public:
  using cFailure::cFailure;
};

/// Does pWork; a failure of it that names no file is one of pFile.
template <class tWork>
auto NameFile(const std::string& pFile, const tWork& pWork) {
  try {
    return pWork();
  } catch (cFailure& failure) {
    if (failure.GetFile().empty()) failure.SetFile(pFile);
    throw;
  }
}

}  // namespace Photo
