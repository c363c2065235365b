#include <gtest/gtest.h>

#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// Presets and kept settings of the built tool, end to end.

namespace {

class PresetTool : public cToolTest {
 protected:
  void SetUp() override {
    cToolTest::SetUp();
    fs::create_directories("config/quorvane/presets");
    setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1);
    WritePfm("scene.pfm", MakeScene());
  }

  static std::string Preset(const std::string& pSettings) {
    return R"({"quorvane-preset": 1, "name": "x", "description": "y", "settings": {)" + pSettings + "}}";
  }
  static std::string UserFile(const std::string& pName) { return "config/quorvane/presets/" + pName; }

  static std::string Nest(std::size_t pLevels) {
    return std::string(pLevels, '[') + std::string(pLevels, ']');
  }
  /// The result's bytes; expects success without a word.
  static std::string Make(const std::string& pArguments, const std::string& pOutput = "result.png") {
    ExpectDone("tonemap scene.pfm -o " + pOutput + " " + pArguments);
    std::string bytes = ReadText(pOutput);
    fs::remove(pOutput);
    return bytes;
  }
};

TEST_F(PresetTool, LaysPresetsAndOptionsOverOneAnother) {
  WriteText(UserFile("mine.json"), Preset(R"("strength": 10, "contrast": -5.5)"));
  WriteText(UserFile("other.json"), Preset(R"("contrast": 60, "wrap": "horizontal")"));
  WriteText(UserFile("vivid.json"), Preset(R"("saturation": -100)"));
  WriteText(UserFile("here.json"), Preset(R"("strength": 1)"));
  WriteText("here", Preset(R"("strength": 2)"));
  WriteText("file.json", Preset(R"("white-clip": 0.30000001, "black-clip": 1e-1)"));
  const struct {
    const char* fArguments;
    const char* fSame;
  } cases[] = {
      {"--preset mine", "--strength 10 --contrast -5.5"},
      {"--preset mine --preset other", "--strength 10 --contrast 60 --wrap horizontal"},
      {"--preset other --preset mine", "--strength 10 --contrast -5.5 --wrap horizontal"},
      {"--preset=mine --contrast 7", "--strength 10 --contrast 7"},
      {"--contrast 7 --wrap none --preset other --preset mine", "--strength 10 --contrast 7 --wrap none"},
      {"--contrast 20 --preset mine", "--strength 10"},
      {"--preset vivid", "--saturation -100"},
      {"--preset here", "--strength 2"},
      {"--preset ./file.json", "--white-clip 0.3 --black-clip 0.1"},
  };
  for (const auto& row : cases) EXPECT_TRUE(Make(row.fArguments) == Make(row.fSame)) << row.fArguments;
}

TEST_F(PresetTool, ShipsPresetsThatLookDifferent) {
  const std::string names[] = {"natural", "vivid", "dramatic", "night", "panorama"};
  std::vector<sStored> results;
  for (const std::string& name : names) {
    ExpectDone("tonemap scene.pfm -o " + name + ".png --preset " + name);
    for (const sStored& other : results) EXPECT_GT(MeanDifference(Load(name + ".png"), other), 4.0) << name;
    results.push_back(Load(name + ".png"));
  }
  WriteText(UserFile("night.json"), Preset(R"("strength": 1)"));
  WriteText(UserFile("broken.json"), "{");
  WriteText(UserFile("deep.json"), Preset(R"("strength": )" + Nest(80000)));
  const sRun list = Expect(0, "tonemap --list-presets");
  for (const std::string& name : names) EXPECT_TRUE(Has(list.fOutput, "\n" + name)) << name;
  for (const std::string text : {"(built in)", "(built in, hidden by yours)",
                                 "broken           cannot be used", "deep             cannot be used"}) {
    EXPECT_TRUE(Has(list.fOutput, text)) << text;
  }
}

TEST_F(PresetTool, FindsItsPresetsWhereverItIsInstalled) {
  fs::create_directories("prefix/bin");
  fs::create_directories("prefix/share/quorvane/presets");
  fs::copy(QUORVANE_TOOL, "prefix/bin/quorvane");
  WriteText("prefix/share/quorvane/presets/installed.json", Preset(""));
  EXPECT_EQ(std::system("ln -s prefix/bin/quorvane linked && ./linked tonemap --list-presets >list"), 0);
  EXPECT_EQ(ReadText("list"), "installed        y (built in)\n");
}

