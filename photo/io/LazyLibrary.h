#pragma once

namespace Photo {

/// A shared library that is loaded when a file needs it, and stays. Linked in, a codec with all that it needs
/// would take milliseconds of every start, and most runs meet no file of its format.
class cLazyLibrary {
 public:
  /// pName: with the version of its interface, such as "libheif.so.1". Throws cFailure.
  explicit cLazyLibrary(const char* pName);

  /// Throws cFailure for a function that the library lacks.
  template <class tFunction>
  tFunction Find(const char* pName) const {
    return reinterpret_cast<tFunction>(FindSymbol(pName));
  }

 private:
  void* FindSymbol(const char* pName) const;

  void* fHandle;
};

}  // namespace Photo

/// In a structure that has a cLazyLibrary fLibrary: a function of it, with its type and under its own name.
#define PHOTO_LAZY_FUNCTION(pName) decltype(&::pName) pName = fLibrary.Find<decltype(&::pName)>(#pName)
