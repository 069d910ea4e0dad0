// The BMP file format of TBitmap: exact bytes, exact length inside a longer stream, foreign files.
#include "platform/core/Streams.h"
#include "platform/graphics/Images.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace vl {
namespace {

// Little-endian byte builder for hand-made files.
struct Bytes {
    std::vector<std::uint8_t> b;
    Bytes& u8(unsigned v) {
        b.push_back(std::uint8_t(v));
        return *this;
    }
    Bytes& u16(unsigned v) { return u8(v & 0xFF).u8((v >> 8) & 0xFF); }
    Bytes& u32(std::uint32_t v) { return u16(v & 0xFFFF).u16(v >> 16); }
    Bytes& i32(std::int32_t v) { return u32(std::uint32_t(v)); }
    QByteArray ToArray() const {
        return QByteArray(reinterpret_cast<const char*>(b.data()), qsizetype(b.size()));
    }
};

Bytes& FileHeader(Bytes& f, std::uint32_t size, std::uint32_t offBits) {
    return f.u16(0x4D42).u32(size).u16(0).u16(0).u32(offBits);
}

Bytes& InfoHeader(Bytes& f, std::int32_t w, std::int32_t h, unsigned bits, std::uint32_t compression,
                  std::uint32_t sizeImage, std::uint32_t clrUsed) {
    return f.u32(40)
        .i32(w)
        .i32(h)
        .u16(1)
        .u16(bits)
        .u32(compression)
        .u32(sizeImage)
        .i32(2835)
        .i32(2835)
        .u32(clrUsed)
        .u32(0);
}

QByteArray Saved(TBitmap& bmp) {
    TMemoryStream s;
    bmp.SaveToStream(s);
    return s.Bytes();
}

void Sample(TBitmap& bmp, int w, int h) {
    bmp.SetSize(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) bmp.ScanLine(y)[x] = qRgb(x * 40 % 256, y * 60 % 256, (x + y) * 25 % 256);
}

const std::uint8_t Trailer[] = {0xDE, 0xAD, 0xBE, 0xEF, 0x42};

// Loads from a stream that holds `file` followed by trailing bytes and checks the position after it.
void LoadWithTrailer(TBitmap& bmp, const QByteArray& file) {
    TMemoryStream s;
    s.WriteBuffer(file.constData(), file.size());
    s.WriteBuffer(Trailer, sizeof Trailer);
    s.SetPosition(0);
    bmp.LoadFromStream(s);
    EXPECT_EQ(s.Position(), file.size());
    EXPECT_EQ(s.ReadUInt8(), 0xDE);
}

TEST(GfxBitmap, NewBitmapIsEmpty) {
    TBitmap bmp;
    EXPECT_TRUE(bmp.Empty());
    EXPECT_EQ(bmp.Width(), 0);
    EXPECT_EQ(bmp.Height(), 0);
}

TEST(GfxBitmap, SetSizeKeepsPictureAndFillsWhite) {
    TBitmap bmp(2, 2);
    bmp.ScanLine(0)[0] = qRgb(1, 2, 3);
    bmp.SetSize(3, 3);
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(1, 2, 3));
    EXPECT_EQ(bmp.Image().pixel(2, 2), qRgb(255, 255, 255));
    bmp.SetWidth(0);
    EXPECT_TRUE(bmp.Empty());
}

TEST(GfxBitmap, Saves24BitFileWithDocumentedLayout) {
    TBitmap bmp(3, 2);
    bmp.SetPixelFormat(pf24bit);
    bmp.ScanLine(0)[0] = qRgb(0x11, 0x22, 0x33);
    bmp.ScanLine(1)[2] = qRgb(0xAA, 0xBB, 0xCC);
    const QByteArray f = Saved(bmp);
    // 14 + 40 header bytes, rows of 9 bytes padded to 12, two rows.
    ASSERT_EQ(f.size(), 14 + 40 + 24);
    const auto* p = reinterpret_cast<const std::uint8_t*>(f.constData());
    EXPECT_EQ(p[0], 'B');
    EXPECT_EQ(p[1], 'M');
    EXPECT_EQ(p[2], 78);  // bfSize
    EXPECT_EQ(p[10], 54); // bfOffBits
    EXPECT_EQ(p[14], 40); // biSize
    EXPECT_EQ(p[18], 3);  // width
    EXPECT_EQ(p[22], 2);  // height, bottom-up
    EXPECT_EQ(p[28], 24); // bit count
    EXPECT_EQ(p[34], 24); // biSizeImage
    // The first row in the file is the bottom one: its third pixel is AA BB CC as B, G, R.
    EXPECT_EQ(p[54 + 6], 0xCC);
    EXPECT_EQ(p[54 + 7], 0xBB);
    EXPECT_EQ(p[54 + 8], 0xAA);
    EXPECT_EQ(p[54 + 9], 0); // padding
    // The second row is the top one: its first pixel.
    EXPECT_EQ(p[54 + 12], 0x33);
    EXPECT_EQ(p[54 + 13], 0x22);
    EXPECT_EQ(p[54 + 14], 0x11);
}

