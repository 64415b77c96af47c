// Strict Base64 decoding of a stream for "ztutil base64 decode".
//
// The library's Base64Coder keeps its lenient table behaviour (any byte maps to some value); the
// tool instead accepts only RFC 4648 text: the 64 letters of the standard alphabet in groups of
// four, "=" padding only in the last group ("xx==" or "xxx="), and MIME white space (space, tab,
// CR, LF, VT, FF) anywhere, which is skipped. Input arrives in pieces of any size; decoded bytes
// are appended to the caller's buffer as soon as a group is complete. The first bad character
// stops decoding and its offset (counted in input bytes, white space included) is kept.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ztutil {

class Base64StreamDecoder {
public:
    // Decodes the next piece of input; false once the input is known to be bad.
    bool Feed(const unsigned char* data, std::size_t size, std::vector<unsigned char>& out);
    // The input has ended: false if it stopped inside a group.
    bool Finish();
    unsigned long long ErrorOffset() const { return m_errorOffset; }
    const std::string& Error() const { return m_error; }

private:
    bool Fail(const char* what);

    unsigned char m_group[4] = {0, 0, 0, 0};
    int m_count = 0;      // letters (and padding) of the current group
    int m_padding = 0;    // '=' seen; only white space may follow a complete padded group
    bool m_ended = false; // a padded group ended the data
    bool m_failed = false;
    unsigned long long m_offset = 0;
    unsigned long long m_errorOffset = 0;
    std::string m_error;
};

} // namespace ztutil
