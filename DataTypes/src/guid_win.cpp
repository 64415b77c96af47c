// Identifiers and their text from the Win32 RPC runtime.
#include "DataTypes/src/guid_platform.h"

#include <rpc.h>

namespace Util {
namespace GuidPlatform {

bool Create(GUID& guid, DWORD& error) {
    RPC_STATUS status = ::UuidCreate(&guid);
    if (status != RPC_S_OK) {
        error = static_cast<DWORD>(status);
        return false;
    }
    return true;
}

bool ToText(const GUID& guid, std::string& text) {
    RPC_CSTR str = nullptr;
    GUID copy = guid; // some SDKs declare the argument without const
    if (::UuidToStringA(&copy, &str) != RPC_S_OK || str == nullptr) {
        return false;
    }
    text = reinterpret_cast<const char*>(str);
    ::RpcStringFreeA(&str);
    return true;
}

bool FromText(const char* text, GUID& guid) {
    // A null pointer would give the nil identifier; callers always pass a text.
    if (text == nullptr) {
        return false;
    }
    RPC_CSTR str = reinterpret_cast<RPC_CSTR>(const_cast<char*>(text));
    return ::UuidFromStringA(str, &guid) == RPC_S_OK;
}

} // namespace GuidPlatform
} // namespace Util
