#pragma once

#include <string>
#include <vector>

#include "cli/terminal/PassedOver.h"

namespace Tool {

/// What the user names as inputs.
struct sInputNames {
  std::vector<std::string> fNames;  ///< Files, folders, or "-" alone for standard input.
  bool fRecursive = false;          ///< Folders stand for the pictures below them.
  std::string fFilesFrom;      ///< A file of more names, one a line; "-" for standard input, "" for none.
  bool fNulSeparated = false;  ///< A NUL byte ends each of them instead.
};

struct sInput {
  std::string fFile;
  std::string fFolder;             ///< Below the folder that was named: "2024/june"; empty for files.
  bool fIsFound = false;           ///< In a folder: nobody named it.
  bool fIsKnownByContent = false;  ///< Its name does not say that it is a picture.
};

struct sInputList {
  std::vector<sInput> fInputs;  ///< Each once, in the order of the bytes of their names.
  sLeftOut fLeftOut;
  std::vector<sUnreadableFolder> fUnreadable;  ///< Below those that were named.
};

/// The pictures. From folders, files with the extension or the content of a known format are taken; hidden
/// ones are not, nor what lies in pResults where that is a folder below. A file that is named is taken as it
/// is, whether it exists or not. Throws cFailure.
sInputList ListInputs(const sInputNames& pNames, const std::string& pResults);

}  // namespace Tool
