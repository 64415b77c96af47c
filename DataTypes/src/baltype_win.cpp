#include "DataTypes/src/baltype_platform.h"

#include <windows.h>

namespace BalTypePlatform {
char ReadMonetaryDecimalSeparator() {
    char separator[8] = {0};
    if (GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SMONDECIMALSEP, separator,
                       static_cast<int>(sizeof separator)) == 0) {
        return 0;
    }
    return separator[0];
}
} // namespace BalTypePlatform
