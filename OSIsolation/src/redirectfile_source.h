// Where Util::ReDirectFile finds its rules when the process first asks for them.
#pragma once

#include "Util/ReDirectFile.h"
#include "Util/TString.h"

#include <vector>

namespace Util {
namespace RedirectSource {

// The path of "FileLocations.ini".
TString DefaultIniPath();

// One "prefix=directory" entry of the section "Redirect", in file order.
struct Entry {
    TString key;
    TString value;
};
// The entries of the section "Redirect" of the INI file (none when the file or section is
// missing).
std::vector<Entry> ReadRedirectSection(const char* iniPath);

} // namespace RedirectSource
} // namespace Util
