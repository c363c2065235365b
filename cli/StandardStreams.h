#pragma once

#include <string>

namespace Cli {

/// The name that stands for standard input or output.
inline constexpr char kStandardStream[] = "-";

/// Copies from a handle to its end. Returns false, with errno set, when that fails.
bool CopyStream(int pFrom, int pTo);

/// All of standard input, as a file that readers can open by a name. It lies in memory, and nothing is left.
class cStandardInput {
 public:
  cStandardInput();  ///< Reads to the end. Throws cFailure.
  cStandardInput(const cStandardInput&) = delete;
  cStandardInput& operator=(const cStandardInput&) = delete;
  ~cStandardInput();

  const std::string& GetPath() const { return fPath; }

 private:
  int fHandle;
  std::string fPath;
};

}  // namespace Cli
