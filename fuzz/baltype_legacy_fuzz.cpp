// 6-byte legacy records from raw bytes: any record converts to a BalType that keeps the value
// invariants, and a record made from a valid value converts back to the same value.
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

        if (!value.IsError()) {
            BalTypeLegacy_6Bytes again(value);
            BalType back;
            again.SetFromLegacy6Bytes(back);
            if (!(back == value))
                std::abort();
        }
        if (size < 6)
            break;
    }
    return 0;
}
