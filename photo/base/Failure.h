#pragma once

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "engine/base/cException.h"
#include "photo/base/ShortText.h"

namespace Cli {

/// What the program returns to its caller.
enum eExitCode : int {
  eExitCode_Done = 0,
  eExitCode_PictureFailed = 1,  ///< One or more pictures of several failed.
  eExitCode_Usage = 2,
  eExitCode_CannotRead = 3,
  eExitCode_CannotWrite = 4,
  eExitCode_Processing = 5,
  eExitCode_Interrupted = 130,
};

/// The end of the work on one picture: which file, why (shortened), and the code that the program returns for
/// it.
class cFailure : public std::runtime_error {
 public:
  /// pFile may be empty where no file is at fault.
  cFailure(eExitCode pExitCode, const std::string& pFile, const std::string& pReason)
      : std::runtime_error((pFile.empty() ? "" : pFile + ": ") + Shorten(pReason)), fExitCode(pExitCode) {}

  eExitCode GetExitCode() const { return fExitCode; }

 private:
  eExitCode fExitCode;
};

/// Does pWork. What it throws becomes a failure of pFile, unless it is one already. pDoing: what memory ran
/// out for, such as "read". pTell: the reason by an exception's own text.
template <class tWork, class tTell = std::identity>
auto NameFailures(eExitCode pExitCode, const std::string& pFile, const std::string& pDoing,
                  const tWork& pWork, const tTell& pTell = {}) {
  try {
    return pWork();
  } catch (const cFailure&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw cFailure(pExitCode, pFile, "not enough memory to " + pDoing + " it");
  } catch (const TmEngine::cOutOfMemoryException& exception) {
    throw cFailure(pExitCode, pFile, "not enough memory to " + pDoing + " it: " + pTell(exception.what()));
  } catch (const std::exception& exception) {
    throw cFailure(pExitCode, pFile, pTell(std::string(exception.what())));
  }
}

}  // namespace Cli
