#pragma once

#include <pybind11/numpy.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace Python {

/// The kinds of samples that pictures in memory have.
enum class eSample { kUInt8, kUInt16, kHalf, kFloat };

/// The pixels of a numpy array of the shape (height, width, 3 or 4), looked at where they are. The array
/// keeps them.
struct sPixelArray {
  unsigned char* fPixels = nullptr;
  int fWidth = 0;
  int fHeight = 0;
  int fChannels = 3;  ///< 4 with alpha.
  eSample fSample = eSample::kUInt8;
  std::ptrdiff_t fRowStep = 0;  ///< Bytes from one row to the next,
  std::ptrdiff_t fPixelStep = 0;
  std::ptrdiff_t fSampleStep = 0;

  unsigned char* Row(int pY) const { return fPixels + pY * fRowStep; }
  int SampleBytes() const;
  bool IsOfFloats() const { return fSample == eSample::kHalf || fSample == eSample::kFloat; }
  /// Whether each row holds red, green, blue of pixel after pixel, without gaps.
  bool HasPackedRows() const;
  bool IsAligned() const;
};

/// pName: what messages call it. Throws ValueError for arrays of another shape or type.
sPixelArray ViewPixels(const pybind11::array& pArray, const std::string& pName);
/// An array to write to. Throws ValueError for one that is read-only as well.
sPixelArray ViewWritable(pybind11::array& pArray, const std::string& pName);

/// Copies a row's colours, as they are, into packed samples.
void GatherRow(const sPixelArray& pFrom, int pY, void* pTo);
/// Copies packed samples into a row's colours. pStart: the pixel that the first one goes to; those that go
/// beyond the last one come first.
void ScatterRow(const void* pFrom, int pStart, const sPixelArray& pTo, int pY);
/// Alpha of a row, 65535 opaque.
void GatherAlpha(const sPixelArray& pFrom, int pY, std::uint16_t* pTo);
/// The reverse, for integer samples.
void ScatterAlpha(const std::uint16_t* pFrom, const sPixelArray& pTo, int pY);
/// A row's colours as floats, packed.
void ReadFloats(const sPixelArray& pFrom, int pY, float* pTo);

}  // namespace Python
