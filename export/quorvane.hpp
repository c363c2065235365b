// Quorvane for C++ hosts: the exported function with typed options and buffers whose sizes are checked.
//
//   quorvane::picture picture(width, height, quorvane::input_format::rgb16, quorvane::output_format::rgb8);
//   quorvane::settings settings;
//   settings.strength = 30.0f;
//   quorvane::tonemap(picture, settings, input, input_bytes, output, output_bytes);
//
// Header only, for C++11 and later; from C++20 also with std::span. Link libquorvane alone. What a call does,
// needs and logs is described in quorvane.h and holds here as well.
#ifndef QUORVANE_HPP
#define QUORVANE_HPP

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string>

#if __cplusplus >= 202002L
#include <version>
#endif
#if defined(__cpp_lib_span)
#include <span>
#endif

#include "quorvane.h"

namespace quorvane {

/// The colour space of both pictures.
enum class color_space : std::int32_t { srgb = 0, adobe_rgb = 1, prophoto_rgb = 2 };

/// 8 or 16 bits per sample, gamma-encoded; or RGBE, four planes of bytes per row (see input_pixels in
/// quorvane.h).
enum class input_format : std::int32_t { rgb8 = 8, rgb16 = 16, rgbe = 32 };

/// 8 or 16 bits per sample, encoded as the colour space demands.
enum class output_format : std::int32_t { rgb8 = 8, rgb16 = 16 };

/// bgr: a pixel's first sample is blue, in both buffers; takes 3 samples per pixel.
enum class sample_order : std::int32_t { rgb = 0, bgr = 1 };

/// The layout of both buffers.
struct picture {
  picture(std::int32_t pWidth, std::int32_t pHeight, input_format pInput, output_format pOutput)
      : width(pWidth), height(pHeight), input(pInput), output(pOutput) {}

  std::int32_t width;   // pixels per row, 1 to 748980
  std::int32_t height;  // rows, 1 or more
  input_format input;
  output_format output;
  color_space space = color_space::srgb;
  sample_order order = sample_order::rgb;
  std::int32_t samples_per_pixel = 3;  // 1 or more; of the output, and of the input but for RGBE
  std::int32_t output_row_pitch = 0;   // samples from one output row to the next; 0: rows follow without gaps
};

/// The sliders. Those that start at 0 are at rest. Values beyond the ranges are taken as well.
struct settings {
  float strength = 0;            // -100 to 100: compression of large contrasts
  float lighting = 0;            // -10 to 10: higher is more local. Not NaN
  float tone_compression = 0;    // 0 to 100: pull of the extremes toward the mean
  float white_clip = 0;          // 0 to 100: pixels that become white, in twentieths of a per cent
  float black_clip = 0;          // 0 to 100: pixels that become black, in per cent
  float microcontrast = 0;       // -10 to 10: higher is finer. Not NaN
  bool horizontal_wrap = false;  // the left and right edges meet, as in a full panorama
};

/// A colour space or input format that the library does not know.
class unsupported_error : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

namespace detail {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

/// The largest number in place of one that does not fit: no buffer has that size.
inline std::uint64_t product(std::uint64_t pA, std::uint64_t pB) {
  return pB != 0 && pA > kMost / pB ? kMost : pA * pB;
}

inline std::uint64_t sum(std::uint64_t pA, std::uint64_t pB) {
  return pA > kMost - pB ? kMost : pA + pB;
}

/// GCC: std::to_string has data that keep a host's library loaded for ever.
inline std::string text(std::int64_t pNumber) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%lld", static_cast<long long>(pNumber));
  return digits;
}

inline std::string text(std::uint64_t pNumber) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%llu", static_cast<unsigned long long>(pNumber));
  return digits;
}

inline bool has_pixels(const tm_quorvane_image& pImage) {
  return pImage.width >= 1 && pImage.height >= 1 && pImage.samples_per_pixel >= 1;
}