// The enumerator's name, for the test names and the printed parameter.
const char* PixelFormatName(TPixelFormat Format) {
    switch (Format) {
    case pfDevice: return "pfDevice";
    case pf1bit: return "pf1bit";
    case pf4bit: return "pf4bit";
    case pf8bit: return "pf8bit";
    case pf15bit: return "pf15bit";
    case pf16bit: return "pf16bit";
    case pf24bit: return "pf24bit";
    case pf32bit: return "pf32bit";
    case pfCustom: return "pfCustom";
    }
    return "unknown";
}

} // namespace

// Prints a pixel format by its name. Argument-dependent lookup looks for it in the namespace of
// `TPixelFormat`, not in this file's unnamed one, hence its place here.
[[maybe_unused]] static void PrintTo(TPixelFormat Format, std::ostream* os) {
    *os << PixelFormatName(Format);
}

namespace {

class GfxBitmapFormats : public ::testing::TestWithParam<TPixelFormat> {};

TEST_P(GfxBitmapFormats, WriteReadWriteIsByteIdenticalAndConsumesOwnLength) {
    TBitmap bmp;
    Sample(bmp, 7, 5);
    bmp.SetPixelFormat(GetParam());
    const QByteArray first = Saved(bmp);
    TBitmap back;
    LoadWithTrailer(back, first);
    EXPECT_EQ(back.Width(), 7);
    EXPECT_EQ(back.Height(), 5);
    EXPECT_EQ(back.PixelFormat(), GetParam() == pfDevice ? pf32bit : GetParam());
    EXPECT_EQ(Saved(back), first);
    if (dib::BitCountOf(GetParam()) >= 24) {
        EXPECT_EQ(back.Image(), bmp.Image());
    }
}

INSTANTIATE_TEST_SUITE_P(AllFormats, GfxBitmapFormats,
                         ::testing::Values(pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit,
                                           pfDevice),
                         [](const ::testing::TestParamInfo<TPixelFormat>& Info) {
                             return std::string(PixelFormatName(Info.param));
                         });

TEST(GfxBitmap, EmptyBitmapWritesHeaderOnlyFileAndReadsBackEmpty) {
    TBitmap bmp;
    const QByteArray f = Saved(bmp);
    EXPECT_EQ(f.size(), 54);
    TBitmap back;
    Sample(back, 2, 2);
    LoadWithTrailer(back, f);
    EXPECT_TRUE(back.Empty());
}

TEST(GfxBitmap, ForeignEightBitPalettizedBottomUpLoadsExactPixels) {
    // 3 x 2, 8 bits, a colour table of 4 entries, rows padded to 4 bytes.
    Bytes f;
    FileHeader(f, 14 + 40 + 16 + 8, 14 + 40 + 16);
    InfoHeader(f, 3, 2, 8, 0, 8, 4);
    f.u8(0).u8(0).u8(255).u8(0);  // 0: red (B, G, R, 0)
    f.u8(0).u8(255).u8(0).u8(0);  // 1: green
    f.u8(255).u8(0).u8(0).u8(0);  // 2: blue
    f.u8(10).u8(20).u8(30).u8(0); // 3: (30, 20, 10)
    f.u8(0).u8(1).u8(2).u8(0);    // bottom row
    f.u8(3).u8(3).u8(0).u8(0);    // top row
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    ASSERT_EQ(bmp.Width(), 3);
    ASSERT_EQ(bmp.Height(), 2);
    EXPECT_EQ(bmp.PixelFormat(), pf8bit);
    EXPECT_EQ(bmp.Image().pixel(0, 1), qRgb(255, 0, 0));
    EXPECT_EQ(bmp.Image().pixel(1, 1), qRgb(0, 255, 0));
    EXPECT_EQ(bmp.Image().pixel(2, 1), qRgb(0, 0, 255));
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(30, 20, 10));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(30, 20, 10));
    EXPECT_EQ(bmp.Image().pixel(2, 0), qRgb(255, 0, 0));
    EXPECT_EQ(bmp.Palette().size(), 4u);
}

