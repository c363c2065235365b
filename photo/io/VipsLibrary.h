#pragma once

#include <string>

namespace Photo {

/// Starts libvips, unless it runs. Who ends it, what it writes to standard error and what it caches are its
/// host's business. With a cache of operations, libvips takes a file whose content has changed for the one
/// that it read by that name before: a host that reads such files turns the cache off. Throws cFailure.
void StartVips();

/// How many threads libvips uses for one picture.
void SetVipsThreads(int pThreads);

/// The first line of what libvips has to say about its last failure; what it holds is cleared.
std::string TakeVipsError();

}  // namespace Photo
