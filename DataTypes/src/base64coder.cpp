#include "Util/Base64Coder.h"

#include "Util/MemoryManager.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <typeinfo>
#include <vector>

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
const size_t kBufferGranule = 4096;

// Tables for the bulk loops, built with the decode table. kPairs maps 12 input bits to two
// alphabet characters. kDecodeLanes[i][c] holds the bits character c contributes, at position i
// of a group, to the three output bytes (byte k in bits 8k..8k+7), computed from the same table
// values as the step functions, so both paths give identical bytes for any input. Bit 24 marks
// a "=" at position 2 or 3: such a group takes the step path, which handles padding.
char kPairs[4096][2];
uint32_t kDecodeLanes[4][256];
const uint32_t kPadMark = 1u << 24;
std::once_flag g_tablesOnce;

inline bool IsBadMimeByte(unsigned char c) {
    return (c >= 7 && c <= 13) || c == ' ';
}

} // namespace

unsigned char Base64Coder::m_DecodeTable[256];
bool Base64Coder::m_Init = false;

void Base64Coder::_Init() {
    std::call_once(g_tablesOnce, [] {
        std::memset(m_DecodeTable, 0xFE, sizeof m_DecodeTable);
        for (unsigned i = 0; i < 64; ++i) {
            unsigned char c = static_cast<unsigned char>(kAlphabet[i]);
            m_DecodeTable[c] = static_cast<unsigned char>(i);
            m_DecodeTable[c | 0x80] = static_cast<unsigned char>(i);
        }
        m_DecodeTable[static_cast<unsigned char>('=')] = 0xFF;
        m_DecodeTable[static_cast<unsigned char>('=') | 0x80] = 0xFF;

        for (unsigned v = 0; v < 4096; ++v) {
            kPairs[v][0] = kAlphabet[v >> 6];
            kPairs[v][1] = kAlphabet[v & 63];
        }
        for (unsigned c = 0; c < 256; ++c) {
            uint32_t v = m_DecodeTable[c];
            uint32_t late = v == 0xFF ? 0 : v; // "=" counts as zero at positions 2 and 3
            uint32_t mark = v == 0xFF ? kPadMark : 0;
            kDecodeLanes[0][c] = (v << 2) & 0xFF;
            kDecodeLanes[1][c] = (v >> 4) | (((v << 4) & 0xFF) << 8);
            kDecodeLanes[2][c] = ((late >> 2) << 8) | (((late << 6) & 0xFF) << 16) | mark;
            kDecodeLanes[3][c] = (late << 16) | mark;
        }
        m_Init = true;
    });
}

Base64Coder::Base64Coder() = default;

Base64Coder::Base64Coder(const Base64Coder& other) {
    *this = other;
}

Base64Coder& Base64Coder::operator=(const Base64Coder& other) {
    if (this == &other) {
        return *this;
    }
    // Copy into fresh buffers first so that a failed allocation leaves this coder unchanged.
    auto copy = [](const unsigned char* src, size_t capacity) -> unsigned char* {
        if (src == nullptr || capacity == 0) {
            return nullptr;
        }
        auto* p = static_cast<unsigned char*>(std::malloc(capacity));
        if (p != nullptr) {
            std::memcpy(p, src, capacity);
        }
        return p;
    };
    unsigned char* e = copy(other.m_pEBuffer, other.m_nEBufLen);
    unsigned char* d = copy(other.m_pDBuffer, other.m_nDBufLen);
    if ((other.m_pEBuffer != nullptr && e == nullptr) ||
        (other.m_pDBuffer != nullptr && d == nullptr)) {
        std::free(e);
        std::free(d);
        return *this;
    }
    std::free(m_pEBuffer);
    std::free(m_pDBuffer);
    m_pEBuffer = e;
    m_pDBuffer = d;
    m_nEBufLen = e ? other.m_nEBufLen : 0;
    m_nDBufLen = d ? other.m_nDBufLen : 0;
    m_nEDataLen = e ? other.m_nEDataLen : 0;
    m_nDDataLen = d ? other.m_nDDataLen : 0;
    m_nEDirty = e ? other.m_nEDirty : 0;
    m_nDDirty = d ? other.m_nDDirty : 0;
    m_pInput = other.m_pInput;
    m_nInputLen = other.m_nInputLen;
    return *this;
}

