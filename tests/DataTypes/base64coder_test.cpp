#include "Util/Base64Coder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

// The platform's own encoder (base64_reference_*.cpp): OpenSSL on POSIX, CryptoAPI on Windows.
std::string ReferenceBase64Encode(const std::vector<unsigned char>& in);

namespace {

std::string Encoded(Base64Coder& coder) {
    return std::string(coder.EncodedMessage(), coder.GetEncodedSize());
}

std::string Decoded(Base64Coder& coder) {
    return std::string(reinterpret_cast<const char*>(coder.DecodedMessage()),
                       coder.GetDecodedSize());
}

std::vector<unsigned char> RandomBytes(std::mt19937& rng, size_t n) {
    std::vector<unsigned char> v(n);
    for (auto& b : v) {
        b = static_cast<unsigned char>(rng());
    }
    return v;
}

// A variant that takes every step through its own overrides, so the coder cannot use its bulk
// loops; it counts the calls to prove they happen.
class CountingCoder : public Base64Coder {
public:
    int encodeRaw = 0, encodeToBuffer = 0, decodeRaw = 0, decodeToBuffer = 0, mime = 0;

protected:
    void _EncodeRaw(TempBucket& data, const TempBucket& decode) override {
        ++encodeRaw;
        Base64Coder::_EncodeRaw(data, decode);
    }
    void _EncodeToBuffer(const TempBucket& decode, unsigned char* p) override {
        ++encodeToBuffer;
        Base64Coder::_EncodeToBuffer(decode, p);
    }
    void _DecodeRaw(TempBucket& data, const TempBucket& encoded) override {
        ++decodeRaw;
        Base64Coder::_DecodeRaw(data, encoded);
    }
    size_t _DecodeToBuffer(const TempBucket& encoded, unsigned char* p) override {
        ++decodeToBuffer;
        return Base64Coder::_DecodeToBuffer(encoded, p);
    }
    bool _IsBadMimeChar(unsigned char c) override {
        ++mime;
        return Base64Coder::_IsBadMimeChar(c);
    }
};

// The URL-safe alphabet through an override of one step: the override must shape the output.
class UrlSafeCoder : public Base64Coder {
protected:
    void _EncodeToBuffer(const TempBucket& decode, unsigned char* p) override {
        Base64Coder::_EncodeToBuffer(decode, p);
        for (int i = 0; i < 4; ++i) {
            p[i] = p[i] == '+' ? '-' : p[i] == '/' ? '_' : p[i];
        }
    }
};

} // namespace

TEST(Base64CoderVectors, EncodeAndDecodeTheStandardVectors) {
    const struct {
        const char* plain;
        const char* encoded;
    } cases[] = {{"", ""},
                 {"f", "Zg=="},
                 {"fo", "Zm8="},
                 {"foo", "Zm9v"},
                 {"foob", "Zm9vYg=="},
                 {"fooba", "Zm9vYmE="},
                 {"foobar", "Zm9vYmFy"},
                 {"M", "TQ=="},
                 {"Ma", "TWE="},
                 {"Man", "TWFu"}};
    Base64Coder coder;
    for (const auto& c : cases) {
        coder.Encode(c.plain);
        EXPECT_STREQ(coder.EncodedMessage(), c.encoded) << c.plain;
        EXPECT_EQ(coder.GetEncodedSize(), std::strlen(c.encoded));
        coder.Decode(c.encoded);
        EXPECT_EQ(Decoded(coder), c.plain) << c.encoded;
    }
}

