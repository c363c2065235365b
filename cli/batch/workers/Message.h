#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Tool {

/// What goes over the socket between a worker and its parent: to the worker a task's number, or the grant of
/// the memory that it asked for; from it that request in bytes, or the answer.
enum class eMessage : char { kTask = 'T', kGranted = 'G', kMemory = 'M', kAnswer = 'A' };

struct sMessage {
  eMessage fKind;
  std::string fText;
};

/// Nothing that is said of a picture comes near to this.
inline constexpr std::size_t kLongestMessage = std::size_t{64} << 20;

/// Returns when all of it is sent. False when nobody listens any more, or for a text that is too long.
bool SendMessage(int pSocket, eMessage pKind, const std::string& pText);

/// Puts messages together from the bytes that arrive: the sender may be slow, or stop or die in the middle.
class cMessageReader {
 public:
  explicit cMessageReader(int pSocket) : fSocket(pSocket) {}

  /// Adds what has arrived, without waiting. Returns false when no more messages will come.
  bool Read();
  /// The next one, where all of it is here.
  std::optional<sMessage> Take();
  /// Waits for the next one; nothing when there will be none.
  std::optional<sMessage> Wait();

 private:
  bool Receive(int pFlags);

  int fSocket;
  std::string fBytes;
};

}  // namespace Tool
