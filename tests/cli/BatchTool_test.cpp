#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

#include "cli/batch/AvailableMemory.h"
#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// Runs of the built tool over many pictures: what is taken, where it goes, and what ends a run.

namespace {

using nlohmann::json;
using tClock = std::chrono::steady_clock;

class cRunningTool {
 public:
  /// In a process group of its own; pArguments are split at blanks.
  explicit cRunningTool(const std::string& pArguments) : fProcess(fork()) {
    if (fProcess != 0) return;
    setpgid(0, 0);
    const int errors = open("errors.txt", O_CREAT | O_WRONLY | O_TRUNC, 0600);
    dup2(errors, STDERR_FILENO);
    const std::string command = "exec '" QUORVANE_TOOL "' tonemap " + pArguments;
    execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  /// The exit code, or less than 0 for an end by a signal.
  int Wait() const {
    int status = 0;
    waitpid(fProcess, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  std::vector<pid_t> ListWorkers() const {
    const std::string id = std::to_string(fProcess);
    std::istringstream text(ReadText("/proc/" + id + "/task/" + id + "/children"));
    std::vector<pid_t> workers;
    for (pid_t worker = 0; text >> worker;) workers.push_back(worker);
    return workers;
  }

  const pid_t fProcess;
};

bool IsAlive(pid_t pProcess) {
  const std::string status = ReadText("/proc/" + std::to_string(pProcess) + "/stat");
  return !status.empty() && status.find(") Z") == std::string::npos;
}

class BatchTool : public cToolTest {
 protected:
  static void WaitUntil(const std::function<bool()>& pIsTrue) {
    for (int i = 0; i < 120000 && !pIsTrue(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ASSERT_TRUE(pIsTrue());
  }
  static std::set<std::string> List(const std::string& pFolder) {
    std::set<std::string> files;
    if (!fs::exists(pFolder)) return files;
    for (const auto& entry : fs::recursive_directory_iterator(pFolder)) {
      if (entry.is_regular_file()) files.insert(entry.path().lexically_relative(pFolder));
    }
    return files;
  }
  static std::map<std::string, std::string> Contents(const std::string& pFolder) {
    std::map<std::string, std::string> contents;
    for (const std::string& file : List(pFolder)) contents[file] = ReadText(pFolder + "/" + file);
    return contents;
  }
  /// The objects of a run with --json, by their input; the summary by "".
  static std::map<std::string, json> Parse(const std::string& pLines) {
    std::map<std::string, json> records;
    std::istringstream lines(pLines);
    for (std::string line; std::getline(lines, line);) {
      json record = json::parse(line);
      if (record.contains("event")) record["input"] = "";
      EXPECT_TRUE(records.emplace(record["input"], record).second) << "reported twice: " << line;
    }
    return records;
  }
  static void MakePictures(int pCount, int pWidth = 300) {
    fs::create_directory("in");
    for (int i = 0; i < pCount; ++i) {
      WritePfm("in/" + std::to_string(100 + i) + ".pfm",
               MakeScene(pWidth, 200, 1.0f + 0.1f * static_cast<float>(i)));
    }
  }
  /// Takes seconds to be written, wherever it is compiled for.
  static void MakeLargePicture() {
    fs::create_directory("in");
    ToVips8(MakeScene(600, 400)).resize(8.0).pngsave("in/large.png", VImage::option()->set("compression", 1));
  }
  static bool IsInWork() {
    return fs::exists("out") &&
           std::any_of(fs::directory_iterator("out"), fs::directory_iterator(), [](const auto& pEntry) {
             return pEntry.path().filename().string().starts_with(".quorvane-");
           });
  }
};

TEST_F(BatchTool, GoesOnPastBrokenPicturesAndReportsEach) {
  MakePictures(3, 64);
  fs::create_directories("in/sub/.hidden");
  sTestPicture bad = MakeScene();
  bad.GetPixel(3, 3)[0] = std::nanf("");
  WriteExr("in/sub/nan.exr", bad);
  fs::copy("in/100.pfm", "in/sub/.hidden/no.pfm");
  WriteText("in/broken.exr", "no picture");
  WriteText("in/notes.txt", "no picture");
  const std::string arguments = "tonemap -r in/ nowhere.hdr in/101.pfm --out-dir in/out/deep -j 2 --json ";
  const sRun run = Expect(1, arguments + "--depth 16 --strength 33.3 --wrap horizontal --progress plain");
  EXPECT_TRUE(Has(run.fErrors, "quorvane: nowhere.hdr: No such file"));
  EXPECT_TRUE(Has(run.fErrors, "/6] in/100.pfm -> in/out/deep/100_tm.png\n"));
  EXPECT_TRUE(Has(run.fErrors, "4 of 6 pictures done, 2 failed"));
  EXPECT_EQ(List("in/out/deep"),
            (std::set<std::string>{"100_tm.png", "101_tm.png", "102_tm.png", "sub/nan_tm.png"}));
  std::map<std::string, json> records = Parse(run.fOutput);
  ASSERT_EQ(records.size(), 7u);
  EXPECT_EQ(records[""]["left_out"], json::parse(R"({"unknown": 1, "hidden": 1, "links": 0, "special": 0})"));
  EXPECT_EQ(records["nowhere.hdr"]["error"]["code"], 3);
  EXPECT_EQ(records["in/broken.exr"]["status"], "failed");
  const json& done = records["in/102.pfm"];
  EXPECT_EQ(done["status"], "done");
  EXPECT_EQ(done["output"], "in/out/deep/102_tm.png");
  EXPECT_EQ((std::vector<int>{done["width"], done["height"], done["result"]["depth"]}),
            (std::vector<int>{64, 200, 16}));
  EXPECT_EQ(done["settings"]["strength"], 33.3);
  EXPECT_EQ(done["wrap"], true);
  EXPECT_NEAR(done["dynamic_range"].get<double>(), 1.5, 0.3);  // the scene's decades, and its pattern
  EXPECT_GT(done["milliseconds"]["read"].get<double>(), 0.0);
  EXPECT_GT(done["peak_memory"].get<double>(), 1e6);
  EXPECT_EQ(records["in/sub/nan.exr"]["warnings"].size(), 1u);
  // a second run finds the results below its folder, and a picture alone gives the same bytes
  EXPECT_EQ(Parse(Run(arguments + "--skip-existing").fOutput).size(), 7u);
  Run("tonemap in/102.pfm -o alone.png --depth 16 --strength 33.3 --wrap horizontal");
  EXPECT_EQ(ReadText("alone.png"), ReadText("in/out/deep/102_tm.png"));
}

TEST_F(BatchTool, LeavesReplacesOrRefusesWhatExists) {
  MakePictures(2, 48);
  const std::string batch = "tonemap -r in --out-dir in --progress none ";  // results among the inputs
  Expect(0, batch);
  const std::map<std::string, std::string> fresh = Contents("in");
  EXPECT_EQ(fresh.size(), 4u);
  const struct {
    const char* fOption;
    int fExitCode;
    bool fIsReplaced;
  } cases[] = {{"", 1, false}, {"--skip-existing", 0, false}, {"--overwrite", 0, true}};
  for (const auto& row : cases) {
    WriteText("in/100_tm.png", "old");
    const sRun run = Expect(row.fExitCode, batch + row.fOption);
    EXPECT_EQ(ReadText("in/100_tm.png") != "old", row.fIsReplaced) << row.fOption;
    EXPECT_EQ(bool{Has(run.fErrors, "--skip-existing")}, row.fExitCode == 1) << run.fErrors;
  }
  EXPECT_EQ(Contents("in"), fresh);
  ExpectFailure(4, "tonemap in/100.pfm -o in/100_tm.png", "in/100_tm.png: exists already");
  const sRun plan = Run("tonemap -r in --out-dir new/x --dry-run");
  EXPECT_EQ(plan.fOutput,
            "in/100.pfm -> new/x/100_tm.png\nin/100_tm.png -> new/x/100_tm_tm.png\n"
            "in/101.pfm -> new/x/101_tm.png\nin/101_tm.png -> new/x/101_tm_tm.png\n");
  EXPECT_FALSE(fs::exists("new"));
}

TEST_F(BatchTool, RefusesCallsBeforeAnyWork) {
  MakePictures(2, 48);
  fs::copy("in/100.pfm", "in/100.hdr");
  const std::pair<const char*, const char*> cases[] = {
      {"in/100.hdr in/100.pfm --out-dir out", "in/100.hdr and in/100.pfm would both become out/100_tm.png"},
      {"in/100.pfm in/101.pfm -o out.png", "-o is for one picture"},
      {"in/100.pfm --out-dir out --name '{stm}.png'", "--name: {stm} is not known"},
      {"in/100.pfm --out-dir out --name '{stem.png'", "--name: a { without"},
      {"in/100.pfm --out-dir out --name 'a/{stem}.png'", "--name: names a file"},
      {"in/100.pfm --out-dir out --name '{name}'", "out/100.pfm: unknown extension"},
      {"in/100.pfm in/101.pfm --out-dir in --name 101.pfm", "in/101.pfm: is the input itself"},
      {"in/100.pfm --out-dir out --format gif", "out/100_tm.gif: unknown extension"},
      {"in/100.pfm -o out.png --format tif", "--format goes with"},
      {"in --out-dir out", "in: is a folder; -r"},
      {"- in/100.pfm --out-dir out", "standard input (-) is one picture"},
      {"-r in --out-dir out --shard 3/2", "--shard: 3/2 is not I/N"},
      {"-r in --out-dir out --memory-limit 4X", "--memory-limit: 4X is not a size"},
      {"-r in --out-dir out -j 0", "--jobs: "},
      {"-r in --out-dir out --overwrite --skip-existing", "--overwrite excludes --skip-existing"},
  };
  for (const auto& [arguments, text] : cases) {
    ExpectFailure(2, std::string("tonemap ") + arguments, text);
  }
}

TEST_F(BatchTool, SharesAListOutAmongSeveralRuns) {
  MakePictures(5, 32);
  const std::string name = " --progress none --name '{index}-{name}.{ext}' ";
  Run("tonemap -r in --out-dir all" + name);
  WriteText("list.txt", "in/104.pfm\nin/102.pfm\n\nin/100.pfm\nin/101.pfm\nin/103.pfm\n");
  const char* const sources[] = {"-r in", "--files-from list.txt", "--files-from - <list.txt"};
  for (int shard = 1; shard <= 3; ++shard) {
    Expect(0, "tonemap " + std::string(sources[shard - 1]) + name + "--out-dir some --shard " +
                  std::to_string(shard) + "/3");
    EXPECT_EQ(List("some").size(), shard == 1 ? 2u : shard == 2 ? 4u : 5u);
  }
  EXPECT_EQ(Contents("some"), Contents("all"));
  EXPECT_EQ(List("all").count("0005-104.pfm.png"), 1u);
  Expect(0, "tonemap -r in --out-dir some --shard 9/9");
}

TEST_F(BatchTool, TakesPicturesInFoldersByTheirContent) {
  MakePictures(1, 48);
  ToVips8(MakeScene()).jpegsave("in/photo.dat");
  ToVips16(MakeScene()).tiffsave("in/raw.NEF");   // raw files begin like that
  fs::copy("in/100.pfm", "in/100.pfm_original");  // a copy does not compete with its picture
  WriteText("in/letter", "PF, dear reader");
  WriteText("in/film", std::string("\0\0\0 ftypisom\0\0\0\0", 16));
  ASSERT_EQ(mkfifo("in/pipe", 0600) + mkfifo("in/pipe.png", 0600), 0);  // nobody will ever write to them
  fs::create_directory_symlink("..", "in/loop");
  fs::create_symlink("missing", "in/broken.png");
  fs::create_symlink("100.pfm", "in/link.pfm");
  // a folder that nobody can list, whoever runs this: its path is too long
  const int start = open(".", O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(chdir("in"), 0);
  const std::string part(250, 'd');
  for (int i = 0; i < 17; ++i) ASSERT_EQ(mkdir(part.c_str(), 0700) + chdir(part.c_str()), 0);
  ASSERT_EQ(fchdir(start) + close(start), 0);
  const sRun run = Expect(1, "tonemap -r in --out-dir out --json");
  EXPECT_EQ(List("out"), (std::set<std::string>{"100_tm.png", "link_tm.png", "photo_tm.png"}));
  EXPECT_TRUE(Has(run.fErrors, "3 of 3 pictures done, 1 folder not read in "));
  EXPECT_TRUE(Has(run.fErrors,
                  "; left out: unknown format (4), linked folders and broken links (2), pipes, "
                  "sockets and devices (2)\n"));
  std::map<std::string, json> records = Parse(run.fOutput);
  EXPECT_EQ(records.size(), 5u);
  const auto folder = std::find_if(records.begin(), records.end(),
                                   [](const auto& pRecord) { return pRecord.first.starts_with("in/d"); });
  ASSERT_NE(folder, records.end());
  EXPECT_EQ(folder->second["error"]["code"], 3);
  EXPECT_TRUE(Has(run.fErrors, "quorvane: " + folder->first + ": File name too long"));
  EXPECT_EQ(records[""]["left_out"], json::parse(R"({"unknown": 4, "hidden": 0, "links": 2, "special": 2})"));
  Expect(1, "tonemap -r in --out-dir new --fail-fast");
  EXPECT_FALSE(fs::exists("new"));
  fs::remove_all("in/" + part);
  Expect(0, "tonemap -r in --out-dir out --skip-existing");
}

TEST_F(BatchTool, TakesListsOfEveryKindOrNothing) {
  const std::string verb = "tonemap --out-dir out --dry-run ";
  const auto plan = [&](const std::string& pArguments, const std::string& pList) {
    WriteText("list", pList);
    return Run(verb + pArguments).fOutput;
  };
  for (const char* name : {"a b.pfm", "a\nb.pfm", "c.pfm\r"}) WritePfm(name, MakeScene());
  EXPECT_EQ(plan("--files-from list",
                 "\xef\xbb\xbf"
                 "a b.pfm\r\n\r\nd.pfm"),
            "a b.pfm -> out/a b_tm.png\nd.pfm -> out/d_tm.png (refused: d.pfm: No such file or directory)\n");
  const std::string nul("a b.pfm\0a\nb.pfm\0c.pfm\r\0", 23);
  EXPECT_EQ(plan("-0 --files-from - <list", nul),
            "a\nb.pfm -> out/a\nb_tm.png\na b.pfm -> out/a b_tm.png\nc.pfm\r -> out/c_tm.png\n");
  const struct {
    const char* fArguments;
    int fExitCode;
    const char* fText;
  } refused[] = {
      {"--files-from list", 2, "list: holds NUL bytes, and names in it end with their lines; -0 takes"},
      {"--files-from - <list", 2, "standard input: holds NUL bytes"},
      {"--files-from /dev/zero", 2, "/dev/zero: holds NUL bytes"},
      {"--files-from /proc/self/mem", 3, "/proc/self/mem: Input/output error"},
      {"--files-from - <.", 3, "standard input: Is a directory"},
      {"--files-from .", 3, ".: Is a directory"},
      {"--files-from none", 3, "none: No such file or directory"},
      {"-0 'a b.pfm'", 2, "--null requires --files-from"},
  };
  for (const auto& row : refused) {
    ExpectFailure(row.fExitCode, verb + row.fArguments, row.fText);
  }
}

TEST_F(BatchTool, EndsEarlyWhenItsReportIsLost) {
  MakePictures(6, 32);
  EXPECT_EQ(
      std::system("'" QUORVANE_TOOL "' tonemap -r in --out-dir out -j 1 --json >/dev/full 2>errors.txt") /
          256,
      4);
  const std::string errors = ReadText("errors.txt");
  EXPECT_TRUE(Has(errors, "1 of 6 pictures done, 5 not begun"));
  EXPECT_TRUE(Has(errors, "quorvane: standard output: No space left on device\n"));
  EXPECT_EQ(List("out"), std::set<std::string>{"100_tm.png"});
}

TEST_F(BatchTool, ReadsAndWritesStandardStreams) {
  WritePfm("scene.pfm", MakeScene());
  for (const std::string format : {"png", "tif", "jpg"}) {
    Run("tonemap scene.pfm -o file." + format);
    const sRun run = Run("tonemap - -o - --format " + format + " <scene.pfm");
    EXPECT_EQ(run.fErrors, "");
    EXPECT_EQ(run.fOutput, ReadText("file." + format)) << format;
  }
  Expect(0, "tonemap - --out-dir . <scene.pfm");
  EXPECT_TRUE(fs::exists("stdin_tm.png"));
  WriteText("cut.png", ReadText("file.png").substr(0, 100));
  ExpectFailure(3, "tonemap - -o - <cut.png", "standard input: damaged");
}

TEST_F(BatchTool, TakesStreamsInEveryVerb) {
  WritePfm("scene.pfm", MakeScene());
  Run("tonemap scene.pfm -o a.png");
  const std::string curve = " --saturation 0:0.4 -o ";
  Run("equalize a.png" + curve + "b.png");
  mkfifo("pipe.hdr", 0600);
  const struct {
    std::string fStart, fEnd;  ///< Around the input's name.
    std::string fInput;
    std::string fResult;  ///< What is on standard output; "" for what the input's file itself gives.
  } cases[] = {{"tonemap ", " -o -", "scene.pfm", "a.png"},
               {"equalize ", curve + "-", "a.png", "b.png"},
               {"inspect --json ", "", "scene.pfm", ""},
               {"compare --fail-above 0 ", " a.png", "a.png", ""},
               {"compare --fail-above 0 a.png ", "", "a.png", ""}};
  for (const auto& row : cases) {
    const auto run = [&](const std::string& pName, const std::string& pBefore) {
      const sRun result = Expect(0, row.fStart + pName + row.fEnd, pBefore);
      EXPECT_EQ(result.fErrors, "");
      const std::size_t name = result.fOutput.find("\"" + pName + "\"");  // in JSON
      return name == std::string::npos ? result.fOutput : result.fOutput.substr(name + pName.size() + 2);
    };
    const std::string expected = row.fResult.empty() ? run(row.fInput, "") : ReadText(row.fResult);
    EXPECT_TRUE(run("pipe.hdr", "cat " + row.fInput + " >pipe.hdr &") == expected) << row.fStart;
    EXPECT_TRUE(run("-", "exec <" + row.fInput + ";") == expected) << row.fStart;
    ExpectFailure(3, row.fStart + "pipe.hdr" + row.fEnd,
                  "pipe.hdr: ", "head -c 30 " + row.fInput + " >pipe.hdr &");
  }
  // nobody writes: what only looks does not open it
  EXPECT_EQ(Run("tonemap pipe.hdr -o c.png --dry-run").fOutput, "pipe.hdr -> c.png\n");
  EXPECT_FALSE(Has(Run("tonemap -r . --out-dir out --dry-run").fOutput, "pipe"));
  for (const char* const twice :
       {"compare - -", "inspect - -", "equalize a.png --saturation 0:1 -o c.png --format png"})
    ExpectFailure(2, twice, "");
}

TEST_F(BatchTool, KeepsToItsMemory) {
  MakePictures(6, 400);
  fs::create_directory("more");
  WritePfm("more/wide.pfm", MakeScene(4000, 600));
  // room for one of the small ones at a time; the large one has to be refused
  const sRun run = Expect(1, "tonemap -r in more --out-dir out -j 3 --memory-limit 80M");
  EXPECT_EQ(List("out").size(), 6u);
  EXPECT_TRUE(Has(run.fErrors, "more/wide.pfm: needs about 165 MiB of memory, and the limit is 80 MiB"));
  // what a picture was let in with comes back, whatever is made of it
  Expect(0, "tonemap -r in --out-dir small -j 3 --preview 100 --memory-limit 80M");
  ExpectFailure(5, "tonemap more/wide.pfm -o a.png --memory-limit 80M", "more/wide.pfm: needs about 165 MiB");
  // AVIF needs more than others, and every verb keeps to the limit
  ExpectFailure(5, "tonemap more/wide.pfm -o a.avif --memory-limit 170M", "more/wide.pfm: needs about ");
  Expect(0, "tonemap more/wide.pfm -o a.png --memory-limit 170M");
  for (const std::string verb :
       {"inspect more/wide.pfm", "compare a.png a.png", "equalize a.png -o b.png --saturation 0:0.4"}) {
    const sRun refused = ExpectFailure(5, verb + " --memory-limit 100M", "");
    EXPECT_TRUE(Has(refused.fErrors, "and the limit is 100 MiB"));
    Expect(0, verb + " --memory-limit 200M");
  }
}

TEST_F(BatchTool, FindsTheMemoryThatItMayUse) {
  constexpr std::int64_t kMachine = 1000 * 1024;
  const struct {
    std::string fGroups;
    std::map<std::string, std::string> fFiles;  ///< Below sys/fs/cgroup.
    std::int64_t fBytes;
  } cases[] = {
      {"0::/\n", {}, kMachine},
      {"0::/a/b\n", {{"a/memory.max", "max"}, {"a/b/memory.max", "max"}}, kMachine},
      {"0::/a/b\n",
       {{"a/memory.max", "9000"}, {"a/memory.current", "5000"}, {"a/memory.stat", "inactive_file 1000"}},
       5000},
      {"9:cpu:/\n4:hugetlb,memory:/a\n0::/\n",
       {{"memory/a/memory.limit_in_bytes", "8000"},
        {"memory/a/memory.usage_in_bytes", "5000"},
        {"memory/a/memory.stat", "inactive_file 7\ntotal_inactive_file 500"},
        {"memory/memory.limit_in_bytes", "9223372036854771712"}},
       3500},
      // in a container, which does not see the group's own path
      {"4:memory:/docker/0123\n", {{"memory/memory.limit_in_bytes", "7000"}}, 7000},
      {"4:memory:/a\n",
       {{"memory/a/memory.limit_in_bytes", "9"}, {"memory/a/memory.usage_in_bytes", "10"}},
       1}};
  for (const auto& row : cases) {
    const std::string root = "root" + std::to_string(&row - cases);
    fs::create_directories(root + "/proc/self");
    WriteText(root + "/proc/meminfo", "MemTotal: 9 kB\nMemAvailable: 1000 kB\n");
    WriteText(root + "/proc/self/cgroup", row.fGroups);
    for (const auto& [file, text] : row.fFiles) {
      const fs::path path = root + "/sys/fs/cgroup/" + file;
      fs::create_directories(path.parent_path());
      WriteText(path, text);
    }
    EXPECT_EQ(Tool::GetAvailableMemory(root), row.fBytes) << row.fGroups;
  }
}

TEST_F(BatchTool, StopsAtTheFirstFailureWhereAsked) {
  MakePictures(4, 32);
  WriteText("in/099.exr", "no picture");
  const sRun run = Expect(1, "tonemap -r in --out-dir out -j 1 --fail-fast --progress json");
  EXPECT_TRUE(List("out").empty());
  const std::size_t summary = run.fErrors.find("{\"event\":\"summary\"");
  ASSERT_NE(summary, std::string::npos) << run.fErrors;
  EXPECT_EQ(json::parse(run.fErrors.substr(summary))["failed"], 1);
}

TEST_F(BatchTool, SurvivesTheDeathOfAWorker) {
  {
    MakeLargePicture();
    const cRunningTool single("in/large.png --out-dir out --depth 16 --format tif");
    WaitUntil([] { return List("out").size() == 1 && IsInWork(); });
    ASSERT_EQ(single.ListWorkers().size(), 1u);
    kill(single.ListWorkers().front(), SIGSEGV);
    EXPECT_EQ(single.Wait(), 5);
    EXPECT_TRUE(List("out").empty());
  }
  for (const int signal : {SIGKILL, SIGSEGV}) {
    MakePictures(2, 32);
    MakeLargePicture();
    const cRunningTool tool("-r in --out-dir out -j 1 --depth 16 --format tif");
    WaitUntil([] { return List("out").size() == 3 && IsInWork(); });  // the small ones come first
    ASSERT_EQ(tool.ListWorkers().size(), 1u);
    WritePfm("in/later.pfm", MakeScene());
    kill(tool.ListWorkers().front(), signal);
    EXPECT_EQ(tool.Wait(), 1);
    const std::string errors = ReadText("errors.txt");
    EXPECT_TRUE(Has(errors, "quorvane: in/large.png: its worker process "));
    EXPECT_EQ(List("out"), (std::set<std::string>{"100_tm.tif", "101_tm.tif"}));
    fs::remove_all("in");
    fs::remove_all("out");
  }
}

TEST_F(BatchTool, GivesUpPicturesThatTakeTooLong) {
  MakeLargePicture();
  mkfifo("later.pfm", 0600);
  ExpectFailure(5, "tonemap later.pfm -o a.png --timeout 0.3",  // nobody writes to it
                "later.pfm: took longer than --timeout 0.3 seconds;");
  // memory for one at a time: while the second one waits for it, the first one's worker hangs
  const std::string options = " --out-dir out --depth 16 --format tif -j 2 --memory-limit 760M --timeout 5";
  const cRunningTool tool("in/large.png later.pfm" + options);
  WaitUntil([] { return IsInWork(); });
  ASSERT_EQ(tool.ListWorkers().size(), 2u);
  kill(tool.ListWorkers().front(), SIGSTOP);
  WritePfm("later.pfm", MakeScene());
  EXPECT_EQ(tool.Wait(), 1);
  const std::string errors = ReadText("errors.txt");
  EXPECT_TRUE(Has(errors, "in/large.png: took longer than --timeout 5 s"));
  EXPECT_EQ(List("out"), (std::set<std::string>{"later_tm.tif"}));
}

TEST_F(BatchTool, WorksWithWhatTheSystemLets) {
  MakePictures(8, 32);
  const sRun run = Expect(0, "tonemap -r in --out-dir out -j 40", "ulimit -n 14;");
  EXPECT_TRUE(Has(run.fErrors, "limit of open files (ulimit -n)"));
  EXPECT_EQ(List("out").size(), 8u);
  // an answer that is longer than a socket holds
  sExrKind kind{{}};
  for (int i = 0; i < 1500; ++i) kind.fChannels.push_back(std::string(240, 'x') + std::to_string(i));
  sTestPicture wide = MakeScene(8, 4);
  wide.fSamples.resize(2000);  // a channel's samples begin where those of the one before do, plus one
  WriteExr("names.exr", wide, kind);
  const sRun names = Expect(1, "tonemap names.exr in/100.pfm --out-dir out --overwrite");
  EXPECT_TRUE(Has(names.fErrors, "quorvane: names.exr: it has neither"));
  EXPECT_LT(names.fErrors.size(), 4000u);
}

TEST_F(BatchTool, EndsAtOnceWhenInterrupted) {
  MakeLargePicture();
  WritePfm("in/100.pfm", MakeScene());
  fs::create_directory("single");
  const std::string options = " --depth 16 --name '{stem}.tif' --out-dir out";
  const struct {
    std::string fArguments;
    int fSignal;
    std::set<std::string> fLeft;
    const char* fWords;
  } cases[] = {{"-r in" + options, SIGINT, {"100.tif"}, "1 of 2 pictures done"},
               {"-r in" + options, SIGTERM, {"100.tif"}, "--skip-existing"},
               {"in/large.png" + options, SIGINT, {}, "interrupted"}};
  for (const auto& row : cases) {
    const cRunningTool tool(row.fArguments);
    const auto isReported = [](const std::string& pFile) {
      return ReadText("errors.txt").find("out/" + pFile) != std::string::npos;
    };
    WaitUntil([&] {
      return List("out").size() == row.fLeft.size() + 1 && IsInWork() &&
             std::all_of(row.fLeft.begin(), row.fLeft.end(), isReported);
    });
    const std::vector<pid_t> workers = tool.ListWorkers();
    EXPECT_FALSE(workers.empty());
    const auto start = tClock::now();
    kill(row.fSignal == SIGINT ? -tool.fProcess : tool.fProcess,
         row.fSignal);  // a terminal signals the group
    EXPECT_EQ(tool.Wait(), 130);
    EXPECT_LT(tClock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(std::none_of(workers.begin(), workers.end(), IsAlive));
    EXPECT_EQ(List("out"), row.fLeft);
    EXPECT_TRUE(Has(ReadText("errors.txt"), row.fWords));
    fs::remove_all("out");
  }
  // a signal to all, which the worker gets and obeys first
  const cRunningTool tool("-r in" + options);
  WaitUntil([] { return List("out").count("100.tif") == 1 && IsInWork(); });
  const std::vector<pid_t> workers = tool.ListWorkers();
  for (const pid_t worker : workers) kill(worker, SIGTERM);
  WaitUntil([&] { return std::none_of(workers.begin(), workers.end(), IsAlive); });
  kill(tool.fProcess, SIGTERM);
  EXPECT_EQ(tool.Wait(), 130);
  EXPECT_FALSE(Has(ReadText("errors.txt"), "failed"));
}

TEST_F(BatchTool, GoesOnAfterBeingKilled) {
  MakePictures(16);
  ExpectDone("tonemap -r in --out-dir whole --progress none");
  for (std::size_t done = 1; done < 14; done += 3) {
    const cRunningTool tool("-r in --out-dir out -j 2 --skip-existing");
    WaitUntil([&] { return List("out").size() >= done; });
    const std::vector<pid_t> workers = tool.ListWorkers();
    kill(done % 2 == 0 ? tool.fProcess : -tool.fProcess, SIGKILL);  // the parent alone, or all
    tool.Wait();
    WaitUntil([&] { return std::none_of(workers.begin(), workers.end(), IsAlive); });
  }
  Expect(0, "tonemap -r in --out-dir out --skip-existing");
  EXPECT_EQ(Contents("out"), Contents("whole"));  // no other files either
}

}  // namespace
