#include "photo/io/LazyLibrary.h"

#include <dlfcn.h>

#include <string>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

[[noreturn]] void Refuse() {
  const char* const reason = dlerror();
  throw cFailure(eFailure::kProcessing,
                 "a library cannot be loaded: " + std::string(reason != nullptr ? reason : "unknown reason"));
}

}  // namespace

cLazyLibrary::cLazyLibrary(const char* pName) : fHandle(dlopen(pName, RTLD_NOW | RTLD_LOCAL)) {
  if (fHandle == nullptr) Refuse();
}

void* cLazyLibrary::FindSymbol(const char* pName) const {
  void* const symbol = dlsym(fHandle, pName);
  if (symbol == nullptr) Refuse();
  return symbol;
}

}  // namespace Photo
