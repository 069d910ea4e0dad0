#include "platform/core/Codepage.h"

#include <gtest/gtest.h>

using namespace vl;

TEST(Codepage1252, AsciiAndLatin1BytesKeepTheirValue) {
    const char bytes[] = {'A', 'z', '\xE4', '\xFF', '\xA0'};
    EXPECT_EQ(DecodeWindows1252(bytes, 5), QString::fromUtf16(u"Az\u00E4\u00FF\u00A0"));
}

TEST(Codepage1252, HighControlRangeMapsToTypographicCharacters) {
    const char bytes[] = {'\x80', '\x8A', '\x93', '\x94', '\x9F', '\x99'};
    EXPECT_EQ(DecodeWindows1252(bytes, 6), QString::fromUtf16(u"\u20AC\u0160\u201C\u201D\u0178\u2122"));
}

TEST(Codepage1252, UndefinedBytesMapToControlCharacters) {
    const char bytes[] = {'\x81', '\x8D', '\x8F', '\x90', '\x9D'};
    EXPECT_EQ(DecodeWindows1252(bytes, 5), QString::fromUtf16(u"\u0081\u008D\u008F\u0090\u009D"));
}

TEST(Codepage1252, ZeroBytesAreKept) {
    const char bytes[] = {'a', '\0', 'b'};
    EXPECT_EQ(DecodeWindows1252(bytes, 3).size(), 3);
}
