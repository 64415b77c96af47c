// Standard input and output as raw bytes for the base64 command (Windows translates line ends
// in text mode, which would corrupt decoded binary data).
#pragma once

namespace ztutil {
void UseBinaryStdio();
} // namespace ztutil
