#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "export/quorvane.h"
#include "tests/Pictures.h"

inline tm_quorvane_image HostImage(int pWidth, int pHeight, int pInputBits, int pOutputBits) {
  return {pWidth, pHeight, 3, pInputBits, pOutputBits, 0, 3 * pWidth, 0, {0, 0}};
}

/// A call with buffers of its own.
struct sCall {
  explicit sCall(const tm_quorvane_image& pImage)
      : fImage(pImage),
        fInput(HostPicture(std::max(pImage.width, 1), std::max(pImage.height, 1), 3,
                           pImage.input_bits == 16 || pImage.input_bits == 32 ? pImage.input_bits : 8, 1)),
        fOutput(static_cast<std::size_t>(std::max(pImage.width, 1)) *
                    static_cast<std::size_t>(std::max(pImage.height, 1)) * 6,
                0xA5) {}

  int Run(int pColorSpace = 0) {
    return cpp_tm_quorvane(&fImage, nullptr, pColorSpace, &fSettings, fInput.data(), fOutput.data());
  }
  bool OutputUntouched() const {
    return std::all_of(fOutput.begin(), fOutput.end(), [](unsigned char pByte) { return pByte == 0xA5; });
  }

  tm_quorvane_image fImage;
  tm_quorvane_settings fSettings = {};
  std::vector<unsigned char> fInput;
  std::vector<unsigned char> fOutput;
};
