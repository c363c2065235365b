#pragma once

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <vector>

#include "tests/photo/FolderTest.h"

/// For tests of the built tool: it is run in a folder of its own, on pictures made there.

struct sRun {
  int fExitCode = -1;  ///< -1 for an end by a signal.
  std::string fOutput;
  std::string fErrors;
};

/// A picture as it lies on disk.
struct sStored {
  std::vector<int> fShape;  ///< Width, height, bands, bits per sample.
  std::string fProfile;
  std::vector<double> fSamples;
};

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

class cToolTest : public cFolderTest {
 protected:
  static void SetUpTestSuite() {
    cFolderTest::SetUpTestSuite();
    unsetenv("VIPS_WARNING");  // the tool silences libvips itself
    // for the tool that is run, where it is built with the leak sanitizer (see LeakSuppressions.cpp)
    setenv("ASAN_OPTIONS", "intercept_tls_get_addr=0", 0);
    setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" QUORVANE_TESTS_DIR "/cli/leaks.supp", 0);
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

  static sRun Expect(int pExitCode, const std::string& pArguments, const std::string& pBefore = "") {
    sRun run = Run(pArguments, pBefore);
    EXPECT_EQ(run.fExitCode, pExitCode) << pArguments << '\n' << run.fErrors;
    return run;
  }
  /// Expects success, and pErrors to be all that is printed.
  static void ExpectDone(const std::string& pArguments, const std::string& pErrors = "",
                         const std::string& pBefore = "") {
    const sRun run = Expect(0, pArguments, pBefore);
    EXPECT_EQ(run.fErrors + run.fOutput, pErrors) << pArguments;
  }
  /// Expects a message that begins with pText behind the program's name, and that nothing is printed or
  /// written.
  static sRun ExpectFailure(int pExitCode, const std::string& pArguments, const std::string& pText,
                            const std::string& pBefore = "") {
    const auto before = ListTimes();
    sRun run = Expect(pExitCode, pArguments, pBefore);
    EXPECT_TRUE(Starts(run.fErrors, "quorvane: " + pText)) << pArguments;
    EXPECT_EQ(run.fOutput, "") << pArguments;
    EXPECT_TRUE(ListTimes() == before) << pArguments;
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
};
