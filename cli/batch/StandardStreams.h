#pragma once

#include <string>

#include "photo/base/Failure.h"

namespace Tool {

/// The name that stands for standard input or output.
inline constexpr char kStandardStream[] = "-";

/// Whether an input is a stream, which can be read through only once: standard input, or a FIFO such as the
/// shell makes for <(command).
bool IsStream(const std::string& pName);

/// An input as people call it.
std::string GetSpokenName(const std::string& pName);

/// An input that readers can open by a name, again and again. Of a stream that is a copy in memory, of which
/// nothing is left in the end.
class cInputFile {
 public:
  /// Reads a stream to its end, and waits for one that nobody writes to yet. Throws cFailure.
  explicit cInputFile(const std::string& pName);
  cInputFile(const cInputFile&) = delete;
  cInputFile& operator=(const cInputFile&) = delete;
  ~cInputFile();

  const std::string& GetPath() const { return fPath; }

  /// Does what reads the path; a failure names the input.
  template <class tWork>
  auto Read(const tWork& pWork) const {
    try {
      return pWork();
    } catch (Photo::cFailure& failure) {
      Rename(failure);
    }
  }

 private:
  [[noreturn]] void Rename(Photo::cFailure& pFailure) const;

  std::string fName;
  std::string fPath;
  int fHandle = -1;  ///< Of the copy.
};

}  // namespace Tool
