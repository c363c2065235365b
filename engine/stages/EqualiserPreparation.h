#pragma once

namespace TmEngine {

class cBitmapLDR;
class cBitmapU16T;
class cMatrix33;
struct sStageRun;

/// Fills the hue record (see ColorRows.h) of each pixel of pInput: linear working RGB, negative channels
/// taken as 0. pXYZToWorking leads from D50-relative XYZ to the working space. Throws cArgumentNullException
/// for a colour space without transfer, and std::bad_alloc. Polls before each row; false when stopped.
bool FillHueRecords(const sStageRun& pRun, const cBitmapLDR& pInput, const cMatrix33& pXYZToWorking,
                    cBitmapU16T& pRecords);

}  // namespace TmEngine
