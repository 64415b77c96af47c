#include "DataTypes/src/variantreport.h"

#include "Util/Ops.h"

namespace Util {
namespace VariantDetail {

void ReportNarrowingLoss(long line) {
    if (!Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlError))
        return;
    const SourceContext context("DataTypes/src/variant", line, "Util::VariantChangeType",
                                "bool Util::VariantChangeType(Util::__util_Variant*, const "
                                "Util::__util_Variant*, Util::VariantType)");
    GetOps().Message(context, Ops::kLvlError,
                     "Loss of data occured in a numeric downcast operation\n");
}

} // namespace VariantDetail
} // namespace Util
