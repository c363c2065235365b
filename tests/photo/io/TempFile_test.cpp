#include "photo/io/TempFile.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "photo/base/Failure.h"
#include "tests/photo/FolderTest.h"

namespace {

using TempFile = cFolderTest;
using Photo::cTempFile;
using tNames = std::set<std::string>;

TEST_F(TempFile, TakesTheTargetsPlaceInOneStep) {
  WriteText("a.png", "old");
  {
    cTempFile file("a.png");
    WriteText(file.GetPath(), "new");
    EXPECT_EQ(ReadText("a.png"), "old");
    file.Commit();
    EXPECT_EQ(ReadText("a.png"), "new");
  }
  { const cTempFile given_up("a.png"); }
  EXPECT_EQ(ReadText("a.png"), "new");
  EXPECT_EQ(ListFolder(), tNames{"a.png"});
}

TEST_F(TempFile, LeavesWhatComesIntoBeingMeanwhile) {
  cTempFile file("a.png", false);
  WriteText("a.png", "another's");
  try {
    file.Commit();
    ADD_FAILURE() << "replaced";
  } catch (const Photo::cFailure& failure) {
    EXPECT_EQ(failure.GetKind(), Photo::eFailure::kCannotWrite);
  }
  EXPECT_EQ(ReadText("a.png"), "another's");
}

/// A file that a killed process left behind is used again, and removed with it; that of a living one is not.
TEST_F(TempFile, ReusesTheFilesOfDeadProcesses) {
  const auto leave = [] {
    const pid_t child = fork();
    if (child == 0) {
      const cTempFile file("a.png");
      WriteText(file.GetPath(), "half");
      _exit(0);
    }
    waitpid(child, nullptr, 0);
  };
  leave();
  ASSERT_EQ(ListFolder().size(), 1u);
  {
    const cTempFile file("a.png");
    EXPECT_EQ(ListFolder(), tNames{file.GetPath().substr(2)});
    EXPECT_EQ(ReadText(file.GetPath()), "");
    const cTempFile second("a.png");
    EXPECT_NE(second.GetPath(), file.GetPath());
    cTempFile::RemoveLeftovers("a.png");
    EXPECT_EQ(ListFolder().size(), 2u);
  }
  leave();
  cTempFile::RemoveLeftovers("b.png");  // of another target
  EXPECT_EQ(ListFolder().size(), 1u);
  cTempFile::RemoveLeftovers("a.png");
  EXPECT_EQ(ListFolder(), tNames());
}

TEST_F(TempFile, FollowsLinksAndKeepsRights) {
  WriteText("real.png", "old");
  fs::permissions("real.png", fs::perms(0640));
  fs::create_symlink("real.png", "link.png");
  cTempFile file("link.png");
  WriteText(file.GetPath(), "new");
  file.Commit();
  EXPECT_TRUE(fs::is_symlink("link.png"));
  EXPECT_EQ(ReadText("real.png"), "new");
  EXPECT_EQ(fs::status("real.png").permissions(), fs::perms(0640));
  const mode_t mask = umask(027);
  cTempFile("new.png").Commit();
  umask(mask);
  EXPECT_EQ(fs::status("new.png").permissions(), fs::perms(0640));
}

TEST_F(TempFile, NamesOfAnyLengthHaveATemporaryFile) {
  const std::string name = std::string(250, 'a') + ".png";
  cTempFile file(name);
  file.Commit();
  EXPECT_EQ(ListFolder(), tNames{name});
}

}  // namespace
