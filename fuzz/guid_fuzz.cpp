// Parses arbitrary text as a Guid; a valid one must come back from its own text form.
#include "Util/Guid.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    Util::Guid guid{Util::TString(text.c_str())};
    const char* form = guid;
    if (!guid.IsValid()) {
        if (std::strcmp(form, "error - object not valid") != 0) {
            std::abort();
        }
        return 0;
    }
    if (std::strlen(form) != 36) {
        std::abort();
    }
    Util::Guid again{Util::TString(form)};
    if (!again.IsValid() || !(again == guid)) {
        std::abort();
    }
    return 0;
}
