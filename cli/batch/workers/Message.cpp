#include "cli/batch/workers/Message.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace Tool {
namespace {

/// What comes before the text. Both ends are the same program.
struct sHeader {
  std::uint32_t fLength;
  eMessage fKind;
};

std::string ToBytes(eMessage pKind, const std::string& pText) {
  sHeader header;
  std::memset(&header, 0, sizeof header);  // the padding is sent, too
  header.fLength = static_cast<std::uint32_t>(pText.size());
  header.fKind = pKind;
  return std::string(reinterpret_cast<const char*>(&header), sizeof header) + pText;
}

sHeader ToHeader(const std::string& pBytes) {
  sHeader header;
  std::memcpy(&header, pBytes.data(), sizeof header);
  return header;
}

}  // namespace

bool SendMessage(int pSocket, eMessage pKind, const std::string& pText) {
  if (pText.size() > kLongestMessage) return false;
  const std::string bytes = ToBytes(pKind, pText);
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t sent = send(pSocket, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) return false;
    done += static_cast<std::size_t>(sent);
  }
  return true;
}

bool cMessageReader::Receive(int pFlags) {
  char block[1 << 16];
  ssize_t size = -1;
  do {
    size = recv(fSocket, block, sizeof block, pFlags);
  } while (size < 0 && errno == EINTR);
  if (size < 0) return errno == EAGAIN || errno == EWOULDBLOCK;
  fBytes.append(block, static_cast<std::size_t>(size));
  return size > 0 && (fBytes.size() < sizeof(sHeader) || ToHeader(fBytes).fLength <= kLongestMessage);
}

bool cMessageReader::Read() {
  return Receive(MSG_DONTWAIT);
}

std::optional<sMessage> cMessageReader::Take() {
  if (fBytes.size() < sizeof(sHeader)) return std::nullopt;
  const sHeader header = ToHeader(fBytes);
  if (fBytes.size() - sizeof header < header.fLength) return std::nullopt;
  sMessage message{header.fKind, fBytes.substr(sizeof header, header.fLength)};
  fBytes.erase(0, sizeof header + header.fLength);
  return message;
}

std::optional<sMessage> cMessageReader::Wait() {
  for (;;) {
    if (std::optional<sMessage> message = Take()) return message;
    if (!Receive(0)) return std::nullopt;
  }
}

}  // namespace Tool
