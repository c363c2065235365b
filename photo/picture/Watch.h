#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

#include "engine/base/StageFlags.h"
#include "engine/image/PixelRows.h"
#include "photo/base/Failure.h"

namespace Photo {

/// Shows another thread how far the work on one picture is, and lets it end the work.
class cWatch {
 public:
  /// For the other thread: the work ends within a row's work, with a cFailure. What a library encodes as a
  /// whole is encoded to its end, but does not take the target's place.
  void Cancel() {
    fIsCancelled = true;
    Stop();
    const std::lock_guard lock(fMutex);
    if (fOnCancel) fOnCancel();
  }
  bool IsCancelled() const { return fIsCancelled; }
  /// The share of the work that is done, 0 to 1.
  double GetShare() const { return fShare; }

  /// Throws the cFailure for work that was cancelled.
  void Check() const {
    if (fIsCancelled) throw cFailure(eFailure::kProcessing, "was cancelled");
  }
  void SetShare(double pShare) { fShare = pShare; }
  /// What the engine takes as its request to cancel. It may also be set by the work itself, which goes on
  /// after Resume in another way.
  bool* GetStopRequest() { return &fStop; }
  void Stop() { TmEngine::SetFlag(&fStop); }
  void Resume() {
    __atomic_store_n(&fStop, false, __ATOMIC_SEQ_CST);
    if (fIsCancelled) Stop();  // asked for in the meantime
  }
  /// For work that looks at no flag: what stops it, by the other thread. Empty for nothing more.
  void SetOnCancel(std::function<void()> pStop) {
    const std::lock_guard lock(fMutex);
    fOnCancel = std::move(pStop);
    if (fIsCancelled && fOnCancel) fOnCancel();
  }

 private:
  std::mutex fMutex;
  std::function<void()> fOnCancel;
  std::atomic<bool> fIsCancelled = false;
  std::atomic<double> fShare = 0.0;
  bool fStop = false;  ///< By atomic functions only: the engine's flags are plain ones.
};

/// Rows that pass on their way to the engine, seen by a watch.
class cWatchedSource : public TmEngine::cRowSource {
 public:
  static constexpr double kShare = 0.35;  ///< Of the work, when the last row has been read.

  /// Both stay the caller's.
  cWatchedSource(const TmEngine::cRowSource& pRows, cWatch& pWatch)
      : cRowSource(pRows.GetWidth(), pRows.GetHeight()), fRows(pRows), fWatch(pWatch) {}

  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override {
    fRows.ReadRun(pY, pX, pCount, pToX, pToY, pToZ);
    if (pX == 0) fWatch.SetShare(kShare * (pY + 1) / GetHeight());
  }

 private:
  const TmEngine::cRowSource& fRows;
  cWatch& fWatch;
};

/// The same for finished rows.
class cWatchedSink : public TmEngine::cRowSink {
 public:
  static constexpr double kShare = 0.75;  ///< Of the work, before the first row is finished.

  /// Both stay the caller's.
  cWatchedSink(TmEngine::cRowSink& pRows, cWatch& pWatch) : fRows(pRows), fWatch(pWatch) {}

  int GetWidth() const override { return fRows.GetWidth(); }
  int GetHeight() const override { return fRows.GetHeight(); }
  int GetBitDepth() const override { return fRows.GetBitDepth(); }
  const TmEngine::cColorSpace& GetColorSpace() const override { return fRows.GetColorSpace(); }
  TmEngine::sSampleRow BeginRow(int pY) override { return fRows.BeginRow(pY); }
  void EndRow(int pY) override {
    fRows.EndRow(pY);
    fWatch.SetShare(kShare + (kEnd - kShare) * (pY + 1) / GetHeight());
  }

 private:
  static constexpr double kEnd = 0.99;  ///< A file may still have to be written.

  TmEngine::cRowSink& fRows;
  cWatch& fWatch;
};

}  // namespace Photo
