// Feeds arbitrary bytes to the UNC splitting of FileSystem::FilePath and to the share lookup
// behind ConvertUNCToLocalPath. The input up to its first NUL is the path; what follows the NUL
// is written as the Samba configuration the share lookup reads. The parts of a UNC path must
// put the path back together, a path that is not UNC has no parts, and a converted share ends
// in a separator and the rest of the path.
#include "Util/FilePath.h"
#include "Util/Ops.h"
#include "Util/Win32Volume.h"
#include "fuzz/scratch_dir.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void Check(bool condition) {
    if (!condition)
        std::abort();
}

void WriteFile(const std::string& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

std::string Slashes(std::string text) {
    for (char& c : text)
        if (c == '\\')
            c = '/';
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string smbConf = (ZtFuzz::ScratchDir() / "smb.conf").string();
    static const std::string mounts = (ZtFuzz::ScratchDir() / "mountinfo").string();
    static const bool tables = [] {
        // Operations never begin here: keep no early events, which would only pile up.
        Util::GetOps().SetPendingEventCapacity(0);
        WriteFile(mounts, "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n");
        Util::Win32::SetNetworkTables(smbConf.c_str(), mounts.c_str());
        return true;
    }();
    (void)tables;

    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t nul = input.find('\0');
    const std::string text = input.substr(0, nul);
    WriteFile(smbConf, nul == std::string::npos ? std::string() : input.substr(nul + 1));

    FileSystem::FilePath path(text.c_str());
    const std::string full = path.GetPath();
    Util::TString server("x"), share("x"), rest("x");
    const bool unc = path.SplitUNCName(server, share, rest);
    Check(unc == path.IsPathUNC());
    if (!unc) {
        Check(path.GetUNCServerName().IsEmpty() && path.GetUNCShareName().IsEmpty() &&
              path.GetUNCPathName().IsEmpty());
        Util::TString local;
        Check(path.ConvertUNCToLocalPath(local).Failed());
        return 0;
    }
    // "\\server" (backslashes only in its first two characters), "\", share (no backslash),
    // then nothing, or "\" and the rest.
    const std::string s = server.c_str(), sh = share.c_str(), r = rest.c_str();
    Check(s.size() >= 2 && s.find('\\', 2) == std::string::npos &&
          sh.find('\\') == std::string::npos);
    const std::string joined = s + "\\" + sh;
    Check(full == joined || full == joined + "\\" + r);
    Check(s == path.GetUNCServerName().c_str() && sh == path.GetUNCShareName().c_str() &&
          r == path.GetUNCPathName().c_str());

    Util::TString uncName;
    Check(path.GetUNCName(uncName) == FileSystem::FilePath::CONVERTED && full == uncName.c_str());

    // A share converts to its directory, a separator and the rest ('/' separators under a POSIX
    // root); a share without a path (as IPC$ on Windows) succeeds and leaves the output alone.
    Util::TString local;
    if (path.ConvertUNCToLocalPath(local).Succeeded() && !local.IsEmpty()) {
        const std::string l = Slashes(local.c_str()), tail = Slashes(r);
        Check(l.size() > tail.size() && l.compare(l.size() - tail.size(), tail.size(), tail) == 0 &&
              l[l.size() - tail.size() - 1] == '/');
    }
    return 0;
}
