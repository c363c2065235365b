// Time and memory of whole calls of the exported function, on the example scene, repeated to fill the size.
//
//   quorvane-bench [MEGAPIXELS [INPUT_BITS [OUTPUT_BITS]]]    24 16 16 when not given
//
// Prints nanoseconds of processor time a pixel (the best of three calls) and the peak memory above the host's own buffers in
// bytes a pixel.
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "examples/scene/HostPixels.h"
#include "export/quorvane.h"

namespace {

constexpr int kRuns = 3;

/// A figure of /proc/self/status, in bytes.
double StatusBytes(const std::string& pName) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(pName + ":")) return 1024.0 * std::strtod(line.c_str() + pName.size() + 1, nullptr);
  }
  return 0.0;
}

/// Forgets the peak so far, that of making the picture; returns what is in use now.
double RestartPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return StatusBytes("VmRSS");
}

/// What this process has used: unlike the time that passes, it does not count what others run.
double ProcessorSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

int Number(char** pArguments, int pCount, int pIndex, int pDefault) {
  return pIndex < pCount ? std::atoi(pArguments[pIndex]) : pDefault;
}

}  // namespace

int main(int pCount, char** pArguments) {
  const int megapixels = Number(pArguments, pCount, 1, 24);
  const int inputBits = Number(pArguments, pCount, 2, 16);
  const int outputBits = Number(pArguments, pCount, 3, 16);
  if (megapixels < 1 || (inputBits != 8 && inputBits != 16 && inputBits != 32) ||
      (outputBits != 8 && outputBits != 16)) {
    std::fprintf(stderr, "usage: quorvane-bench [MEGAPIXELS [INPUT_BITS [OUTPUT_BITS]]]\n");
    return 2;
  }
  const int width = static_cast<int>(std::lround(std::sqrt(megapixels * 1e6 * 1.5)));
  const int height = static_cast<int>(std::lround(megapixels * 1e6 / width));
  const double pixels = static_cast<double>(width) * height;
  const std::vector<unsigned char> input =
      Scene::HostPixels(Scene::RenderScene({}), width, height, inputBits);
  std::vector<unsigned char> output(
      static_cast<std::size_t>(pixels) * 3 * static_cast<std::size_t>(outputBits / 8), 1);
  const double before = RestartPeak();

  const int silent = open("/dev/null", O_WRONLY);
  dup2(silent, STDERR_FILENO);  // the call's own lines
  double best = 1e30;
  for (int run = 0; run < kRuns; ++run) {
    const tm_quorvane_image image = {width, height, 3, inputBits, outputBits, 0, 3 * width, 0, {0, 0}};
    tm_quorvane_settings settings = {};
    const double start = ProcessorSeconds();
    if (cpp_tm_quorvane(&image, nullptr, 0, &settings, input.data(), output.data()) != 1) return 1;
    best = std::min(best, (ProcessorSeconds() - start) * 1e9 / pixels);
  }
  std::printf("%d x %d, %d -> %d bits: %.1f ns and %.1f bytes a pixel\n", width, height, inputBits,
              outputBits, best, (StatusBytes("VmHWM") - before) / pixels);
  return 0;
}
