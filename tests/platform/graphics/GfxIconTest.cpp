// TIcon, TJPEGImage and TPicture: their file formats and exact lengths inside longer streams.
#include "platform/core/Streams.h"
#include "platform/graphics/Images.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QTemporaryDir>

namespace vl {
namespace {

const std::uint8_t Trailer[] = {0x01, 0x02, 0x03, 0x04};

QImage IconImage(int w, int h) {
    QImage image(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, (x + y) % 3 == 0 ? qRgba(0, 0, 0, 0) : qRgba(x * 8, y * 8, 100, 255));
    return image;
}

template <class G>
QByteArray Saved(G& graphic) {
    TMemoryStream s;
    graphic.SaveToStream(s);
    return s.Bytes();
}

template <class G>
void LoadWithTrailer(G& graphic, const QByteArray& file) {
    TMemoryStream s;
    s.WriteBuffer(file.constData(), file.size());
    s.WriteBuffer(Trailer, sizeof Trailer);
    s.SetPosition(0);
    graphic.LoadFromStream(s);
    EXPECT_EQ(s.Position(), file.size());
    EXPECT_EQ(s.ReadUInt8(), 0x01);
}

TEST(GfxIcon, WrittenIcoHasDirectoryAndDibEntry) {
    TIcon icon;
    icon.SetImage(IconImage(16, 16));
    const QByteArray f = Saved(icon);
    const auto* p = reinterpret_cast<const std::uint8_t*>(f.constData());
    ASSERT_GE(f.size(), 22);
    EXPECT_EQ(p[0], 0);
    EXPECT_EQ(p[2], 1); // type: icon
    EXPECT_EQ(p[4], 1); // one image
    EXPECT_EQ(p[6], 16);
    EXPECT_EQ(p[7], 16);
    EXPECT_EQ(p[12], 32); // bits per pixel
    const std::uint32_t size = p[14] | (p[15] << 8) | (p[16] << 16) | (std::uint32_t(p[17]) << 24);
    EXPECT_EQ(p[18], 22); // offset
    // 40 header bytes, 16 rows of 64 colour bytes and 16 rows of 4 mask bytes.
    EXPECT_EQ(size, 40u + 16 * 64 + 16 * 4);
    EXPECT_EQ(f.size(), qsizetype(22 + size));
}

TEST(GfxIcon, WriteReadWriteIsByteIdenticalAndConsumesOwnLength) {
    TIcon icon;
    icon.SetImage(IconImage(20, 12));
    const QByteArray first = Saved(icon);
    TIcon back;
    LoadWithTrailer(back, first);
    EXPECT_EQ(back.Width(), 20);
    EXPECT_EQ(back.Height(), 12);
    EXPECT_EQ(back.Image(), icon.Image());
    EXPECT_EQ(Saved(back), first);
}

TEST(GfxIcon, LengthComesFromEntryThatEndsLast) {
    // Two entries whose images are stored in reverse order: the file ends with the first entry's image.
    TIcon small, large;
    small.SetImage(IconImage(16, 16));
    large.SetImage(IconImage(32, 32));
    const QByteArray a = Saved(small), b = Saved(large);
    const QByteArray imgA = a.mid(22), imgB = b.mid(22);
    TMemoryStream s;
    s.WriteUInt16(0);
    s.WriteUInt16(1);
    s.WriteUInt16(2);
    const std::uint32_t offB = 6 + 32, offA = offB + std::uint32_t(imgB.size());
    s.WriteBuffer(a.constData() + 6, 8);
    s.WriteUInt32(std::uint32_t(imgA.size()));
    s.WriteUInt32(offA);
    s.WriteBuffer(b.constData() + 6, 8);
    s.WriteUInt32(std::uint32_t(imgB.size()));
    s.WriteUInt32(offB);
    s.WriteBuffer(imgB.constData(), imgB.size());
    s.WriteBuffer(imgA.constData(), imgA.size());
    const QByteArray file = s.Bytes();
    TIcon icon;
    LoadWithTrailer(icon, file);
    // The 32 x 32 entry is the one shown.
    EXPECT_EQ(icon.Width(), 32);
    EXPECT_EQ(icon.Image(), large.Image());
    EXPECT_EQ(Saved(icon), file);
}

TEST(GfxIcon, PngEntryLoads) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    IconImage(24, 24).save(&buffer, "PNG");
    TMemoryStream s;
    s.WriteUInt16(0);
    s.WriteUInt16(1);
    s.WriteUInt16(1);
    s.WriteUInt8(24);
    s.WriteUInt8(24);
    s.WriteUInt8(0);
    s.WriteUInt8(0);
    s.WriteUInt16(1);
    s.WriteUInt16(32);
    s.WriteUInt32(std::uint32_t(png.size()));
    s.WriteUInt32(22);
    s.WriteBuffer(png.constData(), png.size());
    const QByteArray file = s.Bytes();
    TIcon icon;
    LoadWithTrailer(icon, file);
    EXPECT_EQ(icon.Image(), IconImage(24, 24));
    EXPECT_EQ(Saved(icon), file);
}

TEST(GfxIcon, ColourAndMaskImagesFollowAlpha) {
    TIcon icon;
    icon.SetImage(IconImage(4, 4));
    const QImage mask = icon.MaskImage();
    const QImage colour = icon.ColorImage();
    EXPECT_EQ(mask.pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(mask.pixel(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(colour.pixel(1, 0), qRgb(8, 0, 100));
    EXPECT_TRUE(icon.Transparent());
}

TEST(GfxIcon, EmptyIconRoundTrips) {
    TIcon icon;
    const QByteArray f = Saved(icon);
    EXPECT_EQ(f.size(), 6);
    TIcon back;
    back.SetImage(IconImage(2, 2));
    LoadWithTrailer(back, f);
    EXPECT_TRUE(back.Empty());
}

TEST(GfxIcon, CorruptOrTruncatedRaisesAndRestoresPosition) {
    TIcon icon;
    icon.SetImage(IconImage(8, 8));
    const QByteArray full = Saved(icon);
    for (const qsizetype cut : {qsizetype(3), qsizetype(10), qsizetype(22), qsizetype(40), full.size() - 1}) {
        TMemoryStream s;
        s.WriteBuffer(full.constData(), cut);
        s.SetPosition(0);
        TIcon back;
        EXPECT_THROW(back.LoadFromStream(s), EInvalidGraphic) << cut;
        EXPECT_EQ(s.Position(), 0);
    }
    QByteArray badType = full;
    badType[2] = 2;
    TMemoryStream s(badType);
    TIcon back;
    EXPECT_THROW(back.LoadFromStream(s), EInvalidGraphic);
    // An entry pointing into the directory.
    QByteArray badOffset = full;
    badOffset[18] = 4;
    TMemoryStream s2(badOffset);
    EXPECT_THROW(back.LoadFromStream(s2), EInvalidGraphic);
}

// ---------------------------------------------------------------------------------------------

QImage Gradient(int w, int h) {
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) image.setPixel(x, y, qRgb(x * 255 / w, y * 255 / h, 128));
    return image;
}

TEST(GfxJpeg, RoundTripKeepsPixelsApproximately) {
    TBitmap bmp;
    bmp.SetImage(Gradient(32, 24));
    TJPEGImage jpeg;
    jpeg.Assign(&bmp);
    EXPECT_EQ(jpeg.Width(), 32);
    EXPECT_EQ(jpeg.Height(), 24);
    const QByteArray first = Saved(jpeg);
    ASSERT_GT(first.size(), 4);
    EXPECT_EQ(std::uint8_t(first[0]), 0xFF);
    EXPECT_EQ(std::uint8_t(first[1]), 0xD8);
    TJPEGImage back;
    LoadWithTrailer(back, first);
    EXPECT_EQ(Saved(back), first);
    for (int y = 0; y < 24; y += 5)
        for (int x = 0; x < 32; x += 5) {
            const QRgb a = back.Image().pixel(x, y), b = bmp.Image().pixel(x, y);
            EXPECT_LE(std::abs(qRed(a) - qRed(b)), 12);
            EXPECT_LE(std::abs(qGreen(a) - qGreen(b)), 12);
            EXPECT_LE(std::abs(qBlue(a) - qBlue(b)), 12);
        }
}

TEST(GfxJpeg, MeasureWalksStuffingAndRestartMarkers) {
    // SOI, a comment segment, SOS with entropy data holding FF 00, RST0 and fill bytes, then EOI.
    const std::uint8_t data[] = {0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x04, 0xFF, 0xD9, 0xFF, 0xDA, 0x00, 0x02,
                                 0x12, 0xFF, 0x00, 0x34, 0xFF, 0xD0, 0x56, 0xFF, 0xFF, 0xD9, 0xAA, 0xBB};
    EXPECT_EQ(TJPEGImage::MeasureJpeg(data, sizeof data), 22);
    EXPECT_EQ(TJPEGImage::MeasureJpeg(data, 21), -1);
    const std::uint8_t notJpeg[] = {0x42, 0x4D, 0, 0};
    EXPECT_EQ(TJPEGImage::MeasureJpeg(notJpeg, sizeof notJpeg), -1);
}

TEST(GfxJpeg, TruncatedOrForeignDataRaisesAndRestoresPosition) {
    TBitmap bmp;
    bmp.SetImage(Gradient(16, 16));
    TJPEGImage jpeg;
    jpeg.Assign(&bmp);
    const QByteArray full = Saved(jpeg);
    TMemoryStream s;
    s.WriteBuffer(full.constData(), full.size() - 2);
    s.SetPosition(0);
    TJPEGImage back;
    EXPECT_THROW(back.LoadFromStream(s), EInvalidGraphic);
    EXPECT_EQ(s.Position(), 0);
    TMemoryStream bmpStream;
    bmp.SaveToStream(bmpStream);
    bmpStream.SetPosition(0);
    EXPECT_THROW(back.LoadFromStream(bmpStream), EInvalidGraphic);
    EXPECT_EQ(bmpStream.Position(), 0);
}

TEST(GfxJpeg, BitmapReadsJpegDataWithExactLength) {
    TBitmap bmp;
    bmp.SetImage(Gradient(16, 8));
    TJPEGImage jpeg;
    jpeg.Assign(&bmp);
    TBitmap back;
    LoadWithTrailer(back, Saved(jpeg));
    EXPECT_EQ(back.Image(), jpeg.Image());
    TBitmap fromJpeg;
    fromJpeg.Assign(&jpeg);
    EXPECT_EQ(fromJpeg.Image(), jpeg.Image());
}

// ---------------------------------------------------------------------------------------------

TEST(GfxPicture, LoadFromFileChoosesClassByExtension) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    TBitmap bmp;
    bmp.SetImage(Gradient(5, 4));
    bmp.SetPixelFormat(pf24bit);
    bmp.SaveToFile(dir.filePath("a.bmp"));
    TIcon icon;
    icon.SetImage(IconImage(16, 16));
    icon.SaveToFile(dir.filePath("b.ICO"));
    TJPEGImage jpeg;
    jpeg.Assign(&bmp);
    jpeg.SaveToFile(dir.filePath("c.jpeg"));

    TPicture picture;
    int changes = 0;
    picture.SetOnChange([&](TObject*) { ++changes; });
    picture.LoadFromFile(dir.filePath("a.bmp"));
    ASSERT_NE(dynamic_cast<TBitmap*>(picture.Graphic()), nullptr);
    EXPECT_EQ(picture.Width(), 5);
    EXPECT_EQ(picture.Height(), 4);
    picture.LoadFromFile(dir.filePath("b.ICO"));
    EXPECT_NE(dynamic_cast<TIcon*>(picture.Graphic()), nullptr);
    picture.LoadFromFile(dir.filePath("c.jpeg"));
    EXPECT_NE(dynamic_cast<TJPEGImage*>(picture.Graphic()), nullptr);
    EXPECT_EQ(changes, 3);
    EXPECT_THROW(picture.LoadFromFile(dir.filePath("d.xyz")), EInvalidGraphic);
    EXPECT_NE(dynamic_cast<TJPEGImage*>(picture.Graphic()), nullptr);

    picture.SaveToFile(dir.filePath("e.jpg"));
    TMemoryStream a, b;
    a.LoadFromFile(dir.filePath("c.jpeg"));
    b.LoadFromFile(dir.filePath("e.jpg"));
    EXPECT_EQ(a.Bytes(), b.Bytes());
}

TEST(GfxPicture, AssignCopiesGraphicOfSameClass) {
    TPicture source;
    source.Bitmap().SetImage(Gradient(3, 3));
    TPicture copy;
    copy.Assign(&source);
    auto* bmp = dynamic_cast<TBitmap*>(copy.Graphic());
    ASSERT_NE(bmp, nullptr);
    EXPECT_NE(bmp, source.Graphic());
    EXPECT_EQ(bmp->Image(), source.Bitmap().Image());
    copy.Assign(nullptr);
    EXPECT_EQ(copy.Graphic(), nullptr);
    EXPECT_EQ(copy.Width(), 0);
    TIcon icon;
    icon.SetImage(IconImage(8, 8));
    copy.Assign(&icon);
    EXPECT_NE(dynamic_cast<TIcon*>(copy.Graphic()), nullptr);
    TPen pen;
    EXPECT_THROW(copy.Assign(&pen), EConvertError);
}

TEST(GfxPicture, GraphicChangeFiresPictureChange) {
    TPicture picture;
    int changes = 0;
    picture.SetOnChange([&](TObject*) { ++changes; });
    TBitmap& bmp = picture.Bitmap();
    EXPECT_EQ(changes, 1);
    bmp.SetSize(4, 4);
    EXPECT_EQ(changes, 2);
    // Asking for an icon replaces the bitmap.
    picture.Icon();
    EXPECT_EQ(changes, 3);
    EXPECT_NE(dynamic_cast<TIcon*>(picture.Graphic()), nullptr);
}

} // namespace
} // namespace vl