inline std::uint64_t row_samples(const tm_quorvane_image& pImage) {
  return product(static_cast<std::uint64_t>(pImage.width),
                 static_cast<std::uint64_t>(pImage.samples_per_pixel));
}

inline void check_size(const char* pName, std::size_t pSize, std::uint64_t pNeeded) {
  if (pSize >= pNeeded) return;
  throw std::invalid_argument(std::string("The ") + pName + " buffer has " + text(std::uint64_t{pSize}) +
                              " bytes, but the picture needs " +
                              (pNeeded == kMost ? "more than memory can hold" : text(pNeeded)) + ".");
}

inline void check_samples(const char* pName, std::size_t pSampleSize, std::int32_t pBits) {
  if (pSampleSize == 1 || pBits == 16) return;
  throw std::invalid_argument(std::string("The ") + pName + " has 16-bit samples, but its format is " +
                              (pBits == 32 ? "RGBE." : "8 bits."));
}

inline std::int32_t row_pitch(const picture& pPicture) {
  if (pPicture.output_row_pitch != 0) return pPicture.output_row_pitch;
  const std::int64_t packed = std::int64_t{pPicture.width} * pPicture.samples_per_pixel;
  if (packed > std::numeric_limits<std::int32_t>::max())
    throw std::invalid_argument("Output rows of " + text(packed) + " samples are too long.");
  return packed < 0 ? 0 : static_cast<std::int32_t>(packed);
}

[[noreturn]] inline void throw_unsupported(const tm_quorvane_image& pImage, int pColorSpace) {
  if (pColorSpace < 0 || pColorSpace > 2)
    throw unsupported_error("Colour space " + text(std::int64_t{pColorSpace}) + " is not supported.");
  throw unsupported_error(text(std::int64_t{pImage.input_bits}) +
                          " bits per input sample are not supported.");
}

}  // namespace detail

/// Bytes that the call reads from the input; 0 for a picture that it refuses without reading it.
inline std::uint64_t input_size(const tm_quorvane_image& pImage) {
  if (!detail::has_pixels(pImage)) return 0;
  const auto height = static_cast<std::uint64_t>(pImage.height);
  const auto width = static_cast<std::uint64_t>(pImage.width);
  switch (pImage.input_bits) {
    case 8:
      return detail::product(detail::row_samples(pImage), height);
    case 16:
      return detail::product(detail::product(detail::row_samples(pImage), height), 2);
    case 32:
      return detail::product(width * height, 4);
    default:
      return 0;
  }
}

/// Bytes from the output's first sample to its last; 0 for a picture that the call refuses.
inline std::uint64_t output_size(const tm_quorvane_image& pImage) {
  if (!detail::has_pixels(pImage) || pImage.output_row_pitch < 0) return 0;
  if (pImage.output_bits != 8 && pImage.output_bits != 16) return 0;
  const auto pitch = static_cast<std::uint64_t>(pImage.output_row_pitch);
  std::uint64_t last_row = detail::row_samples(pImage);
  if (pImage.reversed_order != 0 && pitch < last_row) last_row = pitch;
  const std::uint64_t samples =
      detail::sum(pitch * (static_cast<std::uint64_t>(pImage.height) - 1), last_row);
  return detail::product(samples, static_cast<std::uint64_t>(pImage.output_bits / 8));
}

/// The records of the exported function. Throws std::invalid_argument where packed rows would be too long.
inline tm_quorvane_image record(const picture& pPicture) {
  tm_quorvane_image image = tm_quorvane_image();
  image.width = pPicture.width;
  image.height = pPicture.height;
  image.samples_per_pixel = pPicture.samples_per_pixel;
  image.input_bits = static_cast<std::int32_t>(pPicture.input);
  image.output_bits = static_cast<std::int32_t>(pPicture.output);
  image.output_row_pitch = detail::row_pitch(pPicture);
  image.reversed_order = static_cast<std::int32_t>(pPicture.order);
  return image;
}

