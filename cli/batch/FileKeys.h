#pragma once

#include <string>
#include <unordered_map>

namespace Tool {

/// Detects whether two names are those of one file, which need not exist: their keys are equal. What a last
/// part that is a link leads to is not looked at.
class cFileKeys {
 public:
  std::string Get(const std::string& pFile);

 private:
  std::unordered_map<std::string, std::string> fFolders;  ///< Where each folder's name leads.
};

}  // namespace Tool
