// Where a harness keeps the files it works on. The library flushes every write to disk before it
// counts, so on a disk-backed temporary directory each run waits for the device; a memory file
// system, where there is one, keeps the harnesses fast.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace ZtFuzz {

// A directory of this process's own, created on first use. libFuzzer ends a process without
// running exit handlers, so the directories of processes that are gone are removed here.
inline const std::filesystem::path& ScratchDir() {
    static const std::filesystem::path dir = [] {
        std::error_code error;
        const bool memory =
            std::filesystem::is_directory("/dev/shm", error) && ::access("/dev/shm", W_OK) == 0;
        const std::filesystem::path base =
            memory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
        for (const auto& entry : std::filesystem::directory_iterator(base, error)) {
            const std::string name = entry.path().filename().string();
            if (name.rfind("zt_fuzz_", 0) != 0)
                continue;
            const long pid = std::strtol(name.c_str() + 8, nullptr, 10);
            if (pid > 0 && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
                std::filesystem::remove_all(entry.path(), error);
        }
        std::filesystem::path d = base / ("zt_fuzz_" + std::to_string(::getpid()));
        std::filesystem::create_directories(d);
        return d;
    }();
    return dir;
}

} // namespace ZtFuzz
