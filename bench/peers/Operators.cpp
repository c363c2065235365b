// One round of tone-mapping operators on one picture, each called once: OpenCV's, and the library's exported
// function. Prints a line for each: its name, a tab, nanoseconds of processor time per pixel.
//
//   operators PICTURE.hdr
//
// OpenCV's operators take and give floats; what a picture of 8 or 16 bits needs besides is not counted.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/photo.hpp>
#include <stdexcept>
#include <vector>

#include "bench/Usage.h"
#include "examples/scene/Rgbe.h"
#include "export/quorvane.h"

namespace {

constexpr float kExposure = 0.35f;  // of pictures of 16 bits, which clip what is brighter than white

constexpr double kWarmBytes = 100.0;  // per pixel; most take less

template <class tDo>
void Time(const char* pName, const cv::Mat& pPicture, const tDo& pDo) {
  Bench::RestartPeak();  // nobody starts on memory that another has left
  Bench::WarmMemory(kWarmBytes * static_cast<double>(pPicture.total()));
  const double start = Bench::ProcessorTime().fTotal;
  pDo();
  const double seconds = Bench::ProcessorTime().fTotal - start;
  std::printf("%s\t%.2f\n", pName, seconds * 1e9 / static_cast<double>(pPicture.total()));
}

void TimeOpenCv(const char* pName, const cv::Mat& pPicture, const cv::Ptr<cv::Tonemap>& pOperator) {
  cv::Mat to(pPicture.size(), CV_32FC3, cv::Scalar::all(1.0));  // the caller's, as with the library
  Time(pName, pPicture, [&] { pOperator->process(pPicture, to); });
}

void TimeQuorvane(const char* pName, const cv::Mat& pPicture, int pInputBits, int pOutputBits,
                  const void* pInput) {
  const tm_quorvane_image image = {
      pPicture.cols, pPicture.rows, 3, pInputBits, pOutputBits, 0, 3 * pPicture.cols, 0, {0, 0}};
  std::vector<unsigned char> output(pPicture.total() * 3 * static_cast<std::size_t>(pOutputBits / 8), 1);
  tm_quorvane_settings settings = {};
  Time(pName, pPicture, [&] { cpp_tm_quorvane(&image, nullptr, 0, &settings, pInput, output.data()); });
}

/// Red, green and blue of each pixel, gamma-encoded.
std::vector<std::uint16_t> Samples16(const cv::Mat& pPicture) {
  std::vector<std::uint16_t> samples;
  for (const cv::Vec3f& bgr : cv::Mat_<cv::Vec3f>(pPicture)) {
    for (int channel = 2; channel >= 0; --channel) {
      const float light = std::min(bgr[channel] * kExposure, 1.0f);
      samples.push_back(static_cast<std::uint16_t>(65535.0f * std::pow(light, 1.0f / 2.2f)));
    }
  }
  return samples;
}

/// Shared exponents: a row is a plane of mantissas a channel, then the exponents.
std::vector<unsigned char> SamplesRgbe(const cv::Mat& pPicture) {
  const auto width = static_cast<std::size_t>(pPicture.cols);
  std::vector<unsigned char> samples(4 * pPicture.total());
  for (int y = 0; y < pPicture.rows; ++y) {
    unsigned char* const row = &samples[4 * width * static_cast<std::size_t>(y)];
    for (std::size_t x = 0; x < width; ++x) {
      const auto& bgr = pPicture.at<cv::Vec3f>(y, static_cast<int>(x));
      const float rgb[3] = {bgr[2], bgr[1], bgr[0]};
      unsigned char rgbe[4];
      Scene::ToRgbe(rgb, rgbe);
      for (std::size_t plane = 0; plane < 4; ++plane) row[plane * width + x] = rgbe[plane];
    }
  }
  return samples;
}

void TimeAll(const cv::Mat& pPicture) {
  TimeQuorvane("Quorvane, 16 bits to 16", pPicture, 16, 16, Samples16(pPicture).data());
  TimeOpenCv("OpenCV Drago", pPicture, cv::createTonemapDrago());
  TimeOpenCv("OpenCV Reinhard", pPicture, cv::createTonemapReinhard());
  TimeQuorvane("Quorvane, RGBE to 8 bits", pPicture, 32, 8, SamplesRgbe(pPicture).data());
  TimeOpenCv("OpenCV Mantiuk", pPicture, cv::createTonemapMantiuk());
}

}  // namespace

int main(int pCount, char** pArguments) {
  if (pCount != 2) return 2;
  cv::setNumThreads(1);
  try {
    const cv::Mat picture = cv::imread(pArguments[1], cv::IMREAD_UNCHANGED);
    if (picture.type() != CV_32FC3) throw std::runtime_error("not a picture of three floats per pixel");
    const Bench::cSilence silence;  // the library's lines
    TimeAll(picture);
  } catch (const std::exception& failure) {
    std::printf("%s\n", failure.what());
    return 1;
  }
  return 0;
}