inline tm_quorvane_settings record(const settings& pSettings) {
  tm_quorvane_settings sliders = tm_quorvane_settings();
  sliders.strength = pSettings.strength;
  sliders.lighting = pSettings.lighting;
  sliders.tone_compression = pSettings.tone_compression;
  sliders.white_clip = pSettings.white_clip;
  sliders.black_clip = pSettings.black_clip;
  sliders.microcontrast = pSettings.microcontrast;
  sliders.horizontal_wrap = pSettings.horizontal_wrap ? 1.0f : 0.0f;
  return sliders;
}

inline std::uint64_t input_size(const picture& pPicture) {
  return input_size(record(pPicture));
}

inline std::uint64_t output_size(const picture& pPicture) {
  return output_size(record(pPicture));
}

/// Tone-maps one picture, described by the records of the exported function. The settings stay as they are.
/// Sizes are in bytes. The buffers must not overlap and need not be aligned.
///
/// Throws std::invalid_argument, with both sizes, when a buffer is too small; unsupported_error for an
/// unknown colour space or input format; and what the exported function throws, as it is (see quorvane.h).
inline void tonemap(const tm_quorvane_image& pImage, int pColorSpace, const tm_quorvane_settings& pSettings,
                    const void* pInput, std::size_t pInputSize, void* pOutput, std::size_t pOutputSize) {
  detail::check_size("input", pInputSize, input_size(pImage));
  detail::check_size("output", pOutputSize, output_size(pImage));
  tm_quorvane_settings settings = pSettings;  // the call changes white_clip
  if (cpp_tm_quorvane(&pImage, nullptr, pColorSpace, &settings, pInput, pOutput) != 1)
    detail::throw_unsupported(pImage, pColorSpace);
}

/// The same for typed options.
inline void tonemap(const picture& pPicture, const settings& pSettings, const void* pInput,
                    std::size_t pInputSize, void* pOutput, std::size_t pOutputSize) {
  tonemap(record(pPicture), static_cast<int>(pPicture.space), record(pSettings), pInput, pInputSize, pOutput,
          pOutputSize);
}

#if defined(__cpp_lib_span)

// The same for spans and what converts to them, such as std::vector. 16-bit samples take a 16-bit format;
// bytes take any. Else std::invalid_argument is thrown.

namespace detail {

template <class tInput, class tOutput>
void tonemap_spans(const picture& pPicture, const settings& pSettings, std::span<const tInput> pInput,
                   std::span<tOutput> pOutput) {
  check_samples("input", sizeof(tInput), static_cast<std::int32_t>(pPicture.input));
  check_samples("output", sizeof(tOutput), static_cast<std::int32_t>(pPicture.output));
  tonemap(pPicture, pSettings, pInput.data(), pInput.size_bytes(), pOutput.data(), pOutput.size_bytes());
}

}  // namespace detail

inline void tonemap(const picture& pPicture, const settings& pSettings, std::span<const std::uint8_t> pInput,
                    std::span<std::uint8_t> pOutput) {
  detail::tonemap_spans(pPicture, pSettings, pInput, pOutput);
}
inline void tonemap(const picture& pPicture, const settings& pSettings, std::span<const std::uint8_t> pInput,
                    std::span<std::uint16_t> pOutput) {
  detail::tonemap_spans(pPicture, pSettings, pInput, pOutput);
}
inline void tonemap(const picture& pPicture, const settings& pSettings, std::span<const std::uint16_t> pInput,
                    std::span<std::uint8_t> pOutput) {
  detail::tonemap_spans(pPicture, pSettings, pInput, pOutput);
}
inline void tonemap(const picture& pPicture, const settings& pSettings, std::span<const std::uint16_t> pInput,
                    std::span<std::uint16_t> pOutput) {
  detail::tonemap_spans(pPicture, pSettings, pInput, pOutput);
}

#endif

}  // namespace quorvane

#endif