Base64Coder::~Base64Coder() {
    std::free(m_pEBuffer);
    std::free(m_pDBuffer);
}

const char* Base64Coder::EncodedMessage() const {
    return m_pEBuffer ? reinterpret_cast<const char*>(m_pEBuffer) : "";
}

const unsigned char* Base64Coder::DecodedMessage() const {
    static const unsigned char kEmpty[1] = {0};
    return m_pDBuffer ? m_pDBuffer : kEmpty;
}

// Buffers are kept zero beyond their "dirty" mark, so that zeroing costs only what was written
// since: a fresh buffer comes zeroed from calloc, and a result only needs the rest of what the
// previous one left behind cleared.
bool Base64Coder::Grow(unsigned char*& buffer, size_t& capacity, size_t& dirty, size_t n) {
    if (capacity >= n) {
        return true;
    }
    if (n > SIZE_MAX - kBufferGranule) {
        return false;
    }
    size_t size = (n / kBufferGranule) * kBufferGranule + kBufferGranule;
    if (Util::Detail::ShouldFailAllocation()) {
        return false;
    }
    auto* p = static_cast<unsigned char*>(std::calloc(size, 1));
    if (p == nullptr) {
        return false;
    }
    std::free(buffer);
    buffer = p;
    capacity = size;
    dirty = 0;
    return true;
}

void Base64Coder::Settle(unsigned char* buffer, size_t& dirty, size_t length) {
    if (buffer != nullptr && dirty > length) {
        std::memset(buffer + length, 0, dirty - length);
    }
    dirty = length;
}

// A step may touch up to one group's bytes beyond what it reports (a variant that writes three
// bytes and counts two); clearing those too keeps the result zero-terminated whatever it does.
void Base64Coder::MarkWritten(size_t& dirty, size_t capacity, size_t length) {
    size_t reach = length + 4 < capacity ? length + 4 : capacity;
    if (dirty < reach) {
        dirty = reach;
    }
}

bool Base64Coder::AllocEncode(size_t n) {
    m_nEDataLen = 0;
    bool grown = Grow(m_pEBuffer, m_nEBufLen, m_nEDirty, n);
    Settle(m_pEBuffer, m_nEDirty, 0);
    return grown;
}

bool Base64Coder::AllocDecode(size_t n) {
    m_nDDataLen = 0;
    bool grown = Grow(m_pDBuffer, m_nDBufLen, m_nDDirty, n);
    Settle(m_pDBuffer, m_nDDirty, 0);
    return grown;
}

void Base64Coder::SetEncodeBuffer(const unsigned char* bytes, size_t length) {
    m_pInput = bytes;
    m_nInputLen = bytes ? length : 0;
}

void Base64Coder::SetDecodeBuffer(const unsigned char* bytes, size_t length) {
    m_pInput = bytes;
    m_nInputLen = bytes ? length : 0;
}

// The bulk loops may stand in for the steps only when no derived class could have replaced
// them; any variant goes through the virtual steps group by group.
bool Base64Coder::UsesOwnSteps() const {
    return typeid(*this) == typeid(Base64Coder);
}

void Base64Coder::_EncodeRaw(TempBucket& data, const TempBucket& decode) {
    data.nData[0] = static_cast<unsigned char>(decode.nData[0] >> 2);
    data.nData[1] =
        static_cast<unsigned char>(((decode.nData[0] & 0x03) << 4) | (decode.nData[1] >> 4));
    data.nData[2] =
        static_cast<unsigned char>(((decode.nData[1] & 0x0F) << 2) | (decode.nData[2] >> 6));
    data.nData[3] = static_cast<unsigned char>(decode.nData[2] & 0x3F);
    data.nSize = 4;
}