// Every length up to 4096 (all remainders through the bulk loops) and a few large buffers.
TEST(Base64CoderReference, AgreesOnEveryLengthUpTo4096AndOnLargeBuffers) {
    std::vector<size_t> lengths;
    for (size_t n = 0; n <= 4096; ++n) {
        lengths.push_back(n);
    }
    lengths.insert(lengths.end(), {size_t(1) << 20, (size_t(3) << 20) + 1, (size_t(5) << 20) + 2});
    std::mt19937 rng(4096);
    Base64Coder coder;
    for (size_t n : lengths) {
        auto in = RandomBytes(rng, n);
        coder.Encode(in.data(), in.size());
        std::string expected = ReferenceBase64Encode(in);
        ASSERT_EQ(Encoded(coder), expected) << "length " << n;
        coder.Decode(reinterpret_cast<const unsigned char*>(expected.data()), expected.size());
        ASSERT_EQ(coder.GetDecodedSize(), n);
        ASSERT_TRUE(std::equal(in.begin(), in.end(), coder.DecodedMessage())) << "length " << n;
        ASSERT_EQ(coder.DecodedMessage()[n], 0);
    }
}

TEST(Base64CoderBuffers, GrowToTheNextMultipleOf4096AndNeverShrink) {
    Base64Coder coder;
    std::vector<unsigned char> in(5000, 'x');
    coder.Encode(in.data(), in.size());
    EXPECT_EQ(coder.GetEncodeCapacity(), 12288u); // 2 * 5000 rounded down to 8192, + 4096
    coder.Encode("abc");
    EXPECT_EQ(coder.GetEncodeCapacity(), 12288u);
    EXPECT_STREQ(coder.EncodedMessage(), "YWJj");
    // The rest of the buffer was zeroed: nothing of the longer message survives.
    EXPECT_EQ(coder.EncodedMessage()[4], '\0');
    EXPECT_EQ(coder.EncodedMessage()[100], '\0');

    // The same for decoding, also after a variant's step wrote more than it counted.
    class Sloppy : public Base64Coder {
    protected:
        size_t _DecodeToBuffer(const TempBucket& encoded, unsigned char* p) override {
            size_t n = Base64Coder::_DecodeToBuffer(encoded, p);
            for (size_t i = n; i < 3; ++i) {
                p[i] = 0xAA;
            }
            return n;
        }
    };
    Sloppy sloppy;
    for (Base64Coder* c : {static_cast<Base64Coder*>(&coder), static_cast<Base64Coder*>(&sloppy)}) {
        c->Encode(in.data(), in.size());
        std::string text = c->EncodedMessage();
        c->Decode(text.c_str());
        ASSERT_EQ(c->GetDecodedSize(), in.size());
        c->Decode("TQ==");
        ASSERT_EQ(c->GetDecodedSize(), 1u);
        for (size_t i = 1; i < in.size() + 8; ++i) {
            ASSERT_EQ(c->DecodedMessage()[i], 0) << i;
        }
        ASSERT_TRUE(c->AllocEncode(1));
        for (size_t i = 0; i < c->GetEncodeCapacity(); ++i) {
            ASSERT_EQ(c->EncodedMessage()[i], '\0') << i;
        }
    }

    const struct {
        size_t request, capacity;
    } steps[] = {{1, 4096}, {4095, 4096}, {4096, 4096}, {4097, 8192}, {100, 8192}, {20000, 20480}};
    Base64Coder fresh;
    for (const auto& s : steps) {
        ASSERT_TRUE(fresh.AllocDecode(s.request));
        EXPECT_EQ(fresh.GetDecodeCapacity(), s.capacity) << s.request;
        EXPECT_EQ(fresh.GetDecodedSize(), 0u);
    }
}

TEST(Base64CoderDecode, TextIgnoresBitSevenAndMimeWhitespaceAndPadsShortGroups) {
    const struct {
        const char* text;
        const char* plain;
    } cases[] = {{"\xD4\xD7\xC6\xF5", "Man"}, // "TWFu" with bit 7 set
                 {"TWE", "Ma"},
                 {"TQ", "M"},
                 {"T", ""},
                 {"TQ==TWE=", "MMa"},
                 {"\xD4\xD1==", "M"},
                 {"Zm9v\r\nYmFy\t Zm9v\x07Ym\x0b\x0c"
                  "Fy",
                  "foobarfoobar"}};
    Base64Coder coder;
    for (const auto& c : cases) {
        coder.Decode(c.text);
        EXPECT_EQ(Decoded(coder), c.plain) << c.text;
    }
    // The byte form keeps every byte: a line break is then an unknown character.
    const char* text = "Zm9v\r\nYmFy";
    coder.Decode(reinterpret_cast<const unsigned char*>(text), std::strlen(text));
    EXPECT_NE(Decoded(coder), "foobar");
}

