#include "photo/picture/Picture.h"

#include <cstddef>
#include <limits>
#include <new>

#include "cli/batch/MemoryBudget.h"
#include "engine/base/cException.h"
#include "engine/image/BitmapRows.h"
#include "photo/base/Failure.h"

namespace Cli {
namespace {

std::string SizeOf(std::int64_t pWidth, std::int64_t pHeight) {
  return std::to_string(pWidth) + " x " + std::to_string(pHeight);
}

[[noreturn]] void RefuseSize(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight) {
  throw cFailure(eFailure::kCannotRead, pFile, SizeOf(pWidth, pHeight) + " pixels do not fit into memory");
}

std::unique_ptr<TmEngine::cBitmapXYZ32> MakeBitmap(const std::string& pFile, int pWidth, int pHeight) {
  try {
    return std::make_unique<TmEngine::cBitmapXYZ32>(pWidth, pHeight);
  } catch (const std::bad_alloc&) {
    RefuseSize(pFile, pWidth, pHeight);
  } catch (const TmEngine::cOutOfMemoryException&) {
    RefuseSize(pFile, pWidth, pHeight);
  }
}

}  // namespace

void CheckSize(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight) {
  if (pWidth < 1 || pHeight < 1) {
    throw cFailure(eFailure::kCannotRead, pFile, "it has no pixels (" + SizeOf(pWidth, pHeight) + ")");
  }
  constexpr std::int64_t kLongest = std::numeric_limits<int>::max();
  if (pWidth > kLongest || pHeight > kLongest) RefuseSize(pFile, pWidth, pHeight);
  PassMemoryGate(pFile, pWidth * pHeight);
}

sPicture MakePicture(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight) {
  CheckSize(pFile, pWidth, pHeight);
  sPicture picture;
  picture.fBitmap = MakeBitmap(pFile, static_cast<int>(pWidth), static_cast<int>(pHeight));
  return picture;
}

void LoadRows(const std::string& pFile, sPicture& pPicture) {
  cPictureRows& rows = *pPicture.fRows;
  pPicture.fBitmap = MakeBitmap(pFile, rows.GetWidth(), rows.GetHeight());
  if (rows.HasAlpha()) AddAlpha(pFile, pPicture);
  rows.Hold();
  for (int y = 0; y < rows.GetHeight(); ++y) {
    rows.Read(y, GetRow(pPicture, y), rows.HasAlpha() ? GetAlphaRow(pPicture, y) : nullptr);
  }
  rows.Finish(pPicture);
  pPicture.fRows.reset();
}

void AddAlpha(const std::string& pFile, sPicture& pPicture) {
  const auto width = static_cast<std::size_t>(pPicture.fBitmap->GetWidth());
  const auto height = static_cast<std::size_t>(pPicture.fBitmap->GetHeight());
  try {
    pPicture.fAlpha.resize(width * height);
  } catch (const std::bad_alloc&) {
    RefuseSize(pFile, pPicture.fBitmap->GetWidth(), pPicture.fBitmap->GetHeight());
  }
}

float* GetRow(const sPicture& pPicture, int pY) {
  return TmEngine::RowsOf(*pPicture.fBitmap).Row(pY);
}

std::uint16_t* GetAlphaRow(sPicture& pPicture, int pY) {
  return pPicture.fAlpha.data() + std::ptrdiff_t{pY} * pPicture.fBitmap->GetWidth();
}

void SpreadGrey(float* pRow, int pWidth) {
  for (int x = 0; x < pWidth; ++x, pRow += 3) pRow[1] = pRow[2] = pRow[0];
}

}  // namespace Cli
