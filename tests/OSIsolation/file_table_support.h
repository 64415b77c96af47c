// A temporary directory laid out the same way for the Win32 and C-runtime behaviour tables:
//   file.txt ("hello"), readonly.txt ("keep", read-only), sub/inner.dat, empty/ and
//   find/ (readme, notes.txt, notes.txt.bak, data.tar.gz, b1.txt, b22.txt).
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "Util/Win32File.h"

using namespace Util::Win32;

namespace FileTable {

class Layout {
public:
    Layout() {
        static std::atomic<int> counter{0};
        m_root = (std::filesystem::temp_directory_path() /
                  ("zt_files_" + std::to_string(std::random_device()()) + "_" +
                   std::to_string(counter++)))
                     .generic_string();
        std::filesystem::create_directories(m_root + "/sub");
        std::filesystem::create_directories(m_root + "/empty");
        std::filesystem::create_directories(m_root + "/find");
        Write("file.txt", "hello");
        Write("readonly.txt", "keep");
        Write("sub/inner.dat", "inner");
        for (const char* name :
             {"readme", "notes.txt", "notes.txt.bak", "data.tar.gz", "b1.txt", "b22.txt"})
            Write(std::string("find/") + name, name);
        Util::Win32::SetFileAttributesA(Path("readonly.txt").c_str(), FILE_ATTRIBUTE_READONLY);
    }
    ~Layout() {
        std::error_code ignored;
        for (auto it = std::filesystem::recursive_directory_iterator(m_root, ignored);
             it != std::filesystem::recursive_directory_iterator(); it.increment(ignored))
            Util::Win32::SetFileAttributesA(it->path().generic_string().c_str(),
                                            FILE_ATTRIBUTE_NORMAL);
        std::filesystem::remove_all(m_root, ignored);
    }
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    const std::string& Root() const { return m_root; }
    // Written with the platform's own separators ('\\' on Windows, where a shell function may
    // split a name at backslashes only).
    std::string Path(const std::string& relative) const {
        return (std::filesystem::path(m_root) / relative).make_preferred().string();
    }
    void Write(const std::string& relative, const std::string& text) const {
        std::ofstream(Path(relative), std::ios::binary) << text;
    }
    // The file's text, or "<absent>".
    std::string Read(const std::string& relative) const {
        std::ifstream in(Path(relative), std::ios::binary);
        if (!in)
            return "<absent>";
        std::ostringstream out;
        out << in.rdbuf();
        return out.str();
    }

private:
    std::string m_root;
};

} // namespace FileTable
