// VariantChangeType from text to every type and back: never a crash or a leak, a failed
// conversion leaves an empty destination, and a successful one to text gives the text again.
#include "Util/Variant.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    static const Util::VariantType kTypes[] = {
        Util::UTIL_VT_INT,   Util::UTIL_VT_SHORT,  Util::UTIL_VT_LONG,   Util::UTIL_VT_INT64,
        Util::UTIL_VT_CHAR,  Util::UTIL_VT_UINT,   Util::UTIL_VT_UCHAR,  Util::UTIL_VT_USHORT,
        Util::UTIL_VT_ULONG, Util::UTIL_VT_UINT64, Util::UTIL_VT_WCHAR,  Util::UTIL_VT_DOUBLE,
        Util::UTIL_VT_BOOL,  Util::UTIL_VT_STRING, Util::UTIL_VT_WSTRING};
    const Util::Variant source(text.c_str());
    for (Util::VariantType type : kTypes) {
        Util::Variant converted;
        if (!converted.ChangeType(type, &source.GetData())) {
            if (converted.GetData().vt != Util::UTIL_VT_EMPTY)
                std::abort();
            continue;
        }
        Util::Variant back;
        back.ChangeType(Util::UTIL_VT_STRING, &converted.GetData());
        Util::TString again;
        converted.GetString(again);
        if (type == Util::UTIL_VT_STRING && again.c_str() != std::string(text.c_str()))
            std::abort();
    }
    return 0;
}
