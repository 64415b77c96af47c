// BalTypeLegacy_6Bytes: the 6-byte BalType record of older data files.
#include "Util/BalType.h"

#include <cstring>

namespace {
constexpr unsigned char kLegacyQty = BalTypeLegacy_6Bytes::kQtyBit;
constexpr unsigned char kLegacySign = BalTypeLegacy_6Bytes::kSignBit;
constexpr unsigned char kLegacyError = BalTypeLegacy_6Bytes::kErrorBit;
constexpr unsigned char kLegacyPercent = BalTypeLegacy_6Bytes::kPercentBit;
constexpr unsigned char kLegacyEmpty = BalTypeLegacy_6Bytes::kEmptyBit;
constexpr unsigned char kLegacyFractionBit16 = BalTypeLegacy_6Bytes::kFractionBit16;

constexpr uint32_t kLegacyQtyMaxWhole = 9999999; // 6-byte entry 3
} // namespace

BalTypeLegacy_6Bytes::BalTypeLegacy_6Bytes(const BalType& value) : m_bytes{} {
    *this = value;
}

BalTypeLegacy_6Bytes& BalTypeLegacy_6Bytes::operator=(const BalType& value) {
    std::memset(m_bytes, 0, sizeof m_bytes);
    uint64_t whole = 0;
    uint32_t fraction = 0;
    BalKind kind = BalKindDollar;
    value.Decompose(whole, fraction, kind);
    if (kind == BalKindQty && whole > kLegacyQtyMaxWhole) {
        // A quantity beyond the 24-bit whole part is kept as a dollar amount.
        kind = BalKindDollar;
        fraction /= 1000;
    }
    unsigned char flags = 0;
    flags |= kind == BalKindQty ? kLegacyQty : 0;
    flags |= value.GetSign() == BalSignNegative ? kLegacySign : 0;
    flags |= value.IsError() ? kLegacyError : 0;
    flags |= value.IsPercent() ? kLegacyPercent : 0;
    flags |= value.IsEmpty() ? kLegacyEmpty : 0;
    if (whole > 0xFFFFFFFFULL) {
        // Does not fit the record: marked as an error rather than silently cut.
        flags |= kLegacyError;
        whole = 0;
        fraction = 0;
    }
    m_bytes[0] = flags;
    Compose(static_cast<uint32_t>(whole), fraction, kind);
    return *this;
}

void BalTypeLegacy_6Bytes::SetBytes(const unsigned char bytes[6]) {
    std::memcpy(m_bytes, bytes, sizeof m_bytes);
}

void BalTypeLegacy_6Bytes::Compose(uint32_t whole, uint32_t fraction, BalKind kind) {
    m_bytes[0] = static_cast<unsigned char>((m_bytes[0] & ~(kLegacyQty | kLegacyFractionBit16)) |
                                            (kind == BalKindQty ? kLegacyQty : 0));
    if (kind == BalKindQty) {
        m_bytes[1] = static_cast<unsigned char>(fraction & 0xFF);
        m_bytes[2] = static_cast<unsigned char>((fraction >> 8) & 0xFF);
        if (fraction & 0x10000) {
            m_bytes[0] |= kLegacyFractionBit16;
        }
        m_bytes[3] = static_cast<unsigned char>(whole & 0xFF);
        m_bytes[4] = static_cast<unsigned char>((whole >> 8) & 0xFF);
        m_bytes[5] = static_cast<unsigned char>((whole >> 16) & 0xFF);
    } else {
        m_bytes[1] = static_cast<unsigned char>(fraction);
        for (int i = 0; i < 4; ++i) {
            m_bytes[2 + i] = static_cast<unsigned char>((whole >> (8 * i)) & 0xFF);
        }
    }
}

void BalTypeLegacy_6Bytes::Decompose(uint32_t& whole, uint32_t& fraction, BalKind& kind) const {
    kind = GetKind();
    if (kind == BalKindQty) {
        GetQty(whole, fraction);
        return;
    }
    fraction = m_bytes[1];
    whole = 0;
    for (int i = 3; i >= 0; --i) {
        whole = (whole << 8) | m_bytes[2 + i];
    }
}

void BalTypeLegacy_6Bytes::GetQty(uint32_t& whole, uint32_t& fraction) const {
    fraction = static_cast<uint32_t>(m_bytes[1]) | (static_cast<uint32_t>(m_bytes[2]) << 8) |
               ((m_bytes[0] & kLegacyFractionBit16) ? 0x10000u : 0u);
    whole = static_cast<uint32_t>(m_bytes[3]) | (static_cast<uint32_t>(m_bytes[4]) << 8) |
            (static_cast<uint32_t>(m_bytes[5]) << 16);
}

bool BalTypeLegacy_6Bytes::IsZero() const {
    uint32_t whole, fraction;
    BalKind kind;
    Decompose(whole, fraction, kind);
    return whole == 0 && fraction == 0;
}

void BalTypeLegacy_6Bytes::SetFromLegacy6Bytes(BalType& target) const {
    BalType value;
    value._SetMbits(0);
    ZtDecimal64 zeroBytes(ZtDecimal64::NoInit);
    zeroBytes.SetInternallFromUInt64(0);
    value._SetZtDecimal(zeroBytes);
    uint32_t whole, fraction;
    BalKind kind;
    Decompose(whole, fraction, kind);
    value.Compose(whole, fraction, kind);
    value.SetPercent(IsPercent());
    if (IsError()) {
        value.SetError();
    }
    if (IsEmpty()) {
        value._SetMbits(kind == BalKindQty ? BalType::kEmptyQtyBits : BalType::kEmptyDollarBits);
    }
    if (IsNegative()) {
        value.SetNegative();
    }
    target = value;
}

int BalPickyCompareLegacy6Bytes(const BalTypeLegacy_6Bytes& a, const BalTypeLegacy_6Bytes& b,
                                bool ignoreEmpty) {
    BalType x, y;
    a.SetFromLegacy6Bytes(x);
    b.SetFromLegacy6Bytes(y);
    return BalPickyCompare(x, y, ignoreEmpty);
}
