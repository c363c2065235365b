#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "examples/scene/Render.h"
#include "examples/scene/WriteExr.h"
#include "examples/scene/WriteHdr.h"

namespace Scene {
namespace {

float LuminanceAt(const sHdrPicture& pPicture, int pX, int pY) {
  const float* at = &pPicture.fPixels[3 * static_cast<std::size_t>(pY * pPicture.fWidth + pX)];
  return 0.2126f * at[0] + 0.7152f * at[1] + 0.0722f * at[2];
}

/// Mean |ln| of the luminance step from column pFrom to column pTo.
double Step(const sHdrPicture& pPicture, int pFrom, int pTo) {
  double sum = 0.0;
  for (int y = 0; y < pPicture.fHeight; ++y) {
    sum += std::fabs(std::log(LuminanceAt(pPicture, pFrom, y) / LuminanceAt(pPicture, pTo, y)));
  }
  return sum / pPicture.fHeight;
}

/// A new, empty folder for the test's files.
std::filesystem::path EmptyFolder() {
  const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  const std::filesystem::path folder = ::testing::TempDir() + "quorvane_scene_" + name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

using tBytes = std::vector<unsigned char>;

/// One row of RGBE pixels, channel after channel, from pFile at pAt; pAt moves behind it.
tBytes UnpackRow(const tBytes& pFile, std::size_t pWidth, std::size_t& pAt) {
  tBytes row;
  for (std::size_t i = 0; pWidth < 8 && i < 4 * pWidth; ++i) {  // too short to be packed: pixel after pixel
    row.push_back(pFile.at(pAt + i % pWidth * 4 + i / pWidth));
  }
  if (pWidth < 8) return pAt += row.size(), row;
  EXPECT_EQ(pFile.at(pAt) * 65536 + pFile.at(pAt + 1) * 65536 + pFile.at(pAt + 2) * 256 + pFile.at(pAt + 3),
            4 * 65536 + static_cast<int>(pWidth));
  pAt += 4;
  while (row.size() < 4 * pWidth) {
    const unsigned count = pFile.at(pAt++);
    if (count > 128) {
      row.insert(row.end(), count - 128, pFile.at(pAt++));
    } else {
      for (unsigned i = 0; i < count; ++i) row.push_back(pFile.at(pAt++));
    }
  }
  return row;
}

sHdrPicture ReadHdr(const std::string& pPath, int pWidth, int pHeight) {
  std::ifstream file(pPath, std::ios::binary);
  const tBytes bytes{std::istreambuf_iterator<char>(file), {}};
  const std::string text(bytes.begin(), bytes.end());
  const std::string size = "\n\n-Y " + std::to_string(pHeight) + " +X " + std::to_string(pWidth) + "\n";
  EXPECT_EQ(text.find("#?RADIANCE\n"), 0u);
  std::size_t at = text.find(size) + size.size();
  const auto width = static_cast<std::size_t>(pWidth);
  sHdrPicture picture{pWidth, pHeight, {}};
  for (int y = 0; y < pHeight; ++y) {
    const tBytes row = UnpackRow(bytes, width, at);
    for (std::size_t i = 0; i < 3 * width; ++i) {
      const float mantissa = static_cast<float>(row.at(i % 3 * width + i / 3)) + 0.5f;
      picture.fPixels.push_back(std::ldexp(mantissa, row.at(3 * width + i / 3) - 136));
    }
  }
  EXPECT_EQ(at, bytes.size());
  return picture;
}

sHdrPicture ReadExr(const std::string& pPath) {
  Imf::InputFile file(pPath.c_str());
  const Imath::V2i last = file.header().dataWindow().max;
  sHdrPicture picture{last.x + 1, last.y + 1, {}};
  const auto width = static_cast<std::size_t>(picture.fWidth);
  picture.fPixels.resize(3 * width * static_cast<std::size_t>(picture.fHeight));
  Imf::FrameBuffer frame;
  auto* base = reinterpret_cast<char*>(picture.fPixels.data());
  for (const char* channel : {"R", "G", "B"}) {
    frame.insert(channel, Imf::Slice(Imf::FLOAT, base, 3 * sizeof(float), 3 * sizeof(float) * width));
    base += sizeof(float);
  }
  file.setFrameBuffer(frame);
  file.readPixels(0, last.y);
  return picture;
}

TEST(Scene, SpansTheRangeOfAHighDynamicRangePhotograph) {
  const sHdrPicture picture = RenderScene({eView::Room, 120, 80, 1});
  std::vector<float> luminance;
  for (const float sample : picture.fPixels) ASSERT_TRUE(std::isfinite(sample) && sample > 0.0f);
  for (int i = 0; i < 120 * 80; ++i) luminance.push_back(LuminanceAt(picture, i % 120, i / 120));
  std::sort(luminance.begin(), luminance.end());
  EXPECT_GT(std::log10(luminance.back() / luminance.front()), 5.0);
  EXPECT_GT(std::log10(luminance[luminance.size() * 999 / 1000] / luminance[luminance.size() / 100]), 3.5);
}

TEST(Scene, PanoramaHasNoSeam) {
  const sHdrPicture picture = RenderScene({eView::Panorama, 160, 80, 1});
  double inner = 0.0;
  for (int x : {1, 2, 156, 157}) inner += Step(picture, x, x + 1) / 4;
  EXPECT_LT(Step(picture, 159, 0), 2.0 * inner);
  EXPECT_GT(Step(picture, 80, 0), 3.0 * inner) << "any two columns would pass";
}

TEST(Scene, IsTheSameEveryTimeAndTheSeedChangesTheGrain) {
  for (const eView view : {eView::Room, eView::Panorama}) {
    const sHdrPicture first = RenderScene({view, 50, 31, 3});
    EXPECT_EQ(first.fPixels, RenderScene({view, 50, 31, 3}).fPixels);
    EXPECT_NE(first.fPixels, RenderScene({view, 50, 31, 4}).fPixels);
  }
}

TEST(Scene, RefusesSizesOutOfRange) {
  for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-1, 5}, {32769, 1}, {1, 32769}}) {
    EXPECT_THROW(RenderScene({eView::Room, width, height, 1}), std::invalid_argument)
        << width << " x " << height;
  }
}