TEST_F(PresetTool, RefusesWhatItCannotUseAndSaysWhy) {
  const std::string start = R"({"quorvane-preset": 1, )";
  const struct {
    std::string fText;
    const char* fReason;
  } presets[] = {
      {"", "cannot be used: parse error at line 1"},
      {"[1]", "is no preset: it lacks \"quorvane-preset\": 1"},
      {R"({"settings": {}})", "is no preset: it lacks \"quorvane-preset\": 1"},
      {R"({"quorvane-preset": 2, "settings": {}})",
       "\"quorvane-preset\": 2 is not a version that this program"},
      {R"({"quorvane-preset": "1", "settings": {}})", "\"quorvane-preset\": \"1\" is not a version"},
      {start + R"("settings": {}, "author": "me"})",
       "unknown key \"author\" in the preset; it knows quorvane-pre"},
      {start + R"("name": 5, "settings": {}})", "\"name\": 5 is not a text in quotes"},
      {start + R"("name": "x"})", "lacks \"settings\": { }"},
      {start + R"("settings": [1]})", "\"settings\" must be an object in braces"},
      {Preset(R"("strenght": 5)"), "unknown key \"strenght\" in \"settings\"; it knows strength, lighting, "},
      {Preset(R"("strength": 150.5)"), "\"strength\": 150.5 is not a number from -200 to 150"},
      {Preset(R"("strength": "70")"), "\"strength\": \"70\" is not a number from -200 to 150"},
      {Preset(R"("black-clip": 1e99)"), "\"black-clip\": 1e+99 is not a number from 0 to 50"},
      {Preset(R"("contrast": null)"), "\"contrast\": null is not a number from -100 to 100"},
      {Preset(R"("wrap": "vertical")"), "\"wrap\": \"vertical\" is not none, horizontal or auto"},
      {Preset(R"("rendering": "vivid")"), "\"rendering\": \"vivid\" is not color or engine"},
      {Preset(R"("wrap": 1)"), "\"wrap\": 1 is not none, horizontal or auto"},
      {Preset(R"("contrast": 1, "contrast": 2)"), "the key \"contrast\" is given twice"},
      {Preset(R"("strength": )" + Nest(80000)), "cannot be used: it is nested deeper than 64 levels"},
      {Preset(R"("strength": )" + Nest(61)),
       "\"strength\": the given value is not a number"},  // as deep as is read
      {std::string(2 << 20, ' '), "is no preset: it is too large for one"},
  };
  WriteText("plain.png", "no picture");
  ToVips8(MakeScene()).pngsave("camera.png");
  ExpectDone("tonemap scene.pfm -o kept.tif");
  ASSERT_EQ(mkfifo("pipe.json", 0600), 0);  // nobody will ever write to it
  const auto expect = [](const std::string& pArguments, int pExitCode, const std::string& pStart) {
    ExpectFailure(pExitCode, "tonemap scene.pfm -o b.png " + pArguments, pStart);
  };
  for (const auto& row : presets) {
    WriteText(UserFile("bad.json"), row.fText);
    expect("--preset natural --preset bad", 2, (fFolder / UserFile("bad.json: ")).string() + row.fReason);
  }
  expect("--preset nothing", 2, "--preset: there is neither a file nor a preset 'nothing'; --list-presets");
  expect("--preset no/thing", 2, "no/thing: there is no preset file of that name");
  expect("--preset config", 2, "--preset: there is neither a file nor a preset 'config'");
  expect("--sharpness=3", 2, "The following argument was not expected: --sharpness=3");
  expect("--preset pipe.json", 2, "pipe.json: is not a regular file");
  expect("--dither --depth 16", 2,
         "--dither: a result of 16 bits is not dithered; leave out --dither, or use");
  expect("--settings-from pipe.json", 3, "pipe.json: is not a regular file");
  expect("--settings-from missing.png", 3, "missing.png: No such file or directory");
  expect("--settings-from plain.png", 2, "plain.png: carries no settings");
  expect("--settings-from camera.png", 2, "camera.png: carries no settings");
  expect("--settings-from camera.png --settings-from kept.tif", 2, "--settings-from: ");
}

