#include "Util/KeyValueStorage.h"

#include "DataAccessor/src/repositoryfile_platform.h"
#include "Util/OpsMacros.h"
#include "Util/Status.h"
#include "Util/Win32.h"

#include <pugixml.hpp>

#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>

namespace Norvane {
namespace Utilities {

using namespace Util::Win32;

namespace {

const char kEmptyRepository[] =
    "<?xml version=\"1.0\" encoding=\"UTF-16\" ?><KeyValueRepository></KeyValueRepository>";
const char kRoot[] = "KeyValueRepository";
const unsigned kParseFlags = pugi::parse_default | pugi::parse_declaration | pugi::parse_ws_pcdata;
// How long a read trusts the loaded document before looking at the file again.
const std::chrono::milliseconds kRecheckInterval(500);

thread_local DWORD t_lastFailure = 0;

// Counts the writes of this process to each repository file, so that a storage sees at once
// what another storage of this process (an older manager's) wrote to the same file.
std::shared_ptr<std::atomic<std::uint64_t>> WriteCounter(const std::string& file) {
    static std::mutex mutex;
    static std::unordered_map<std::string, std::shared_ptr<std::atomic<std::uint64_t>>> counters;
    std::lock_guard<std::mutex> lock(mutex);
    auto& counter = counters[file];
    if (!counter)
        counter = std::make_shared<std::atomic<std::uint64_t>>(0);
    return counter;
}

struct StringWriter : pugi::xml_writer {
    std::string data;
    void write(const void* bytes, std::size_t size) override {
        data.append(static_cast<const char*>(bytes), size);
    }
};

std::string IndexKey(const std::string& a) {
    return a;
}
std::string IndexKey(const std::string& a, const std::string& b) {
    std::string key;
    key.reserve(a.size() + b.size() + 1);
    key.append(a).push_back('\0');
    key.append(b);
    return key;
}
std::string IndexKey(const std::string& a, const std::string& b, const std::string& c) {
    std::string key = IndexKey(a, b);
    key.push_back('\0');
    key.append(c);
    return key;
}

bool IsElement(const pugi::xml_node& node, const char* name) {
    return node.type() == pugi::node_element && std::strcmp(node.name(), name) == 0;
}

// An empty node when the document has no memory left for the element or its name.
pugi::xml_node AppendNamed(pugi::xml_node parent, const char* element, const std::string& name) {
    pugi::xml_node child = parent.append_child(element);
    if (child && !child.append_attribute("name").set_value(name.c_str())) {
        parent.remove_child(child);
        return pugi::xml_node();
    }
    return child;
}

} // namespace

struct KeyValueStorageBase::Impl {
    Impl(const Util::TString& p, bool w)
        : path(p), file(p.c_str()), lockFile(file + ".lock"), writable(w),
          writes(WriteCounter(file)), sectionList("IniFile[@name = $ini]/Section", Variables()),
          keyList("IniFile[@name = $ini]/Section[@name = $section]/Key", &variables),
          sectionMatch("IniFile[@name = $ini]/Section[@name = $section]", &variables),
          keyMatch("IniFile[@name = $ini]/Section[@name = $section]/Key[@name = $key]",
                   &variables) {}

    // A variable that cannot be added would make the queries fail to compile as if they
    // were wrong; it is the memory that is missing.
    pugi::xpath_variable_set* Variables() {
        for (const char* name : {"ini", "section", "key"}) {
            if (variables.add(name, pugi::xpath_type_string) == nullptr)
                throw std::bad_alloc();
        }
        return &variables;
    }

    // False when a value could not be stored: the queries must not run with the old ones.
    bool SetVariables(const std::string& ini, const std::string& section, const std::string& key) {
        return variables.set("ini", ini.c_str()) && variables.set("section", section.c_str()) &&
               variables.set("key", key.c_str());
    }

    bool ResetToEmpty() {
        if (!doc->load_string(kEmptyRepository, kParseFlags)) {
            Forget();
            return false;
        }
        BuildIndex();
        return true;
    }

    // Drops the document, so that the next request reads the file again: after a change that
    // could not be completed in memory, nothing of it may be served or written.
    void Forget() {
        loaded = false;
        files.clear();
        sections.clear();
        keys.clear();
        doc->reset();
    }

