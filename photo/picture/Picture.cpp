#include "photo/picture/Picture.h"

#include <cstddef>
#include <limits>
#include <new>
#include <utility>

#include "engine/base/cException.h"
#include "engine/image/BitmapRows.h"
#include "photo/base/Failure.h"

namespace Photo {
namespace {

std::string SizeOf(std::int64_t pWidth, std::int64_t pHeight) {
  return std::to_string(pWidth) + " x " + std::to_string(pHeight);
}

[[noreturn]] void RefuseSize(std::int64_t pWidth, std::int64_t pHeight) {
  throw cMemoryFailure(eFailure::kCannotRead, SizeOf(pWidth, pHeight) + " pixels do not fit into memory");
}

std::vector<std::uint16_t> MakeAlpha(int pWidth, int pHeight) {
  try {
    return std::vector<std::uint16_t>(static_cast<std::size_t>(pWidth) * static_cast<std::size_t>(pHeight));
  } catch (const std::bad_alloc&) {
    RefuseSize(pWidth, pHeight);
  }
}

}  // namespace

void CheckSize(std::int64_t pWidth, std::int64_t pHeight, const tMemoryGate& pGate) {
  if (pWidth < 1 || pHeight < 1) {
    throw cFailure(eFailure::kCannotRead, "it has no pixels (" + SizeOf(pWidth, pHeight) + ")");
  }
  constexpr std::int64_t kLongest = std::numeric_limits<int>::max();
  if (pWidth > kLongest || pHeight > kLongest) RefuseSize(pWidth, pHeight);
  if (pGate) pGate(pWidth * pHeight);
}

std::unique_ptr<TmEngine::cBitmapXYZ32> MakeBitmap(int pWidth, int pHeight) {
  try {
    return std::make_unique<TmEngine::cBitmapXYZ32>(pWidth, pHeight);
  } catch (const std::bad_alloc&) {
    RefuseSize(pWidth, pHeight);
  } catch (const TmEngine::cOutOfMemoryException&) {
    RefuseSize(pWidth, pHeight);
  }
}

sPicture LoadPicture(sOpenedPicture pOpened, cWatch* pWatch) {
  cPictureRows& rows = *pOpened.fRows;
  sPicture picture;
  picture.fBitmap = MakeBitmap(rows.GetWidth(), rows.GetHeight());
  if (rows.HasAlpha()) picture.fAlpha = MakeAlpha(rows.GetWidth(), rows.GetHeight());
  rows.Hold();
  for (int y = 0; y < rows.GetHeight(); ++y) {
    if (pWatch != nullptr) pWatch->Check();
    rows.Read(y, GetRow(picture, y), rows.HasAlpha() ? GetAlphaRow(picture, y) : nullptr);
  }
  picture.fRepairs = rows.Finish().value();
  static_cast<sPictureInfo&>(picture) = std::move(pOpened);
  WarnOfRepairs(picture.fRepairs, picture.fWarnings);
  return picture;
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

}  // namespace Photo
