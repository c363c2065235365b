#include "engine/base/cException.h"

#include <cstdlib>
#include <cstring>

namespace TmEngine {
namespace {

char* CopyText(const char* pText) {
  if (pText == nullptr) return nullptr;
  const std::size_t size = std::strlen(pText) + 1;
  char* const copy = static_cast<char*>(std::malloc(size));
  if (copy != nullptr) std::memcpy(copy, pText, size);
  return copy;
}

}  // namespace

cException::cException(const char* const& pClassName, const char* const& pCategory,
                       const char* const& pMessage, int pLine, const char* const& pFile,
                       const char* const& pTimestamp, const char* const& pFunction)
    : std::runtime_error(pMessage != nullptr ? pMessage : ""),
      fClassName(CopyText(pClassName)),
      fCategory(CopyText(pCategory)),
      fFunction(CopyText(pFunction)),
      fFile(CopyText(pFile)),
      fTimestamp(CopyText(pTimestamp)),
      fLine(pLine) {}

// The texts stay allocated: copies of the exception point to the same blocks.
cException::~cException() = default;

const char* cException::GetClassName() const {
  return fClassName;
}
const char* cException::GetCategory() const {
  return fCategory;
}
const char* cException::GetMessage() const {
  return what();
}
const char* cException::GetFile() const {
  return fFile;
}
const char* cException::GetTimestamp() const {
  return fTimestamp;
}
const char* cException::GetFunction() const {
  return fFunction;
}
int cException::GetLine() const {
  return fLine;
}

cArgumentException::cArgumentException(const char* const& pMessage, int pLine, const char* const& pFile,
                                       const char* const& pTimestamp, const char* const& pFunction)
    : cException("cArgumentException", "Invalid Argument Error", pMessage, pLine, pFile, pTimestamp,
                 pFunction) {}
cArgumentException::~cArgumentException() = default;

cArgumentNullException::cArgumentNullException(const char* const& pMessage, int pLine,
                                               const char* const& pFile, const char* const& pTimestamp,
                                               const char* const& pFunction)
    : cException("cArgumentNullException", "Argument Null Error", pMessage, pLine, pFile, pTimestamp,
                 pFunction) {}
cArgumentNullException::~cArgumentNullException() = default;

cInvalidOperationException::cInvalidOperationException(const char* const& pMessage, int pLine,
                                                       const char* const& pFile,
                                                       const char* const& pTimestamp,
                                                       const char* const& pFunction)
    : cException("cInvalidOperationException", "Invalid Operation Error", pMessage, pLine, pFile, pTimestamp,
                 pFunction) {}
cInvalidOperationException::~cInvalidOperationException() = default;

cOutOfMemoryException::cOutOfMemoryException(const char* const& pMessage, int pLine, const char* const& pFile,
                                             const char* const& pTimestamp, const char* const& pFunction)
    : cException("cOutOfMemoryException", "Out of Memory", pMessage, pLine, pFile, pTimestamp, pFunction) {}
cOutOfMemoryException::~cOutOfMemoryException() = default;

}  // namespace TmEngine
