#pragma once

namespace TmEngine {

class cBitmapLDR;
class cBitmapU16T;
class cMatrix33;

/// Fills the hue record (see ColorRows.h) of each pixel of pInput: linear working RGB, negative channels
/// taken as 0. pXYZToWorking leads from D50-relative XYZ to the working space. Throws cArgumentNullException
/// for a colour space without transfer, and std::bad_alloc. Polls pCancel before each row; sets pAborted and
/// returns when it is set.
void FillHueRecords(const bool* pCancel, bool* pAborted, const cBitmapLDR& pInput,
                    const cMatrix33& pXYZToWorking, cBitmapU16T& pRecords);

}  // namespace TmEngine
