#include "DataTypes/src/variantreport.h"

namespace Util {
namespace VariantDetail {

void ReportNarrowingLoss(long line) {
    (void)line; // reported through the operations manager once it is available
}

} // namespace VariantDetail
} // namespace Util