    // The index holds the first element of each name, in document order: what the XPath
    // queries select first.
    void BuildIndex() {
        files.clear();
        sections.clear();
        keys.clear();
        for (pugi::xml_node f : doc->document_element().children()) {
            if (!IsElement(f, "IniFile"))
                continue;
            const std::string fn = f.attribute("name").value();
            files.emplace(IndexKey(fn), f);
            for (pugi::xml_node s : f.children()) {
                if (!IsElement(s, "Section"))
                    continue;
                const std::string sn = s.attribute("name").value();
                sections.emplace(IndexKey(fn, sn), s);
                for (pugi::xml_node k : s.children()) {
                    if (IsElement(k, "Key"))
                        keys.emplace(IndexKey(fn, sn, k.attribute("name").value()), k);
                }
            }
        }
    }

    // Loads the file as it is now. A file that cannot be parsed is moved aside (taking the
    // cross-process lock unless lockHeld) and the document starts empty. Returns a Win32 error
    // when the file exists but cannot be read.
    DWORD LoadCurrent(bool lockHeld, int depth = 0) {
        seenWrites = writes->load(std::memory_order_acquire);
        Platform::FileStamp now = Platform::StampOf(file);
        lastCheck = std::chrono::steady_clock::now();
        if (!now.exists) {
            blocked = 0;
            if (!ResetToEmpty())
                return ERROR_NOT_ENOUGH_MEMORY;
            stamp = now;
            loaded = true;
            return 0;
        }
        std::string data;
        DWORD error = Platform::ReadWholeFile(file, data);
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
            return depth < 3 ? LoadCurrent(lockHeld, depth + 1) : error;
        }
        if (error != 0)
            return error;
        auto parsed = std::make_unique<pugi::xml_document>();
        pugi::xml_parse_result result =
            parsed->load_buffer(data.data(), data.size(), kParseFlags, pugi::encoding_auto);
        // A file that could not be parsed for want of memory is not damaged: it stays where it
        // is, and the document in memory stays as it was.
        if (result.status == pugi::status_out_of_memory)
            return ERROR_NOT_ENOUGH_MEMORY;
        if (result && IsElement(parsed->document_element(), kRoot)) {
            blocked = 0;
            doc.swap(parsed);
            BuildIndex();
            stamp = now;
            loaded = true;
            return 0;
        }
        const char* reason =
            result ? "the root element is not KeyValueRepository" : result.description();
        return HandleCorrupt(now, reason, lockHeld, depth);
    }

    DWORD HandleCorrupt(const Platform::FileStamp& seen, const char* reason, bool lockHeld,
                        int depth) {
        Platform::FileLock lock;
        DWORD lockError = lockHeld ? 0 : lock.Acquire(lockFile);
        if (lockError == 0 && Platform::StampOf(file) != seen && depth < 3)
            return LoadCurrent(true, depth + 1); // replaced meanwhile: read the new one
        std::string aside;
        DWORD moveError = lockError;
        if (lockError == 0) {
            char when[32];
            std::time_t t = std::time(nullptr);
            std::tm local{};
            Platform::LocalTime(t, local);
            std::strftime(when, sizeof when, "%Y%m%d-%H%M%S", &local);
            for (int n = 0; n < 100; ++n) {
                aside = file + ".corrupt-" + when + (n == 0 ? "" : "-" + std::to_string(n));
                moveError = Platform::MoveFileAside(file, aside);
                if (moveError != ERROR_ALREADY_EXISTS)
                    break;
            }
        }
        if (moveError == 0) {
            ZT_ERROR("The settings repository %s cannot be read (%s); it was moved to %s",
                     file.c_str(), reason, aside.c_str());
        } else {
            ZT_ERROR("The settings repository %s cannot be read (%s) and could not be moved "
                     "aside (error %lu); it is left as it is",
                     file.c_str(), reason, static_cast<unsigned long>(moveError));
        }
        if (!ResetToEmpty())
            return ERROR_NOT_ENOUGH_MEMORY;
        stamp = seen; // not reported again until the file changes
        loaded = true;
        blocked = moveError; // a damaged file still in place must not be written over
        return 0;
    }