TEST_F(PresetTool, SavesWhatTheCommandLineSays) {
  const std::string settings = "--strength 33.3 --black-clip 0.123456789 --wrap none --contrast -7";
  Expect(0, "tonemap --save-preset mine " + settings);
  EXPECT_TRUE(Make("--preset mine") == Make(settings));
  EXPECT_EQ(ReadText(UserFile("mine.json")),
            "{\n  \"quorvane-preset\": 1,\n  \"name\": \"mine\",\n"
            "  \"description\": \"strength 33.3, black-clip 0.12345679, contrast -7, wrap none\",\n"
            "  \"settings\": {\n    \"strength\": 33.3,\n    \"black-clip\": 0.12345679,\n"
            "    \"contrast\": -7,\n    \"wrap\": \"none\"\n  }\n}\n");
  // with a picture both are done; presets are saved as well
  Make("--preset mine --contrast 8 --save-preset ./new.json");
  EXPECT_TRUE(Make("--preset new.json") ==
              Make("--strength 33.3 --black-clip 0.123456789 --wrap none --contrast 8"));
  ExpectDone("tonemap scene.pfm -o kept.png " + settings);
  Expect(0, "tonemap --settings-from kept.png --lighting 3 --save-preset from.json");
  EXPECT_TRUE(Make("--preset from.json") == Make(settings + " --lighting 3"));
  const std::string kept = (fFolder / UserFile("")).string();
  const struct {
    const char* fArguments;
    int fExitCode;
    std::string fText;
  } refused[] = {
      {"--save-preset mine --strength 1", 2, kept + "mine.json: exists already; choose another name"},
      {"--save-preset new.json --strength 1", 2, "new.json: exists already"},
      {"--save-preset early --strength 1 -o b.png", 2, "INPUT is required"},
      {"--save-preset '' --strength 1", 2, "--save-preset: an empty name"},
      {"--save-preset empty", 2, "--save-preset: neither a preset nor a slider is given"},
      {"--save-preset none/x.json --strength 1", 4, "none/x.json: No such file or directory"}};
  for (const auto& row : refused) {
    ExpectFailure(row.fExitCode, std::string("tonemap ") + row.fArguments, row.fText);
  }
}

TEST_F(PresetTool, RepeatsAResultToTheByte) {
  const struct {
    const char* fArguments;
    const char* fFile;
  } cases[] = {
      {"", "a.png"},
      {"--preset dramatic --strength 12.345678 --wrap horizontal", "a.jpg"},
      {"--depth 16 --colorspace prophoto --black-clip 0.1 --white-clip 0.7", "a.tif"},
      {"--quality 71 --metadata xmp,iptc", "q.jpg"},
      {"--compression 9 --contrast 0.1", "c.png"},
      {"--depth 12 --quality 50 --strength 99.99", "d.avif"},
      {"--depth 16 --quality 80 --strength 10", "e.jxl"},
      {"--quality 60 --lighting 2", "f.webp"},
      {"--rendering engine", "g.png"},
      {"--dither --strength 20", "h.png"},
      {"--colorspace adobergb --lighting -3.3333333 --microcontrast 1e-7 --saturation -1.5", "a.png"},
  };
  for (const auto& row : cases) {
    const std::string file = row.fFile;
    const std::string first = Make(row.fArguments, file);
    WriteText("kept-" + file, first);
    EXPECT_TRUE(Make("--settings-from kept-" + file, file) == first) << row.fArguments;
  }
  EXPECT_TRUE(Make("--settings-from kept-q.jpg --metadata all") == Make(""));  // PNG has no quality
  EXPECT_FALSE(Make("", "g.png") == ReadText("kept-g.png"));
  EXPECT_EQ(ReadText("kept-g.png").find("rendering"),
            std::string::npos);  // as results did before there were two
  EXPECT_TRUE(Make("--settings-from kept-h.png --dither=false") == Make("--strength 20"));
  EXPECT_TRUE(Make("--settings-from kept-h.png --depth 16") == Make("--strength 20 --depth 16"));
  EXPECT_FALSE(Make("--dither") == Make(""));
  // the settings of another result are the base; options given beside them win
  WriteText("kept.tif", Make("--strength 5 --contrast 6 --depth 16 --colorspace prophoto", "a.tif"));
  EXPECT_TRUE(Make("--settings-from kept.tif --contrast 7 --depth 8", "b.tif") ==
              Make("--strength 5 --contrast 7 --colorspace prophoto", "b.tif"));
  // a depth that the format does not hold gives way, unless it is asked for
  const std::string start = "tonemap scene.pfm --overwrite --settings-from kept.tif -o ";
  for (const auto& [file, depth] : {std::pair{"s.jpg", "8"}, {"s.avif", "12"}, {"s.webp", "8"}}) {
    const sRun run = Expect(0, start + file);
    EXPECT_TRUE(
        Starts(run.fErrors, std::string("quorvane: ") + file + ": warning: written with " + depth + " bits"));
    EXPECT_TRUE(ReadText(file) ==
                Make(std::string("--strength 5 --contrast 6 --colorspace prophoto --depth ") + depth,
                     std::string("again-") + file));
  }
  ExpectFailure(2, start + "s.jpg --depth 16", "s.jpg: JPEG holds 8 bits only");
}

