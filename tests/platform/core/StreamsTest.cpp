#include "platform/core/Streams.h"
#include "platform/core/Exceptions.h"

#include <QFile>
#include <QTemporaryDir>
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

// --- little-endian fields, byte for byte ---

namespace {
QByteArray Written(void (*write)(TStream&)) {
    TMemoryStream s;
    write(s);
    return s.Bytes();
}
} // namespace

TEST(MemoryStream, EveryIntegerHelperIsLittleEndian) {
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt8(-2); }), QByteArray::fromHex("fe"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteUInt8(0x81); }), QByteArray::fromHex("81"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt16(-32768); }), QByteArray::fromHex("0080"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteUInt16(0x8001); }), QByteArray::fromHex("0180"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt32(-2); }), QByteArray::fromHex("feffffff"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt32(-2147483647 - 1); }), QByteArray::fromHex("00000080"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteUInt32(0x89ABCDEF); }), QByteArray::fromHex("efcdab89"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt64(0x0102030405060708LL); }),
              QByteArray::fromHex("0807060504030201"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteInt64(-2); }), QByteArray::fromHex("feffffffffffffff"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteUInt64(0xFEDCBA9876543210ULL); }),
              QByteArray::fromHex("1032547698badcfe"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteBool(true); }), QByteArray::fromHex("01"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteBool(false); }), QByteArray::fromHex("00"));
}

TEST(MemoryStream, FloatHelpersWriteIeeeLittleEndian) {
    EXPECT_EQ(Written([](TStream& s) { s.WriteDouble(1.0); }), QByteArray::fromHex("000000000000f03f"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteDouble(-2.5); }), QByteArray::fromHex("00000000000004c0"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteDouble(0.1); }), QByteArray::fromHex("9a9999999999b93f"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteSingle(1.0f); }), QByteArray::fromHex("0000803f"));
    EXPECT_EQ(Written([](TStream& s) { s.WriteSingle(-0.5f); }), QByteArray::fromHex("000000bf"));
}

TEST(MemoryStream, EveryReadHelperReadsLittleEndian) {
    TMemoryStream s(QByteArray::fromHex("fe"
                                        "0180"
                                        "feffffff"
                                        "efcdab89"
                                        "0807060504030201"
                                        "1032547698badcfe"
                                        "0000803f"
                                        "9a9999999999b93f"
                                        "02"));
    EXPECT_EQ(s.ReadInt8(), -2);
    EXPECT_EQ(s.ReadUInt16(), 0x8001);
    EXPECT_EQ(s.ReadInt32(), -2);
    EXPECT_EQ(s.ReadUInt32(), 0x89ABCDEFu);
    EXPECT_EQ(s.ReadInt64(), 0x0102030405060708LL);
    EXPECT_EQ(s.ReadUInt64(), 0xFEDCBA9876543210ULL);
    EXPECT_EQ(s.ReadSingle(), 1.0f);
    EXPECT_EQ(s.ReadDouble(), 0.1);
    EXPECT_TRUE(s.ReadBool()); // any non-zero byte is true
    EXPECT_EQ(s.Remaining(), 0);
    s.SetPosition(0);
    EXPECT_EQ(s.ReadUInt8(), 0xFE);
    EXPECT_EQ(s.ReadInt16(), -32767);
}

TEST(MemoryStream, ShortReadOfEveryWidthRaisesAndKeepsNothingPartial) {
    TMemoryStream s(QByteArray::fromHex("01020304050607"));
    EXPECT_THROW(s.ReadInt64(), EReadError);
    s.SetPosition(6);
    EXPECT_THROW(s.ReadInt16(), EReadError);
    s.SetPosition(7);
    EXPECT_THROW(s.ReadUInt8(), EReadError);
    s.SetPosition(4);
    EXPECT_THROW(s.ReadDouble(), EReadError);
    s.SetPosition(5);
    EXPECT_THROW(s.ReadSingle(), EReadError);
}

TEST(MemoryStream, ReadBufferShortReadRaises) {
    TMemoryStream s(QByteArray("abc"));
    char buffer[4] = {};
    try {
        s.ReadBuffer(buffer, 4);
        FAIL();
    } catch (const EReadError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Stream read error"));
    }
    s.SetPosition(0);
    EXPECT_NO_THROW(s.ReadBuffer(buffer, 3));
    EXPECT_EQ(QByteArray(buffer, 3), QByteArray("abc"));
    EXPECT_NO_THROW(s.ReadBuffer(buffer, 0));
}

