#include <string>

#include "OperationsManager/src/opsformat.h"
#include "Util/AttributeSet.h"
#include "Util/Exception.h"
#include "Util/Ops.h"
#include "Util/StatusHistory.h"
#include "Util/Win32.h"

namespace Util {

namespace {

const char* OrEmpty(const char* text) {
    return text ? text : "";
}

} // namespace

void LocalOps::ReportEntered() {
    ErrorStateGuard errorState;
    Ops& ops = GetOps();
    if (!ops.IsEventActive(Ops::kFuncEnter))
        return;
    std::string text("Function Entered: ");
    text += OrEmpty(m_context.GetFunction());
    ops.ReportEventA(Ops::kFuncEnter, Ops::kLvlNA, m_context, text.c_str());
}

void LocalOps::ReportExited() {
    ErrorStateGuard errorState;
    Ops& ops = GetOps();
    if (!ops.IsEventActive(Ops::kFuncExit))
        return;
    std::string text("Function Exited: ");
    text += OrEmpty(m_context.GetFunction());
    ops.ReportEventA(Ops::kFuncExit, Ops::kLvlNA, m_context, text.c_str());
}

Status LocalOps::ReportStatus(const Status& status, long line) {
    ErrorStateGuard errorState;
    // Recorded whether or not anyone listens: callers read it back as the last status.
    if (StatusHistory* history = GetStatusHistory())
        history->SetLastStatus(status);
    m_context.SetLine(line);
    if (Ops::IsEventLevelActive(Ops::kFuncStatus, Ops::kLvlNA)) {
        Ops& ops = GetOps();
        if (ops.IsEventActive(Ops::kFuncStatus)) {
            Status copy(status);
            std::string text("Status Reported: ");
            text += copy.GetStatusMessage().c_str();
            text += ", function = ";
            text += OrEmpty(m_context.GetFunction());
            text += ", signature = ";
            text += OrEmpty(m_context.GetSignature());
            ops.ReportEventA(Ops::kFuncStatus, Ops::kLvlNA, m_context, text.c_str());
        }
    }
    return status;
}

Status LocalOps::ReportStatus(long code, long line, const char* format) {
    ErrorStateGuard errorState;
    return ReportStatus(Status(code, OrEmpty(format)), line);
}

Status LocalOps::ReportStatus(long code, long line, const AttributeSet& attributes,
                              const char* format) {
    ErrorStateGuard errorState;
    Status status(code, OrEmpty(format));
    status.SetAttributes(attributes);
    return ReportStatus(status, line);
}

Status LocalOps::ReportStatusV(long code, long line, const char* format, va_list args) {
    ErrorStateGuard errorState;
    const std::string text = OpsDetail::FormatV(format, args);
    // The arguments are the caller's data (file names, values): a '%' in the result is text,
    // never a placeholder, so such a message travels whole as an attribute.
    if (text.find('%') == std::string::npos)
        return ReportStatus(Status(code, text.c_str()), line);
    Status status(code, "%Message%");
    status.SetAttribute("Message", text.c_str());
    return ReportStatus(status, line);
}

Status LocalOps::ReportStatusV(long code, long line, const AttributeSet& attributes,
                               const char* format, va_list args) {
    ErrorStateGuard errorState;
    const std::string text = OpsDetail::FormatV(format, args);
    Status status(code, text.c_str());
    status.SetAttributes(attributes);
    return ReportStatus(status, line);
}

Status LocalOps::ReportStatusCodeFunctor::operator()(long code, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Status status = m_ops.ReportStatusV(code, m_ops.GetSourceContext().GetLine(), format, args);
    va_end(args);
    return status;
}

Status LocalOps::ReportStatusCodeFunctor::operator()(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Status status = m_ops.ReportStatusV(m_code, m_ops.GetSourceContext().GetLine(), format, args);
    va_end(args);
    return status;
}

void LocalOps::ThrowStatusCodeFunctor::operator()(long code, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Status status = m_ops.ReportStatusV(code, m_ops.GetSourceContext().GetLine(), format, args);
    va_end(args);
    throw Exception(status);
}

void LocalOps::ThrowStatusCodeFunctor::operator()(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Status status = m_ops.ReportStatusV(m_code, m_ops.GetSourceContext().GetLine(), format, args);
    va_end(args);
    throw Exception(status);
}

} // namespace Util
