#pragma once

#include <string>

namespace Cli {

/// Keeps libvips running while it lives: no cache, no words of its own on standard error.
class cVipsLibrary {
 public:
  cVipsLibrary();  ///< Throws cFailure.
  cVipsLibrary(const cVipsLibrary&) = delete;
  cVipsLibrary& operator=(const cVipsLibrary&) = delete;
  ~cVipsLibrary();
};

/// The first line of what libvips has to say about its last failure; what it holds is cleared.
std::string TakeVipsError();

}  // namespace Cli