TEST(MemoryStream, ReadAnswersWhatIsLeft) {
    TMemoryStream s(QByteArray("abcde"));
    char buffer[8] = {};
    s.SetPosition(3);
    EXPECT_EQ(s.Read(buffer, 8), 2);
    EXPECT_EQ(s.Read(buffer, 8), 0);
    EXPECT_EQ(s.Position(), 5);
}

TEST(MemoryStream, SeekFromEveryOrigin) {
    TMemoryStream s(QByteArray("0123456789"));
    EXPECT_EQ(s.Seek(4, TSeekOrigin::soBeginning), 4);
    EXPECT_EQ(s.Seek(2, TSeekOrigin::soCurrent), 6);
    EXPECT_EQ(s.Seek(-3, TSeekOrigin::soEnd), 7);
    EXPECT_EQ(s.ReadUInt8(), '7');
    EXPECT_EQ(s.Size(), 10);
    EXPECT_EQ(s.Remaining(), 2);
}

TEST(MemoryStream, SeekBeyondTheEndThenWriteFillsWithZeros) {
    TMemoryStream s;
    s.WriteUInt8(1);
    s.SetPosition(3);
    EXPECT_EQ(s.Size(), 1);
    s.WriteUInt8(2);
    EXPECT_EQ(s.Bytes(), QByteArray::fromHex("01000002"));
}

TEST(MemoryStream, NegativePositionIsIgnoredForReadsToo) {
    TMemoryStream s(QByteArray::fromHex("0a0b"));
    s.SetPosition(1);
    s.SetPosition(-1);
    EXPECT_EQ(s.Position(), 1);
    EXPECT_EQ(s.ReadUInt8(), 0x0B);
}

TEST(MemoryStream, SetSizeTruncatesAndGrows) {
    TMemoryStream s(QByteArray("abcdef"));
    s.SetPosition(5);
    s.SetSize(3);
    EXPECT_EQ(s.Size(), 3);
    EXPECT_EQ(s.Position(), 3);
    EXPECT_EQ(s.Bytes(), QByteArray("abc"));
    s.SetSize(5);
    EXPECT_EQ(s.Bytes(), QByteArray("abc\0\0", 5));
    EXPECT_EQ(s.Position(), 3);
    s.Clear();
    EXPECT_EQ(s.Size(), 0);
    EXPECT_EQ(s.Position(), 0);
}

TEST(MemoryStream, CopyFromCopiesCountBytesFromThePosition) {
    TMemoryStream source(QByteArray("0123456789"));
    source.SetPosition(2);
    TMemoryStream dest;
    dest.WriteUInt8('x');
    EXPECT_EQ(dest.CopyFrom(source, 3), 3);
    EXPECT_EQ(dest.Bytes(), QByteArray("x234"));
    EXPECT_EQ(source.Position(), 5);
}

TEST(MemoryStream, CopyFromWithZeroCopiesTheWholeSource) {
    TMemoryStream source(QByteArray("0123456789"));
    source.SetPosition(7);
    TMemoryStream dest;
    EXPECT_EQ(dest.CopyFrom(source, 0), 10);
    EXPECT_EQ(dest.Bytes(), QByteArray("0123456789"));
}

TEST(MemoryStream, CopyFromMoreThanIsLeftRaises) {
    TMemoryStream source(QByteArray("0123"));
    TMemoryStream dest;
    EXPECT_THROW(dest.CopyFrom(source, 5), EReadError);
}

TEST(MemoryStream, CopyFromALargeSourceCrossesBufferBoundaries) {
    QByteArray data(200000, Qt::Uninitialized);
    for (qsizetype i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7);
    TMemoryStream source(data);
    TMemoryStream dest;
    EXPECT_EQ(dest.CopyFrom(source, 0), 200000);
    EXPECT_EQ(dest.Bytes(), data);
}

TEST(MemoryStream, LoadFromStreamTakesTheWholeSource) {
    TMemoryStream source(QByteArray("abc"));
    source.SetPosition(2);
    TMemoryStream s;
    s.LoadFromStream(source);
    EXPECT_EQ(s.Bytes(), QByteArray("abc"));
    EXPECT_EQ(s.Position(), 0);
}

// --- TFileStream ---

