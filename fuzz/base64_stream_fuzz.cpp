// ztutil's strict Base64 stream decoder: the result does not depend on how the input is split
// into pieces, accepted text decodes to what the library's encoder turns back into the same
// letters (up to unused low bits of the last group), and the library's encoding of any bytes is
// accepted and decodes to those bytes.
#include "Util/Base64Coder.h"
#include "tools/ztutil/base64stream.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

bool DecodeInPieces(const std::uint8_t* data, std::size_t size, std::size_t piece,
                    std::vector<unsigned char>& out, unsigned long long& offset) {
    ztutil::Base64StreamDecoder decoder;
    bool good = true;
    for (std::size_t at = 0; at < size && good; at += piece)
        good = decoder.Feed(data + at, size - at < piece ? size - at : piece, out);
    good = good && decoder.Finish();
    offset = decoder.ErrorOffset();
    return good;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned char> whole, pieces;
    unsigned long long wholeOffset = 0, piecesOffset = 0;
    const bool accepted = DecodeInPieces(data, size, size ? size : 1, whole, wholeOffset);
    const std::size_t piece = size ? 1 + data[0] % 7 : 1;
    if (DecodeInPieces(data, size, piece, pieces, piecesOffset) != accepted)
        std::abort();
    if (accepted ? pieces != whole : piecesOffset != wholeOffset || wholeOffset > size)
        std::abort();
    if (accepted) {
        std::string letters;
        for (std::size_t i = 0; i < size; ++i)
            if (data[i] != ' ' && (data[i] < '\t' || data[i] > '\r'))
                letters += static_cast<char>(data[i]);
        if (letters.size() != (whole.size() + 2) / 3 * 4)
            std::abort();
    }

    // The library's encoding of the raw bytes is always accepted and gives them back.
    Base64Coder coder;
    coder.Encode(data, size);
    const std::string encoded(coder.EncodedMessage(), coder.GetEncodedSize());
    std::vector<unsigned char> back;
    unsigned long long offset = 0;
    if (!DecodeInPieces(reinterpret_cast<const std::uint8_t*>(encoded.data()), encoded.size(),
                        piece, back, offset) ||
        back != std::vector<unsigned char>(data, data + size))
        std::abort();
    return 0;
}