TEST(Scene, FilesHoldWhatWasWritten) {
  const std::filesystem::path folder = EmptyFolder();
  for (const int width : {1, 7, 8, 300}) {
    sHdrPicture picture{width, 3, std::vector<float>(static_cast<std::size_t>(9 * width))};
    for (std::size_t i = 0; i < picture.fPixels.size(); ++i) {  // long runs, then values that all differ
      const float varied =
          std::exp2(static_cast<float>(i * 7919 % 61) - 30.0f) * (1.0f + static_cast<float>(i % 13));
      picture.fPixels[i] = i % 600 < 420 ? 0.7f : varied;
    }
    WriteExr(picture, folder / "a.exr");
    EXPECT_EQ(ReadExr(folder / "a.exr").fPixels, picture.fPixels);
    WriteHdr(picture, folder / "a.hdr");
    const sHdrPicture read = ReadHdr(folder / "a.hdr", width, 3);
    for (std::size_t i = 0; i < picture.fPixels.size(); ++i) {
      const auto pixel = picture.fPixels.begin() + static_cast<std::ptrdiff_t>(i - i % 3);
      ASSERT_NEAR(read.fPixels[i], picture.fPixels[i], *std::max_element(pixel, pixel + 3) / 255.0f)
          << width << " " << i;
    }
  }
}

TEST(Scene, AFailedWriteNamesTheFileAndLeavesNothing) {
  const std::filesystem::path folder = EmptyFolder();
  std::filesystem::create_directories(folder / "taken" / "inside");  // where the file should go
  const sHdrPicture picture{1, 1, {1.0f, 1.0f, 1.0f}};
  for (const auto write : {WriteHdr, WriteExr}) {
    for (const std::filesystem::path& path : {folder / "none" / "a", folder / "taken"}) {
      try {
        write(picture, path);
        ADD_FAILURE() << path;
      } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).find("cannot write '" + path.string() + "': "), 0u)
            << error.what();
      }
    }
  }
  const auto left = std::filesystem::directory_iterator(folder);
  EXPECT_EQ(std::distance(begin(left), end(left)), 1);
}

}  // namespace
}  // namespace Scene
