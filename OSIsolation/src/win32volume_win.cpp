// The optional volume and network functions, looked up by name in their system libraries at
// each call and released afterwards.
#include "Util/Win32Volume.h"

namespace Util {
namespace Win32 {

namespace {

// Holds a system library for the length of one call.
class SystemLibrary {
public:
    explicit SystemLibrary(const char* name) : m_module(LoadLibraryA(name)) {}
    ~SystemLibrary() {
        if (m_module != nullptr)
            FreeLibrary(m_module);
    }
    SystemLibrary(const SystemLibrary&) = delete;
    SystemLibrary& operator=(const SystemLibrary&) = delete;

    template <typename Fn> Fn Find(const char* name) const {
        if (m_module == nullptr)
            return nullptr;
        return reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

private:
    HMODULE m_module;
};

typedef DWORD(WINAPI* FinalPathFn)(HANDLE, LPSTR, DWORD, DWORD);
typedef NET_API_STATUS(WINAPI* ShareInfoFn)(LPWSTR, LPWSTR, DWORD, LPBYTE*);
typedef NET_API_STATUS(WINAPI* BufferFreeFn)(LPVOID);
typedef DWORD(WINAPI* UniversalNameFn)(LPCSTR, DWORD, LPVOID, LPDWORD);

} // namespace

DWORD GetFinalPathNameByHandleA(HANDLE file, LPSTR filePath, DWORD bufferLength, DWORD flags) {
    SystemLibrary kernel("KERNEL32.DLL");
    auto fn = kernel.Find<FinalPathFn>("GetFinalPathNameByHandleA");
    if (fn == nullptr)
        return 0;
    return fn(file, filePath, bufferLength, flags);
}

NET_API_STATUS NetShareGetInfo(LPWSTR serverName, LPWSTR netName, DWORD level, LPBYTE* buffer) {
    SystemLibrary netapi("NETAPI32.DLL");
    auto fn = netapi.Find<ShareInfoFn>("NetShareGetInfo");
    if (fn == nullptr)
        return GetLastError();
    // The record lives in the network API's own heap, which outlives the library handle.
    return fn(serverName, netName, level, buffer);
}

NET_API_STATUS NetApiBufferFree(LPVOID buffer) {
    SystemLibrary netapi("NETAPI32.DLL");
    auto fn = netapi.Find<BufferFreeFn>("NetApiBufferFree");
    if (fn == nullptr)
        return GetLastError();
    return fn(buffer);
}

DWORD WNetGetUniversalNameA(LPCSTR localPath, DWORD infoLevel, LPVOID buffer, LPDWORD bufferSize) {
    SystemLibrary mpr("MPR.DLL");
    auto fn = mpr.Find<UniversalNameFn>("WNetGetUniversalNameA");
    if (fn == nullptr)
        return GetLastError();
    return fn(localPath, infoLevel, buffer, bufferSize);
}

void SetNetworkTables(const char*, const char*) {}

} // namespace Win32
} // namespace Util
