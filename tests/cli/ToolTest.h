#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>
#include <vips/vips8>

#include "engine/color/cColorSpace.h"

/// For tests of the built tool: it is run in a folder of its own, on pictures made there.

namespace fs = std::filesystem;
using vips::VImage;

struct sRun {
  int fExitCode = -1;  ///< -1 for an end by a signal.
  std::string fOutput;
  std::string fErrors;
};

/// A picture as it lies on disk.
struct sStored {
  std::vector<int> fShape;  ///< Width, height, bands, bits a sample.
  std::string fProfile;
  std::vector<double> fSamples;
};

inline std::string ReadText(const fs::path& pFile) {
  std::ifstream stream(pFile, std::ios::binary);
  std::stringstream text;
  text << stream.rdbuf();
  return text.str();
}

inline std::string ProfileOf(const TmEngine::sIccProfile& pProfile) {
  return {reinterpret_cast<const char*>(pProfile.fData), static_cast<std::size_t>(pProfile.fSize)};
}

/// PNG files get the profile of sRGB with an ID of 16 bytes in its header, and nothing else.
inline std::string WithoutID(const std::string& pProfile) {
  const std::string srgb = ProfileOf(TmEngine::cColorSpace_sRGB::GetIccProfile());
  const bool isSRGB = pProfile.size() == srgb.size() && pProfile.substr(0, 84) == srgb.substr(0, 84) &&
                      pProfile.substr(100) == srgb.substr(100);
  return isSRGB ? srgb : pProfile;
}

inline double MeanDifference(const sStored& pA, const sStored& pB) {
  EXPECT_EQ(pA.fShape, pB.fShape);
  if (pA.fShape != pB.fShape) return 1e9;
  double sum = 0.0;
  for (std::size_t i = 0; i < pA.fSamples.size(); ++i) sum += std::fabs(pA.fSamples[i] - pB.fSamples[i]);
  return sum / static_cast<double>(pA.fSamples.size());
}

class cToolTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(VIPS_INIT("cToolTest"), 0);
    // for the tool that is run, where it is built with the leak sanitizer (see LeakSuppressions.cpp)
    setenv("ASAN_OPTIONS", "intercept_tls_get_addr=0", 0);
    setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" QUORVANE_TESTS_DIR "/cli/leaks.supp", 0);
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

  /// pBefore: shell commands that run first, in the tool's own process.
  static sRun Run(const std::string& pArguments, const std::string& pBefore = "") {
    char streams[] = "/tmp/quorvane-streams-XXXXXX";
    EXPECT_NE(mkdtemp(streams), nullptr);
    const std::string folder = streams;
    const std::string command =
        pBefore + " exec '" QUORVANE_TOOL "' " + pArguments + " >" + folder + "/o 2>" + folder + "/e";
    const int status = std::system(command.c_str());
    sRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(folder + "/o"), ReadText(folder + "/e")};
    fs::remove_all(folder);
    return run;
  }

  static sStored Load(const std::string& pFile) {
    const VImage image = VImage::new_from_file(pFile.c_str());
    const int bits = image.format() == VIPS_FORMAT_USHORT ? 16 : 8;
    sStored stored{{image.width(), image.height(), image.bands(), bits}, "", {}};
    std::size_t size = 0;
    if (image.get_typeof(VIPS_META_ICC_NAME) != 0) {
      const void* const data = image.get_blob(VIPS_META_ICC_NAME, &size);
      stored.fProfile = WithoutID({static_cast<const char*>(data), size});
    }
    auto* const samples = static_cast<double*>(image.cast(VIPS_FORMAT_DOUBLE).write_to_memory(&size));
    stored.fSamples.assign(samples, samples + size / sizeof(double));
    g_free(samples);
    return stored;
  }

  static std::set<std::string> ListFolder() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) names.insert(entry.path().filename());
    return names;
  }

  fs::path fFolder;
};
