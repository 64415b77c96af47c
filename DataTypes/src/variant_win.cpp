// Util::Variant and the OLE automation VARIANT (Windows only).
#include "Util/Variant.h"

#include <oleauto.h>

#include <cstring>

namespace Util {

bool ConvertVariantToUtilVariant(const VARIANT& source, Variant& target) {
    target.Clear();
    switch (V_VT(&source)) {
    case VT_EMPTY:
        return true;
    case VT_I1:
        target = static_cast<char>(V_I1(&source));
        return true;
    case VT_UI1:
        target = static_cast<unsigned char>(V_UI1(&source));
        return true;
    case VT_I2:
        target = static_cast<short>(V_I2(&source));
        return true;
    case VT_UI2:
        target = Variant(static_cast<unsigned short>(V_UI2(&source)), UTIL_VT_USHORT);
        return true;
    case VT_I4:
        target = static_cast<long>(V_I4(&source));
        return true;
    case VT_INT:
        target = static_cast<int>(V_INT(&source));
        return true;
    case VT_UI4:
        target = static_cast<unsigned long>(V_UI4(&source));
        return true;
    case VT_UINT:
        target = static_cast<unsigned int>(V_UINT(&source));
        return true;
    case VT_I8:
        target = static_cast<long long>(V_I8(&source));
        return true;
    case VT_UI8:
        target = static_cast<unsigned long long>(V_UI8(&source));
        return true;
    case VT_R4:
        target = static_cast<double>(V_R4(&source));
        return true;
    case VT_R8:
        target = V_R8(&source);
        return true;
    case VT_BOOL:
        target = V_BOOL(&source) != VARIANT_FALSE;
        return true;
    case VT_BSTR:
        target = V_BSTR(&source) != nullptr ? static_cast<const wchar_t*>(V_BSTR(&source)) : L"";
        return true;
    default:
        return false;
    }
}

bool ConvertUtilVariantToVariant(const Variant& source, VARIANT& target) {
    VariantInit(&target);
    const __util_Variant& data = source.GetData();
    switch (data.vt) {
    case UTIL_VT_EMPTY:
        return true;
    case UTIL_VT_CHAR:
        V_VT(&target) = VT_I1;
        V_I1(&target) = static_cast<CHAR>(data.llVal);
        return true;
    case UTIL_VT_UCHAR:
        V_VT(&target) = VT_UI1;
        V_UI1(&target) = static_cast<BYTE>(data.ullVal);
        return true;
    case UTIL_VT_SHORT:
        V_VT(&target) = VT_I2;
        V_I2(&target) = static_cast<SHORT>(data.llVal);
        return true;
    case UTIL_VT_USHORT:
    case UTIL_VT_WCHAR:
        V_VT(&target) = VT_UI2;
        V_UI2(&target) = static_cast<USHORT>(data.ullVal);
        return true;
    case UTIL_VT_INT:
        V_VT(&target) = VT_INT;
        V_INT(&target) = static_cast<INT>(data.llVal);
        return true;
    case UTIL_VT_LONG:
        V_VT(&target) = VT_I4;
        V_I4(&target) = static_cast<LONG>(data.llVal);
        return true;
    case UTIL_VT_UINT:
        V_VT(&target) = VT_UINT;
        V_UINT(&target) = static_cast<UINT>(data.ullVal);
        return true;
    case UTIL_VT_ULONG:
        V_VT(&target) = VT_UI4;
        V_UI4(&target) = static_cast<ULONG>(data.ullVal);
        return true;
    case UTIL_VT_INT64:
        V_VT(&target) = VT_I8;
        V_I8(&target) = data.llVal;
        return true;
    case UTIL_VT_UINT64:
        V_VT(&target) = VT_UI8;
        V_UI8(&target) = data.ullVal;
        return true;
    case UTIL_VT_DOUBLE:
        V_VT(&target) = VT_R8;
        V_R8(&target) = data.dblVal;
        return true;
    case UTIL_VT_BOOL:
        V_VT(&target) = VT_BOOL;
        V_BOOL(&target) = data.boolVal ? VARIANT_TRUE : VARIANT_FALSE;
        return true;
    case UTIL_VT_STRING:
    case UTIL_VT_WSTRING: {
        Variant wide;
        if (!wide.ChangeType(UTIL_VT_WSTRING, &data))
            return false;
        BSTR text = SysAllocString(wide.GetData().pwszVal);
        if (text == nullptr)
            return false;
        V_VT(&target) = VT_BSTR;
        V_BSTR(&target) = text;
        return true;
    }
    default:
        return false;
    }
}

} // namespace Util