TEST(GfxBitmap, ForeignTwentyFourBitTopDownLoadsExactPixels) {
    Bytes f;
    FileHeader(f, 14 + 40 + 16, 54);
    InfoHeader(f, 2, -2, 24, 0, 16, 0);
    f.u8(1).u8(2).u8(3).u8(4).u8(5).u8(6).u8(0).u8(0);    // top row
    f.u8(7).u8(8).u8(9).u8(10).u8(11).u8(12).u8(0).u8(0); // bottom row
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    EXPECT_EQ(bmp.PixelFormat(), pf24bit);
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(3, 2, 1));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(6, 5, 4));
    EXPECT_EQ(bmp.Image().pixel(0, 1), qRgb(9, 8, 7));
    EXPECT_EQ(bmp.Image().pixel(1, 1), qRgb(12, 11, 10));
}

TEST(GfxBitmap, FileSizeFieldZeroIsReadByHeaders) {
    Bytes f;
    FileHeader(f, 0, 54);
    InfoHeader(f, 1, 1, 24, 0, 0, 0);
    f.u8(9).u8(8).u8(7).u8(0);
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(7, 8, 9));
}

TEST(GfxBitmap, OneAndFourBitFilesLoad) {
    Bytes one;
    FileHeader(one, 14 + 40 + 8 + 4, 14 + 40 + 8);
    InfoHeader(one, 3, 1, 1, 0, 4, 0);
    one.u8(0).u8(0).u8(0).u8(0).u8(255).u8(255).u8(255).u8(0);
    one.u8(0b10100000).u8(0).u8(0).u8(0);
    TBitmap a;
    LoadWithTrailer(a, one.ToArray());
    EXPECT_EQ(a.PixelFormat(), pf1bit);
    EXPECT_EQ(a.Image().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(a.Image().pixel(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(a.Image().pixel(2, 0), qRgb(255, 255, 255));

    Bytes four;
    FileHeader(four, 14 + 40 + 8 + 4, 14 + 40 + 8);
    InfoHeader(four, 3, 1, 4, 0, 4, 2);
    four.u8(0).u8(0).u8(200).u8(0).u8(0).u8(100).u8(0).u8(0);
    four.u8(0x01).u8(0x10).u8(0).u8(0);
    TBitmap b;
    LoadWithTrailer(b, four.ToArray());
    EXPECT_EQ(b.PixelFormat(), pf4bit);
    EXPECT_EQ(b.Image().pixel(0, 0), qRgb(200, 0, 0));
    EXPECT_EQ(b.Image().pixel(1, 0), qRgb(0, 100, 0));
    EXPECT_EQ(b.Image().pixel(2, 0), qRgb(0, 100, 0));
}

TEST(GfxBitmap, SixteenBitBitFieldsAndDefaultLayoutLoad) {
    Bytes f565;
    FileHeader(f565, 14 + 40 + 12 + 4, 14 + 40 + 12);
    InfoHeader(f565, 2, 1, 16, 3, 4, 0);
    f565.u32(0xF800).u32(0x07E0).u32(0x001F);
    f565.u16(0xF800).u16(0x07E0);
    TBitmap a;
    LoadWithTrailer(a, f565.ToArray());
    EXPECT_EQ(a.PixelFormat(), pf16bit);
    EXPECT_EQ(a.Image().pixel(0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(a.Image().pixel(1, 0), qRgb(0, 255, 0));

    Bytes f555;
    FileHeader(f555, 14 + 40 + 4, 54);
    InfoHeader(f555, 2, 1, 16, 0, 4, 0);
    f555.u16(0x001F).u16(0x7C00);
    TBitmap b;
    LoadWithTrailer(b, f555.ToArray());
    EXPECT_EQ(b.PixelFormat(), pf15bit);
    EXPECT_EQ(b.Image().pixel(0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(b.Image().pixel(1, 0), qRgb(255, 0, 0));
}

TEST(GfxBitmap, V5HeaderWithMasksLoads) {
    Bytes f;
    FileHeader(f, 14 + 124 + 8, 14 + 124);
    f.u32(124).i32(2).i32(1).u16(1).u16(32).u32(3).u32(8).i32(0).i32(0).u32(0).u32(0);
    f.u32(0x0000FF00).u32(0x00FF0000).u32(0xFF000000).u32(0x000000FF); // R, G, B, A masks
    for (int i = 0; i < 124 - 56; ++i) f.u8(0);
    f.u32(0x112233FF).u32(0xAABBCC00);
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    EXPECT_EQ(bmp.PixelFormat(), pf32bit);
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(0x33, 0x22, 0x11));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(0xCC, 0xBB, 0xAA));
}

TEST(GfxBitmap, CoreHeaderFileLoads) {
    Bytes f;
    FileHeader(f, 14 + 12 + 6 + 4, 14 + 12 + 6);
    f.u32(12).u16(2).u16(1).u16(1).u16(1);
    f.u8(0).u8(0).u8(0).u8(0).u8(0).u8(255); // black, red (RGB triples as B, G, R)
    f.u8(0b01000000).u8(0).u8(0).u8(0);
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(255, 0, 0));
}

TEST(GfxBitmap, Rle8FileLoads) {
    Bytes f;
    const std::uint8_t rle[] = {3, 1, 0, 0, 0, 3, 2, 1, 2, 0, 0, 1};
    FileHeader(f, 14 + 40 + 12 + sizeof rle, 14 + 40 + 12);
    InfoHeader(f, 3, 2, 8, 1, sizeof rle, 3);
    f.u32(0x000000).u32(0x0000FF).u32(0x00FF00);
    for (auto b : rle) f.u8(b);
    TBitmap bmp;
    LoadWithTrailer(bmp, f.ToArray());
    EXPECT_EQ(bmp.Image().pixel(0, 1), qRgb(0, 0, 255));
    EXPECT_EQ(bmp.Image().pixel(2, 1), qRgb(0, 0, 255));
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(0, 255, 0));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(0, 0, 255));
    EXPECT_EQ(bmp.Image().pixel(2, 0), qRgb(0, 255, 0));
}

TEST(GfxBitmap, TruncatedFileRaisesAndRestoresPosition) {
    TBitmap source;
    Sample(source, 5, 4);
    source.SetPixelFormat(pf24bit);
    const QByteArray full = Saved(source);
    for (const qsizetype cut :
         {qsizetype(0), qsizetype(1), qsizetype(13), qsizetype(20), qsizetype(54), full.size() - 1}) {
        TMemoryStream s;
        s.WriteUInt32(7); // something before the bitmap
        s.WriteBuffer(full.constData(), cut);
        s.SetPosition(4);
        TBitmap bmp;
        Sample(bmp, 2, 2);
        if (cut == 0) {
            // No bytes at all: the bitmap reads nothing and raises.
            EXPECT_THROW(bmp.LoadFromStream(s), EInvalidGraphic);
        } else {
            EXPECT_THROW(bmp.LoadFromStream(s), EInvalidGraphic) << cut;
        }
        EXPECT_EQ(s.Position(), 4) << cut;
        s.SetPosition(0);
        EXPECT_EQ(s.ReadUInt32(), 7u);
        EXPECT_EQ(bmp.Width(), 2);
    }
}

TEST(GfxBitmap, CorruptHeadersRaise) {
    auto expectInvalid = [](const Bytes& f) {
        TMemoryStream s;
        s.WriteBuffer(f.b.data(), std::int64_t(f.b.size()));
        s.SetPosition(0);
        TBitmap bmp;
        EXPECT_THROW(bmp.LoadFromStream(s), EInvalidGraphic);
        EXPECT_EQ(s.Position(), 0);
    };
    Bytes notBmp;
    notBmp.u16(0x5A4D).u32(100).u32(0).u32(54);
    for (int i = 0; i < 60; ++i) notBmp.u8(0);
    expectInvalid(notBmp);

    Bytes badHeader;
    FileHeader(badHeader, 70, 54);
    badHeader.u32(41);
    for (int i = 0; i < 60; ++i) badHeader.u8(0);
    expectInvalid(badHeader);

    Bytes badBits;
    FileHeader(badBits, 70, 54);
    InfoHeader(badBits, 1, 1, 7, 0, 4, 0);
    badBits.u32(0);
    expectInvalid(badBits);

    // A huge image whose pixels are not there must fail before anything is allocated for it.
    Bytes huge;
    FileHeader(huge, 0, 54);
    InfoHeader(huge, 30000, 30000, 24, 0, 0, 0);
    huge.u32(0);
    expectInvalid(huge);

    Bytes negativeWidth;
    FileHeader(negativeWidth, 58, 54);
    InfoHeader(negativeWidth, -1, 1, 24, 0, 4, 0);
    negativeWidth.u32(0);
    expectInvalid(negativeWidth);
}

TEST(GfxBitmap, TwoBitmapsInOneStreamReadInTurn) {
    TBitmap a, b;
    Sample(a, 3, 3);
    Sample(b, 5, 2);
    a.SetPixelFormat(pf24bit);
    b.SetPixelFormat(pf8bit);
    TMemoryStream s;
    a.SaveToStream(s);
    b.SaveToStream(s);
    s.WriteInt32(-77);
    s.SetPosition(0);
    TBitmap ra, rb;
    ra.LoadFromStream(s);
    rb.LoadFromStream(s);
    EXPECT_EQ(s.ReadInt32(), -77);
    EXPECT_EQ(ra.Image(), a.Image());
    EXPECT_EQ(rb.Image(), b.Image());
}

TEST(GfxBitmap, EightBitFormatMapsPixelsToColourTable) {
    TBitmap bmp(2, 1);
    bmp.ScanLine(0)[0] = qRgb(10, 20, 30);
    bmp.ScanLine(0)[1] = qRgb(200, 220, 240);
    bmp.SetPixelFormat(pf8bit);
    EXPECT_EQ(bmp.Palette().size(), 2u);
    bmp.SetPixelFormat(pf1bit);
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(255, 255, 255));
}

TEST(GfxBitmap, TransparentColourDefaultsToBottomLeftPixel) {
    TBitmap bmp(3, 2);
    EXPECT_EQ(bmp.TransparentMode(), tmAuto);
    bmp.ScanLine(1)[0] = qRgb(0, 255, 0);
    EXPECT_EQ(bmp.TransparentColor(), clLime);
    bmp.SetTransparentColor(clRed);
    EXPECT_EQ(bmp.TransparentMode(), tmFixed);
    EXPECT_EQ(bmp.TransparentColor(), clRed);
    bmp.SetTransparentMode(tmAuto);
    EXPECT_EQ(bmp.TransparentColor(), clLime);
    TBitmap empty;
    EXPECT_EQ(empty.TransparentColor(), clDefault);
}

TEST(GfxBitmap, MaskTurnsTransparentColourWhiteAndRestBlack) {
    TBitmap bmp(3, 1);
    bmp.ScanLine(0)[0] = qRgb(255, 0, 0);
    bmp.ScanLine(0)[1] = qRgb(0, 0, 255);
    bmp.ScanLine(0)[2] = qRgb(255, 0, 0);
    bmp.Mask(clRed);
    EXPECT_EQ(bmp.PixelFormat(), pf1bit);
    EXPECT_EQ(bmp.Image().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bmp.Image().pixel(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bmp.Image().pixel(2, 0), qRgb(255, 255, 255));
}

TEST(GfxBitmap, AssignCopiesPixelsAndTransparency) {
    TBitmap source;
    Sample(source, 4, 3);
    source.SetPixelFormat(pf24bit);
    source.SetTransparent(true);
    source.SetTransparentColor(clBlue);
    TBitmap copy;
    int changes = 0;
    copy.SetOnChange([&](TObject*) { ++changes; });
    copy.Assign(&source);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(copy.Image(), source.Image());
    EXPECT_EQ(copy.PixelFormat(), pf24bit);
    EXPECT_TRUE(copy.Transparent());
    EXPECT_EQ(copy.TransparentColor(), clBlue);
    copy.ScanLine(0)[0] = qRgb(1, 1, 1);
    EXPECT_NE(source.Image().pixel(0, 0), qRgb(1, 1, 1));
    copy.Assign(nullptr);
    EXPECT_TRUE(copy.Empty());
    TPen pen;
    EXPECT_THROW(copy.Assign(&pen), EConvertError);
}

} // namespace
} // namespace vl
