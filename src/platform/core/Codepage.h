// Decoding of the single-byte text of old drawing files.
//
// Files from the time of 8-bit strings hold text in the Western Windows code page 1252. Qt 6 offers no
// decoder for it without ICU, so the table lives here.
#pragma once

#include <QString>

namespace vl {

// Decodes `size` bytes of code page 1252 to UTF-16. The five bytes that the code page leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the control characters of the same value, as the
// platform's converter does.
QString DecodeWindows1252(const char* data, qsizetype size);

} // namespace vl
