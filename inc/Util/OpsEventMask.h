// Util::OpsEventMask: a set of (event type, level) pairs.
//
// The operations manager knows 14 event types and 7 levels. A mask keeps one bit per pair, eight
// bits per type (one per level, the eighth unused), types 0..7 in the first word and 8..13 in the
// second. Subscriptions describe the pairs they may want with a mask, and the reporting entry
// points test one bit of the union before they format anything.
#pragma once

#include <cstdint>

namespace Util {

struct OpsEventMask {
    static constexpr unsigned kTypeCount = 14;
    static constexpr unsigned kLevelCount = 7;

    uint64_t m_words[2] = {0, 0};

    static constexpr unsigned WordOf(unsigned type) { return type >> 3; }
    static constexpr uint64_t BitOf(unsigned type, unsigned level) {
        return uint64_t(1) << (((type & 7u) << 3) | level);
    }

    static OpsEventMask All() {
        OpsEventMask m;
        for (unsigned t = 0; t < kTypeCount; ++t)
            m.m_words[WordOf(t)] |= uint64_t(0x7f) << ((t & 7u) << 3);
        return m;
    }
    static OpsEventMask None() { return OpsEventMask(); }
    static OpsEventMask OfType(unsigned type) {
        OpsEventMask m;
        if (type < kTypeCount)
            m.m_words[WordOf(type)] |= uint64_t(0x7f) << ((type & 7u) << 3);
        return m;
    }
    // Every type at this level and the levels above it.
    static OpsEventMask FromLevel(unsigned level) {
        OpsEventMask m;
        for (unsigned l = level; l < kLevelCount; ++l)
            for (unsigned t = 0; t < kTypeCount; ++t)
                m.Set(t, l);
        return m;
    }

    void Set(unsigned type, unsigned level) {
        if (type < kTypeCount && level < kLevelCount)
            m_words[WordOf(type)] |= BitOf(type, level);
    }
    bool Test(unsigned type, unsigned level) const {
        return type < kTypeCount && level < kLevelCount &&
               (m_words[WordOf(type)] & BitOf(type, level)) != 0;
    }
    bool Empty() const { return (m_words[0] | m_words[1]) == 0; }

    // Bit t set when some pair of type t is in the set.
    uint32_t Types() const {
        uint32_t r = 0;
        for (unsigned t = 0; t < kTypeCount; ++t)
            if ((m_words[WordOf(t)] >> ((t & 7u) << 3)) & 0x7f)
                r |= 1u << t;
        return r;
    }
    // Bit l set when some pair of level l is in the set.
    uint32_t Levels() const {
        uint32_t r = 0;
        for (unsigned t = 0; t < kTypeCount; ++t)
            r |= uint32_t(m_words[WordOf(t)] >> ((t & 7u) << 3)) & 0x7f;
        return r;
    }

    OpsEventMask operator|(const OpsEventMask& o) const {
        OpsEventMask m;
        m.m_words[0] = m_words[0] | o.m_words[0];
        m.m_words[1] = m_words[1] | o.m_words[1];
        return m;
    }
    OpsEventMask operator&(const OpsEventMask& o) const {
        OpsEventMask m;
        m.m_words[0] = m_words[0] & o.m_words[0];
        m.m_words[1] = m_words[1] & o.m_words[1];
        return m;
    }
    // The complement within the 14 x 7 valid pairs.
    OpsEventMask Complement() const {
        OpsEventMask all = All();
        OpsEventMask m;
        m.m_words[0] = ~m_words[0] & all.m_words[0];
        m.m_words[1] = ~m_words[1] & all.m_words[1];
        return m;
    }
    OpsEventMask& operator|=(const OpsEventMask& o) { return *this = *this | o; }
    bool operator==(const OpsEventMask& o) const {
        return m_words[0] == o.m_words[0] && m_words[1] == o.m_words[1];
    }
    bool operator!=(const OpsEventMask& o) const { return !(*this == o); }
};

} // namespace Util
