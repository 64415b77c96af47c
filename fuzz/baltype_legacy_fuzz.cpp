// 6-byte legacy records from raw bytes: any record converts to a BalType that keeps the value
// invariants, and a record made from a valid value converts back to the same value. A quantity
// record whose 24-bit whole part is above the 6-byte quantity limit (9999999) reads back as a
// quantity, but is written as a dollar amount with the fraction cut to cents, on purpose: only
// its whole part survives. A dollar record with more than 99 cents can read as an amount above
// the 6-byte dollar limit, which no record holds; such values are not written back.
#include "Util/BalType.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (std::size_t at = 0; at + 6 <= size || (at == 0 && size > 0); at += 6) {
        unsigned char bytes[6] = {0, 0, 0, 0, 0, 0};
        for (std::size_t i = 0; i < 6 && at + i < size; ++i)
            bytes[i] = data[at + i];
        BalTypeLegacy_6Bytes record;
        record.SetBytes(bytes);
        BalType value;
        record.SetFromLegacy6Bytes(value);
        if (value.IsError() && !value.IsZero())
            std::abort();
        uint32_t whole = 0, fraction = 0;
        BalKind kind;
        record.Decompose(whole, fraction, kind);
        (void)record.IsZero();
        (void)BalPickyCompareLegacy6Bytes(record, BalTypeLegacy_6Bytes(value), size % 2 == 0);

        if (!value.IsError() && !(value.IsDollar() && value.GetDollars() > 0xFFFFFFFFu)) {
            BalTypeLegacy_6Bytes again(value);
            BalType back;
            again.SetFromLegacy6Bytes(back);
            const bool overLimitQuantity = value.IsQty() && value.GetDollars() > 9999999;
            if (overLimitQuantity ? !back.IsDollar() || back.GetDollars() != value.GetDollars()
                                  : !(back == value))
                std::abort();
        }
        if (size < 6)
            break;
    }
    return 0;
}
