#include "tools/ztutil/base64stream.h"

namespace ztutil {

namespace {

// The value of a letter of the standard alphabet, or -1.
int LetterValue(unsigned char c) {
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    if (c == '/')
        return 63;
    return -1;
}

bool IsWhiteSpace(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

} // namespace

bool Base64StreamDecoder::Fail(const char* what) {
    m_failed = true;
    m_errorOffset = m_offset;
    m_error = what;
    return false;
}

bool Base64StreamDecoder::Feed(const unsigned char* data, std::size_t size,
                               std::vector<unsigned char>& out) {
    if (m_failed)
        return false;
    for (std::size_t i = 0; i < size; ++i, ++m_offset) {
        const unsigned char c = data[i];
        if (IsWhiteSpace(c))
            continue;
        if (m_ended)
            return Fail("data after the final padded group");
        if (c == '=') {
            // Padding fills the third and fourth places of a group, never the first two.
            if (m_count < 2)
                return Fail("misplaced padding '='");
            ++m_padding;
            ++m_count;
        } else {
            const int value = LetterValue(c);
            if (value < 0)
                return Fail("not a Base64 character");
            if (m_padding != 0)
                return Fail("a letter after padding '='");
            m_group[m_count++] = static_cast<unsigned char>(value);
        }
        if (m_count == 4) {
            const unsigned bits = (unsigned(m_group[0]) << 18) | (unsigned(m_group[1]) << 12) |
                                  (unsigned(m_group[2]) << 6) | unsigned(m_group[3]);
            out.push_back(static_cast<unsigned char>(bits >> 16));
            if (m_padding < 2)
                out.push_back(static_cast<unsigned char>(bits >> 8));
            if (m_padding < 1)
                out.push_back(static_cast<unsigned char>(bits));
            m_ended = m_padding != 0;
            m_count = 0;
            m_padding = 0;
            m_group[2] = m_group[3] = 0;
        }
    }
    return true;
}

bool Base64StreamDecoder::Finish() {
    if (m_failed)
        return false;
    if (m_count != 0)
        return Fail("the input ends inside a group of four (missing padding?)");
    return true;
}

} // namespace ztutil
