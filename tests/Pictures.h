#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

/// Pictures that tests make themselves: the same numbers on every machine.
class cRandom {
 public:
  explicit cRandom(std::uint64_t pSeed) : fState(pSeed * 0x9E3779B97F4A7C15u + 1u) {}

  /// SplitMix64 (G. Steele and others, "Fast splittable pseudorandom number generators", OOPSLA 2014).
  std::uint64_t Next() {
    std::uint64_t z = (fState += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  /// 0 to pEnd - 1.
  int Below(int pEnd) { return static_cast<int>(Next() % static_cast<std::uint64_t>(pEnd)); }
  /// 0 up to, not including, 1.
  float Unit() { return static_cast<float>(Next() >> 40) * 0x1p-24f; }

 private:
  std::uint64_t fState;
};

/// The bytes of a host's input buffer: a lit gradient with texture, for any of the three input depths.
inline std::vector<unsigned char> HostPicture(int pWidth, int pHeight, int pSamplesPerPixel, int pInputBits,
                                              std::uint64_t pSeed) {
  cRandom random(pSeed);
  const auto pixels = static_cast<std::size_t>(pWidth) * static_cast<std::size_t>(pHeight);
  const std::size_t bytes =
      pInputBits == 32 ? 4 : static_cast<std::size_t>(pSamplesPerPixel * pInputBits / 8);
  std::vector<unsigned char> picture(pixels * bytes);
  for (unsigned char& byte : picture) byte = static_cast<unsigned char>(random.Next());
  if (pInputBits != 32) return picture;
  // Exponents over some eight decades; a row is three planes of mantissas and one of exponents.
  const auto width = static_cast<std::size_t>(pWidth);
  for (std::size_t i = 0; i < pixels; ++i) {
    const std::size_t at = (i / width) * 4 * width + 3 * width + i % width;
    picture[at] = static_cast<unsigned char>(116 + 28 * (i % width) / width + picture[at] % 2);
  }
  return picture;
}