    DWORD RefreshForRead() {
        if (!loaded || writes->load(std::memory_order_acquire) != seenWrites)
            return LoadCurrent(false);
        auto now = std::chrono::steady_clock::now();
        if (now - lastCheck < kRecheckInterval)
            return 0;
        lastCheck = now;
        if (Platform::StampOf(file) != stamp)
            return LoadCurrent(false);
        return 0;
    }

    void RemoveAll(pugi::xpath_query& query, bool& changed) {
        pugi::xpath_node_set found = query.evaluate_node_set(doc->document_element());
        for (const pugi::xpath_node& n : found) {
            pugi::xml_node node = n.node();
            node.parent().remove_child(node);
            changed = true;
        }
        if (changed)
            BuildIndex();
    }

    // Applies one write to the document; changed tells whether anything differs. False when
    // the document ran out of memory on the way: it may then hold part of the change, and the
    // caller forgets it. XPath evaluation reports the same by std::bad_alloc.
    bool Apply(const std::string& ini, const std::string& section, const char* key,
               const char* value, bool& changed) {
        if (key == nullptr) {
            if (!SetVariables(ini, section, std::string()))
                return false;
            RemoveAll(sectionMatch, changed);
            return true;
        }
        const std::string k = Platform::ToUtf8(key);
        if (value == nullptr) {
            if (!SetVariables(ini, section, k))
                return false;
            RemoveAll(keyMatch, changed);
            return true;
        }
        const std::string v = Platform::ToUtf8(value);
        const std::string keyId = IndexKey(ini, section, k);
        auto found = keys.find(keyId);
        pugi::xml_node keyNode;
        if (found != keys.end()) {
            keyNode = found->second;
        } else {
            pugi::xml_node fileNode, sectionNode;
            auto f = files.find(IndexKey(ini));
            if (f != files.end()) {
                fileNode = f->second;
            } else {
                fileNode = AppendNamed(doc->document_element(), "IniFile", ini);
                if (!fileNode)
                    return false;
                files.emplace(IndexKey(ini), fileNode);
            }
            auto s = sections.find(IndexKey(ini, section));
            if (s != sections.end()) {
                sectionNode = s->second;
            } else {
                sectionNode = AppendNamed(fileNode, "Section", section);
                if (!sectionNode)
                    return false;
                sections.emplace(IndexKey(ini, section), sectionNode);
            }
            keyNode = AppendNamed(sectionNode, "Key", k);
            if (!keyNode)
                return false;
            keys.emplace(keyId, keyNode);
            changed = true;
        }
        pugi::xml_node valueNode = keyNode.child("Value");
        if (!valueNode) {
            valueNode = keyNode.append_child("Value");
            if (!valueNode)
                return false;
            changed = true;
        }
        if (changed || v != valueNode.child_value()) {
            if (!valueNode.text().set(v.c_str()))
                return false;
            changed = true;
        }
        return true;
    }

