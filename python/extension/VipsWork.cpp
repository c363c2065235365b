#include "python/extension/VipsWork.h"

#include <vips/vips.h>

#include "photo/io/VipsLibrary.h"
#include "python/extension/WatchedWork.h"

namespace Python {
namespace {

/// Gives back what libvips keeps for a thread.
class cVipsThread {
 public:
  cVipsThread() = default;
  cVipsThread(const cVipsThread&) = delete;
  cVipsThread& operator=(const cVipsThread&) = delete;
  ~cVipsThread() { vips_thread_shutdown(); }
};

}  // namespace

void RunWithVips(const pybind11::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork) {
  Photo::StartVips();
  RunWatched(pProgress, [&](Photo::cWatch& pWatch) {
    const cVipsThread thread;
    pWork(pWatch);
  });
}

}  // namespace Python
