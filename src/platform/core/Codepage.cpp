#include "platform/core/Codepage.h"

namespace vl {

namespace {
// Code points of the bytes 0x80 to 0x9F; all other bytes equal their Latin-1 code point.
constexpr char16_t High1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
} // namespace

QString DecodeWindows1252(const char* data, qsizetype size) {
    QString out(size, Qt::Uninitialized);
    QChar* dst = out.data();
    for (qsizetype i = 0; i < size; ++i) {
        const auto b = static_cast<unsigned char>(data[i]);
        dst[i] = (b >= 0x80 && b < 0xA0) ? QChar(High1252[b - 0x80]) : QChar(b);
    }
    return out;
}

} // namespace vl
