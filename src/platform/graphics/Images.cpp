// TGraphic, TBitmap, TPicture and the routines that put images on a canvas.
#include "platform/graphics/Images.h"

#include "platform/core/Streams.h"

#include <QFileInfo>
#include <QPainter>

#include <cstring>

namespace vl {

// ---------------------------------------------------------------------------------------------
// Drawing images through the device layer
// ---------------------------------------------------------------------------------------------

namespace gfx {

namespace {

void Stretch(HDC dc, const TRect& rect, const QImage& image, std::uint32_t rop) {
    StretchDIBitsOf(dc, rect.Left, rect.Top, rect.Width(), rect.Height(), image, rop);
}

QImage Rgb32(const QImage& image) {
    return image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

void DrawImage(TCanvas& ACanvas, const TRect& Rect, const QImage& Image) {
    if (Image.isNull()) return;
    Stretch(ACanvas.Handle(), Rect, Rgb32(Image), ACanvas.CopyMode());
}

void DrawImageMasked(TCanvas& ACanvas, const TRect& Rect, const QImage& Image, const QImage& Mask) {
    if (Image.isNull()) return;
    // The destination is first cleared to black where the image is opaque (AND with the mask), then
    // the image, black where it is transparent, is merged in (OR). Transparent pixels keep the
    // destination exactly.
    QImage source = Rgb32(Image);
    const QImage mask = Rgb32(Mask);
    for (int y = 0; y < source.height(); ++y) {
        auto* s = reinterpret_cast<QRgb*>(source.scanLine(y));
        const auto* m = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        for (int x = 0; x < source.width(); ++x)
            if ((m[x] & 0x00FFFFFFu) != 0) s[x] = 0xFF000000u;
    }
    HDC dc = ACanvas.Handle();
    Stretch(dc, Rect, mask, SRCAND);
    Stretch(dc, Rect, source, SRCPAINT);
}

} // namespace gfx

// ---------------------------------------------------------------------------------------------
// TGraphic
// ---------------------------------------------------------------------------------------------

void TGraphic::SetTransparent(bool Value) {
    if (FTransparent == Value) return;
    FTransparent = Value;
    Changed();
}

void TGraphic::Changed() {
    FModified = true;
    if (FOnChange) FOnChange(this);
}

void TGraphic::LoadFromFile(const QString& FileName) {
    TFileStream stream(FileName, fmOpenRead);
    LoadFromStream(stream);
}

void TGraphic::SaveToFile(const QString& FileName) {
    TFileStream stream(FileName, fmCreate);
    SaveToStream(stream);
}

// ---------------------------------------------------------------------------------------------
// TBitmapCanvas
// ---------------------------------------------------------------------------------------------

TBitmapCanvas::~TBitmapCanvas() {
    FreeContext();
}

void TBitmapCanvas::FreeContext() {
    HDC own = FOwnHandle;
    if (!own) return;
    SetHandle(nullptr);
    FOwnHandle = nullptr;
    DeleteDC(own);
}

void TBitmapCanvas::CreateHandle() {
    // An empty bitmap still has a canvas; it draws into a one-pixel scratch image.
    if (FBitmap->FImage.isNull()) {
        if (FScratch.isNull()) {
            FScratch = QImage(1, 1, QImage::Format_RGB32);
            FScratch.fill(0xFFFFFFFFu);
        }
        FOwnHandle = CreateImageDC(&FScratch);
    } else {
        FOwnHandle = CreateImageDC(&FBitmap->FImage);
    }
    SetHandle(FOwnHandle);
}

void TBitmapCanvas::Changed() {
    TCanvas::Changed();
    FBitmap->Changed();
}

// ---------------------------------------------------------------------------------------------
// TBitmap
// ---------------------------------------------------------------------------------------------

TBitmap::TBitmap() = default;

TBitmap::TBitmap(int AWidth, int AHeight) {
    SetSize(AWidth, AHeight);
}

TBitmap::~TBitmap() {
    // The canvas's context points into the image: it goes first.
    FCanvas.reset();
}

void TBitmap::NewImage(QImage Image) {
    if (FCanvas) FCanvas->FreeContext();
    if (!Image.isNull() && Image.format() != QImage::Format_RGB32)
        Image = Image.convertToFormat(QImage::Format_RGB32);
    FImage = std::move(Image);
    // The image must own its pixels alone: a context draws into them.
    if (!FImage.isNull()) FImage.bits();
}

TCanvas& TBitmap::Canvas() {
    if (!FCanvas) FCanvas = std::make_unique<TBitmapCanvas>(this);
    return *FCanvas;
}

void TBitmap::SetSize(int AWidth, int AHeight) {
    AWidth = std::max(AWidth, 0);
    AHeight = std::max(AHeight, 0);
    if (AWidth == Width() && AHeight == Height()) return;
    QImage image;
    if (AWidth > 0 && AHeight > 0) {
        image = QImage(AWidth, AHeight, QImage::Format_RGB32);
        if (image.isNull()) throw EInvalidGraphic(QStringLiteral("Out of system resources"));
        image.fill(0xFFFFFFFFu);
        const int w = std::min(AWidth, Width()), h = std::min(AHeight, Height());
        for (int y = 0; y < h; ++y)
            std::memcpy(image.scanLine(y), FImage.constScanLine(y), std::size_t(w) * 4);
    }
    NewImage(std::move(image));
    Changed();
}

void TBitmap::SetImage(const QImage& Value) {
    NewImage(Value);
    Changed();
}

QRgb* TBitmap::ScanLine(int Row) {
    if (Row < 0 || Row >= Height()) throw EInvalidGraphic(QStringLiteral("Scan line index out of range"));
    return reinterpret_cast<QRgb*>(FImage.scanLine(Row));
}

void TBitmap::QuantizeToFormat() {
    if (FImage.isNull()) return;
    const int bits = dib::BitCountOf(FPixelFormat);
    if (bits > 16) return;
    auto scale = [](int v, int bitCount) {
        const int max = (1 << bitCount) - 1;
        return ((v >> (8 - bitCount)) * 255 + max / 2) / max;
    };
    QHash<QRgb, QRgb> mapped;
    for (int y = 0; y < FImage.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(FImage.scanLine(y));
        for (int x = 0; x < FImage.width(); ++x) {
            const QRgb c = line[x] | 0xFF000000u;
            if (bits == 16) {
                const int g = FPixelFormat == pf16bit ? 6 : 5;
                line[x] = qRgb(scale(qRed(c), 5), scale(qGreen(c), g), scale(qBlue(c), 5));
                continue;
            }
            auto it = mapped.constFind(c);
            if (it == mapped.constEnd())
                it = mapped.insert(c, FPalette[std::size_t(dib::NearestIndex(FPalette, c))] | 0xFF000000u);
            line[x] = *it;
        }
    }
}

void TBitmap::SetPixelFormat(TPixelFormat Value) {
    if (FPixelFormat == Value) return;
    if (FCanvas) FCanvas->FreeContext();
    FPixelFormat = Value;
    if (dib::BitCountOf(Value) <= 8)
        FPalette = dib::DefaultPalette(Value, FImage);
    else
        FPalette.clear();
    QuantizeToFormat();
    Changed();
}

TColor TBitmap::TransparentColor() const {
    if (FTransparentMode == tmFixed) return FTransparentColor;
    if (FImage.isNull()) return clDefault;
    const QRgb c = FImage.pixel(0, FImage.height() - 1);
    return static_cast<TColor>(RGB(std::uint8_t(qRed(c)), std::uint8_t(qGreen(c)), std::uint8_t(qBlue(c))));
}

void TBitmap::SetTransparentColor(TColor Value) {
    const TTransparentMode mode = Value == clDefault ? tmAuto : tmFixed;
    if (FTransparentColor == Value && FTransparentMode == mode) return;
    FTransparentColor = Value;
    FTransparentMode = mode;
    Changed();
}

void TBitmap::SetTransparentMode(TTransparentMode Value) {
    if (FTransparentMode == Value) return;
    if (Value == tmFixed)
        SetTransparentColor(TransparentColor());
    else
        SetTransparentColor(clDefault);
}

QImage TBitmap::MaskImage() const {
    if (FImage.isNull()) return {};
    const COLORREF key = ColorToRGB(TransparentColor()) & 0x00FFFFFFu;
    const QRgb keyRgb = qRgb(GetRValue(key), GetGValue(key), GetBValue(key)) & 0x00FFFFFFu;
    QImage mask(FImage.size(), QImage::Format_RGB32);
    for (int y = 0; y < FImage.height(); ++y) {
        const auto* s = reinterpret_cast<const QRgb*>(FImage.constScanLine(y));
        auto* d = reinterpret_cast<QRgb*>(mask.scanLine(y));
        for (int x = 0; x < FImage.width(); ++x)
            d[x] = (s[x] & 0x00FFFFFFu) == keyRgb ? 0xFFFFFFFFu : 0xFF000000u;
    }
    return mask;
}

void TBitmap::Mask(TColor TransparentColor) {
    const TColor savedColor = FTransparentColor;
    const TTransparentMode savedMode = FTransparentMode;
    FTransparentColor = TransparentColor;
    FTransparentMode = tmFixed;
    QImage mask = MaskImage();
    FTransparentColor = savedColor;
    FTransparentMode = savedMode;
    NewImage(std::move(mask));
    FPixelFormat = pf1bit;
    FPalette = {qRgb(0, 0, 0), qRgb(255, 255, 255)};
    Changed();
}

void TBitmap::Draw(TCanvas& ACanvas, const TRect& Rect) {
    if (FImage.isNull()) return;
    if (Transparent())
        gfx::DrawImageMasked(ACanvas, Rect, FImage, MaskImage());
    else
        gfx::DrawImage(ACanvas, Rect, FImage);
}

void TBitmap::LoadFromStream(TStream& Stream) {
    // JPEG data where a bitmap is expected (a drawing file stores every picture that is no icon or
    // metafile as its own file and reads it back as a bitmap) gives the JPEG's pixels.
    const std::int64_t start = Stream.Position();
    if (Stream.Remaining() >= 2) {
        std::uint8_t magic[2];
        Stream.ReadBuffer(magic, 2);
        Stream.SetPosition(start);
        if (magic[0] == 0xFF && magic[1] == 0xD8) {
            TJPEGImage jpeg;
            jpeg.LoadFromStream(Stream);
            NewImage(jpeg.Image().copy());
            FPixelFormat = pf24bit;
            FPalette.clear();
            Changed();
            return;
        }
    }
    TDib dib = dib::ReadBmpFile(Stream);
    NewImage(std::move(dib.Image));
    FPixelFormat = dib.PixelFormat;
    FPalette = std::move(dib.Palette);
    Changed();
}

void TBitmap::SaveToStream(TStream& Stream) {
    dib::WriteBmpFile(Stream, FImage, FPixelFormat, FPalette);
}

void TBitmap::Assign(TPersistent* Source) {
    if (!Source) {
        NewImage(QImage());
        Changed();
        return;
    }
    if (auto* bitmap = dynamic_cast<TBitmap*>(Source)) {
        if (bitmap == this) return;
        NewImage(bitmap->FImage.copy());
        FPixelFormat = bitmap->FPixelFormat;
        FPalette = bitmap->FPalette;
        FTransparentColor = bitmap->FTransparentColor;
        FTransparentMode = bitmap->FTransparentMode;
        StoreTransparent(bitmap->Transparent());
        Changed();
        return;
    }
    if (auto* jpeg = dynamic_cast<TJPEGImage*>(Source)) {
        NewImage(jpeg->Image().copy());
        FPixelFormat = pf24bit;
        FPalette.clear();
        Changed();
        return;
    }
    if (auto* icon = dynamic_cast<TIcon*>(Source)) {
        QImage image;
        if (!icon->Empty()) {
            image = QImage(icon->Width(), icon->Height(), QImage::Format_RGB32);
            image.fill(0xFFFFFFFFu);
            QPainter painter(&image);
            painter.drawImage(0, 0, icon->Image());
        }
        NewImage(std::move(image));
        FPixelFormat = pfDevice;
        FPalette.clear();
        Changed();
        return;
    }
    TPersistent::Assign(Source);
}

// ---------------------------------------------------------------------------------------------
// TPicture
// ---------------------------------------------------------------------------------------------

TPicture::TPicture() = default;

TPicture::~TPicture() = default;

void TPicture::Changed() {
    if (FOnChange) FOnChange(this);
}

void TPicture::Adopt(std::unique_ptr<TGraphic> Graphic) {
    if (Graphic) Graphic->SetOnChange([this](TObject*) { Changed(); });
    FGraphic = std::move(Graphic);
    Changed();
}

void TPicture::SetGraphic(TGraphic* Value) {
    if (!Value) {
        Adopt(nullptr);
        return;
    }
    if (Value == FGraphic.get()) return;
    std::unique_ptr<TGraphic> copy = Value->NewOfSameClass();
    copy->Assign(Value);
    Adopt(std::move(copy));
}

TBitmap& TPicture::Bitmap() {
    if (!dynamic_cast<TBitmap*>(FGraphic.get())) Adopt(std::make_unique<TBitmap>());
    return static_cast<TBitmap&>(*FGraphic);
}

TIcon& TPicture::Icon() {
    if (!dynamic_cast<TIcon*>(FGraphic.get())) Adopt(std::make_unique<TIcon>());
    return static_cast<TIcon&>(*FGraphic);
}

void TPicture::Assign(TPersistent* Source) {
    if (!Source) {
        SetGraphic(nullptr);
    } else if (auto* picture = dynamic_cast<TPicture*>(Source)) {
        if (picture != this) SetGraphic(picture->Graphic());
    } else if (auto* graphic = dynamic_cast<TGraphic*>(Source)) {
        SetGraphic(graphic);
    } else {
        TPersistent::Assign(Source);
    }
}

void TPicture::LoadFromFile(const QString& FileName) {
    const QString ext = QFileInfo(FileName).suffix().toLower();
    std::unique_ptr<TGraphic> graphic;
    if (ext == QLatin1String("bmp"))
        graphic = std::make_unique<TBitmap>();
    else if (ext == QLatin1String("ico"))
        graphic = std::make_unique<TIcon>();
    else if (ext == QLatin1String("jpg") || ext == QLatin1String("jpeg") || ext == QLatin1String("jpe") ||
             ext == QLatin1String("jfif"))
        graphic = std::make_unique<TJPEGImage>();
    else
        throw EInvalidGraphic(QStringLiteral("Unknown picture file extension (.%1)").arg(ext));
    graphic->LoadFromFile(FileName);
    Adopt(std::move(graphic));
}

void TPicture::SaveToFile(const QString& FileName) {
    if (FGraphic) FGraphic->SaveToFile(FileName);
}

} // namespace vl
