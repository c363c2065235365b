#pragma once

namespace Tool {

/// Keeps libvips running while it lives: no cache, no words of its own on standard error.
class cVipsSession {
 public:
  cVipsSession();  ///< Throws cFailure.
  cVipsSession(const cVipsSession&) = delete;
  cVipsSession& operator=(const cVipsSession&) = delete;
  ~cVipsSession();
};

}  // namespace Tool
