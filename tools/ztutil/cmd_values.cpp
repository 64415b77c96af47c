// ztutil's value-type commands (base64, guid) and the "Value types" demo section.
#include "tools/ztutil/registry.h"

#include "tools/ztutil/base64stream.h"
#include "tools/ztutil/cmd_values_stdio.h"

#include "Util/Base64Coder.h"
#include "Util/BlockStringCache.h"
#include "Util/Guid.h"
#include "Util/UniqueIDGenerator.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

const char kBase64Usage[] = "base64 encode|decode [FILE]";
const char kGuidUsage[] = "guid new|parse TEXT";

// Input blocks: a multiple of 3 so that encoded blocks join without padding in between.
const size_t kBlockSize = 3 * 64 * 1024;

class Input {
public:
    explicit Input(const std::string& path) : m_path(path) {
        m_file = path.empty() ? stdin : std::fopen(path.c_str(), "rb");
        if (m_file == nullptr) {
            m_error = std::strerror(errno);
        }
    }
    ~Input() {
        if (m_file != nullptr && m_file != stdin) {
            std::fclose(m_file);
        }
    }
    bool IsOpen() const { return m_file != nullptr; }
    const std::string& Error() const { return m_error; }
    size_t Read(unsigned char* buffer, size_t size) {
        size_t got = 0;
        while (got < size) {
            size_t n = std::fread(buffer + got, 1, size - got, m_file);
            if (n == 0) {
                if (std::ferror(m_file)) {
                    m_error = std::strerror(errno);
                }
                break;
            }
            got += n;
        }
        return got;
    }
    bool Failed() const { return m_file != nullptr && std::ferror(m_file); }

private:
    std::string m_path;
    std::FILE* m_file = nullptr;
    std::string m_error;
};

