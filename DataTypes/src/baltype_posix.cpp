#include "DataTypes/src/baltype_platform.h"

#include <langinfo.h>
#include <locale.h>

namespace BalTypePlatform {
// The user's default locale is the one the environment names (LC_ALL, LC_MONETARY, LANG); it is
// opened on its own so that the process's current locale is left alone.
char ReadMonetaryDecimalSeparator() {
    locale_t userLocale = newlocale(LC_MONETARY_MASK, "", static_cast<locale_t>(0));
    if (userLocale == static_cast<locale_t>(0)) {
        return 0;
    }
    const char* separator = nl_langinfo_l(MON_DECIMAL_POINT, userLocale);
    char first = (separator != nullptr) ? separator[0] : 0;
    freelocale(userLocale);
    return first;
}
} // namespace BalTypePlatform
