#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "tests/HostCall.h"
#include "tests/StderrCapture.h"

// Every compiler, optimisation level and sanitizer gives the same bytes: their hashes stand in
// golden/hashes.txt. After a change that is meant to change bytes, run this test with
// QUORVANE_UPDATE_GOLDEN=1 to write them anew.

namespace {

/// FNV-1a, 64 bits (IETF draft-eastlake-fnv).
std::uint64_t Hash(const std::vector<unsigned char>& pBytes) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const unsigned char byte : pBytes) hash = (hash ^ byte) * 0x100000001B3u;
  return hash;
}

struct sSliders {
  const char* fName;
  tm_quorvane_settings fSettings;
};

std::string HashLine(const tm_quorvane_image& pImage, int pColorSpace, const sSliders& pSliders) {
  sCall call(pImage);
  call.fSettings = pSliders.fSettings;
  cStderrCapture capture;
  EXPECT_EQ(call.Run(pColorSpace), 1);
  char hash[17];
  std::snprintf(hash, sizeof hash, "%016" PRIx64, Hash(call.fOutput));
  return hash;
}

TEST(Golden, EveryBuildGivesTheSameBytes) {
  const sSliders kSliders[] = {{"neutral", {}},
                               {"strong", {160, 8, 20, 40, 1, 9, {}, 0, {}, 0}},
                               {"expanded", {-230, -10, 3, 10, 0.5f, -10, {}, 0, {}, 1}},
                               {"panorama", {60, -3, 7, 2, 0.1f, 4, {}, 0, {}, 1}}};
  std::map<std::string, std::string> hashes;
  for (const int inputBits : {8, 16, 32}) {
    for (const int outputBits : {8, 16}) {
      for (int colorSpace = 0; colorSpace < 3; ++colorSpace) {
        for (const sSliders& sliders : kSliders) {
          std::ostringstream name;
          name << inputBits << "-" << outputBits << "-" << colorSpace << "-" << sliders.fName;
          hashes[name.str()] = HashLine(HostImage(203, 91, inputBits, outputBits), colorSpace, sliders);
        }
      }
    }
  }
  const std::string path = std::string(QUORVANE_TESTS_DIR) + "/golden/hashes.txt";
  if (std::getenv("QUORVANE_UPDATE_GOLDEN") != nullptr) {
    std::ofstream file(path);
    for (const auto& [name, hash] : hashes) file << name << " " << hash << "\n";
    GTEST_SKIP() << "written anew: " << path;
  }
  std::ifstream file(path);
  std::map<std::string, std::string> golden;
  for (std::string name, hash; file >> name >> hash;) golden[name] = hash;
  EXPECT_EQ(hashes, golden);
}

}  // namespace