TEST(Base64CoderDecode, NullPointersLeaveTheResultAlone) {
    Base64Coder coder;
    EXPECT_STREQ(coder.EncodedMessage(), "");
    EXPECT_EQ(coder.DecodedMessage()[0], 0);
    coder.Encode("Man");
    coder.Encode(static_cast<const char*>(nullptr));
    EXPECT_STREQ(coder.EncodedMessage(), "TWFu");
    coder.Decode("TWFu");
    coder.Decode(static_cast<const char*>(nullptr));
    EXPECT_EQ(Decoded(coder), "Man");
}

TEST(Base64CoderSteps, OverriddenStepsAreCalledAndGiveTheSameBytes) {
    std::mt19937 rng(11);
    CountingCoder counted;
    Base64Coder plain;
    for (size_t n : {0, 1, 2, 3, 4, 100, 1001}) {
        auto in = RandomBytes(rng, n);
        counted.encodeToBuffer = counted.encodeRaw = 0;
        counted.Encode(in.data(), n);
        plain.Encode(in.data(), n);
        EXPECT_EQ(Encoded(counted), Encoded(plain));
        EXPECT_EQ(counted.encodeToBuffer, static_cast<int>((n + 2) / 3));
        EXPECT_EQ(counted.encodeRaw, counted.encodeToBuffer);

        counted.decodeToBuffer = counted.decodeRaw = 0;
        std::string text = Encoded(plain);
        counted.Decode(text.c_str());
        EXPECT_EQ(Decoded(counted), std::string(in.begin(), in.end()));
        EXPECT_EQ(counted.decodeToBuffer, static_cast<int>(text.size() / 4));
        EXPECT_EQ(counted.decodeRaw, counted.decodeToBuffer);
        EXPECT_EQ(counted.mime, static_cast<int>(text.size()));
        counted.mime = 0;
    }

    UrlSafeCoder url;
    const unsigned char bytes[] = {0xFB, 0xFF, 0xBF};
    url.Encode(bytes, 3);
    EXPECT_STREQ(url.EncodedMessage(), "-_-_");
}

// The bulk loops and the steps must agree byte for byte, also on text that is not Base64.
TEST(Base64CoderSteps, BulkAndStepPathsAgreeOnArbitraryText) {
    std::mt19937 rng(5);
    const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/==";
    CountingCoder steps;
    Base64Coder bulk;
    for (int round = 0; round < 2000; ++round) {
        size_t n = rng() % 40;
        std::vector<unsigned char> text(n);
        for (auto& c : text) {
            c = (rng() % 4 == 0) ? static_cast<unsigned char>(rng())
                                 : static_cast<unsigned char>(alphabet[rng() % 66]);
        }
        steps.Decode(text.data(), n);
        bulk.Decode(text.data(), n);
        ASSERT_EQ(Decoded(steps), Decoded(bulk)) << "round " << round;
    }
}

TEST(Base64CoderCopy, CopiesOwnTheirBuffers) {
    Base64Coder a;
    a.Encode("foobar");
    a.Decode("TWFu");
    Base64Coder b(a);
    Base64Coder c;
    c = a;
    a.Encode("x");
    a.Decode("Zg==");
    for (Base64Coder* copy : {&b, &c}) {
        EXPECT_STREQ(copy->EncodedMessage(), "Zm9vYmFy");
        EXPECT_EQ(Decoded(*copy), "Man");
        EXPECT_NE(copy->EncodedMessage(), a.EncodedMessage());
    }
    Base64Coder& self = c;
    c = self;
    EXPECT_STREQ(c.EncodedMessage(), "Zm9vYmFy");
}
