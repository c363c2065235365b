#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vips/vips8>

#include "engine/color/cColorSpace.h"

/// For tests that work on files: each runs in a folder of its own.

namespace fs = std::filesystem;
using vips::VImage;

inline std::string ReadText(const fs::path& pFile) {
  std::ifstream stream(pFile, std::ios::binary);
  std::stringstream text;
  text << stream.rdbuf();
  return text.str();
}

inline void WriteText(const fs::path& pFile, std::string_view pText) {
  std::ofstream(pFile, std::ios::binary) << pText;
}

inline std::string ProfileOf(const TmEngine::sIccProfile& pProfile) {
  return {reinterpret_cast<const char*>(pProfile.fData), static_cast<std::size_t>(pProfile.fSize)};
}

inline void SetBlob(const VImage& pImage, const char* pName, const std::string& pBytes) {
  vips_image_set_blob_copy(pImage.get_image(), pName, pBytes.data(), pBytes.size());
}

/// For EXPECT_TRUE and EXPECT_FALSE; a failure shows the text.
inline ::testing::AssertionResult Has(const std::string& pText, std::string_view pPart) {
  const bool has = pText.find(pPart) != std::string::npos;
  return (has ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
         << "text: " << pText << "\npart: " << pPart << '\n';
}
inline ::testing::AssertionResult Starts(const std::string& pText, std::string_view pStart) {
  return (pText.starts_with(pStart) ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
         << "text: " << pText << "\nexpected start: " << pStart << '\n';
}

class cFolderTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("VIPS_WARNING", "0", 1);  // libvips is silent, as in the tool
    ASSERT_EQ(VIPS_INIT("cFolderTest"), 0);
    vips_cache_set_max(0);  // names are used again for other pictures
  }

  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "quorvane-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    fFolder = name;
    fs::current_path(fFolder);
  }
  void TearDown() override {
    fs::current_path("/");
    fs::remove_all(fFolder);
  }

  static std::set<std::string> ListFolder() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) names.insert(entry.path().filename());
    return names;
  }
  /// Every file in the folder and below, with the time when it was last written.
  static std::map<std::string, fs::file_time_type> ListTimes() {
    std::map<std::string, fs::file_time_type> files;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
      files.emplace(entry.path(), entry.is_regular_file() ? entry.last_write_time() : fs::file_time_type());
    }
    return files;
  }

  fs::path fFolder;
};
