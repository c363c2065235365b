#include "engine/base/cException.h"

#include <gtest/gtest.h>

#include <string>

namespace TmEngine {
namespace {

TEST(cException, ReportsItsClassMessageAndPlace) {
  const cArgumentException argument("m", 7, "f", "t", "s");
  const cArgumentNullException null("m", 7, "f", "t", "s");
  const cInvalidOperationException operation("m", 7, "f", "t", "s");
  const cOutOfMemoryException memory("m", 7, "f", "t", "s");
  const struct {
    const cException& fException;
    const char *fClassName, *fCategory;
  } cases[] = {{argument, "cArgumentException", "Invalid Argument Error"},
               {null, "cArgumentNullException", "Argument Null Error"},
               {operation, "cInvalidOperationException", "Invalid Operation Error"},
               {memory, "cOutOfMemoryException", "Out of Memory"}};
  for (const auto& row : cases) {
    EXPECT_STREQ(row.fException.GetClassName(), row.fClassName);
    EXPECT_STREQ(row.fException.GetCategory(), row.fCategory);
    EXPECT_STREQ(row.fException.GetMessage(), "m");
    EXPECT_EQ(row.fException.GetMessage(), row.fException.what());
    EXPECT_STREQ(row.fException.GetFile(), "f");
    EXPECT_STREQ(row.fException.GetTimestamp(), "t");
    EXPECT_STREQ(row.fException.GetFunction(), "s");
    EXPECT_EQ(row.fException.GetLine(), 7);
  }
}

TEST(cException, KeepsNullTextsAndCopiesTheRest) {
  std::string file = "file";
  const cArgumentException exception(nullptr, -1, file.c_str(), nullptr, nullptr);
  file = "gone";
  EXPECT_STREQ(exception.what(), "");
  EXPECT_STREQ(exception.GetFile(), "file");
  EXPECT_EQ(exception.GetTimestamp(), nullptr);
  EXPECT_EQ(exception.GetFunction(), nullptr);
}

TEST(cException, SharesItsTextsWithCopiesThatOutliveIt) {
  auto* source = new cInvalidOperationException("m", 1, "f", "t", "s");
  const cInvalidOperationException copy(*source);
  EXPECT_EQ(copy.GetClassName(), source->GetClassName());
  EXPECT_EQ(copy.GetCategory(), source->GetCategory());
  EXPECT_EQ(copy.GetFile(), source->GetFile());
  EXPECT_EQ(copy.GetTimestamp(), source->GetTimestamp());
  EXPECT_EQ(copy.GetFunction(), source->GetFunction());
  delete source;
  EXPECT_STREQ(copy.GetFile(), "f");
  EXPECT_STREQ(copy.what(), "m");
}

}  // namespace
}  // namespace TmEngine
