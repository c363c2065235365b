#pragma once

#include <string>

namespace Cli {

/// An empty file beside a target, which takes the target's place in one step. Until then the target stays as
/// it is, and whatever ends the program - an exception, Ctrl-C, a request to terminate - removes the file.
/// One lives at a time.
class cTempFile {
 public:
  /// Throws cFailure, in the name of the target, when the place cannot be written to.
  explicit cTempFile(const std::string& pTarget);
  cTempFile(const cTempFile&) = delete;
  cTempFile& operator=(const cTempFile&) = delete;
  ~cTempFile();

  const std::string& GetTarget() const { return fTarget; }
  const std::string& GetPath() const { return fPath; }
  void Commit();  ///< The file becomes the target. Throws cFailure.

 private:
  std::string fTarget;  ///< As the user names it.
  std::string fPlace;   ///< Where that leads: a symbolic link is followed, not replaced.
  std::string fPath;    ///< Empty once there is nothing to remove.
};

}  // namespace Cli
