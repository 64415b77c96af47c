// A temporary directory for the file-system tests, removed with everything in it.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace FsTest {

class TempDir {
public:
    TempDir() {
        static std::atomic<int> counter{0};
        m_path =
            std::filesystem::temp_directory_path() /
            ("fs_test_" + std::to_string(std::random_device()()) + "_" + std::to_string(counter++));
        std::filesystem::create_directories(m_path);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string Path() const { return m_path.string(); }
    std::string File(const std::string& name) const { return (m_path / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(File(name), std::ios::binary) << text;
        return File(name);
    }

private:
    std::filesystem::path m_path;
};

} // namespace FsTest
