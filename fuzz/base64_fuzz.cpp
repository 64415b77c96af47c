// Decodes arbitrary bytes, as text and as bytes, and checks that encoding what was decoded and
// decoding that again gives the same bytes.
#include "Util/Base64Coder.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Base64Coder coder;
    coder.Decode(data, size);
    std::string decoded(reinterpret_cast<const char*>(coder.DecodedMessage()),
                        coder.GetDecodedSize());

    std::string text(reinterpret_cast<const char*>(data), size);
    coder.Decode(text.c_str());

    Base64Coder round;
    round.Encode(reinterpret_cast<const unsigned char*>(decoded.data()), decoded.size());
    std::string encoded(round.EncodedMessage(), round.GetEncodedSize());
    if (encoded.size() % 4 != 0) {
        std::abort();
    }
    round.Decode(encoded.c_str());
    if (round.GetDecodedSize() != decoded.size() ||
        std::memcmp(round.DecodedMessage(), decoded.data(), decoded.size()) != 0) {
        std::abort();
    }
    return 0;
}
