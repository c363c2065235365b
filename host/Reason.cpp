#include "host/Reason.h"

#include <cstring>

namespace {

bool ContinuesCharacter(char pByte) {
  return (static_cast<unsigned char>(pByte) & 0xC0) == 0x80;
}

}  // namespace

void WriteReason(const char* pText, char* pTo, std::size_t pSize) {
  if (pTo == nullptr || pSize == 0) return;
  std::size_t length = std::strlen(pText);
  if (length >= pSize) {
    length = pSize - 1;
    while (length > 0 && ContinuesCharacter(pText[length])) --length;
  }
  std::memcpy(pTo, pText, length);
  pTo[length] = '\0';
}
