// Util::UniqueIDGenerator hands out long identifiers that are unique among all generators that
// share a context in one universe (Util::UIDU). Each context has one scope (Util::UIDU::UIDS):
// a range [begin, end) in which the end itself is never handed out, and 0 never lies, since 0
// means "no identifier". Removed identifiers are reused, smallest first, before new ones.
// A generator owns what it generated and did not remove; when it is destroyed (or assigned)
// its identifiers return to the scope, and a scope whose last generator leaves is dropped, so
// the context may then be registered with another range. Copies join the same scope with no
// identifiers of their own. Failed preconditions are reported as verifications and give 0,
// false or an invalid generator; nothing throws. The universe must outlive its generators; it
// may be shared between threads, while each generator is used by one thread at a time.
#pragma once

#include "Util/Export.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace Util {

class UniqueIDGenerator;

class ZTUTIL_API UIDU {
public:
    // One context's range and its bookkeeping.
    class ZTUTIL_API UIDS {
    public:
        UIDS(long beginRange, long endRange);

        // The smallest returned identifier, else the next never-used one, else 0.
        long Generate();
        // Takes back an identifier handed out earlier; false for one never handed out.
        bool Return(long id);

        long GetBeginRange() const { return m_beginRange; }
        long GetEndRange() const { return m_endRange; }
        long GetNextAvailable() const { return m_nextAvailable; }
        std::size_t GetReturnedCount() const { return m_returned.size(); }
        int GetOwnerCount() const { return m_ownerCount; }
        void AddOwner() { ++m_ownerCount; }
        int RemoveOwner() { return --m_ownerCount; }

    private:
        long m_beginRange;
        long m_endRange;
        long m_nextAvailable;
        std::set<long> m_returned;
        int m_ownerCount = 0;
    };

    UIDU();
    ~UIDU();
    UIDU(const UIDU&) = delete;
    UIDU& operator=(const UIDU&) = delete;

    // Registers the generator under its context: joins the context's scope, whose range must
    // be the same, or creates the scope.
    bool AddOwner(UniqueIDGenerator* generator, long beginRange, long endRange);
    // Returns the generator's identifiers to its scope and drops the scope with its last owner.
    bool RemoveOwner(UniqueIDGenerator* generator);
    long Generate(UniqueIDGenerator* generator);
    bool Remove(UniqueIDGenerator* generator, long id);

    std::size_t GetScopeCount() const;
    bool HasScope(void* context) const;

private:
    std::map<void*, std::unique_ptr<UIDS>> m_contextToScope;
    mutable std::mutex m_lock;
};

// Walks a generator's identifiers in ascending order. Valid until the generator changes.
class ZTUTIL_API UniqueIDIterator {
public:
    UniqueIDIterator() = default;
    explicit UniqueIDIterator(const std::set<long>& ids)
        : m_current(ids.begin()), m_end(ids.end()) {}

    long operator*() const { return AtEnd() ? 0 : *m_current; }
    UniqueIDIterator& operator++() {
        if (!AtEnd()) {
            ++m_current;
        }
        return *this;
    }
    UniqueIDIterator operator++(int) {
        UniqueIDIterator before(*this);
        ++*this;
        return before;
    }
    bool AtEnd() const { return m_current == m_end; }

private:
    std::set<long>::const_iterator m_current{};
    std::set<long>::const_iterator m_end{};
};

class ZTUTIL_API UniqueIDGenerator {
public:
    UniqueIDGenerator(UIDU* universe, void* context, long beginRange, long endRange);
    UniqueIDGenerator(const UniqueIDGenerator& other);
    UniqueIDGenerator& operator=(const UniqueIDGenerator& other);
    ~UniqueIDGenerator();

    // A new identifier, or 0 when the generator is invalid or the range is used up.
    long Generate();
    // Gives an owned identifier back for reuse; false when this generator does not own it.
    bool Remove(long id);
    bool IsOwned(long id) const { return m_ownedIDs.count(id) != 0; }
    bool IsValid() const { return m_bValid; }
    UniqueIDIterator OwnedIDs() const { return UniqueIDIterator(m_ownedIDs); }

    UIDU* GetUniverse() const { return m_pUniverse; }
    void* GetContext() const { return m_context; }
    long GetBeginRange() const { return m_beginRange; }
    long GetEndRange() const { return m_endRange; }

private:
    friend class UIDU;
    void Register();
    void Unregister();

    UIDU* m_pUniverse;
    void* m_context;
    long m_beginRange;
    long m_endRange;
    std::set<long> m_ownedIDs;
    bool m_bValid = false;
};

} // namespace Util
