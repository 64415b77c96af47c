// Util::SourceContext and Util::MessageContext: where a diagnostic event comes from.
//
// A SourceContext names a place in the source: file, line, function and signature. The three
// texts are borrowed (callers pass string literals such as __FILE__ and __func__) and are never
// copied or freed. GetVisualStudioPrefix() formats "file (line) : " on its first call and returns
// the same text from then on, even if the line changes later. Copying a context copies the
// fields but not the cached prefix, so copies are as cheap as four pointer moves.
//
// A MessageContext adds the unformatted message (the format text before its arguments were put
// in, also borrowed) so that handlers can match or show the format as well as the final text.
#pragma once

#include "Util/Export.h"
#include <memory>

#include "Util/TString.h"

namespace Util {

class ZTUTIL_API SourceContext {
public:
    SourceContext() noexcept = default;
    SourceContext(const char* file, long line, const char* function, const char* signature) noexcept
        : m_file(file), m_line(line), m_function(function), m_signature(signature) {}
    SourceContext(const SourceContext& other) noexcept
        : m_file(other.m_file), m_line(other.m_line), m_function(other.m_function),
          m_signature(other.m_signature) {}
    SourceContext& operator=(const SourceContext& other) noexcept {
        m_file = other.m_file;
        m_line = other.m_line;
        m_function = other.m_function;
        m_signature = other.m_signature;
        m_pPrefix.reset();
        return *this;
    }
    ~SourceContext() = default;

    const char* GetFile() const noexcept { return m_file; }
    long GetLine() const noexcept { return m_line; }
    const char* GetFunction() const noexcept { return m_function; }
    const char* GetSignature() const noexcept { return m_signature; }

    void SetFile(const char* file) noexcept { m_file = file; }
    void SetLine(long line) noexcept { m_line = line; }
    void SetFunction(const char* function) noexcept { m_function = function; }
    void SetSignature(const char* signature) noexcept { m_signature = signature; }

    // "file (line) : ", built on the first call and kept.
    const TString& GetVisualStudioPrefix() const;

private:
    const char* m_file = nullptr;
    long m_line = 0;
    const char* m_function = nullptr;
    const char* m_signature = nullptr;
    mutable std::unique_ptr<TString> m_pPrefix;
};

class ZTUTIL_API MessageContext : public SourceContext {
public:
    MessageContext() noexcept = default;
    MessageContext(const char* file, long line, const char* function, const char* signature,
                   const char* unformattedMessage) noexcept
        : SourceContext(file, line, function, signature), m_unformatted(unformattedMessage) {}
    MessageContext(const SourceContext& context, const char* unformattedMessage) noexcept
        : SourceContext(context), m_unformatted(unformattedMessage) {}

    const char* GetUnformattedMessage() const noexcept { return m_unformatted; }
    void SetUnformattedMessage(const char* message) noexcept { m_unformatted = message; }

private:
    const char* m_unformatted = nullptr;
};

} // namespace Util
