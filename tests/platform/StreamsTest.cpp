#include "platform/Exceptions.h"
#include "platform/Streams.h"

#include <gtest/gtest.h>

using namespace vl;

TEST(MemoryStream, WritesLittleEndianFields) {
    TMemoryStream s;
    s.WriteInt32(0x01020304);
    s.WriteInt16(-2);
    s.WriteUInt8(0xAB);
    s.WriteDouble(1.0);
    const QByteArray expected = QByteArray::fromHex("04030201feffab000000000000f03f");
    EXPECT_EQ(s.Bytes(), expected);
    s.SetPosition(0);
    EXPECT_EQ(s.ReadInt32(), 0x01020304);
    EXPECT_EQ(s.ReadInt16(), -2);
    EXPECT_EQ(s.ReadUInt8(), 0xAB);
    EXPECT_EQ(s.ReadDouble(), 1.0);
}

TEST(MemoryStream, ShortReadRaisesReadError) {
    TMemoryStream s;
    s.WriteInt16(7);
    s.SetPosition(0);
    EXPECT_THROW(s.ReadInt32(), EReadError);
}

TEST(MemoryStream, NegativePositionIsIgnored) {
    TMemoryStream s;
    s.WriteInt32(5);
    s.SetPosition(2);
    s.SetPosition(-4);
    EXPECT_EQ(s.Position(), 2);
}
