#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "engine/image/cBitmapXYZ32.h"
#include "export/HostSettings.h"
#include "export/PixelImport.h"
#include "export/quorvane.h"
#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"
#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

// What a host can do wrong, and how its records may lie. What comes out of a call, to the byte and the log
// line, is compared in cpp_tm_quorvane_reference_test.

namespace {

TEST(cpp_tm_quorvane, ChecksPointersAndSizes) {
  sCall good(HostImage(4, 4, 8, 8)), bad(HostImage(0, 0, 8, 8));
  tm_quorvane_image& image = bad.fImage;
  tm_quorvane_settings& settings = bad.fSettings;
  image.samples_per_pixel = 0;
  const void* in = good.fInput.data();
  void* out = good.fOutput.data();
  const auto run = [&](const void* pIn, void* pOut) {
    cpp_tm_quorvane(&image, nullptr, 0, &settings, pIn, pOut);
  };
  const std::string kShortPitch =
      "Argument pOutputRowPitch must be greater than or equal to pSamplesPerPixel*pWidth.";
  sCall small(HostImage(9, 6, 32, 8));
  const std::vector<unsigned char> wide(std::size_t{748981} * 4);
  std::vector<unsigned char> wideOut(std::size_t{748981} * 3);
  cStderrCapture capture;
  ExpectChecks(
      "int __cdecl cpp_tm_quorvane(const struct tm_quorvane_image *,void *,int,struct "
      "tm_quorvane_settings *,const void *,void *)",
      {TM_NULL("Argument pDescriptor cannot be null.",
               cpp_tm_quorvane(nullptr, nullptr, 7, nullptr, in, out)),
       TM_NULL("Argument pSettings cannot be null.",
               cpp_tm_quorvane(&good.fImage, nullptr, 7, nullptr, in, out)),
       TM_NULL("Argument pInputPixels cannot be null.", run(nullptr, nullptr)),
       TM_NULL("Argument pOutputPixels cannot be null.", run(in, nullptr)),
       TM_ARG("Argument pSamplesPerPixel must be greater than zero.", run(in, out))});
  ExpectChecks(
      "",
      {TM_ARG("Argument pWidth must be greater than zero.", image.samples_per_pixel = 3, run(in, out)),
       TM_ARG("Argument pHeight must be greater than zero.", image.width = 4, run(in, out)),
       TM_ARG(kShortPitch, image.height = 4, image.output_row_pitch = 11, run(in, out)),
       TM_ARG(kShortPitch, image.output_row_pitch = INT_MIN, run(in, out)),
       TM_ARG(kShortPitch, image.samples_per_pixel = image.width = INT_MAX, image.output_row_pitch = INT_MAX,
              run(in, out)),
       TM_ARG("Argument pOutputRowPitch must be greater than or equal to 0.", image.reversed_order = 1,
              image.output_row_pitch = -1, run(in, out)),
       TM_STATE("Output image is not set.", image = HostImage(4, 4, 8, 12), image.output_row_pitch = -1,
                run(in, nullptr)),
       TM_ARG("Argument pMicrocontrast is out of range.", image = HostImage(4, 4, 8, 8),
              settings.microcontrast = settings.lighting = kNaN, run(in, out)),
       TM_ARG("Argument pLighting is out of range.", settings.microcontrast = 0.0f, run(in, out)),
       TM_MEMORY("Microcontrast and Lighting ask for a grid far larger than the picture.",
                 settings.microcontrast = settings.lighting = 1e4f, small.fSettings = settings, small.Run()),
       TM_STATE("Scanline width exceeds max tile size.", image = HostImage(748981, 1, 32, 8),
                settings.lighting = 0.0f, run(wide.data(), wideOut.data()))});
  EXPECT_TRUE(good.OutputUntouched());
  EXPECT_TRUE(small.OutputUntouched());
  image = HostImage(748980, 1, 32, 8);
  EXPECT_NO_THROW(run(wide.data(), wideOut.data()));
  EXPECT_EQ(capture.Text().find("Freeing"), std::string::npos);
}

TEST(cpp_tm_quorvane, TakesUnalignedRecordsAndBuffers) {
  for (const int bits : {8, 16, 32}) {
    sCall aligned(HostImage(7, 5, bits, bits == 8 ? 8 : 16));
    std::vector<unsigned char> image(41), settings(65), input(aligned.fInput), output(aligned.fOutput);
    aligned.fSettings.strength = aligned.fSettings.white_clip = 10.0f;
    std::memcpy(image.data() + 1, &aligned.fImage, 40);
    std::memcpy(settings.data() + 1, &aligned.fSettings, 64);
    input.insert(input.begin(), 0);
    output.insert(output.begin(), 0);
    cStderrCapture capture;
    ASSERT_EQ(aligned.Run(), 1);
    // The library must not care, so neither does the test: the pointers are made as a C host makes them.
    using tFunction = int (*)(const void*, void*, int, void*, const void*, void*);
    const auto call = reinterpret_cast<tFunction>(reinterpret_cast<void*>(&cpp_tm_quorvane));
    ASSERT_EQ(call(image.data() + 1, nullptr, 0, settings.data() + 1, input.data() + 1, output.data() + 1),
              1);
    EXPECT_EQ(std::memcmp(output.data() + 1, aligned.fOutput.data(), aligned.fOutput.size()), 0);
    EXPECT_EQ(std::memcmp(settings.data() + 1, &aligned.fSettings, 64), 0);
    EXPECT_EQ(capture.Text().find("Freeing"), std::string::npos);
  }
}

/// A result, or too little memory for what two sliders ask for together.
TEST(cpp_tm_quorvane, SurvivesPairsOfSlidersFarOutOfRange) {
  cStderrCapture capture;
  const float kFar[] = {kInfinity, -kInfinity, 1e30f, -1e30f, 1e4f, -1e4f};
  for (int pair = 0; pair < 36 * 36; ++pair) {
    const int first = pair / 36 % 6, second = pair / 216;
    if (first >= second) continue;
    sCall call(HostImage(2, 1, 32, 8));
    call.fSettings.horizontal_wrap = static_cast<float>(pair % 3 == 0);
    float* const sliders = &call.fSettings.strength;
    sliders[first] = kFar[pair % 6];
    sliders[second] = kFar[pair / 6 % 6];
    SCOPED_TRACE(testing::Message() << first << " " << sliders[first] << ", " << second << " "
                                    << sliders[second]);
    int result = 0;
    try {
      result = call.Run();
    } catch (const TmEngine::cOutOfMemoryException&) {
    } catch (const std::bad_alloc&) {
    }
    EXPECT_TRUE(result == 1 || call.OutputUntouched());
  }
}

TEST(cpp_tm_quorvane, DecodesExponent0AsBlackAndExponent1AsADenormal) {
  const unsigned char planes[4][2] = {{200, 128}, {200, 0}, {200, 255}, {0, 1}};
  const TmEngine::cMatrix33 identity(1, 0, 0, 0, 1, 0, 0, 0, 1);
  float x[2], y[2], z[2];
  cHostSource(HostImage(2, 1, 32, 8), 2.2, identity, planes).ReadRun(0, 0, 2, x, y, z);
  for (const float* plane : {x, y, z}) EXPECT_EQ(plane[0], 0.0f);
  EXPECT_EQ(x[1], 0x1p-128f);
  EXPECT_EQ(y[1], 0.0f);
  EXPECT_EQ(z[1], 255 * 0x1p-135f);
}

TEST(cpp_tm_quorvane, SetsItsFlagsFor1AndNothingElse) {
  for (const float value : {0.0f, 0.5f, 1.0f, 2.0f, kNaN}) {
    tm_quorvane_settings settings = {};
    settings.test1 = settings.horizontal_wrap = value;
    EXPECT_EQ(MapSettings(settings).fHorizontalWrap, value == 1.0f) << value;
    EXPECT_EQ(MapSettings(settings).fTest1, value == 1.0f) << value;
  }
}

}  // namespace
