#include <windows.h>

#include <wincrypt.h>

#include <string>
#include <vector>

std::string ReferenceBase64Encode(const std::vector<unsigned char>& in) {
    if (in.empty())
        return std::string();
    const DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    DWORD size = 0;
    if (!::CryptBinaryToStringA(in.data(), static_cast<DWORD>(in.size()), flags, nullptr, &size))
        return "<CryptBinaryToStringA failed>";
    std::string out(size, '\0');
    if (!::CryptBinaryToStringA(in.data(), static_cast<DWORD>(in.size()), flags, &out[0], &size))
        return "<CryptBinaryToStringA failed>";
    out.resize(size);
    return out;
}
