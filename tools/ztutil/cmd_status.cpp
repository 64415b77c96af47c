// ztutil's status demo: predefined statuses, attributes in messages, copy on write.
#include "tools/ztutil/registry.h"

#include "Util/Exception.h"
#include "Util/Status.h"

namespace {

void DemoStatus(std::ostream& out) {
    const Util::Status& notFound = Util::Status::GetNotFound();
    out << "A predefined status: code " << notFound.GetStatusCode() << ", \""
        << notFound.GetStatusMessage() << "\", " << (notFound.Failed() ? "a failure" : "a success")
        << "\n";

    Util::Status open(-2017, "Cannot open %FileName% (error %Win32Error%)");
    out << "Before attributes: \"" << open.GetStatusMessage() << "\"\n";
    open.SetAttribute("FileName", "ledger.dat");
    open.SetAttribute("Win32Error", 5L);
    out << "With attributes:   \"" << open.GetStatusMessage() << "\"\n";
    out << "Code " << open.GetStatusCode() << " belongs to component block "
        << open.GetStatusCodeComponentOffset() << "\n";

    Util::Status copy = open;
    copy.SetStatusCode(-2018);
    out << "A changed copy keeps its text but not the attributes: \"" << copy.GetFormatStr()
        << "\" has FileName: " << (copy.AttributeExists("FileName") ? "yes" : "no")
        << "; the original still has it: " << (open.AttributeExists("FileName") ? "yes" : "no")
        << "\n";

    try {
        throw Util::Exception(Util::Status::GetInvalidArg());
    } catch (const Util::Exception& e) {
        out << "An exception carries a status: \"" << e.GetStatus().GetStatusMessage() << "\"\n";
    }
    out << "Status implementations in the pool: " << Util::GetStatusPool()->GetPoolSize() << "\n";
}

} // namespace

ZTUTIL_DEMO(10, "Statuses", DemoStatus);