void Base64Coder::_EncodeToBuffer(const TempBucket& decode, unsigned char* pBuffer) {
    TempBucket data;
    _EncodeRaw(data, decode);
    for (int i = 0; i < 4; ++i) {
        pBuffer[i] = static_cast<unsigned char>(kAlphabet[data.nData[i] & 0x3F]);
    }
}

void Base64Coder::_DecodeRaw(TempBucket& data, const TempBucket& encoded) {
    data.nData[0] = static_cast<unsigned char>((encoded.nData[0] << 2) | (encoded.nData[1] >> 4));
    data.nData[1] = static_cast<unsigned char>((encoded.nData[1] << 4) | (encoded.nData[2] >> 2));
    data.nData[2] = static_cast<unsigned char>((encoded.nData[2] << 6) | encoded.nData[3]);
    data.nData[3] = 0;
    data.nSize = encoded.nSize > 1 ? static_cast<unsigned char>(encoded.nSize - 1) : 0;
}

size_t Base64Coder::_DecodeToBuffer(const TempBucket& encoded, unsigned char* pBuffer) {
    TempBucket data;
    _DecodeRaw(data, encoded);
    size_t n = data.nSize > 3 ? 3 : data.nSize;
    std::memcpy(pBuffer, data.nData, n);
    return n;
}

bool Base64Coder::_IsBadMimeChar(unsigned char c) {
    return IsBadMimeByte(c);
}

void Base64Coder::EncodeGroups(const unsigned char* in, size_t groups, unsigned char* out) {
    if (UsesOwnSteps()) {
        for (size_t g = 0; g < groups; ++g, in += 3, out += 4) {
            uint32_t v = (uint32_t(in[0]) << 16) | (uint32_t(in[1]) << 8) | in[2];
            std::memcpy(out, kPairs[v >> 12], 2);
            std::memcpy(out + 2, kPairs[v & 0xFFF], 2);
        }
        return;
    }
    TempBucket raw;
    for (size_t g = 0; g < groups; ++g, in += 3, out += 4) {
        raw.nData[0] = in[0];
        raw.nData[1] = in[1];
        raw.nData[2] = in[2];
        raw.nData[3] = 0;
        raw.nSize = 3;
        _EncodeToBuffer(raw, out);
    }
}

void Base64Coder::Encode(const char* text) {
    if (text == nullptr) {
        return;
    }
    Encode(reinterpret_cast<const unsigned char*>(text), std::strlen(text));
}

void Base64Coder::Encode(const unsigned char* bytes, size_t length) {
    _Init(); // the encode tables are built with the decode table
    if (bytes == nullptr) {
        length = 0;
    }
    SetDecodeBuffer(bytes, length);
    m_nEDataLen = 0;
    if (length > (SIZE_MAX - 2 * kBufferGranule) / 2 ||
        !Grow(m_pEBuffer, m_nEBufLen, m_nEDirty, 2 * length)) {
        Settle(m_pEBuffer, m_nEDirty, 0);
        return;
    }
    size_t groups = length / 3;
    EncodeGroups(bytes, groups, m_pEBuffer);
    size_t written = groups * 4;
    size_t rest = length - groups * 3;
    if (rest != 0) {
        TempBucket raw;
        raw.Clear();
        std::memcpy(raw.nData, bytes + groups * 3, rest);
        raw.nSize = static_cast<unsigned char>(rest);
        _EncodeToBuffer(raw, m_pEBuffer + written);
        m_pEBuffer[written + 3] = '=';
        if (rest == 1) {
            m_pEBuffer[written + 2] = '=';
        }
        written += 4;
    }
    m_nEDataLen = written;
    MarkWritten(m_nEDirty, m_nEBufLen, written);
    Settle(m_pEBuffer, m_nEDirty, written);
}

