#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "export/quorvane.hpp"
#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

namespace {

constexpr auto kMost = std::numeric_limits<std::int32_t>::max();

quorvane::picture SmallPicture(quorvane::input_format pInput, quorvane::output_format pOutput) {
  return {31, 17, pInput, pOutput};
}

template <class tError>
std::string TextOf(const std::function<void()>& pCall) {
  cStderrCapture capture;
  try {
    pCall();
  } catch (const tError& error) {
    return error.what();
  } catch (const std::exception& error) {
    return std::string("another class: ") + error.what();
  }
  return "nothing thrown";
}

TEST(HostHeader, GivesTheBytesOfTheExportedFunctionForEveryOption) {
  quorvane::settings sliders;
  sliders.strength = 40.0f;
  sliders.lighting = -3.0f;
  sliders.tone_compression = 12.0f;
  sliders.white_clip = 60.0f;
  sliders.black_clip = 2.0f;
  sliders.microcontrast = 4.0f;
  sliders.horizontal_wrap = true;
  const tm_quorvane_settings settings = {40, -3, 12, 60, 2, 4, {}, 0, {}, 1};
  cStderrCapture capture;
  for (const int input : {8, 16, 32}) {
    for (const int output : {8, 16}) {
      for (const int order : {0, 1}) {
        sCall expected(HostImage(31, 17, input, output));
        expected.fImage.reversed_order = order;
        expected.fSettings = settings;
        ASSERT_EQ(expected.Run(2), 1);
        quorvane::picture picture = SmallPicture(static_cast<quorvane::input_format>(input),
                                                 static_cast<quorvane::output_format>(output));
        picture.space = quorvane::color_space::prophoto_rgb;
        picture.order = static_cast<quorvane::sample_order>(order);
        sCall call(expected.fImage);
        for (int repeated = 0; repeated < 2; ++repeated)
          quorvane::tonemap(picture, sliders, call.fInput.data(), call.fInput.size(), call.fOutput.data(),
                            call.fOutput.size());
        EXPECT_EQ(call.fOutput, expected.fOutput) << input << " " << output << " " << order;
      }
    }
  }
  EXPECT_EQ(sliders.white_clip, 60.0f);
}

std::string TooSmall(const char* pName, std::uint64_t pNeeded) {
  return std::string("The ") + pName + " buffer has " + std::to_string(pNeeded - 1) +
         " bytes, but the picture needs " + std::to_string(pNeeded) + ".";
}

/// A byte less than the sizes is refused; with the sizes, the last byte that a call touches is the buffer's.
TEST(HostHeader, KnowsTheSizesOfBuffers) {
  const struct {
    tm_quorvane_image fImage;
    std::uint64_t fInput, fOutput;
  } rows[] = {
      {{5, 3, 3, 8, 8, 0, 15, 0, {}}, 45, 45},
      {{5, 3, 4, 16, 16, 0, 23, 0, {}}, 120, 132},
      {{5, 3, 2, 32, 16, 0, 10, 0, {}}, 60, 60},
      {{5, 3, 3, 8, 8, 0, 11, 1, {}}, 45, 33},  // rows are cut
      {{5, 3, 3, 8, 8, 0, 17, 1, {}}, 45, 49},
      {{kMost, kMost, kMost, 16, 16, 0, kMost, 0, {}}, UINT64_MAX, 18446744052234715142u},
      {{100000, 100000, 3, 16, 8, 0, 300000, 0, {}}, 60000000000, 30000000000},
      {{0, 3, 3, 8, 8, 0, 15, 0, {}}, 0, 0},
      {{5, 3, -1, 8, 8, 0, 15, 0, {}}, 0, 0},
      {{5, 3, 3, 12, 12, 0, -1, 0, {}}, 0, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.fImage.width << " " << row.fImage.output_row_pitch);
    EXPECT_EQ(quorvane::input_size(row.fImage), row.fInput);
    EXPECT_EQ(quorvane::output_size(row.fImage), row.fOutput);
    if (row.fInput == 0 || row.fInput > 1000) continue;
    // Blocks of exactly these sizes, which the address sanitizer watches.
    std::vector<unsigned char> input(row.fInput, 77), output(row.fOutput);
    const auto call = [&](std::size_t pInput, std::size_t pOutput) {
      return TextOf<std::invalid_argument>(
          [&] { quorvane::tonemap(row.fImage, 0, {}, input.data(), pInput, output.data(), pOutput); });
    };
    EXPECT_EQ(call(input.size(), output.size()), "nothing thrown");
    EXPECT_EQ(call(input.size() - 1, output.size()), TooSmall("input", row.fInput));
    EXPECT_EQ(call(input.size(), output.size() - 1), TooSmall("output", row.fOutput));
  }
}

TEST(HostHeader, PassesErrorsOn) {
  using quorvane::input_format;
  using quorvane::output_format;
  unsigned char bytes[31 * 17 * 3] = {};
  const auto call = [&](const quorvane::picture& pPicture, const quorvane::settings& pSettings) {
    return [&bytes, pPicture, pSettings] {
      quorvane::tonemap(pPicture, pSettings, bytes, sizeof bytes, bytes, sizeof bytes);
    };
  };
  quorvane::picture picture = SmallPicture(input_format::rgb8, output_format::rgb8);
  quorvane::settings nan;
  nan.lighting = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(TextOf<std::runtime_error>(call(picture, nan)), "Argument pLighting is out of range.");
  picture.width = 0;
  EXPECT_EQ(TextOf<std::runtime_error>(call(picture, {})), "Argument pWidth must be greater than zero.");
  picture.width = kMost;
  EXPECT_EQ(TextOf<std::invalid_argument>(call(picture, {})),
            "Output rows of 6442450941 samples are too long.");
  picture = SmallPicture(input_format::rgb8, output_format::rgb8);
  picture.space = static_cast<quorvane::color_space>(3);
  EXPECT_EQ(TextOf<quorvane::unsupported_error>(call(picture, {})), "Colour space 3 is not supported.");
  picture = SmallPicture(static_cast<input_format>(12), output_format::rgb8);
  EXPECT_EQ(TextOf<quorvane::unsupported_error>(call(picture, {})),
            "12 bits per input sample are not supported.");
}

#if defined(__cpp_lib_span)
TEST(HostHeader, TakesSpansOfTheFormatsSamples) {
  using quorvane::input_format;
  using quorvane::output_format;
  sCall expected(HostImage(31, 17, 16, 16));
  std::vector<std::uint16_t> input(expected.fInput.size() / 2), output(31 * 17 * 3);
  std::memcpy(input.data(), expected.fInput.data(), expected.fInput.size());
  {
    cStderrCapture capture;
    ASSERT_EQ(expected.Run(), 1);
    quorvane::tonemap(SmallPicture(input_format::rgb16, output_format::rgb16), {}, input, output);
  }
  EXPECT_EQ(std::memcmp(output.data(), expected.fOutput.data(), output.size() * 2), 0);

  const auto text = [&](input_format pInput, output_format pOutput) {
    return TextOf<std::invalid_argument>(
        [&] { quorvane::tonemap(SmallPicture(pInput, pOutput), {}, input, output); });
  };
  EXPECT_EQ(text(input_format::rgb8, output_format::rgb16),
            "The input has 16-bit samples, but its format is 8 bits.");
  EXPECT_EQ(text(input_format::rgbe, output_format::rgb16),
            "The input has 16-bit samples, but its format is RGBE.");
  EXPECT_EQ(text(input_format::rgb16, output_format::rgb8),
            "The output has 16-bit samples, but its format is 8 bits.");
}
#endif

}  // namespace
