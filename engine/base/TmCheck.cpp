#include "engine/base/TmCheck.h"

namespace TmEngine {
namespace {

constexpr char kSourceTime[] = QUORVANE_SOURCE_TIME;  // see cmake/SourceTime.cmake

template <class tException>
[[noreturn]] void Throw(const char* pMessage, const sThrowPlace& pPlace) {
  throw tException(pMessage, pPlace.fLine, pPlace.fFile, kSourceTime, pPlace.fFunction);
}

}  // namespace

void Throw_cArgumentException(const char* pMessage, const sThrowPlace& pPlace) {
  Throw<cArgumentException>(pMessage, pPlace);
}
void Throw_cArgumentNullException(const char* pMessage, const sThrowPlace& pPlace) {
  Throw<cArgumentNullException>(pMessage, pPlace);
}
void Throw_cInvalidOperationException(const char* pMessage, const sThrowPlace& pPlace) {
  Throw<cInvalidOperationException>(pMessage, pPlace);
}
void Throw_cOutOfMemoryException(const char* pMessage, const sThrowPlace& pPlace) {
  Throw<cOutOfMemoryException>(pMessage, pPlace);
}

}  // namespace TmEngine
