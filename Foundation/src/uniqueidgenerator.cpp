// Events from this module carry its source text, without the extension.
#define ZT_SOURCE_FILE "Foundation/src/uniqueidgenerator"

#include "Util/UniqueIDGenerator.h"

#include "DataTypes/src/valuesreporting.h"

namespace Util {

// ---- UIDU::UIDS ----

UIDU::UIDS::UIDS(long beginRange, long endRange)
    : m_beginRange(beginRange), m_endRange(endRange), m_nextAvailable(beginRange) {}

long UIDU::UIDS::Generate() {
    long id = 0;
    if (!m_returned.empty()) {
        id = *m_returned.begin();
        m_returned.erase(m_returned.begin());
    } else if (m_nextAvailable < m_endRange) {
        id = m_nextAvailable++;
    }
    if (!VALUES_VERIFY(id <= m_endRange)) {
        return 0;
    }
    return id;
}

bool UIDU::UIDS::Return(long id) {
    // Taking back an identifier never handed out would let it be handed out twice.
    if (!VALUES_VERIFY(id >= m_beginRange && id < m_nextAvailable)) {
        return false;
    }
    return m_returned.insert(id).second;
}

// ---- UIDU ----

UIDU::UIDU() = default;

UIDU::~UIDU() = default;

bool UIDU::AddOwner(UniqueIDGenerator* generator, long beginRange, long endRange) {
    if (!VALUES_VERIFY(generator != 0)) {
        return false;
    }
    std::lock_guard<std::mutex> hold(m_lock);
    auto iter = m_contextToScope.find(generator->GetContext());
    if (iter != m_contextToScope.end()) {
        UIDS* pScope = iter->second.get();
        bool sameBegin = VALUES_VERIFY(pScope->GetBeginRange() == beginRange);
        bool sameEnd = VALUES_VERIFY(pScope->GetEndRange() == endRange);
        if (!sameBegin || !sameEnd) {
            return false;
        }
        pScope->AddOwner();
        return true;
    }
    try {
        std::unique_ptr<UIDS> scope(new UIDS(beginRange, endRange));
        scope->AddOwner();
        m_contextToScope.emplace(generator->GetContext(), std::move(scope));
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

bool UIDU::RemoveOwner(UniqueIDGenerator* generator) {
    if (!VALUES_VERIFY(generator != 0)) {
        return false;
    }
    std::lock_guard<std::mutex> hold(m_lock);
    auto iter = m_contextToScope.find(generator->GetContext());
    if (!VALUES_VERIFY(iter != m_contextToScope.end())) {
        return false;
    }
    UIDS& scope = *iter->second;
    for (long id : generator->m_ownedIDs) {
        scope.Return(id);
    }
    generator->m_ownedIDs.clear();
    if (scope.RemoveOwner() <= 0) {
        m_contextToScope.erase(iter);
    }
    return true;
}

long UIDU::Generate(UniqueIDGenerator* generator) {
    if (!VALUES_VERIFY(generator != 0)) {
        return 0;
    }
    std::lock_guard<std::mutex> hold(m_lock);
    auto iter = m_contextToScope.find(generator->GetContext());
    if (!VALUES_VERIFY(iter != m_contextToScope.end())) {
        return 0;
    }
    return iter->second->Generate();
}

bool UIDU::Remove(UniqueIDGenerator* generator, long id) {
    if (!VALUES_VERIFY(generator != 0)) {
        return false;
    }
    std::lock_guard<std::mutex> hold(m_lock);
    auto iter = m_contextToScope.find(generator->GetContext());
    if (!VALUES_VERIFY(iter != m_contextToScope.end())) {
        return false;
    }
    return iter->second->Return(id);
}

std::size_t UIDU::GetScopeCount() const {
    std::lock_guard<std::mutex> hold(m_lock);
    return m_contextToScope.size();
}

bool UIDU::HasScope(void* context) const {
    std::lock_guard<std::mutex> hold(m_lock);
    return m_contextToScope.count(context) != 0;
}

// ---- UniqueIDGenerator ----

UniqueIDGenerator::UniqueIDGenerator(UIDU* universe, void* context, long beginRange, long endRange)
    : m_pUniverse(universe), m_context(context), m_beginRange(beginRange), m_endRange(endRange) {
    Register();
}

UniqueIDGenerator::UniqueIDGenerator(const UniqueIDGenerator& other)
    : m_pUniverse(other.m_pUniverse), m_context(other.m_context), m_beginRange(other.m_beginRange),
      m_endRange(other.m_endRange) {
    Register();
}

UniqueIDGenerator& UniqueIDGenerator::operator=(const UniqueIDGenerator& other) {
    if (this != &other) {
        Unregister();
        m_pUniverse = other.m_pUniverse;
        m_context = other.m_context;
        m_beginRange = other.m_beginRange;
        m_endRange = other.m_endRange;
        Register();
    }
    return *this;
}

UniqueIDGenerator::~UniqueIDGenerator() {
    Unregister();
}

void UniqueIDGenerator::Register() {
    m_ownedIDs.clear();
    long beginRange = m_beginRange;
    long endRange = m_endRange;
    // Every condition is checked, so that each failing one is reported.
    bool valid = VALUES_VERIFY(m_pUniverse != 0);
    valid = VALUES_VERIFY(endRange > beginRange) && valid;
    valid = VALUES_VERIFY((beginRange > 0 && endRange > 0) || (beginRange < 0 && endRange < 0)) &&
            valid;
    m_bValid = valid && m_pUniverse->AddOwner(this, beginRange, endRange);
}

void UniqueIDGenerator::Unregister() {
    if (m_bValid) {
        m_pUniverse->RemoveOwner(this);
    }
    m_ownedIDs.clear();
    m_bValid = false;
}

long UniqueIDGenerator::Generate() {
    if (!VALUES_VERIFY(this->IsValid())) {
        return 0;
    }
    long id = m_pUniverse->Generate(this);
    if (id != 0) {
        try {
            m_ownedIDs.insert(id);
        } catch (const std::exception&) {
            m_pUniverse->Remove(this, id);
            return 0;
        }
    }
    return id;
}

bool UniqueIDGenerator::Remove(long id) {
    if (!VALUES_VERIFY(this->IsValid()) || !VALUES_VERIFY(this->IsOwned(id))) {
        return false;
    }
    m_ownedIDs.erase(id);
    return m_pUniverse->Remove(this, id);
}

} // namespace Util
