// Reading a subscription file whole. Only regular files are read, up to a size limit: a device
// such as /dev/zero, a FIFO without a writer or a directory is refused at once instead of being
// read without end, blocking or failing later with a misleading parse error.
#pragma once

#include <cstddef>
#include <string>

namespace Util {
namespace OpsDetail {

// Subscription files are a few kilobytes; anything this large is a mistake.
constexpr std::size_t kMaxSubscriptionFileSize = 1u << 20;

struct ReadFileFailure {
    unsigned long win32Error = 0; // the system's error as a Win32 code; 0 for our own refusals
    std::string reason;           // the system's text, or why the file was refused
};

// True with the bytes in `content`; false with `failure` filled in.
bool ReadRegularFile(const char* path, std::size_t maxSize, std::string& content,
                     ReadFileFailure& failure);

} // namespace OpsDetail
} // namespace Util
