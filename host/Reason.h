#pragma once

#include <cstddef>

/// Copies pText into the host's buffer: NUL-terminated, and cut before the first UTF-8 character that does
/// not fit as a whole. Nothing is written where pTo is null or pSize is 0.
void WriteReason(const char* pText, char* pTo, std::size_t pSize);
