#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "engine/cException.h"
#include "export/quorvane.h"
#include "tests/ExceptionCheck.h"
#include "tests/HostCall.h"
#include "tests/StderrCapture.h"

namespace {

using namespace TmEngine;

/// The lines after the first, for the sliders of Set.
const char* const kSevenLines =
    "ToneMapPhase2 -  Strength [-34 60 100]:     47.30\n"
    "ToneMapPhase2 -  Tone Compression:     0.50 -> 0.02\n"
    "ToneMapPhase1 -  Microcontrast [10 100 200] :             82.00\n"
    "ToneMapPhase1 -  Lighting [0 100 200]:            54.00\n"
    "ToneMapPhase1 -  Local Contrast [0 100 200]:      0.00\n"
    "FinalRendering - Contrast [-100 0 100]:         20.00\n"
    "White/Black Clip: 0.50 1.50 Test1: 0.25\n";

std::string EightLines(int pInputBits, int pOutputBits) {
  return "zx_tm_quorvane:  4 x 4  - bsp: " + std::to_string(pInputBits) + " -> " +
         std::to_string(pOutputBits) + "\n" + kSevenLines;
}

void Set(tm_quorvane_settings& pSettings) {
  pSettings.strength = 10.0f;
  pSettings.lighting = 1.0f;
  pSettings.tone_compression = 5.0f;
  pSettings.white_clip = 10.0f;
  pSettings.black_clip = 1.5f;
  pSettings.microcontrast = 2.0f;
  pSettings.test1 = 0.25f;
}

TEST(cpp_tm_quorvane, LogsSettingsThenRejectsUnknownInputDepths) {
  for (const int bits : {0, 12, 24, -8, 64}) {
    sCall call(HostImage(4, 4, bits, 8));
    Set(call.fSettings);
    cStderrCapture capture;
    EXPECT_EQ(call.Run(), -2);
    EXPECT_EQ(capture.Text(), EightLines(bits, 8));
    EXPECT_EQ(call.fSettings.white_clip, 0.5f);
    EXPECT_TRUE(call.OutputUntouched());
  }
}

TEST(cpp_tm_quorvane, RejectsUnknownColorSpacesBeforeAnythingElse) {
  for (const int id : {-1, 3, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    sCall call(HostImage(4, 4, 8, 8));
    call.fSettings.white_clip = 10.0f;
    cStderrCapture capture;
    EXPECT_EQ(call.Run(id), -2);
    EXPECT_EQ(capture.Text(), "");
    EXPECT_EQ(call.fSettings.white_clip, 10.0f);
  }
}

TEST(cpp_tm_quorvane, WritesItsLinesInOrder) {
  sCall call(HostImage(4, 4, 16, 16));
  Set(call.fSettings);
  cStderrCapture capture;
  EXPECT_EQ(call.Run(2), 1);
  const std::string log = capture.Text();
  EXPECT_EQ(log.rfind(EightLines(16, 16), 0), 0u);
  std::size_t at = 0;
  for (const char* start :
       {"Prepare for Rendering - Min: ", "End ToneMappingPhase1 4 x 4  - min/ave/max Base: ",
        "GlobalContrast Log10: 0.53 -> GlobalOutMax: ", "Tone Mapped Y Min/Max: [", "Linear Perc1 at: ",
        "  ==> Linear Black: ", "0, 0  - ", "2, 0  - ", "0, 2  - ", "2, 2  - ", "zx_tm_quorvane  end\n"}) {
    const std::size_t next = log.find(std::string("\n") + start, at);
    ASSERT_NE(next, std::string::npos) << start << " in\n" << log;
    at = next + 1;
  }
  EXPECT_EQ(log.substr(at), "zx_tm_quorvane  end\n");
  EXPECT_EQ(log.find("Freeing"), std::string::npos);
}

TEST(cpp_tm_quorvane, PrintsLongFiguresWhole) {
  sCall call(HostImage(4, 4, 12, 8));
  call.fSettings.black_clip = 1e38f;
  cStderrCapture capture;
  call.Run();
  EXPECT_NE(capture.Text().find("0.00 99999996802856924650656260769173209088.00 Test1: 0.00\n"),
            std::string::npos);
}

TEST(cpp_tm_quorvane, LeavesOutTheSampledPixelsOfLines) {
  for (const auto& [width, height] : {std::pair{1, 9}, {9, 1}}) {
    sCall call(HostImage(width, height, 8, 16));
    cStderrCapture capture;
    EXPECT_EQ(call.Run(), 1);
    EXPECT_EQ(capture.Text().find(", 0  - "), std::string::npos);
  }
}

TEST(cpp_tm_quorvane, ChecksPointersAndSizes) {
  sCall call(HostImage(4, 4, 8, 8));
  const auto run = [&](const tm_quorvane_image* pImage, tm_quorvane_settings* pSettings, const void* pIn,
                       void* pOut, int pColorSpace = 0) {
    return [=] { cpp_tm_quorvane(pImage, nullptr, pColorSpace, pSettings, pIn, pOut); };
  };
  void* out = call.fOutput.data();
  const void* in = call.fInput.data();
  cStderrCapture capture;
  ExpectThrow<cArgumentNullException>(run(nullptr, nullptr, in, out, 7),
                                      "Argument pDescriptor cannot be null.");
  ExpectThrow<cArgumentNullException>(run(&call.fImage, nullptr, in, out, 7),
                                      "Argument pSettings cannot be null.");

  sCall bad(HostImage(0, 0, 8, 8));
  bad.fImage.samples_per_pixel = 0;
  ExpectThrow<cArgumentNullException>(run(&bad.fImage, &bad.fSettings, nullptr, nullptr),
                                      "Argument pInputPixels cannot be null.");
  ExpectThrow<cArgumentNullException>(run(&bad.fImage, &bad.fSettings, in, nullptr),
                                      "Argument pOutputPixels cannot be null.");
  ExpectThrow<cArgumentException>(run(&bad.fImage, &bad.fSettings, in, out),
                                  "Argument pSamplesPerPixel must be greater than zero.");
  bad.fImage.samples_per_pixel = 3;
  ExpectThrow<cArgumentException>(run(&bad.fImage, &bad.fSettings, in, out),
                                  "Argument pWidth must be greater than zero.");
  bad.fImage.width = 4;
  ExpectThrow<cArgumentException>(run(&bad.fImage, &bad.fSettings, in, out),
                                  "Argument pHeight must be greater than zero.");
  bad.fImage = HostImage(4, 4, 8, 12);
  ExpectThrow<cInvalidOperationException>(run(&bad.fImage, &bad.fSettings, in, nullptr),
                                          "Output image is not set.");
  bad.fImage.output_bits = 8;
  bad.fSettings.microcontrast = std::numeric_limits<float>::quiet_NaN();
  bad.fSettings.lighting = std::numeric_limits<float>::quiet_NaN();
  ExpectThrow<cArgumentException>(run(&bad.fImage, &bad.fSettings, in, out),
                                  "Argument pMicrocontrast is out of range.");
  bad.fSettings.microcontrast = 0.0f;
  ExpectThrow<cArgumentException>(run(&bad.fImage, &bad.fSettings, in, out),
                                  "Argument pLighting is out of range.");
  bad.fImage = HostImage(748981, 1, 32, 8);
  bad.fSettings.lighting = 0.0f;
  const std::vector<unsigned char> wide(std::size_t{748981} * 4);
  std::vector<unsigned char> wideOut(std::size_t{748981} * 3);
  ExpectThrow<cInvalidOperationException>(run(&bad.fImage, &bad.fSettings, wide.data(), wideOut.data()),
                                          "Scanline width exceeds max tile size.");
  EXPECT_EQ(capture.Text().find("Freeing"), std::string::npos);
}

TEST(cpp_tm_quorvane, TakesUnalignedRecordsAndBuffers) {
  for (const int bits : {16, 32}) {
    sCall aligned(HostImage(7, 5, bits, 16));
    const std::size_t outBytes = std::size_t{7} * 5 * 6;
    std::vector<unsigned char> image(41), settings(65), input(aligned.fInput.size() + 1),
        output(outBytes + 1);
    Set(aligned.fSettings);
    std::memcpy(image.data() + 1, &aligned.fImage, 40);
    std::memcpy(settings.data() + 1, &aligned.fSettings, 64);
    std::copy(aligned.fInput.begin(), aligned.fInput.end(), input.begin() + 1);
    cStderrCapture capture;
    ASSERT_EQ(aligned.Run(), 1);
    // The library must not care, so neither does the test: the pointers are made as a C host makes them.
    using tFunction = int (*)(const void*, void*, int, void*, const void*, void*);
    const auto call = reinterpret_cast<tFunction>(reinterpret_cast<void*>(&cpp_tm_quorvane));
    ASSERT_EQ(call(image.data() + 1, nullptr, 0, settings.data() + 1, input.data() + 1, output.data() + 1),
              1);
    EXPECT_EQ(std::memcmp(output.data() + 1, aligned.fOutput.data(), outBytes), 0);
    EXPECT_EQ(std::memcmp(settings.data() + 1, &aligned.fSettings, 64), 0);
  }
}

TEST(cpp_tm_quorvane, DividesTheWhiteClipAgainAtEachCall) {
  sCall call(HostImage(4, 4, 8, 8));
  call.fSettings.white_clip = 40.0f;
  const tm_quorvane_settings before = call.fSettings;
  cStderrCapture capture;
  call.Run();
  EXPECT_EQ(call.fSettings.white_clip, 2.0f);
  call.Run();
  EXPECT_EQ(call.fSettings.white_clip, 0.1f);
  call.fSettings.white_clip = before.white_clip;
  EXPECT_EQ(std::memcmp(&call.fSettings, &before, sizeof before), 0);
}

/// Runs one picture with a row pitch and returns the output with sentinels where nothing was written.
std::vector<unsigned char> WithPitch(int pBits, int pReversed, int pPitch, int pSamplesPerPixel = 3) {
  sCall call(HostImage(5, 3, 32, pBits));
  call.fImage.output_row_pitch = pPitch;
  call.fImage.reversed_order = pReversed;
  call.fImage.samples_per_pixel = pSamplesPerPixel;
  call.fOutput.assign(static_cast<std::size_t>(3 * std::max(pPitch, 20) * pBits / 8), 0xA5);
  cStderrCapture capture;
  EXPECT_EQ(call.Run(), 1);
  return call.fOutput;
}

TEST(cpp_tm_quorvane, WritesNoPaddingOfTheHost) {
  for (const int bits : {8, 16}) {
    const auto bytes = static_cast<std::size_t>(bits / 8);
    for (const int reversed : {0, 1}) {
      const auto packed = WithPitch(bits, reversed, 15);
      const auto padded = WithPitch(bits, reversed, 22);
      for (std::size_t y = 0; y < 3; ++y) {
        EXPECT_EQ(std::memcmp(&padded[y * 22 * bytes], &packed[y * 15 * bytes], 15 * bytes), 0);
        for (std::size_t i = y * 22 + 15; i < (y + 1) * 22; ++i) EXPECT_EQ(padded[i * bytes], 0xA5) << i;
      }
    }
    // A pitch below the packed row cuts each copied row and goes no further.
    const auto cut = WithPitch(bits, 1, 9);
    const auto packed = WithPitch(bits, 1, 15);
    for (std::size_t y = 0; y < 3; ++y) {
      EXPECT_EQ(std::memcmp(&cut[y * 9 * bytes], &packed[y * 15 * bytes], 9 * bytes), 0);
    }
    for (std::size_t i = 27 * bytes; i < cut.size(); ++i) EXPECT_EQ(cut[i], 0xA5);
    EXPECT_EQ(WithPitch(bits, 1, -3), std::vector<unsigned char>(60 * bytes, 0xA5));
    // Pixels of two samples end after 10 of the row's samples; the rest is the host's.
    const auto two = WithPitch(bits, 1, 12, 2);
    EXPECT_EQ(std::memcmp(two.data(), packed.data(), 10 * bytes), 0);
    EXPECT_EQ(two[10 * bytes], 0xA5);
    EXPECT_EQ(two[34 * bytes], 0xA5);
  }
}

TEST(cpp_tm_quorvane, PutsChannelsWhereTheHostKeepsThem) {
  for (const int bits : {8, 16}) {
    const auto bytes = static_cast<std::size_t>(bits / 8);
    const auto rgb = WithPitch(bits, 0, 15);
    const auto bgr = WithPitch(bits, 1, 15);
    const auto four = WithPitch(bits, 0, 20, 4);
    for (std::size_t pixel = 0; pixel < 15; ++pixel) {
      for (std::size_t channel = 0; channel < 3; ++channel) {
        const std::size_t inFour = channel == 2 ? 3 : channel;  // samples 0, 1 and 3
        const unsigned char* at = &rgb[(3 * pixel + channel) * bytes];
        EXPECT_EQ(std::memcmp(at, &bgr[(3 * pixel + 2 - channel) * bytes], bytes), 0);
        EXPECT_EQ(std::memcmp(at, &four[(4 * pixel + inFour) * bytes], bytes), 0);
      }
      EXPECT_EQ(four[(4 * pixel + 2) * bytes], 0xA5);
    }
  }
}

TEST(cpp_tm_quorvane, SurvivesSlidersFarOutOfRange) {
  const float kValues[] = {std::numeric_limits<float>::infinity(),
                           -std::numeric_limits<float>::infinity(),
                           1e30f,
                           -1e30f,
                           1e4f,
                           -1e4f};
  cStderrCapture capture;
  for (int field = 0; field < 16; ++field) {
    for (const float value : kValues) {
      for (const float wrap : {0.0f, 1.0f}) {
        sCall call(HostImage(9, 6, 32, 8));
        call.fSettings.horizontal_wrap = wrap;
        reinterpret_cast<float*>(&call.fSettings)[field] = value;
        EXPECT_EQ(call.Run(), 1) << field << " " << value;
      }
    }
  }
}

}  // namespace
