// Base64Coder: encodes and decodes Base64 (RFC 4648 alphabet, "=" padding, no line breaks)
// into buffers the coder owns. Encode/Decode replace the previous result; EncodedMessage and
// DecodedMessage stay valid, zero-terminated, until the next call on the same coder. Input is
// never validated beyond the decode table: a character outside the alphabet yields unspecified
// bits, never a crash. Variants may override the protected steps; an overridden step is always
// called. One coder is used by one thread at a time; the shared decode table is built once.
#pragma once

#include "Util/Export.h"

#include <cstddef>
#include <cstdint>

class ZTUTIL_API Base64Coder {
public:
    // One 3-byte or 4-character step: up to four bytes and the count of valid ones.
    class TempBucket {
    public:
        unsigned char nData[4];
        unsigned char nSize;

        void Clear() {
            nData[0] = nData[1] = nData[2] = nData[3] = 0;
            nSize = 0;
        }
    };

    Base64Coder();
    Base64Coder(const Base64Coder& other);
    Base64Coder& operator=(const Base64Coder& other);
    virtual ~Base64Coder();

    // Encodes the text's bytes (without the terminating zero); a null pointer does nothing.
    virtual void Encode(const char* text);
    virtual void Encode(const unsigned char* bytes, size_t length);
    // Decodes text, skipping the characters _IsBadMimeChar names; a null pointer does nothing.
    virtual void Decode(const char* text);
    // Decodes four characters at a time; a short final group counts as padded.
    virtual void Decode(const unsigned char* bytes, size_t length);

    // Zero-terminated results ("" before anything was encoded or decoded).
    const char* EncodedMessage() const;
    const unsigned char* DecodedMessage() const;
    // Lengths of the results, without the terminating zero.
    size_t GetEncodedSize() const { return m_nEDataLen; }
    size_t GetDecodedSize() const { return m_nDDataLen; }

    // Grow the owned buffer to (n rounded down to 4096) + 4096 bytes when it is smaller than n,
    // then zero it and reset its length. They never shrink. False when memory is exhausted.
    bool AllocEncode(size_t n);
    bool AllocDecode(size_t n);
    size_t GetEncodeCapacity() const { return m_nEBufLen; }
    size_t GetDecodeCapacity() const { return m_nDBufLen; }

    // Input for decoding (SetEncodeBuffer) and for encoding (SetDecodeBuffer); borrowed.
    void SetEncodeBuffer(const unsigned char* bytes, size_t length);
    void SetDecodeBuffer(const unsigned char* bytes, size_t length);

protected:
    // Splits three raw bytes (decode) into four 6-bit values (data).
    virtual void _EncodeRaw(TempBucket& data, const TempBucket& decode);
    // Encodes three raw bytes through _EncodeRaw and writes four alphabet characters.
    virtual void _EncodeToBuffer(const TempBucket& decode, unsigned char* pBuffer);
    // Joins four 6-bit values (encoded, nSize = significant characters) into bytes (data).
    virtual void _DecodeRaw(TempBucket& data, const TempBucket& encoded);
    // Decodes one group through _DecodeRaw, writes its bytes and returns how many.
    virtual size_t _DecodeToBuffer(const TempBucket& encoded, unsigned char* pBuffer);
    // Bytes 7 to 13 and the space: ignored in MIME text.
    virtual bool _IsBadMimeChar(unsigned char c);
    // Builds the process-wide decode table once.
    static void _Init();

    // 0xFE: not a Base64 character; 0xFF: "="; bit 7 of a byte is ignored.
    static unsigned char m_DecodeTable[256];
    static bool m_Init;

private:
    bool UsesOwnSteps() const;
    void EncodeGroups(const unsigned char* in, size_t groups, unsigned char* out);
    void DecodeGroups(const unsigned char* in, size_t length, unsigned char* out);
    bool Grow(unsigned char*& buffer, size_t& capacity, size_t& dirty, size_t n);
    static void Settle(unsigned char* buffer, size_t& dirty, size_t length);
    static void MarkWritten(size_t& dirty, size_t capacity, size_t length);

    const unsigned char* m_pInput = nullptr;
    size_t m_nInputLen = 0;
    unsigned char* m_pEBuffer = nullptr;
    size_t m_nEBufLen = 0;
    size_t m_nEDataLen = 0;
    size_t m_nEDirty = 0; // bytes at and beyond this index are zero
    unsigned char* m_pDBuffer = nullptr;
    size_t m_nDBufLen = 0;
    size_t m_nDDataLen = 0;
    size_t m_nDDirty = 0;
};
