#include <gtest/gtest.h>

#include "tests/cli/ToolTest.h"

// What the built tool says of itself, and what becomes of its words and of names in them.

namespace {

using ConsoleTool = cToolTest;

TEST_F(ConsoleTool, StatesVersionFormatsAndLicence) {
  const std::string text = Run("--version").fOutput;
  EXPECT_EQ(text.rfind("quorvane 1.0.0\n", 0), 0u) << text;
  for (const char* words :
       {"libvips 8.", "OpenEXR 3.", "Little CMS 2.", "Radiance", "JPEG XL", "AVIF", "Apache-2.0"}) {
    EXPECT_NE(text.find(words), std::string::npos) << words << '\n' << text;
  }
  EXPECT_EQ(text.find("Exiv2 0.") != std::string::npos, text.find("GPL, version 3") != std::string::npos)
      << text;
}

}  // namespace
