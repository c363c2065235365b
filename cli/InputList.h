#pragma once

#include <string>
#include <vector>

namespace Cli {

/// What the user names as inputs.
struct sInputNames {
  std::vector<std::string> fNames;  ///< Files, folders, or "-" alone for standard input.
  bool fRecursive = false;          ///< Folders stand for the pictures below them.
  std::string fFilesFrom;  ///< A file of more names, one a line; "-" for standard input, "" for none.
};

struct sInput {
  std::string fFile;
  std::string fFolder;    ///< Below the folder that was named: "2024/june"; empty for files.
  bool fIsFound = false;  ///< In a folder: nobody named it.
};

/// The pictures, each once, in the order of the bytes of their names. Of folders, files with the ending of a
/// known format are taken; hidden ones are not, nor what lies in pResults where that is a folder below. A
/// file that is named is taken as it is, whether it exists or not. Throws cFailure.
std::vector<sInput> ListInputs(const sInputNames& pNames, const std::string& pResults);

}  // namespace Cli