/// The long names of the options that a help text lists.
std::set<std::string> GetOptions(const std::string& pHelp) {
  std::set<std::string> names;
  std::istringstream lines(pHelp);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  -", 0) != 0) continue;
    const std::size_t start = line.find("--");
    names.insert(line.substr(start, line.find_first_of(" ", start) - start));
  }
  return names;
}

TEST_F(PresetTool, ListsEveryOptionInHelpManualAndCompletions) {
  Expect(0, "--write-help made");
  const std::string bash = ReadText("made/bash-completion/completions/quorvane");
  const std::string zsh = ReadText("made/zsh/site-functions/_quorvane");
  const std::string fish = ReadText("made/fish/vendor_completions.d/quorvane.fish");
  const std::string program = Run("--help").fOutput;
  std::istringstream lines(
      program.substr(program.find("Verbs:"), program.find("\nOptions:") - program.find("Verbs:")));
  std::vector<std::string> verbs = {""};
  for (std::string line; std::getline(lines, line);) {
    if (line.size() > 2 && line[2] != ' ' && line[0] == ' ')
      verbs.push_back(line.substr(2, line.find(' ', 2) - 2));
  }
  ASSERT_GE(verbs.size(), 3u) << program;
  for (const std::string& verb : verbs) {
    const std::string help = Run(verb + " --help").fOutput;
    std::string page = ReadText("made/man/man1/quorvane" + (verb.empty() ? "" : "-" + verb) + ".1");
    for (std::size_t at = 0; (at = page.find("\\-")) != std::string::npos;) page.erase(at, 1);
    ASSERT_GE(GetOptions(help).size(), 3u) << help;
    for (const std::string& option : GetOptions(help)) {
      EXPECT_TRUE(Has(page, "\\fB" + option + "\\fR")) << verb << option;
      if (option == "--help" && verb.empty()) continue;
      EXPECT_TRUE(Has(bash, option)) << verb << option;
      EXPECT_TRUE(Has(zsh, option)) << verb << option;
      EXPECT_TRUE(Has(fish, " -l " + option.substr(2))) << verb << option;
    }
    std::istringstream text(help.substr(0, help.find("\nExamples:")));
    for (std::string line; std::getline(text, line);) EXPECT_LE(line.size(), 96u) << line;
    EXPECT_TRUE(Has(help, "\nExamples:\n")) << verb;
  }
  EXPECT_EQ(Run("--completion bash").fOutput, bash);
  EXPECT_TRUE(Has(Run("tonemap --help").fOutput, "--strength -200..150 [70]"));
  WriteText(
      "check.bash",
      "source made/bash-completion/completions/quorvane\n"
      "t() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _quorvane '" QUORVANE_TOOL
      "'; echo \"${COMPREPLY[*]}\"; }\n"
      "t quorvane ton; t quorvane equalize --mode ''; t quorvane tonemap --wrap = h\n"
      "t quorvane tonemap --preset dram; t quorvane tonemap -o scene; t quorvane equalize --mo\n"
      "t quorvane tonemap --preset m; t quorvane tonemap --preset ni; t quorvane tonemap --save-preset n\n");
  // names with spaces, one that hides another, one that nobody can use
  for (const char* name : {"my own.json", "night.json"})
    WriteText(UserFile(name), Preset(R"("strength": 1)"));
  WriteText(UserFile("mad.json"), "{");
  EXPECT_EQ(std::system("bash check.bash >said 2>&1"), 0);
  EXPECT_EQ(ReadText("said"),
            "tonemap\nsmooth linear flat\nhorizontal\ndramatic\nscene.pfm\n--mode\nmy own made\nnight\n\n");
  WriteText("check.fish",
            "set -x PATH (path dirname '" QUORVANE_TOOL
            "') $PATH\nsource made/fish/vendor_completions.d/quorvane.fish\n"
            "for c in ton 'equalize --mode f' 'tonemap --preset m' 'tonemap --preset=ni' 'compare -o sce'\n"
            "complete -C \"quorvane $c\" | string split -f 1 \\t; end; true\n");
  EXPECT_EQ(std::system("fish check.fish >said 2>&1"), 0);
  EXPECT_EQ(ReadText("said"), "tonemap\nflat\nmade/\nmy own\n--preset=night\nscene.pfm\n");
}

}  // namespace