TEST(FileStream, CreateTruncatesAnExistingFile) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString name = dir.filePath(QStringLiteral("drawing.vl"));
    {
        TFileStream f(name, fmCreate);
        f.WriteInt32(0x11223344);
        f.WriteInt32(0x55667788);
    }
    {
        TFileStream f(name, fmCreate);
        EXPECT_EQ(f.Size(), 0);
        f.WriteUInt16(0xBEEF);
    }
    TFileStream f(name, fmOpenRead);
    EXPECT_EQ(f.Size(), 2);
    EXPECT_EQ(f.ReadUInt16(), 0xBEEF);
    EXPECT_THROW(f.ReadUInt8(), EReadError);
}

TEST(FileStream, OpeningAMissingFileRaisesFileOpenError) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("missing.vl"));
    EXPECT_THROW(TFileStream(name, fmOpenRead), EFOpenError);
    EXPECT_THROW(TFileStream(name, fmOpenReadWrite), EFOpenError);
    EXPECT_THROW(TFileStream(name, fmOpenWrite), EFOpenError);
    EXPECT_FALSE(QFile::exists(name));
}

TEST(FileStream, CreatingInAMissingDirectoryRaisesFileCreateError) {
    QTemporaryDir dir;
    EXPECT_THROW(TFileStream(dir.filePath(QStringLiteral("no/such/dir/x.vl")), fmCreate), EFCreateError);
}

TEST(FileStream, SeekSizeAndSetSize) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("s.bin"));
    TFileStream f(name, fmCreate);
    f.WriteBuffer("0123456789", 10);
    EXPECT_EQ(f.Size(), 10);
    EXPECT_EQ(f.Seek(-4, TSeekOrigin::soEnd), 6);
    EXPECT_EQ(f.ReadUInt8(), '6');
    EXPECT_EQ(f.Seek(-2, TSeekOrigin::soCurrent), 5);
    f.SetPosition(-3); // ignored
    EXPECT_EQ(f.Position(), 5);
    f.SetSize(4);
    EXPECT_EQ(f.Size(), 4);
    EXPECT_EQ(f.Position(), 4);
    f.SetPosition(0);
    char buffer[4];
    f.ReadBuffer(buffer, 4);
    EXPECT_EQ(QByteArray(buffer, 4), QByteArray("0123"));
}

TEST(FileStream, OpenReadWriteKeepsTheContent) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("rw.bin"));
    {
        TFileStream f(name, fmCreate);
        f.WriteBuffer("abcd", 4);
    }
    {
        TFileStream f(name, fmOpenReadWrite);
        EXPECT_EQ(f.Size(), 4);
        f.SetPosition(1);
        f.WriteUInt8('X');
    }
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("aXcd"));
}

TEST(FileStream, MemoryStreamFileRoundTrip) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("m.bin"));
    TMemoryStream s;
    s.WriteInt64(-1);
    s.WriteDouble(2.5);
    s.SaveToFile(name);
    TMemoryStream back;
    back.LoadFromFile(name);
    EXPECT_EQ(back.Bytes(), s.Bytes());
    EXPECT_EQ(back.ReadInt64(), -1);
    EXPECT_EQ(back.ReadDouble(), 2.5);
}

TEST(FileStream, CopyFromAFile) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("c.bin"));
    {
        TFileStream f(name, fmCreate);
        f.WriteBuffer("hello world", 11);
    }
    TFileStream f(name, fmOpenRead);
    f.SetPosition(6);
    TMemoryStream dest;
    EXPECT_EQ(dest.CopyFrom(f, 5), 5);
    EXPECT_EQ(dest.Bytes(), QByteArray("world"));
}

TEST(MemoryStream, CopyFromWithANegativeCountCopiesTheWholeSource) {
    TMemoryStream source(QByteArray("abc"));
    source.SetPosition(3);
    TMemoryStream dest;
    EXPECT_EQ(dest.CopyFrom(source, -1), 3);
    EXPECT_EQ(dest.Bytes(), QByteArray("abc"));
}

TEST(FileStream, CreateWithShareBitsStillCreates) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("share.bin"));
    {
        TFileStream f(name, fmCreate | 0x0020);
        f.WriteUInt8(1);
    }
    EXPECT_TRUE(QFile::exists(name));
    TFileStream f(name, fmCreate | 0x0020);
    EXPECT_EQ(f.Size(), 0);
}
