#pragma once

#include <vector>

/// What this process uses: unlike the time that passes, it does not count what others run.
namespace Bench {

/// Seconds of processor time since the process began, its pages and files included.
struct sProcessorTime {
  double fTotal;
  double fSystem;  ///< The part that was spent in the system: pages of fresh memory, mostly.
};

sProcessorTime ProcessorTime();

/// Gives free memory back to the system and forgets the peak so far; returns the bytes in use now. What runs
/// next finds no memory that was touched before.
double RestartPeak();
/// Touches and frees as many bytes: a guest system then has them from its host, which can take several times
/// what the first touch costs otherwise, and is no figure of the program that is measured next.
void WarmMemory(double pBytes);
/// The most bytes in use since RestartPeak.
double PeakBytes();
/// What new blocks of all processes may take before memory is short.
double AvailableBytes();

/// The middle one, or the mean of both; 0 for none.
double Median(std::vector<double> pValues);

/// Standard error goes nowhere meanwhile: calls write lines.
class cSilence {
 public:
  cSilence();
  cSilence(const cSilence&) = delete;
  cSilence& operator=(const cSilence&) = delete;
  ~cSilence();

 private:
  int fKept;
};

}  // namespace Bench
