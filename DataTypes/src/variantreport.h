// Where Util::VariantChangeType reports a numeric conversion that would lose data. Kept in one
// place so the reporting path can be changed with one line.
#pragma once

namespace Util {
namespace VariantDetail {

void ReportNarrowingLoss(long line);

} // namespace VariantDetail
} // namespace Util
