#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "engine/base/cException.h"
#include "engine/color/cTransfer.h"
#include "engine/color/cTransferLUT.h"
#include "engine/curve/cHermiteSpline.h"

// Hosts call virtual operations by their places, so these are part of the interface.

namespace TmEngine {
namespace {

/// The slot of a virtual operation among those of its class; the destructor takes the first two. A pointer to
/// a virtual member is the offset of its slot and a mark, which lies in the first or in the second word.
template <class tMember>
std::ptrdiff_t SlotOf(tMember pMember) {
  std::ptrdiff_t words[2];
  static_assert(sizeof pMember == sizeof words);
  std::memcpy(words, &pMember, sizeof words);
  const bool isVirtual = ((words[0] | words[1]) & 1) != 0;
  return isVirtual ? (words[0] & ~std::ptrdiff_t{1}) / static_cast<std::ptrdiff_t>(sizeof(void*)) : -1;
}

template <class... tMembers>
void ExpectOrder(std::ptrdiff_t pFirst, tMembers... pMembers) {
  std::ptrdiff_t slot = pFirst;
  for (const std::ptrdiff_t each : {SlotOf(pMembers)...}) EXPECT_EQ(each, slot++);
}

TEST(VirtualOperations, KeepTheirOrder) {
  using tSpline = cHermiteSpline;
  ExpectOrder(2, &cException::what, &cException::GetClassName, &cException::GetCategory,
              &cException::GetMessage, &cException::GetFile, &cException::GetTimestamp,
              &cException::GetFunction, &cException::GetLine);
  ExpectOrder(2, &cTransfer::Clone, &cTransfer::Evaluate);
  ExpectOrder(2, &cTransferLUT::BuildCache);
  ExpectOrder(2, &tSpline::Clone, &tSpline::Evaluate, &tSpline::operator==, &tSpline::UpdatePointArray,
              &tSpline::GetFloatTable, &tSpline::Get16BitTable, &tSpline::Get8BitInputFloatTable,
              &tSpline::Get8BitTable, &tSpline::Invalidate, &tSpline::BuildFloatTable,
              &tSpline::Build16BitTable, &tSpline::Build8BitInputFloatTable, &tSpline::Build8BitTable);
}

}  // namespace
}  // namespace TmEngine
