#include "Util/ReDirectFile.h"

#include "OSIsolation/src/redirectfile_platform.h"
#include "OSIsolation/src/redirectfile_source.h"
#include "Util/OpsMacros.h"
#include "Util/Win32.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace Util {

namespace {

using Rules = std::vector<ReDirectFile::Rule>;

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The length of prefix without its trailing separators.
std::size_t TrimmedLength(const TString& prefix) {
    std::size_t length = prefix.GetLength();
    while (length > 0 && IsSeparator(prefix[length - 1]))
        --length;
    return length;
}

// When prefix matches the start of name on whole segments, the offset in name where the rest
// (empty, or starting with a separator) begins; otherwise npos.
std::size_t MatchPrefix(const TString& name, const TString& prefix, bool caseBlind) {
    const std::size_t length = TrimmedLength(prefix);
    if (length == 0 || name.GetLength() < length)
        return TString::npos;
    for (std::size_t i = 0; i < length; ++i) {
        const char a = name[i], b = prefix[i];
        const bool same =
            (IsSeparator(a) && IsSeparator(b)) || a == b || (caseBlind && Fold(a) == Fold(b));
        if (!same)
            return TString::npos;
    }
    if (length < name.GetLength() && !IsSeparator(name[length]))
        return TString::npos;
    return length;
}

class RuleTable {
public:
    static RuleTable& Instance() {
        static RuleTable table;
        return table;
    }

    bool HasRules() {
        EnsureLoaded();
        return m_hasRules.load(std::memory_order_acquire);
    }

    std::shared_ptr<const Rules> Snapshot() {
        EnsureLoaded();
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_rules;
    }

    void Replace(Rules rules) {
        EnsureLoaded();
        Store(std::move(rules));
    }

    void Append(ReDirectFile::Rule rule) {
        EnsureLoaded();
        std::lock_guard<std::mutex> lock(m_mutex);
        auto rules = std::make_shared<Rules>(*m_rules);
        rules->push_back(std::move(rule));
        m_rules = std::move(rules);
        m_hasRules.store(true, std::memory_order_release);
    }

private:
    RuleTable() : m_rules(std::make_shared<Rules>()) {}

    void Store(Rules rules) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_hasRules.store(!rules.empty(), std::memory_order_release);
        m_rules = std::make_shared<const Rules>(std::move(rules));
    }

    // Every wrapper asks, so the loaded case is one atomic load rather than a call_once.
    void EnsureLoaded() {
        if (m_ready.load(std::memory_order_acquire))
            return;
        std::call_once(m_loaded, [this] {
            // The first caller may be a wrapper whose caller reads errno afterwards.
            ErrorStateGuard errorState;
            const TString path = RedirectSource::DefaultIniPath();
            if (!path.IsEmpty())
                Store(ReadRules(path.c_str()));
            m_ready.store(true, std::memory_order_release);
        });
    }

public:
    static Rules ReadRules(const char* iniPath);

private:
    std::once_flag m_loaded;
    std::mutex m_mutex;
    std::shared_ptr<const Rules> m_rules;
    std::atomic<bool> m_hasRules{false};
    std::atomic<bool> m_ready{false};
};

bool IsValid(const ReDirectFile::Rule& rule) {
    return TrimmedLength(rule.requested) > 0 && !rule.real.IsEmpty();
}

Rules RuleTable::ReadRules(const char* iniPath) {
    ZT_FUNC_OPS();
    Rules rules;
    for (const RedirectSource::Entry& entry : RedirectSource::ReadRedirectSection(iniPath)) {
        ReDirectFile::Rule rule{entry.key, entry.value};
        if (IsValid(rule))
            rules.push_back(std::move(rule));
        else
            ZT_WARNING("Redirect entry skipped: \"%s=%s\" in %s", entry.key.c_str(),
                       entry.value.c_str(), iniPath);
    }
    return rules;
}

} // namespace

bool ReDirectFile::GetRedirectedFile(TString& redirected, const TString& requested,
                                     std::size_t& ruleIndex) {
    RuleTable& table = RuleTable::Instance();
    if (table.HasRules()) {
        const std::shared_ptr<const Rules> rules = table.Snapshot();
        const bool caseBlind = Platform::FileNamesAreCaseBlind();
        for (std::size_t i = 0; i < rules->size(); ++i) {
            const Rule& rule = (*rules)[i];
            const std::size_t rest = MatchPrefix(requested, rule.requested, caseBlind);
            if (rest == TString::npos)
                continue;
            TString result(rule.real);
            const std::size_t realLength = result.GetLength();
            std::size_t from = rest;
            if (realLength > 0 && IsSeparator(result[realLength - 1]) &&
                from < requested.GetLength())
                ++from; // the rest starts with a separator; keep only one
            result.Append(requested.c_str() + from, requested.GetLength() - from);
            redirected = std::move(result);
            ruleIndex = i;
            return true;
        }
    }
    redirected = requested;
    return false;
}

bool ReDirectFile::GetRedirectedFile(TString& redirected, const TString& requested) {
    std::size_t ignored = 0;
    return GetRedirectedFile(redirected, requested, ignored);
}

bool ReDirectFile::HasRules() {
    return RuleTable::Instance().HasRules();
}

std::vector<ReDirectFile::Rule> ReDirectFile::GetRules() {
    return *RuleTable::Instance().Snapshot();
}

Status ReDirectFile::SetRules(const std::vector<Rule>& rules) {
    ZT_FUNC_OPS();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (!IsValid(rules[i])) {
            Status status(Status::GetInvalidArg().GetStatusCode(),
                          "Redirection rule %RuleIndex% needs a directory prefix and a directory");
            status.SetAttribute("RuleIndex", static_cast<long>(i));
            ZT_RETURN(status);
        }
    }
    RuleTable::Instance().Replace(rules);
    ZT_RETURN_OK();
}

Status ReDirectFile::AddRule(const char* requestedPrefix, const char* realDirectory) {
    ZT_FUNC_OPS();
    if (requestedPrefix == nullptr || realDirectory == nullptr)
        ZT_RETURN(Status::GetNullPtrArg());
    Rule rule{requestedPrefix, realDirectory};
    if (!IsValid(rule)) {
        Status status(Status::GetInvalidArg().GetStatusCode(),
                      "Redirection rule %Requested% -> %Real% needs a directory prefix and a "
                      "directory");
        status.SetAttribute("Requested", requestedPrefix);
        status.SetAttribute("Real", realDirectory);
        ZT_RETURN(status);
    }
    RuleTable::Instance().Append(std::move(rule));
    ZT_RETURN_OK();
}

void ReDirectFile::ClearRules() {
    RuleTable::Instance().Replace({});
}

Status ReDirectFile::LoadRules(const char* iniPath) {
    ZT_FUNC_OPS();
    if (iniPath == nullptr)
        ZT_RETURN(Status::GetNullPtrArg());
    RuleTable::Instance().Replace(RuleTable::ReadRules(iniPath));
    ZT_RETURN_OK();
}

TString ReDirectFile::GetDefaultIniPath() {
    return RedirectSource::DefaultIniPath();
}

} // namespace Util
