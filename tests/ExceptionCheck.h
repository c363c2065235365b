#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "engine/base/cException.h"

/// The source of the engine or of the exported function that an exception names.
inline std::filesystem::path FindSource(const std::string& pFile) {
  namespace fs = std::filesystem;
  const std::string name = pFile.starts_with(".\\") ? pFile.substr(2) : "";
  for (const char* folder : {"/../engine", "/../export"}) {
    for (const fs::directory_entry& entry :
         fs::recursive_directory_iterator(QUORVANE_TESTS_DIR + std::string(folder))) {
      if (entry.path().filename() == name) return entry.path();
    }
  }
  return {};
}

/// Whether there is a check at pLine of the source that an exception names, or a few lines above, where one
/// takes several; or the source has a check that hosts know by this number.
inline bool IsPlaceOfACheck(const std::string& pFile, int pLine) {
  std::ifstream source(FindSource(pFile));
  int number = 0, checkedLine = 0;
  bool isFixed = false;
  for (std::string line; std::getline(source, line);) {
    ++number;
    const bool isCheck =
        line.find("TM_CHECK(") != std::string::npos || line.find("TM_HERE") != std::string::npos;
    if (number <= pLine && isCheck) checkedLine = number;
    if (line.find("TM_CHECK_LINE(" + std::to_string(pLine) + ",") != std::string::npos) isFixed = true;
  }
  return isFixed || (checkedLine > 0 && pLine - checkedLine <= 4);
}

/// Expects that pCall throws exactly tException with the message pText, from the source pFile at pLine (where
/// they are given), and returns the throw's signature text.
template <class tException, class tCall>
std::string ExpectThrow(const tCall& pCall, const std::string& pText, const char* pFile = nullptr,
                        int pLine = 0) {
  try {
    pCall();
    ADD_FAILURE() << "no exception, expected: " << pText;
  } catch (const tException& exception) {
    EXPECT_EQ(typeid(exception), typeid(tException));
    EXPECT_EQ(std::string(exception.GetMessage()), pText);
    EXPECT_STREQ(pFile == nullptr ? nullptr : exception.GetFile(), pFile);
    EXPECT_EQ(pLine == 0 ? 0 : exception.GetLine(), pLine);
    EXPECT_TRUE(IsPlaceOfACheck(exception.GetFile(), exception.GetLine()))
        << exception.GetFile() << ":" << exception.GetLine() << ": " << pText;
    return exception.GetFunction() == nullptr ? "" : exception.GetFunction();
  } catch (const std::exception& exception) {
    ADD_FAILURE() << "another exception: " << exception.what() << ", expected: " << pText;
  }
  return "";
}

/// One row of a table of checks: a call that breaks this check and, as far as it can, all later ones.
struct sCheckRow {
  std::function<std::string(const std::string&)> fExpect;  ///< Makes the call; takes the text.
  std::string fText;
};

template <class tException, class tCall>
sCheckRow CheckRow(const std::string& pText, const tCall& pCall) {
  return {[pCall](const std::string& pExpected) { return ExpectThrow<tException>(pCall, pExpected); }, pText};
}

// Rows, by the exception's class.
#define TM_ARG(pText, ...) CheckRow<TmEngine::cArgumentException>(pText, [&] { __VA_ARGS__; })
#define TM_NULL(pText, ...) CheckRow<TmEngine::cArgumentNullException>(pText, [&] { __VA_ARGS__; })
#define TM_STATE(pText, ...) CheckRow<TmEngine::cInvalidOperationException>(pText, [&] { __VA_ARGS__; })
#define TM_MEMORY(pText, ...) CheckRow<TmEngine::cOutOfMemoryException>(pText, [&] { __VA_ARGS__; })

/// Every row throws its class and text, in the order of the table; in the name of pSignature where one is
/// given.
inline void ExpectChecks(const std::string& pSignature, const std::vector<sCheckRow>& pRows) {
  for (const sCheckRow& row : pRows) {
    const std::string signature = row.fExpect(row.fText);
    EXPECT_EQ(pSignature.empty() ? "" : signature, pSignature) << row.fText;
  }
}
