#include "python/extension/PixelArray.h"

#include <Imath/half.h>

#include <cstring>
#include <limits>

#include "photo/picture/Alpha.h"

namespace Python {
namespace {

namespace py = pybind11;

eSample FindSample(const py::dtype& pType, const std::string& pName) {
  const bool isNative = pType.byteorder() == '=' || pType.byteorder() == '|';
  const bool isUnsigned = pType.kind() == 'u';
  const bool isFloat = pType.kind() == 'f';
  if (isUnsigned && pType.itemsize() == 1) return eSample::kUInt8;
  if (isNative && isUnsigned && pType.itemsize() == 2) return eSample::kUInt16;
  if (isNative && isFloat && pType.itemsize() == 2) return eSample::kHalf;
  if (isNative && isFloat && pType.itemsize() == 4) return eSample::kFloat;
  throw py::value_error(pName + " has samples of " + std::string(py::str(static_cast<py::object>(pType))) +
                        "; use astype() to make them uint8, uint16, float16 or float32");
}

std::string DescribeShape(const py::array& pArray) {
  return std::string(py::str(pArray.attr("shape")));
}

int CheckSide(py::ssize_t pSide, const std::string& pName) {
  if (pSide < 1) throw py::value_error(pName + " has no pixels");
  if (pSide > std::numeric_limits<int>::max()) throw py::value_error(pName + " is too large");
  return static_cast<int>(pSide);
}

/// Calls pDo(sample of the row, packed sample) for all colours of a row.
template <class tByte, class tDo>
void ForEachColour(const sPixelArray& pArray, unsigned char* pRow, int pX, tByte* pPacked, const tDo& pDo) {
  const int bytes = pArray.SampleBytes();
  unsigned char* pixel = pRow + pX * pArray.fPixelStep;
  for (int x = pX; x < pArray.fWidth; ++x, pixel += pArray.fPixelStep) {
    for (int i = 0; i < 3; ++i, pPacked += bytes) pDo(pixel + i * pArray.fSampleStep, pPacked, bytes);
  }
}

/// A copy of a size that the compiler knows.
void CopySample(void* pTo, const void* pFrom, int pBytes) {
  if (pBytes == 1) {
    std::memcpy(pTo, pFrom, 1);
  } else if (pBytes == 2) {
    std::memcpy(pTo, pFrom, 2);
  } else {
    std::memcpy(pTo, pFrom, 4);
  }
}

template <class tSample>
tSample Load(const unsigned char* pFrom) {
  tSample sample;
  std::memcpy(&sample, pFrom, sizeof sample);
  return sample;
}

float LoadHalf(const unsigned char* pFrom) {
  Imath::half sample;
  sample.setBits(Load<std::uint16_t>(pFrom));
  return sample;
}

std::uint16_t LoadAlpha(const unsigned char* pFrom, eSample pSample) {
  switch (pSample) {
    case eSample::kUInt8:
      return Photo::AlphaOf8Bits(*pFrom);
    case eSample::kUInt16:
      return Load<std::uint16_t>(pFrom);
    case eSample::kHalf:
      return Photo::AlphaOfFloat(LoadHalf(pFrom));
    default:
      return Photo::AlphaOfFloat(Load<float>(pFrom));
  }
}

}  // namespace

int sPixelArray::SampleBytes() const {
  return fSample == eSample::kUInt8 ? 1 : fSample == eSample::kFloat ? 4 : 2;
}

bool sPixelArray::HasPackedRows() const {
  return fChannels == 3 && fSampleStep == SampleBytes() && fPixelStep == std::ptrdiff_t{3} * SampleBytes();
}

bool sPixelArray::IsAligned() const {
  const auto bytes = static_cast<std::size_t>(SampleBytes());
  return reinterpret_cast<std::uintptr_t>(fPixels) % bytes == 0 && fRowStep % SampleBytes() == 0;
}

sPixelArray ViewPixels(const py::array& pArray, const std::string& pName) {
  const eSample sample = FindSample(pArray.dtype(), pName);
  if (pArray.ndim() != 3 || (pArray.shape(2) != 3 && pArray.shape(2) != 4)) {
    throw py::value_error(pName + " has the shape " + DescribeShape(pArray) +
                          "; it must be (height, width, 3), or (height, width, 4) with alpha");
  }
  sPixelArray pixels;
  pixels.fPixels = static_cast<unsigned char*>(const_cast<void*>(pArray.data()));
  pixels.fHeight = CheckSide(pArray.shape(0), pName);
  pixels.fWidth = CheckSide(pArray.shape(1), pName);
  pixels.fChannels = static_cast<int>(pArray.shape(2));
  pixels.fSample = sample;
  pixels.fRowStep = pArray.strides(0);
  pixels.fPixelStep = pArray.strides(1);
  pixels.fSampleStep = pArray.strides(2);
  return pixels;
}

sPixelArray ViewWritable(py::array& pArray, const std::string& pName) {
  if (!pArray.writeable()) throw py::value_error(pName + " is read-only");
  return ViewPixels(pArray, pName);
}

void GatherRow(const sPixelArray& pFrom, int pY, void* pTo) {
  auto* const to = static_cast<unsigned char*>(pTo);
  if (pFrom.HasPackedRows()) {
    std::memcpy(to, pFrom.Row(pY),
                static_cast<std::size_t>(pFrom.fWidth) * 3 * static_cast<std::size_t>(pFrom.SampleBytes()));
    return;
  }
  ForEachColour(pFrom, pFrom.Row(pY), 0, to,
                [](const void* pSample, void* pPacked, int pBytes) { CopySample(pPacked, pSample, pBytes); });
}

void ScatterRow(const void* pFrom, int pStart, const sPixelArray& pTo, int pY) {
  const auto* const from = static_cast<const unsigned char*>(pFrom);
  const auto copy = [](void* pSample, const void* pPacked, int pBytes) {
    CopySample(pSample, pPacked, pBytes);
  };
  ForEachColour(pTo, pTo.Row(pY), pStart, from, copy);
  sPixelArray start = pTo;
  start.fWidth = pStart;
  ForEachColour(start, start.Row(pY), 0, from + std::ptrdiff_t{3} * (pTo.fWidth - pStart) * pTo.SampleBytes(),
                copy);
}

void GatherAlpha(const sPixelArray& pFrom, int pY, std::uint16_t* pTo) {
  const unsigned char* alpha = pFrom.Row(pY) + 3 * pFrom.fSampleStep;
  for (int x = 0; x < pFrom.fWidth; ++x, alpha += pFrom.fPixelStep) pTo[x] = LoadAlpha(alpha, pFrom.fSample);
}

void ScatterAlpha(const std::uint16_t* pFrom, const sPixelArray& pTo, int pY) {
  unsigned char* alpha = pTo.Row(pY) + 3 * pTo.fSampleStep;
  for (int x = 0; x < pTo.fWidth; ++x, alpha += pTo.fPixelStep) {
    if (pTo.fSample == eSample::kUInt8) {
      *alpha = static_cast<unsigned char>((pFrom[x] + 128u) / 257u);
    } else {
      std::memcpy(alpha, pFrom + x, sizeof *pFrom);
    }
  }
}

void ReadFloats(const sPixelArray& pFrom, int pY, float* pTo) {
  if (pFrom.fSample == eSample::kFloat) return GatherRow(pFrom, pY, pTo);
  const unsigned char* pixel = pFrom.Row(pY);
  for (int x = 0; x < pFrom.fWidth; ++x, pixel += pFrom.fPixelStep) {
    for (int i = 0; i < 3; ++i) *pTo++ = LoadHalf(pixel + i * pFrom.fSampleStep);
  }
}

}  // namespace Python
