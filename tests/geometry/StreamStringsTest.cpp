#include "geometry/Vlprocs.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <gtest/gtest.h>

#include <array>

using namespace vl;

namespace {

QByteArray Saved(const QString& s) {
    TMemoryStream stream;
    SaveString(stream, s);
    return stream.Bytes();
}

} // namespace

TEST(SaveString, EmptyStringIsFourZeroBytes) {
    EXPECT_EQ(Saved(QString()), QByteArray::fromHex("00000000"));
}

TEST(SaveString, LengthThenLittleEndianCodeUnitsWithoutTerminator) {
    EXPECT_EQ(Saved(QStringLiteral("AB")), QByteArray::fromHex("0200000041004200"));
}

TEST(SaveString, NonLatinTextAndSurrogatesAreCodeUnits) {
    // U+00E9, U+20AC and U+1F600 (two code units).
    const QString s = QString::fromUtf8("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(Saved(s), QByteArray::fromHex("04000000"
                                            "e900"
                                            "ac20"
                                            "3dd8"
                                            "00de"));
}

TEST(LoadString_w, RoundTripsText) {
    for (const QString& s : {QString(), QStringLiteral("A"), QStringLiteral("Hello, world"),
                             QString::fromUtf8("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80")}) {
        TMemoryStream stream(Saved(s));
        EXPECT_EQ(LoadString_w(stream), s);
        EXPECT_EQ(stream.Position(), stream.Size());
    }
}

TEST(LoadString_w, NegativeLengthGivesEmptyAndReadsNothingMore) {
    TMemoryStream stream(QByteArray::fromHex("fbffffff41004200"));
    EXPECT_EQ(LoadString_w(stream), QString());
    EXPECT_EQ(stream.Position(), 4);
}

TEST(LoadString_w, ZeroLengthGivesEmptyAndReadsNothingMore) {
    TMemoryStream stream(QByteArray::fromHex("0000000041004200"));
    EXPECT_TRUE(LoadString_w(stream).isEmpty());
    EXPECT_EQ(stream.Position(), 4);
}

TEST(LoadString_w, ReadsExactlyTheCodeUnitsOfItsLength) {
    TMemoryStream stream(QByteArray::fromHex("01000000410042004300"));
    EXPECT_EQ(LoadString_w(stream), QStringLiteral("A"));
    EXPECT_EQ(stream.Position(), 6);
}

TEST(LoadString_w, LengthBeyondTheStreamRaisesReadError) {
    TMemoryStream shortText(QByteArray::fromHex("030000004100"));
    EXPECT_THROW(LoadString_w(shortText), EReadError);
    TMemoryStream huge(QByteArray::fromHex("ffffff7f4100"));
    EXPECT_THROW(LoadString_w(huge), EReadError);
    TMemoryStream noLength(QByteArray::fromHex("0100"));
    EXPECT_THROW(LoadString_w(noLength), EReadError);
}

TEST(LoadStringAnsi, DecodesCodePage1252) {
    TMemoryStream stream(QByteArray::fromHex("04000000"
                                             "61"
                                             "80"
                                             "e9"
                                             "9f"));
    EXPECT_EQ(LoadStringAnsi(stream), QString::fromUtf8("a\xE2\x82\xAC\xC3\xA9\xC5\xB8"));
    EXPECT_EQ(stream.Position(), 8);
}

TEST(LoadStringAnsi, LengthBelowOneGivesEmptyAndReadsNothingMore) {
    TMemoryStream zero(QByteArray::fromHex("0000000061"));
    EXPECT_TRUE(LoadStringAnsi(zero).isEmpty());
    EXPECT_EQ(zero.Position(), 4);
    TMemoryStream negative(QByteArray::fromHex("ffffffff61"));
    EXPECT_TRUE(LoadStringAnsi(negative).isEmpty());
    EXPECT_EQ(negative.Position(), 4);
}

TEST(LoadStringAnsi, LengthBeyondTheStreamRaisesReadError) {
    TMemoryStream stream(QByteArray::fromHex("050000006162"));
    EXPECT_THROW(LoadStringAnsi(stream), EReadError);
}

TEST(StreamReadAnsiString, StopsAtTheFirstZeroByteButReadsLenPlusOne) {
    TMemoryStream stream(QByteArray::fromHex("4142"
                                             "00"
                                             "4344"
                                             "00"
                                             "ff"));
    std::array<char16_t, 6> dest;
    dest.fill(u'#');
    StreamReadAnsiString(stream, dest.data(), 5);
    EXPECT_EQ(stream.Position(), 6);
    EXPECT_EQ(dest[0], u'A');
    EXPECT_EQ(dest[1], u'B');
    EXPECT_EQ(dest[2], u'\0');
}

TEST(StreamReadAnsiString, ConvertsFromCodePage1252) {
    TMemoryStream stream(QByteArray::fromHex("80e900"));
    EXPECT_EQ(StreamReadAnsiString(stream, 2), QString::fromUtf8("\xE2\x82\xAC\xC3\xA9"));
    EXPECT_EQ(stream.Position(), 3);
}

TEST(StreamReadAnsiString, ZeroLengthReadsTheTerminatorOnly) {
    TMemoryStream stream(QByteArray::fromHex("0041"));
    std::array<char16_t, 1> dest{u'#'};
    StreamReadAnsiString(stream, dest.data(), 0);
    EXPECT_EQ(dest[0], u'\0');
    EXPECT_EQ(stream.Position(), 1);
}

TEST(StreamReadAnsiString, MissingTerminatorStillEndsBeforeTheLastByte) {
    TMemoryStream stream(QByteArray::fromHex("414243"));
    std::array<char16_t, 3> dest;
    dest.fill(u'#');
    StreamReadAnsiString(stream, dest.data(), 2);
    EXPECT_EQ(dest[0], u'A');
    EXPECT_EQ(dest[1], u'B');
    EXPECT_EQ(dest[2], u'\0');
}

TEST(StreamReadAnsiString, TooFewBytesOrNegativeLengthRaiseReadError) {
    TMemoryStream stream(QByteArray::fromHex("4142"));
    EXPECT_THROW(StreamReadAnsiString(stream, 2), EReadError);
    EXPECT_EQ(stream.Position(), 0);
    EXPECT_THROW(StreamReadAnsiString(stream, -1), EReadError);
}
