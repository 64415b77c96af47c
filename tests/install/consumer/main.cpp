#include "Util/Status.h"
#include "Util/Version.h"

#include <cstdio>
#include <cstring>

int main() {
    Util::Status status(-2001, "Cannot open %FileName%");
    status.SetAttribute("FileName", "ledger.dat");
    const char* message = status.GetStatusMessage();
    std::printf("%s %s\n", ZTUTIL_VERSION, message);
    return std::strcmp(message, "Cannot open ledger.dat") == 0 ? 0 : 1;
}
