// Decimal and money text on arbitrary input: parsing must never crash, parsed values must obey
// the BalType invariants, and formatting must stay inside its buffer.
#include "Util/BalType.h"
#include "Util/BalTypeUtils.h"
#include "Util/ZtDecimal64.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    const char* input = text.c_str(); // stops at the first NUL, as C callers would

    ZtDecimal64 decimal(input);
    ZtDecimal64::Status status;
    (void)decimal.GetInt64Value(status);
    double asDouble = decimal.GetDoubleValue(status);
    (void)decimal.GetStringValue();
    ZtDecimal64 rounded = decimal;
    rounded.RoundToPlace(static_cast<int>(size % 11) - 5);

    SetBalTypeDecimalSeparator(size % 2 ? ',' : '.');
    BalType money = String2Bal(input);
    BalType qty = String2Qnty(input);
    // A stored value is an error with a zero number, or lies within its kind's maximum.
    if (money.IsError() && !money.IsZero()) {
        std::abort();
    }
    if (!money.IsError() && !ValidateAmount(&money) && !money.IsPercent()) {
        std::abort();
    }
    BalType results[] = {
        money + qty,          money - qty, money * qty, money / qty, BalMultiplyQnty(money, qty),
        BalRound(money, 0, 2)};
    for (const BalType& r : results) {
        if (r.IsError() && !r.IsZero()) {
            std::abort();
        }
        (void)Bal2Double(r);
        (void)BalPickyCompare(r, money, false);
    }
    BalTypeLegacy_6Bytes legacy(money);
    BalType back;
    legacy.SetFromLegacy6Bytes(back);

    char buffer[24];
    std::memset(buffer, 'x', sizeof buffer);
    std::size_t limit = size % 20;
    Double2String(buffer, limit, asDouble, static_cast<int>(size % 25) - 2, size % 3 == 0);
    if (buffer[limit] != 'x' || (limit > 0 && std::strlen(buffer) >= limit)) {
        std::abort();
    }
    return 0;
}
