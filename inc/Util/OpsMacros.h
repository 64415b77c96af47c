// Reporting macros for modules: the usual way to talk to the operations manager.
//
// Open a reporter once at the top of a function, then report through it:
//
//   Util::Status Parser::Load(const char* path)
//   {
//       ZT_FUNC_OPS();                                   // FUNC_ENTER now, FUNC_EXIT on return
//       if (!ZT_VERIFY(path != nullptr))                 // VERIFY "(path != nullptr) is false"
//           ZT_RETURN(Util::Status::GetNullPtrArg());  // reports a status and returns it
//       FILE* f = fopen(path, "rb");
//       if (!f)
//           ZT_RETURN_STATUS(-1, "Cannot open %s", path); // FUNC_STATUS, last status, returns it
//       ZT_MESSAGE(Util::Ops::kLvlInfoSummary, "Loading %s", path);
//       ZT_ASSERT(m_count == 0);
//       ...
//       ZT_RETURN_OK();
//   }
//
// The macros:
//   ZT_FUNC_OPS()                  declares `Util::LocalOps ztOps` for the current function with
//                                  __FILE__, __LINE__, __func__ and the compiler's signature.
//                                  Costs a couple of loads and a branch when nothing is wanted.
//   ZT_STATUS(code, fmt, ...)      (needs ZT_FUNC_OPS) formats the text printf-style, reports it
//                                  as a status with that code and yields the Util::Status.
//   ZT_RETURN_STATUS(code, fmt, ...)  `return ZT_STATUS(code, fmt, ...);`
//   ZT_REPORT(status)              (needs ZT_FUNC_OPS) reports an existing Util::Status, yields it.
//   ZT_RETURN(status)              `return ZT_REPORT(status);`
//   ZT_RETURN_OK()                 returns Util::Status::GetSucceeded() through ZT_REPORT.
//   ZT_THROW_STATUS(code, fmt, ...)  (needs ZT_FUNC_OPS) reports like ZT_STATUS, then throws a
//                                  Util::Exception carrying the status.
//   ZT_ASSERT(expr)                reports an ASSERT event "(expr) is false" when expr is false.
//   ZT_ASSERT_MSG(expr, fmt, ...)  the same with your own printf-style text.
//   ZT_VERIFY(expr)                reports a VERIFY event "(expr) is false" when expr is false;
//                                  yields the condition as bool, so it can sit in an if.
//   ZT_MESSAGE(level, fmt, ...)    a MESSAGE event at a Util::Ops::Level (kLvlInfoDetail ...
//                                  kLvlFatalError); formats nothing unless someone wants it.
//   ZT_ERROR(fmt, ...)             ZT_MESSAGE(Util::Ops::kLvlError, ...), the usual report of an
//                                  unexpected failure; ZT_WARNING and ZT_INFO likewise.
//   ZT_EVENT(type, level, fmt, ...)  an event of any Util::Ops::EventType (kCheckpoint,
//                                  kSendError, kDeprecated, ...); passes when its type or its
//                                  level is wanted.
//
// The source file they name is ZT_SOURCE_FILE: __FILE__ unless the including file defines it
// first, for a module whose events carry a fixed source text ("DataTypes/src/guid").
//
// None of them change errno or the Win32 last-error value. Status texts go through printf, so a
// status attribute name is written %%Name%% there (it becomes %Name% in the status's format).
// Format texts are checked by the compiler like printf's.
#pragma once

#include "Util/Ops.h"

#ifndef ZT_SOURCE_FILE
#define ZT_SOURCE_FILE __FILE__
#endif

#define ZT_FUNC_OPS() ::Util::LocalOps ztOps(ZT_SOURCE_FILE, __LINE__, __func__, ZT_FUNC_SIG)

#define ZT_STATUS(code, ...)                                                                       \
    (::Util::LocalOps::ReportStatusCodeFunctor(ztOps, __LINE__)(static_cast<long>(code),           \
                                                                __VA_ARGS__))
#define ZT_RETURN_STATUS(code, ...) return ZT_STATUS(code, __VA_ARGS__)
#define ZT_REPORT(status) (ztOps.ReportStatus((status), __LINE__))
#define ZT_RETURN(status) return ZT_REPORT(status)
#define ZT_RETURN_OK() return ZT_REPORT(::Util::Status::GetSucceeded())
#define ZT_THROW_STATUS(code, ...)                                                                 \
    (::Util::LocalOps::ThrowStatusCodeFunctor(ztOps, __LINE__)(static_cast<long>(code),            \
                                                               __VA_ARGS__))

#define ZT_ASSERT(expr)                                                                            \
    ((expr)                                                                                        \
         ? (void)0                                                                                 \
         : (void)::Util::Ops::AssertFunctor(::Util::GetOps(), ZT_SOURCE_FILE, __LINE__, __func__,  \
                                            ZT_FUNC_SIG)(true, "%s", "(" #expr ") is false"))
#define ZT_ASSERT_MSG(expr, ...)                                                                   \
    ((expr) ? (void)0                                                                              \
            : (void)::Util::Ops::AssertFunctor(::Util::GetOps(), ZT_SOURCE_FILE, __LINE__,         \
                                               __func__, ZT_FUNC_SIG)(true, __VA_ARGS__))

#define ZT_VERIFY(expr)                                                                            \
    (::Util::GetOps().Verify(static_cast<bool>(expr), #expr, ZT_SOURCE_FILE, __LINE__, __func__,   \
                             ZT_FUNC_SIG))

#define ZT_MESSAGE(level, ...)                                                                     \
    (::Util::Ops::IsEventLevelActive(::Util::Ops::kMessage, (level))                               \
         ? ::Util::GetOps().Message(                                                               \
               ::Util::SourceContext(ZT_SOURCE_FILE, __LINE__, __func__, ZT_FUNC_SIG), (level),    \
               __VA_ARGS__)                                                                        \
         : false)
#define ZT_ERROR(...) ZT_MESSAGE(::Util::Ops::kLvlError, __VA_ARGS__)
#define ZT_WARNING(...) ZT_MESSAGE(::Util::Ops::kLvlWarning, __VA_ARGS__)
#define ZT_INFO(...) ZT_MESSAGE(::Util::Ops::kLvlInfoSummary, __VA_ARGS__)

#define ZT_EVENT(type, level, ...)                                                                 \
    (::Util::Ops::IsEventLevelActive((type), (level))                                              \
         ? ::Util::Ops::MessageFunctor(::Util::GetOps(), (level), (type), ZT_SOURCE_FILE,          \
                                       __LINE__, __func__, ZT_FUNC_SIG)(__VA_ARGS__)               \
         : false)
