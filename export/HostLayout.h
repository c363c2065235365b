#pragma once

#include <cstddef>
#include <cstring>

#include "export/quorvane.h"

/// Where the engine's three channels lie in a pixel of the host's N samples.
struct sHostChannels {
  int fFirst;
  int fMiddle;
  int fThird;
};

inline sHostChannels HostChannels(const tm_quorvane_image& pImage) {
  const int last = pImage.samples_per_pixel - 1;
  const int middle = last / 2;
  return pImage.reversed_order == 0 ? sHostChannels{0, middle, last} : sHostChannels{last, middle, 0};
}

/// Samples of host buffers are read and written through these: the host's pointers need not be aligned.
template <class tSample>
tSample LoadSample(const unsigned char* pBuffer, std::ptrdiff_t pIndex) {
  tSample sample;
  std::memcpy(&sample, pBuffer + pIndex * static_cast<std::ptrdiff_t>(sizeof sample), sizeof sample);
  return sample;
}

template <class tSample>
void StoreSample(unsigned char* pBuffer, std::ptrdiff_t pIndex, tSample pSample) {
  std::memcpy(pBuffer + pIndex * static_cast<std::ptrdiff_t>(sizeof pSample), &pSample, sizeof pSample);
}
