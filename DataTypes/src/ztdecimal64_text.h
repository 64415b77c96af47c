// Decimal text scanned by us before it reaches the Intel library, whose parser gives wrong values
// (even signalling NaNs) for long digit strings. The scan reads an optional sign, digits with an
// optional point and an optional exponent, counts leading zeros and the exponent in wide
// integers, and rounds the digits itself (to nearest, ties to even, with the dropped digits as
// sticky information) to at most 16 significant digits at an exponent no lower than the smallest
// decimal64 exponent, so that the library only ever sees a short, exact text.
#pragma once

#include <string>

namespace ZtDecimalText {

// True with `out` set to an equivalent text of at most 16 digits and a small exponent when
// `text` is a plain decimal number; false for anything else (infinities, NaNs, bad text), which
// the caller hands on as it is.
bool Shorten(const char* text, std::string& out);

} // namespace ZtDecimalText
