// The framework's graphic classes: the abstract `TGraphic`, the pixel grid `TBitmap`, `TIcon`,
// `TJPEGImage`, and `TPicture`, which holds one graphic of any of these classes.
//
// `SaveToStream` writes the real file format (a BMP file, an ICO file, JPEG bytes) and `LoadFromStream`
// reads exactly one such file from the stream's position, leaving the position just behind it: inside a
// drawing file the graphic is followed by more records. Corrupt data raises `EInvalidGraphic` and puts
// the position back where the graphic began.
#pragma once

#include "platform/core/Classes.h"
#include "platform/graphics/Dib.h"
#include "platform/graphics/Graphics.h"

#include <QByteArray>
#include <QImage>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace vl {

class TStream;

class TGraphic : public TPersistent {
public:
    virtual bool Empty() const = 0;
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    virtual void SetWidth(int Value) = 0;
    virtual void SetHeight(int Value) = 0;

    // Whether drawing leaves some pixels of the destination unchanged.
    virtual bool Transparent() const { return FTransparent; }
    virtual void SetTransparent(bool Value);

    // Draws the graphic stretched onto `Rect` (logical units of the canvas).
    virtual void Draw(TCanvas& ACanvas, const TRect& Rect) = 0;

    virtual void LoadFromStream(TStream& Stream) = 0;
    virtual void SaveToStream(TStream& Stream) = 0;
    void LoadFromFile(const QString& FileName);
    void SaveToFile(const QString& FileName);

    // A new, empty graphic of the same class.
    virtual std::unique_ptr<TGraphic> NewOfSameClass() const = 0;

    bool Modified() const { return FModified; }
    void SetModified(bool Value) { FModified = Value; }

    const TNotifyEvent& OnChange() const { return FOnChange; }
    void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

protected:
    // Marks the graphic modified and fires `OnChange`.
    virtual void Changed();
    // Sets `Transparent` without a change notification (for `Assign`, which notifies once).
    void StoreTransparent(bool Value) { FTransparent = Value; }

private:
    bool FTransparent = false;
    bool FModified = false;
    TNotifyEvent FOnChange;
};

enum class TTransparentMode : std::uint8_t { tmAuto, tmFixed };
using enum TTransparentMode;
using enum TPixelFormat;

class TBitmap;

// The canvas of a bitmap: a raster context over the bitmap's image, made when it is first drawn on.
class TBitmapCanvas : public TCanvas {
public:
    explicit TBitmapCanvas(TBitmap* Bitmap) : FBitmap(Bitmap) {}
    ~TBitmapCanvas() override;
    // Deletes the context; the next drawing makes a new one over the (possibly new) image.
    void FreeContext();

protected:
    void CreateHandle() override;
    void Changed() override;

private:
    TBitmap* FBitmap; // the owner
    HDC FOwnHandle = nullptr;
    QImage FScratch; // the surface of an empty bitmap's canvas
};

// A pixel grid in RGB32 with the pixel format it is written in. A bitmap of 8 bits or less keeps its
// colour table; its pixels are the table's colours until something is drawn on it, and other colours
// go to the nearest entry when it is written.
class TBitmap : public TGraphic {
public:
    TBitmap();
    TBitmap(int AWidth, int AHeight);
    ~TBitmap() override;

    bool Empty() const override { return FImage.isNull(); }
    int Width() const override { return FImage.width(); }
    int Height() const override { return FImage.height(); }
    void SetWidth(int Value) override { SetSize(Value, Height()); }
    void SetHeight(int Value) override { SetSize(Width(), Value); }
    // Resizes; the kept part of the picture stays, new pixels are white. A size of 0 empties it.
    void SetSize(int AWidth, int AHeight);

    TCanvas& Canvas();

    TPixelFormat PixelFormat() const { return FPixelFormat; }
    // Converts the pixels to what the format can hold (for 8 bits or less through a colour table).
    void SetPixelFormat(TPixelFormat Value);
    const std::vector<QRgb>& Palette() const { return FPalette; }

    // The colour that a transparent draw leaves out: with `tmAuto` the colour of the bottom-left
    // pixel (clDefault for an empty bitmap), with `tmFixed` the colour set.
    TColor TransparentColor() const;
    void SetTransparentColor(TColor Value); // sets `tmFixed`
    TTransparentMode TransparentMode() const { return FTransparentMode; }
    void SetTransparentMode(TTransparentMode Value);

    // Turns this bitmap into a two-colour mask of `TransparentColor`: white where the pixel has that
    // colour, black elsewhere; the pixel format becomes pf1bit.
    void Mask(TColor TransparentColor);
    // The mask of the current transparent colour as an image (white: transparent), the bitmap unchanged.
    QImage MaskImage() const;

    // The pixels; changes through it must be followed by `Modified` handling by the caller. A row is
    // `Width` 32-bit values 0xFFRRGGBB, whatever the pixel format.
    QRgb* ScanLine(int Row);
    const QImage& Image() const { return FImage; }
    // Replaces the pixels (converted to RGB32); the pixel format stays.
    void SetImage(const QImage& Value);

    void Draw(TCanvas& ACanvas, const TRect& Rect) override;
    void LoadFromStream(TStream& Stream) override;
    void SaveToStream(TStream& Stream) override;
    std::unique_ptr<TGraphic> NewOfSameClass() const override { return std::make_unique<TBitmap>(); }

    // From another bitmap, a JPEG image (its decoded pixels) or an icon (drawn on white); null
    // empties the bitmap.
    void Assign(TPersistent* Source) override;

private:
    friend class TBitmapCanvas;
    void NewImage(QImage Image);
    void QuantizeToFormat();

