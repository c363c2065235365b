#pragma once

#include "engine/math/Quantise.h"
#include "engine/stages/LayerStatistics.h"

namespace TmEngine {

/// Linear output of the two layers, indexed by a layer's value quantised over its range.
struct sToneTables {
  float fBase[kTableSize];
  float fDetail[kTableSize];
  float fBaseMax = 0.0f;    ///< Largest entry of fBase, at least 0.
  float fDetailMax = 0.0f;  ///< Largest entry of fDetail, at least 0.
};

/// The exponent of the base layer: 1 keeps it, 0 flattens it, above 1 expands it.
float GlobalExponent(float pStrength);

/// Entries are ten to the power of value times exponent, the exponent being pExponent for the base and 1 for
/// the detail. With pToneCompression above 0 it falls with the distance of the value from its typical
/// magnitude. Polls pCancel every few entries; returns false, with the tables unfinished, when it is set.
bool BuildToneTables(float pExponent, float pToneCompression, const sLayerStatistics& pLayers,
                     sToneTables& pTables, const bool* pCancel = nullptr);

}  // namespace TmEngine
