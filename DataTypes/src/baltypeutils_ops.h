// The reporting calls of the number formatting, in one place. With the operations manager's
// macros available they go there; a build without them keeps the results (the condition of a
// verification) and reports nothing.
#pragma once

#if __has_include("Util/OpsMacros.h")
#include "Util/OpsMacros.h"

#define BALTYPEUTILS_VERIFY(condition, text)                                                       \
    (::Util::GetOps().Verify(static_cast<bool>(condition), text, ZT_SOURCE_FILE, __LINE__,         \
                             __func__, ZT_FUNC_SIG))
#define BALTYPEUTILS_ERROR(message) ((void)ZT_ERROR(message))
#else
#define BALTYPEUTILS_VERIFY(condition, text) (static_cast<bool>(condition))
#define BALTYPEUTILS_ERROR(message) ((void)(message))
#endif