    QImage FImage;
    TPixelFormat FPixelFormat = pfDevice;
    std::vector<QRgb> FPalette;
    TColor FTransparentColor = clDefault;
    TTransparentMode FTransparentMode = tmAuto;
    std::unique_ptr<TBitmapCanvas> FCanvas;
};

// An icon: the ICO file it was read from, and the image of one of its entries (the one nearest to
// 32 x 32 pixels, of the most colours), with its mask as alpha. Writing gives back the file as it was
// read; an icon made from an image is written as an ICO file of one 32-bit entry.
class TIcon : public TGraphic {
public:
    TIcon();

    bool Empty() const override { return FImage.isNull(); }
    int Width() const override { return FImage.width(); }
    int Height() const override { return FImage.height(); }
    // An icon's size is that of its image: setting it is refused silently, as the framework does for
    // an icon that has an image.
    void SetWidth(int) override {}
    void SetHeight(int) override {}

    // The image of the chosen entry (ARGB32, alpha 0 where the mask is set).
    const QImage& Image() const { return FImage; }
    void SetImage(const QImage& Value);
    // The colour bitmap and the mask (white where transparent), as the device's icon information
    // gives them.
    QImage ColorImage() const;
    QImage MaskImage() const;

    void Draw(TCanvas& ACanvas, const TRect& Rect) override;
    void LoadFromStream(TStream& Stream) override;
    void SaveToStream(TStream& Stream) override;
    std::unique_ptr<TGraphic> NewOfSameClass() const override { return std::make_unique<TIcon>(); }
    void Assign(TPersistent* Source) override;

private:
    QByteArray FData; // the ICO file
    QImage FImage;
};

// A JPEG image: the JPEG bytes and their decoded pixels. Writing gives back the bytes as they were
// read; an image assigned from a bitmap is compressed with `CompressionQuality`.
class TJPEGImage : public TGraphic {
public:
    bool Empty() const override { return FImage.isNull(); }
    int Width() const override { return FImage.width(); }
    int Height() const override { return FImage.height(); }
    void SetWidth(int) override {}
    void SetHeight(int) override {}

    int CompressionQuality() const { return FCompressionQuality; }
    void SetCompressionQuality(int Value) { FCompressionQuality = std::clamp(Value, 1, 100); }
    // Compresses the pixels anew with the current quality.
    void Compress();

    const QImage& Image() const { return FImage; }
    const QByteArray& Data() const { return FData; }

    void Draw(TCanvas& ACanvas, const TRect& Rect) override;
    void LoadFromStream(TStream& Stream) override;
    void SaveToStream(TStream& Stream) override;
    std::unique_ptr<TGraphic> NewOfSameClass() const override { return std::make_unique<TJPEGImage>(); }
    // From another JPEG image, or from a bitmap (compressed).
    void Assign(TPersistent* Source) override;

    // The length of the JPEG data that starts at `Data`: from the start-of-image marker through the
    // end-of-image marker, walking the marker segments and the entropy-coded data. -1 when the data
    // ends first or is no JPEG.
    static std::int64_t MeasureJpeg(const std::uint8_t* Data, std::int64_t Size);

private:
    QByteArray FData;
    QImage FImage; // RGB32
    int FCompressionQuality = 90;
};

// Holds one graphic of any class and chooses the class when loading a file by its extension.
class TPicture : public TPersistent {
public:
    TPicture();
    ~TPicture() override;

    TGraphic* Graphic() const { return FGraphic.get(); }
    // A copy of `Value` (same class, by `Assign`) replaces the graphic; null empties the picture.
    void SetGraphic(TGraphic* Value);
    // The graphic as a bitmap; a graphic of another class is replaced by an empty bitmap.
    TBitmap& Bitmap();
    TIcon& Icon();

    int Width() const { return FGraphic ? FGraphic->Width() : 0; }
    int Height() const { return FGraphic ? FGraphic->Height() : 0; }

    // From another picture or a graphic; null empties the picture.
    void Assign(TPersistent* Source) override;

    // ".bmp" reads a bitmap, ".ico" an icon, ".jpg", ".jpeg", ".jpe" and ".jfif" a JPEG image;
    // another extension raises `EInvalidGraphic`. A failed load keeps the former graphic.
    void LoadFromFile(const QString& FileName);
    // Writes the graphic's own format; nothing is written for an empty picture.
    void SaveToFile(const QString& FileName);

    const TNotifyEvent& OnChange() const { return FOnChange; }
    void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

private:
    void Adopt(std::unique_ptr<TGraphic> Graphic);
    void Changed();

    std::unique_ptr<TGraphic> FGraphic;
    TNotifyEvent FOnChange;
};

// The two bitmaps that make up an icon, as the device's icon information gives them: `Color` gets the
// colour pixels as the icon stores them (also under its transparent part, normally black there;
// pixel format `pfDevice`), `Mask` the AND mask, white where the icon is transparent and black where
// it is opaque (pixel format `pf1bit`, colour table black and white). Both are the icon's size, opaque
// (`Transparent` false), with one change notification each. Drawn with `StretchDIBits` (through
// `StretchDIBitsOf`), the mask with SRCAND and then the colour pixels, made black under the mask, with
// SRCINVERT show the icon over what lies beneath. An empty icon empties both and answers false.
bool GetIconInfo(const TIcon& Icon, TBitmap& Color, TBitmap& Mask);

namespace gfx {
// Draws an image stretched onto `Rect` of the canvas, opaque, with the canvas's copy mode.
void DrawImage(TCanvas& ACanvas, const TRect& Rect, const QImage& Image);
// Draws an image leaving out the pixels where `Mask` (same size) is white.
void DrawImageMasked(TCanvas& ACanvas, const TRect& Rect, const QImage& Image, const QImage& Mask);
} // namespace gfx

} // namespace vl
