// BalType text input: operator>> on arbitrary text, String2Dollar and String2Qty with either
// decimal separator. A stored value is an error with a zero number or lies within its kind's
// limits, and what operator<< writes, operator>> reads back. The stream form holds only the
// whole part and the cents, so the check is that writing what was read gives the same text.
#include "Util/BalType.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

void CheckInvariant(const BalType& value, bool errorIsZero = true) {
    if (errorIsZero && value.IsError() && !value.IsZero())
        std::abort();
    BalType copy = value; // ValidateAmount may mark its argument
    if (!value.IsError() && !value.IsPercent() && !ValidateAmount(&copy))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    SetBalTypeDecimalSeparator(size % 2 ? ',' : '.');

    BalType dollar, qty;
    dollar.String2Dollar(Util::TString(text.c_str()));
    qty.String2Qty(Util::TString(text.c_str()));
    CheckInvariant(dollar);
    CheckInvariant(qty);

    std::istringstream in(text);
    BalType read;
    in >> read;
    // operator>> applies SetDollars and then SetCents: whole dollars over the limit leave an
    // error value, and the cents read after them are still stored in it.
    CheckInvariant(read, false);

    if (!dollar.IsError() && !dollar.IsEmpty() && !dollar.IsPercent()) {
        std::ostringstream out;
        out << dollar;
        std::istringstream back(out.str());
        BalType again;
        back >> again;
        std::ostringstream rewritten;
        rewritten << again;
        if (rewritten.str() != out.str())
            std::abort();
    }
    return 0;
}
