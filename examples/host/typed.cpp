// The smallest host in C++ (C++11 and later): the same as host.c, but errors are caught and buffers are
// checked.
//
//   quorvane-host-typed OUT.ppm
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "quorvane.hpp"

namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 320;

/// A picture with 16-bit samples: stripes whose right end is a thousand times brighter.
std::vector<std::uint16_t> MakePicture() {
  std::vector<std::uint16_t> samples;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int light = 64 + x * x / 4 + (x / 24 + y / 24) % 2 * x;
      for (const int share : {4, 3, 2}) samples.push_back(static_cast<std::uint16_t>(light * share / 4));
    }
  }
  return samples;
}

void WritePpm(const char* pPath, const std::vector<std::uint8_t>& pSamples) {
  std::ofstream file(pPath, std::ios::binary);
  file << "P6\n" << kWidth << " " << kHeight << "\n255\n";
  file.write(reinterpret_cast<const char*>(pSamples.data()), static_cast<std::streamsize>(pSamples.size()));
  if (!file.flush()) throw std::runtime_error("the file cannot be written");
}

void Run(const char* pPath) {
  const std::vector<std::uint16_t> input = MakePicture();
  std::vector<std::uint8_t> output(input.size());

  const quorvane::picture picture(kWidth, kHeight, quorvane::input_format::rgb16,
                                  quorvane::output_format::rgb8);
  quorvane::settings settings;
  settings.strength = 30.0f;
  quorvane::tonemap(picture, settings, input.data(), input.size() * sizeof input[0], output.data(),
                    output.size());

  WritePpm(pPath, output);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUT.ppm\n", argv[0]);
    return 2;
  }
  try {
    Run(argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: cannot make %s: %s\n", argv[0], argv[1], error.what());
    return 1;
  }
}
