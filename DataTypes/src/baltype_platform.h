// What the platform back ends (baltype_posix.cpp, baltype_win.cpp) provide to BalType.
#pragma once

namespace BalTypePlatform {
// First character of the user's default monetary decimal separator, or 0 if unknown.
char ReadMonetaryDecimalSeparator();
} // namespace BalTypePlatform