int Encode(Input& in) {
    Base64Coder coder;
    std::vector<unsigned char> block(kBlockSize);
    bool any = false;
    for (;;) {
        size_t n = in.Read(block.data(), block.size());
        if (n == 0) {
            break;
        }
        coder.Encode(block.data(), n);
        if (std::fwrite(coder.EncodedMessage(), 1, coder.GetEncodedSize(), stdout) !=
            coder.GetEncodedSize())
            return 1; // reported by main, which checks standard output
        any = true;
        if (n < block.size()) {
            break;
        }
    }
    if (in.Failed()) {
        std::cerr << "ztutil base64: read error: " << in.Error() << "\n";
        return 1;
    }
    if (any) {
        std::fputc('\n', stdout);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}

int Decode(Input& in) {
    ztutil::Base64StreamDecoder decoder;
    std::vector<unsigned char> block(kBlockSize);
    std::vector<unsigned char> decoded;
    for (;;) {
        const size_t n = in.Read(block.data(), block.size());
        decoded.clear();
        const bool good = decoder.Feed(block.data(), n, decoded);
        // Bytes decoded before a bad character are written: they are the input's valid prefix.
        if (!decoded.empty() &&
            std::fwrite(decoded.data(), 1, decoded.size(), stdout) != decoded.size())
            return 1; // reported by main, which checks standard output
        if (!good)
            break;
        if (n < block.size())
            break;
    }
    if (in.Failed()) {
        std::cerr << "ztutil base64: read error: " << in.Error() << "\n";
        return 1;
    }
    if (!decoder.Finish()) {
        std::cerr << "ztutil base64: " << decoder.Error() << " at offset " << decoder.ErrorOffset()
                  << "\n";
        return 1;
    }
    return 0;
}

int RunBase64(const std::vector<std::string>& args) {
    if (args.empty() || args.size() > 2 || (args[0] != "encode" && args[0] != "decode")) {
        return ztutil::UsageError(kBase64Usage, "expected encode or decode and at most one file");
    }
    ztutil::UseBinaryStdio();
    if (args.size() == 2 && args[1].empty())
        return ztutil::UsageError(kBase64Usage, "the file name is empty");
    Input in(args.size() == 2 ? args[1] : std::string());
    if (!in.IsOpen()) {
        std::cerr << "ztutil base64: cannot open " << args[1] << ": " << in.Error() << "\n";
        return 1;
    }
    return args[0] == "encode" ? Encode(in) : Decode(in);
}

int RunGuid(const std::vector<std::string>& args) {
    if (args.size() == 1 && args[0] == "new") {
        Util::Guid guid;
        if (guid.Renew().Failed()) {
            std::cerr << "ztutil guid: the system could not make an identifier\n";
            return 1;
        }
        std::cout << static_cast<const char*>(guid) << "\n";
        return 0;
    }
    if (args.size() == 2 && args[0] == "parse") {
        Util::Guid guid(Util::TString(args[1].c_str()));
        if (!guid.IsValid()) {
            std::cerr << "ztutil guid: " << static_cast<const char*>(guid) << ": \"" << args[1]
                      << "\" is not an identifier\n";
            return 1;
        }
        std::cout << static_cast<const char*>(guid) << "\n";
        return 0;
    }
    return ztutil::UsageError(kGuidUsage, "expected \"new\" or \"parse TEXT\"");
}

void DemoValues(std::ostream& out) {
    Base64Coder coder;
    for (const char* text : {"M", "Ma", "Man", "Tallywick ledger"}) {
        coder.Encode(text);
        out << "Base64 of \"" << text << "\": " << coder.EncodedMessage() << "\n";
    }
    coder.Decode("VGFsbHl3aWNr\r\nIGxlZGdlcg==");
    out << "Decoding text with a line break in it: \""
        << std::string(reinterpret_cast<const char*>(coder.DecodedMessage()),
                       coder.GetDecodedSize())
        << "\"\n";

    Util::Guid guid;
    out << "A default Guid: " << static_cast<const char*>(guid) << "\n";
    (void)guid.Renew();
    out << "After Renew:    " << static_cast<const char*>(guid) << "\n";
    Util::Guid parsed(Util::TString("{6B29FC40-CA47-1067-B31D-00DD010662DA}"));
    out << "Parsed from {6B29FC40-CA47-1067-B31D-00DD010662DA}: "
        << static_cast<const char*>(parsed) << "\n";

    Util::BlockStringCache cache(4096);
    const char* account = cache.AddString("Accounts receivable");
    const char* city = cache.AddString("Springfield");
    out << "Cached \"" << account << "\" and \"" << city << "\" in one block of "
        << cache.GetBlockSize() << " bytes\n";
    const char* renamed = cache.ReplaceString(city, "Shelbyville");
    out << "Same-length replacement stays in place: " << (renamed == city ? "yes" : "no") << "\n";
    cache.RemoveString(account);
    const char* reused = cache.AddString("Accounts payable!!!");
    out << "A removed string's chunk is reused: " << (reused == account ? "yes" : "no") << "\n";
    std::vector<Util::TString> lines;
    cache.FormatStatistics(false, lines);
    for (const auto& line : lines) {
        out << "  " << line.c_str() << "\n";
    }

    Util::UIDU universe;
    int context = 0;
    Util::UniqueIDGenerator ids(&universe, &context, 1, 5);
    out << "Identifiers from [1, 5):";
    for (long id = ids.Generate(); id != 0; id = ids.Generate()) {
        out << " " << id;
    }
    out << "; then 0\n";
    ids.Remove(2);
    out << "After removing 2 the next one is " << ids.Generate() << "\n";
}

} // namespace

ZTUTIL_COMMAND(base64, kBase64Usage, "Base64-encode or decode a file or standard input", RunBase64);
ZTUTIL_COMMAND(guid, kGuidUsage, "Make a new Guid or parse one", RunGuid);
ZTUTIL_DEMO(50, "Value types", DemoValues);
