#pragma once

namespace TmEngine {

/// Writes formatted text to standard error, and gives up where that fails. A pipe that nobody reads raises no
/// SIGPIPE: neither the process nor a handler of the host notices. The host's signal mask, its handlers and a
/// SIGPIPE that was already waiting stay as they are.
[[gnu::format(printf, 1, 2)]] void LogLine(const char* pFormat, ...);

}  // namespace TmEngine
