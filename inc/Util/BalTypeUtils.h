// Number-to-text formatting for display and text fields.
//
// Contract:
// - Double2String writes `value` into the caller's buffer of `bufferSize` bytes with
//   `significantDigits` significant digits in fixed-point notation ("1234.57", ".25", "-.25",
//   "0"), whole numbers longer than that in full ("12345678"), and falls back to exponent
//   notation ("1.000e+20") when the fixed text does not fit. It never writes past the buffer.
// - A buffer too small even for the exponent form is reported to the operations manager (a
//   verification and the message "Cannot Continue--The buffer passed into Float2String is too
//   small."); the buffer then holds an empty string. The buffer pointer is always returned.
// - Float2String widens the float and trims trailing zeros.
// - DecimalPlaceOfLeftmostDigit gives the number of digits before the point, or for values below
//   one minus the number of zeros between the point and the first significant digit; 1 for zero.
#pragma once

#include <cstdint>

#include "Util/Export.h"

ZTUTIL_API int DecimalPlaceOfLeftmostDigit(const double& value);
ZTUTIL_API char* Double2String(char* buffer, uint64_t bufferSize, const double& value,
                               int significantDigits, bool trimZeros);
ZTUTIL_API char* Float2String(char* buffer, uint64_t bufferSize, const float& value,
                              int significantDigits);