void Base64Coder::DecodeGroups(const unsigned char* in, size_t length, unsigned char* out) {
    const bool bulk = UsesOwnSteps();
    size_t pos = 0;
    size_t written = 0;
    TempBucket encoded;
    if (bulk) {
        // Two whole groups per round while neither holds padding.
        while (length - pos >= 8) {
            const unsigned char* p = in + pos;
            uint32_t x = kDecodeLanes[0][p[0]] | kDecodeLanes[1][p[1]] | kDecodeLanes[2][p[2]] |
                         kDecodeLanes[3][p[3]];
            uint32_t y = kDecodeLanes[0][p[4]] | kDecodeLanes[1][p[5]] | kDecodeLanes[2][p[6]] |
                         kDecodeLanes[3][p[7]];
            if (((x | y) & kPadMark) != 0) {
                break;
            }
            unsigned char* o = out + written;
            o[0] = static_cast<unsigned char>(x);
            o[1] = static_cast<unsigned char>(x >> 8);
            o[2] = static_cast<unsigned char>(x >> 16);
            o[3] = static_cast<unsigned char>(y);
            o[4] = static_cast<unsigned char>(y >> 8);
            o[5] = static_cast<unsigned char>(y >> 16);
            written += 6;
            pos += 8;
        }
    }
    while (pos < length) {
        size_t take = length - pos < 4 ? length - pos : 4;
        if (bulk && take == 4) {
            uint32_t x = kDecodeLanes[0][in[pos]] | kDecodeLanes[1][in[pos + 1]] |
                         kDecodeLanes[2][in[pos + 2]] | kDecodeLanes[3][in[pos + 3]];
            if ((x & kPadMark) == 0) {
                out[written] = static_cast<unsigned char>(x);
                out[written + 1] = static_cast<unsigned char>(x >> 8);
                out[written + 2] = static_cast<unsigned char>(x >> 16);
                written += 3;
                pos += 4;
                continue;
            }
        }
        // A group of `take` characters; missing characters count as "=" padding.
        encoded.Clear();
        for (size_t i = 0; i < take; ++i) {
            encoded.nData[i] = m_DecodeTable[in[pos + i]];
        }
        unsigned char significant = static_cast<unsigned char>(take);
        while (significant > 2 && encoded.nData[significant - 1] == 0xFF) {
            --significant;
        }
        for (int i = 2; i < 4; ++i) {
            if (encoded.nData[i] == 0xFF) {
                encoded.nData[i] = 0;
            }
        }
        encoded.nSize = significant;
        written += _DecodeToBuffer(encoded, out + written);
        pos += take;
    }
    m_nDDataLen = written;
}

void Base64Coder::Decode(const unsigned char* bytes, size_t length) {
    _Init();
    if (bytes == nullptr) {
        length = 0;
    }
    SetEncodeBuffer(bytes, length);
    // Three bytes per four characters, plus room for the terminating zero.
    m_nDDataLen = 0;
    if (length > SIZE_MAX - 2 * kBufferGranule ||
        !Grow(m_pDBuffer, m_nDBufLen, m_nDDirty, length + 4)) {
        Settle(m_pDBuffer, m_nDDirty, 0);
        return;
    }
    DecodeGroups(bytes, length, m_pDBuffer);
    MarkWritten(m_nDDirty, m_nDBufLen, m_nDDataLen);
    Settle(m_pDBuffer, m_nDDirty, m_nDDataLen);
}

void Base64Coder::Decode(const char* text) {
    if (text == nullptr) {
        return;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    size_t length = std::strlen(text);
    const bool own = UsesOwnSteps();
    size_t firstBad = 0;
    while (firstBad < length &&
           !(own ? IsBadMimeByte(bytes[firstBad]) : _IsBadMimeChar(bytes[firstBad]))) {
        ++firstBad;
    }
    if (firstBad == length) {
        Decode(bytes, length);
        return;
    }
    std::vector<unsigned char> kept(bytes, bytes + firstBad);
    kept.reserve(length);
    for (size_t i = firstBad; i < length; ++i) {
        if (!(own ? IsBadMimeByte(bytes[i]) : _IsBadMimeChar(bytes[i]))) {
            kept.push_back(bytes[i]);
        }
    }
    Decode(kept.data(), kept.size());
    // The input was a temporary copy; keep no pointer to it.
    SetEncodeBuffer(bytes, length);
}
