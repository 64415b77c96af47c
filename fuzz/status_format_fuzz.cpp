// Status message expansion on arbitrary formats and attributes: must never crash, and the
// expansion must stay within what the format and attribute values can produce.
#include "Util/Status.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    // format \0 name \0 value \0 name \0 value ...
    std::size_t cut = input.find('\0');
    std::string format = input.substr(0, cut);
    Util::Status status(-1, format.c_str());
    std::size_t valueBytes = 0;
    while (cut != std::string::npos) {
        std::size_t nameEnd = input.find('\0', cut + 1);
        std::string name = input.substr(cut + 1, nameEnd == std::string::npos ? std::string::npos
                                                                              : nameEnd - cut - 1);
        if (nameEnd == std::string::npos)
            break;
        cut = input.find('\0', nameEnd + 1);
        std::string value = input.substr(nameEnd + 1, cut == std::string::npos ? std::string::npos
                                                                               : cut - nameEnd - 1);
        status.SetAttribute(name.c_str(), value.c_str());
        valueBytes += value.size();
    }
    Util::Status copy = status;
    copy.SetStatusCode(-2);
    const std::size_t length = status.GetStatusMessage().GetLength();
    // Each token becomes at most its own text or one attribute value.
    if (length > format.size() * (valueBytes + 1) + valueBytes)
        std::abort();
    (void)copy.GetStatusMessage();
    return 0;
}