    std::mutex mutex;
    Util::TString path;
    std::string file, lockFile;
    bool writable;
    std::unique_ptr<pugi::xml_document> doc = std::make_unique<pugi::xml_document>();
    bool loaded = false;
    Platform::FileStamp stamp;
    std::chrono::steady_clock::time_point lastCheck;
    std::unordered_map<std::string, pugi::xml_node> files, sections, keys;
    std::shared_ptr<std::atomic<std::uint64_t>> writes;
    std::uint64_t seenWrites = 0;
    DWORD blocked = 0;
    pugi::xpath_variable_set variables;
    pugi::xpath_query sectionList, keyList, sectionMatch, keyMatch;
};

KeyValueStorageBase::KeyValueStorageBase(const Util::TString& path, bool writable)
    : m_impl(new Impl(path, writable)) {}

KeyValueStorageBase::~KeyValueStorageBase() = default;

const Util::TString& KeyValueStorageBase::GetPath() const {
    return m_impl->path;
}

bool KeyValueStorageBase::IsWritable() const {
    return m_impl->writable;
}

unsigned long KeyValueStorageBase::GetLastFailure() {
    return t_lastFailure;
}

bool KeyValueStorageBase::CheckFile(const char* path, Util::TString& problem) {
    std::string data;
    DWORD error = Platform::ReadWholeFile(path != nullptr ? path : "", data);
    if (error != 0) {
        problem.Format("cannot be read (error %lu)", static_cast<unsigned long>(error));
        return false;
    }
    pugi::xml_document parsed;
    pugi::xml_parse_result result =
        parsed.load_buffer(data.data(), data.size(), kParseFlags, pugi::encoding_auto);
    if (!result) {
        problem.Format("%s at offset %ld", result.description(), static_cast<long>(result.offset));
        return false;
    }
    if (!IsElement(parsed.document_element(), kRoot)) {
        problem = "the root element is not KeyValueRepository";
        return false;
    }
    problem = "";
    return true;
}

long KeyValueStorageBase::Get(const KeyValueQuery& query, std::string& value) {
    value.clear();
    Impl& impl = *m_impl;
    std::lock_guard<std::mutex> guard(impl.mutex);
    t_lastFailure = impl.RefreshForRead();
    if (t_lastFailure != 0 && !impl.loaded)
        return kKvFailed;
    const std::string ini = Platform::ToUtf8(query.iniName);
    if (query.IsList()) {
        const bool sectionsWanted = query.section == nullptr || *query.section == '\0';
        const std::string section =
            sectionsWanted ? std::string() : Platform::ToUtf8(query.section);
        pugi::xpath_node_set names;
        try {
            if (!impl.SetVariables(ini, section, std::string()))
                throw std::bad_alloc();
            names = (sectionsWanted ? impl.sectionList : impl.keyList)
                        .evaluate_node_set(impl.doc->document_element());
        } catch (const std::bad_alloc&) {
            t_lastFailure = ERROR_NOT_ENOUGH_MEMORY;
            return kKvFailed;
        }
        for (const pugi::xpath_node& n : names) {
            value += Platform::FromUtf8(n.node().attribute("name").value());
            value.push_back('\0');
        }
        value.push_back('\0');
        return kKvFound;
    }
    auto found =
        impl.keys.find(IndexKey(ini, Platform::ToUtf8(query.section), Platform::ToUtf8(query.key)));
    if (found == impl.keys.end())
        return kKvAbsent;
    value = Platform::FromUtf8(found->second.child("Value").child_value());
    return kKvFound;
}

long KeyValueStorageBase::Set(const KeyValueQuery& query, const char* value) {
    ZT_FUNC_OPS();
    Impl& impl = *m_impl;
    t_lastFailure = 0;
    if (!impl.writable)
        return kKvAccessDenied;
    if (query.section == nullptr || *query.section == '\0' ||
        (query.key != nullptr && *query.key == '\0'))
        return kKvInvalidArg;
    std::lock_guard<std::mutex> guard(impl.mutex);
    Platform::FileLock lock;
    DWORD error = lock.Acquire(impl.lockFile);
    if (error == 0 && (!impl.loaded || Platform::StampOf(impl.file) != impl.stamp))
        error = impl.LoadCurrent(true);
    if (error == 0)
        error = impl.blocked;
    if (error == 0) {
        bool changed = false;
        bool applied = false;
        StringWriter out;
        try {
            applied = impl.Apply(Platform::ToUtf8(query.iniName), Platform::ToUtf8(query.section),
                                 query.key, value, changed);
            if (applied && changed)
                impl.doc->save(out, "", pugi::format_raw | pugi::format_write_bom,
                               pugi::encoding_utf16_le);
        } catch (const std::bad_alloc&) {
            applied = false;
        }
        if (!applied) {
            // Part of the change may be in the document: the file is left as it was.
            impl.Forget();
            error = ERROR_NOT_ENOUGH_MEMORY;
        } else if (!changed) {
            return kKvFound;
        } else {
            error = Platform::WriteFileDurably(impl.file, out.data);
        }
        if (error == 0) {
            impl.seenWrites = impl.writes->fetch_add(1, std::memory_order_acq_rel) + 1;
            impl.stamp = Platform::StampOf(impl.file);
            impl.lastCheck = std::chrono::steady_clock::now();
            return kKvFound;
        }
        impl.loaded = false; // the change is not on disk: forget it
    }
    t_lastFailure = error;
    Util::Status failed(Util::Status::GetFailed().GetStatusCode(),
                        "Cannot write the settings repository %FileName%: error %Win32Error%");
    failed.SetAttribute("FileName", impl.file.c_str());
    failed.SetAttribute("Win32Error", static_cast<long>(error));
    (void)ZT_REPORT(failed);
    return kKvFailed;
}

} // namespace Utilities
} // namespace Norvane
