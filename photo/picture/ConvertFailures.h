#pragma once

#include <exception>
#include <functional>
#include <new>
#include <string>

#include "engine/base/cException.h"
#include "photo/base/Failure.h"

namespace Photo {

/// Does pWork. Other exceptions than cFailure become one, of pKind. pDoing: what memory ran out for, such as
/// "read". pDescribe: the reason from an exception's own text.
template <class tWork, class tDescribe = std::identity>
auto ConvertFailures(eFailure pKind, const std::string& pDoing, const tWork& pWork,
                     const tDescribe& pDescribe = {}) {
  try {
    return pWork();
  } catch (const cFailure&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw cMemoryFailure(pKind, "not enough memory to " + pDoing + " it");
  } catch (const TmEngine::cOutOfMemoryException& exception) {
    throw cMemoryFailure(pKind, "not enough memory to " + pDoing + " it: " + pDescribe(exception.what()));
  } catch (const std::exception& exception) {
    throw cFailure(pKind, pDescribe(std::string(exception.what())));
  }
}

}  // namespace Photo
