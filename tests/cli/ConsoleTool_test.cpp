#include <glib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// What the built tool prints about itself, lost output, and how names are shown in messages.

namespace {

using ConsoleTool = cToolTest;

TEST_F(ConsoleTool, StatesVersionFormatsAndLicence) {
  const std::string text = Run("--version").fOutput;
  EXPECT_TRUE(Starts(text, "quorvane 1.0.0\n"));
  for (const char* words :
       {"libvips 8.", "OpenEXR 3.", "Little CMS 2.", "Radiance", "JPEG XL", "AVIF", "Apache-2.0"}) {
    EXPECT_TRUE(Has(text, words)) << words;
  }
  EXPECT_EQ(text.find("Exiv2 0.") != std::string::npos, text.find("GPL, version 3") != std::string::npos)
      << text;
}

TEST_F(ConsoleTool, SaysWhenStandardOutputTookNothing) {
  WritePfm("scene.pfm", MakeScene());
  ToVips8(MakeScene()).pngsave("a.png");
  const std::string tool = "'" QUORVANE_TOOL "' ";
  const auto run = [](const std::string& pCommand) {
    return std::system(("{ " + pCommand + "; } 2>errors").c_str()) / 256;
  };
  for (const std::string arguments :
       {"--help", "--version", "--completion bash", "tonemap --help", "tonemap --list-presets",
        "inspect scene.pfm", "inspect --json scene.pfm", "inspect --json scene.pfm scene.pfm",
        "compare a.png a.png", "compare --json a.png a.png", "tonemap scene.pfm -o x.png --dry-run",
        "tonemap scene.pfm -o y.png --overwrite --json"}) {
    EXPECT_EQ(run(tool + arguments + " >/dev/full"), 4) << arguments;
    EXPECT_EQ(ReadText("errors"), "quorvane: standard output: No space left on device\n") << arguments;
    EXPECT_EQ(run(tool + arguments + " >&-"), 4) << arguments;
    EXPECT_EQ(ReadText("errors"), "quorvane: standard output: Bad file descriptor\n") << arguments;
    // a reader that went away needs no message; sleeping makes sure that it has gone
    EXPECT_EQ(run("{ sleep 0.05; " + tool + arguments + "; echo $? >code; } | true; exit $(cat code)"), 4)
        << arguments;
    EXPECT_EQ(ReadText("errors"), "") << arguments;
  }
  EXPECT_EQ(run(tool + "tonemap scene.pfm -o z.png >&- 2>&- <&-"),
            0);  // nothing is printed, and no file is mistaken for a stream
  EXPECT_EQ(Load("z.png").fSamples, Load("y.png").fSamples);
}

TEST_F(ConsoleTool, EscapesWhatATerminalWouldObey) {
  const std::string name =
      "a\x1b[31m\xe2\x80\xae\xc2\x9b\xe9\n\xc3\xa9.pfm";  // with a byte that is not UTF-8
  const std::string shown = "a\\x1b[31m\\u202e\\u009b\\xe9\\x0a\xc3\xa9.pfm";
  sTestPicture scene = MakeScene();
  scene.GetPixel(3, 3)[0] = std::nanf("");
  WritePfm(name, scene);
  WriteText("text-" + name, "no picture");
  sRun run =
      Expect(1, "tonemap '" + name + "' 'text-" + name + "' missing-'" + name + "' --out-dir out --json");
  for (const std::string& text :
       {shown + ": warning: repaired 1 pixel with values that are not finite (1 not a number, 0 infinite)",
        "text-" + shown + ": not a picture", "missing-" + shown + ": No such"}) {
    EXPECT_TRUE(Has(run.fErrors, "quorvane: " + text));
  }
  const auto isPlain = [](const std::string& pText) {
    return std::none_of(pText.begin(), pText.end(),
                        [](unsigned char c) { return (c < ' ' && c != '\n') || c == 0x7f; }) &&
           pText.find("\xc2\x9b") == std::string::npos && pText.find("\xe2\x80") == std::string::npos;
  };
  EXPECT_TRUE(isPlain(run.fErrors)) << run.fErrors;
  EXPECT_TRUE(isPlain(run.fOutput)) << run.fOutput;
  std::istringstream lines(run.fOutput);
  for (std::string line; std::getline(lines, line);) {
    const nlohmann::json record = nlohmann::json::parse(line);
    gsize size = 0;
    guchar* const bytes = g_base64_decode(record["input_base64"].get<std::string>().c_str(), &size);
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    g_free(bytes);
    EXPECT_TRUE(input.ends_with(name)) << line;
    EXPECT_EQ(record["status"] == "done", input == name);
  }
  run = Run("tonemap --sharpness-'" + name + "'");
  EXPECT_TRUE(isPlain(run.fErrors)) << run.fErrors;
  // other programs get the name itself, a terminal does not
  const std::string plan = "tonemap '" + name + "' -o x.png --dry-run";
  EXPECT_EQ(Run(plan).fOutput, name + " -> x.png\n");
  WriteText("plan", "'" QUORVANE_TOOL "' " + plan);
  EXPECT_EQ(std::system("script -qec 'sh plan' /dev/null >shown </dev/null"), 0);
  EXPECT_TRUE(Starts(ReadText("shown"), shown + " -> x.png\r\n"));
}

}  // namespace
