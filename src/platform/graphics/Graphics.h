// The component framework's drawing classes on top of the device layer: colours, pens, brushes,
// fonts and the canvas.
//
// `TColor` is 0x00BBGGRR with two special ranges: 0xFF0000nn names the system colour nn, resolved by a
// fixed table so that a drawing looks the same on every machine, and `clNone`/`clDefault` mean "no
// colour" and "the owner's default". `TPen`, `TBrush` and `TFont` keep their attributes and make a
// device object (`HPEN`, `HBRUSH`, `HFONT`) on demand; a change drops the object, fires `OnChange`
// once, and the next use makes a new one.
//
// `TCanvas` draws through a device context that it does not own (subclasses may: `CreateHandle` is
// the hook that gives them one on demand). It selects its pen, brush and font lazily: reading
// `Handle()` selects whichever of them changed since they were last selected, so a change of the pen
// takes effect at the next drawing operation. All coordinates are logical units of the context.
#pragma once

#include "platform/core/Classes.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Types.h"
#include "platform/gdi/Gdi.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

class QColor;

namespace vl {

// ---------------------------------------------------------------------------------------------
// Colours
// ---------------------------------------------------------------------------------------------

using TColor = std::int32_t;

constexpr TColor clBlack = 0x000000;
constexpr TColor clMaroon = 0x000080;
constexpr TColor clGreen = 0x008000;
constexpr TColor clOlive = 0x008080;
constexpr TColor clNavy = 0x800000;
constexpr TColor clPurple = 0x800080;
constexpr TColor clTeal = 0x808000;
constexpr TColor clGray = 0x808080;
constexpr TColor clSilver = 0xC0C0C0;
constexpr TColor clRed = 0x0000FF;
constexpr TColor clLime = 0x00FF00;
constexpr TColor clYellow = 0x00FFFF;
constexpr TColor clBlue = 0xFF0000;
constexpr TColor clFuchsia = 0xFF00FF;
constexpr TColor clAqua = 0xFFFF00;
constexpr TColor clWhite = 0xFFFFFF;
constexpr TColor clNone = 0x1FFFFFFF;
constexpr TColor clDefault = 0x20000000;

// The system colours: 0xFF000000 plus the index of the colour in the system table.
constexpr TColor clSystemColor = static_cast<TColor>(0xFF000000u);
constexpr TColor clScrollBar = clSystemColor | 0;
constexpr TColor clBackground = clSystemColor | 1;
constexpr TColor clActiveCaption = clSystemColor | 2;
constexpr TColor clInactiveCaption = clSystemColor | 3;
constexpr TColor clMenu = clSystemColor | 4;
constexpr TColor clWindow = clSystemColor | 5;
constexpr TColor clWindowFrame = clSystemColor | 6;
constexpr TColor clMenuText = clSystemColor | 7;
constexpr TColor clWindowText = clSystemColor | 8;
constexpr TColor clCaptionText = clSystemColor | 9;
constexpr TColor clActiveBorder = clSystemColor | 10;
constexpr TColor clInactiveBorder = clSystemColor | 11;
constexpr TColor clAppWorkSpace = clSystemColor | 12;
constexpr TColor clHighlight = clSystemColor | 13;
constexpr TColor clHighlightText = clSystemColor | 14;
constexpr TColor clBtnFace = clSystemColor | 15;
constexpr TColor clBtnShadow = clSystemColor | 16;
constexpr TColor clGrayText = clSystemColor | 17;
constexpr TColor clBtnText = clSystemColor | 18;
constexpr TColor clInactiveCaptionText = clSystemColor | 19;
constexpr TColor clBtnHighlight = clSystemColor | 20;
constexpr TColor cl3DDkShadow = clSystemColor | 21;
constexpr TColor cl3DLight = clSystemColor | 22;
constexpr TColor clInfoText = clSystemColor | 23;
constexpr TColor clInfoBk = clSystemColor | 24;
constexpr TColor clHotLight = clSystemColor | 26;
constexpr TColor clGradientActiveCaption = clSystemColor | 27;
constexpr TColor clGradientInactiveCaption = clSystemColor | 28;
constexpr TColor clMenuHighlight = clSystemColor | 29;
constexpr TColor clMenuBar = clSystemColor | 30;

// The number of entries of the system colour table (indexes 0 to 30).
constexpr int SystemColorCount = 31;

// The colour of a system colour index from the fixed table; 0 (black) for an index outside it.
COLORREF GetSysColor(int Index);

// Resolves a system colour through the fixed table; any other value is answered unchanged.
COLORREF ColorToRGB(TColor Color);

// The Qt colour of a `TColor` (system colours resolved; the high byte of other values ignored).
QColor ColorToQColor(TColor Color);
TColor QColorToColor(const QColor& Color);

// ---------------------------------------------------------------------------------------------
// Pen, brush and font attributes (numeric values as the drawing file stores them)
// ---------------------------------------------------------------------------------------------

enum class TPenStyle : std::uint8_t {
    psSolid,
    psDash,
    psDot,
    psDashDot,
    psDashDotDot,
    psClear,
    psInsideFrame
};
using enum TPenStyle;

enum class TPenMode : std::uint8_t {
    pmBlack,
    pmWhite,
    pmNop,
    pmNot,
    pmCopy,
    pmNotCopy,
    pmMergePenNot,
    pmMaskPenNot,
    pmMergeNotPen,
    pmMaskNotPen,
    pmMerge,
    pmNotMerge,
    pmMask,
    pmNotMask,
    pmXor,
    pmNotXor
};
using enum TPenMode;

// The raster (R2_*) mode of a pen mode.
int PenModeToROP2(TPenMode Mode);

enum class TBrushStyle : std::uint8_t {
    bsSolid,
    bsClear,
    bsHorizontal,
    bsVertical,
    bsFDiagonal,
    bsBDiagonal,
    bsCross,
    bsDiagCross
};
using enum TBrushStyle;

enum class TFontStyle : std::uint8_t { fsBold, fsItalic, fsUnderline, fsStrikeOut };
using enum TFontStyle;

// A set of font styles; bit n stands for the style of value n, as the drawing file stores it. Bits
// outside the four styles are dropped.
using TFontStyles = TFlagSet<TFontStyle, std::uint8_t, 0x0F>;

constexpr TFontStyles operator|(TFontStyle a, TFontStyle b) {
    return TFontStyles(a) | TFontStyles(b);
}

enum class TFontPitch : std::uint8_t { fpDefault, fpVariable, fpFixed };
using enum TFontPitch;

using TFontCharset = std::uint8_t;
using TFontName = QString;

// The framework's default face: the name of a new font, and the face that the name "Default" stands
// for where a logical font is built for a font of that name.
inline constexpr char16_t DefFontName[] = u"Tahoma";

// Writes `Face` into the face field of `lf`, cut to `LF_FACESIZE - 1` code units and terminated.
void SetLogFontFace(LOGFONTW& lf, QStringView Face);

// ---------------------------------------------------------------------------------------------
// Graphics objects
// ---------------------------------------------------------------------------------------------

// The common base of pen, brush and font: the change event and the lazily made device object.
class TGraphicsObject : public TPersistent {
public:
    ~TGraphicsObject() override;

    // Fired once for each change of a property (not when the new value equals the old one) and
    // once for an `Assign` that changes anything.
    const TNotifyEvent& OnChange() const { return FOnChange; }
    void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

protected:
    // Drops the device object and fires `OnChange`.
    void Changed();
    // The device object, made by `CreateObject` when there is none.
    HGDIOBJ Object();
    virtual HGDIOBJ CreateObject() const = 0;

private:
    void DropObject();
    TNotifyEvent FOnChange;
    HGDIOBJ FObject = nullptr;
};

class TPen : public TGraphicsObject {
public:
    TColor Color() const { return FColor; }
    void SetColor(TColor Value);
    // Width in logical units; values below 1 are taken as 1.
    int Width() const { return FWidth; }
    void SetWidth(int Value);
    TPenStyle Style() const { return FStyle; }
    void SetStyle(TPenStyle Value);
    // The raster mode; a property of the canvas's drawing, not of the device pen.
    TPenMode Mode() const { return FMode; }
    void SetMode(TPenMode Value);

    HPEN Handle();

    void Assign(TPersistent* Source) override;

protected:
    HGDIOBJ CreateObject() const override;

private:
    TColor FColor = clBlack;
    int FWidth = 1;
    TPenStyle FStyle = psSolid;
    TPenMode FMode = pmCopy;
};

class TBrush : public TGraphicsObject {
public:
    TColor Color() const { return FColor; }
    void SetColor(TColor Value);
    // Hatches are drawn in device pixels; a mapping does not scale them.
    TBrushStyle Style() const { return FStyle; }
    void SetStyle(TBrushStyle Value);

    HBRUSH Handle();

    void Assign(TPersistent* Source) override;

protected:
    HGDIOBJ CreateObject() const override;

private:
    TColor FColor = clWhite;
    TBrushStyle FStyle = bsSolid;
};

// The font of the framework. `Height` is in logical units (negative: character height, positive:
// cell height); `Size` is in points at `PixelsPerInch`: Size = -MulDiv(Height, 72, PixelsPerInch) and
// Height = -MulDiv(Size, PixelsPerInch, 72). A new font is "Tahoma", 8 points (Height -11 at 96
// pixels per inch), `clWindowText`, no styles, default pitch, DEFAULT_CHARSET.
class TFont : public TGraphicsObject {
public:
    TFont();

    const TFontName& Name() const { return FName; }
    void SetName(const TFontName& Value);
    int Height() const { return FHeight; }
    void SetHeight(int Value);
    int Size() const;
    void SetSize(int Value);
    TColor Color() const { return FColor; }
    void SetColor(TColor Value);
    TFontStyles Style() const { return FStyle; }
    void SetStyle(TFontStyles Value);
    TFontPitch Pitch() const { return FPitch; }
    void SetPitch(TFontPitch Value);
    TFontCharset Charset() const { return FCharset; }
    void SetCharset(TFontCharset Value);
    // The resolution that `Size` refers to. Changing it keeps `Height` and fires no change.
    int PixelsPerInch() const { return FPixelsPerInch; }
    void SetPixelsPerInch(int Value);

    HFONT Handle();
    // The logical-font record of the device object.
    LOGFONTW LogFont() const;

    // Copies name, height, colour, styles, pitch and charset; a font of another resolution keeps
    // the point size instead of the height. `PixelsPerInch` itself is not copied.
    void Assign(TPersistent* Source) override;

protected:
    HGDIOBJ CreateObject() const override;

private:
    TFontName FName;
    int FHeight = -11;
    TColor FColor = clWindowText;
    TFontStyles FStyle;
    TFontPitch FPitch = fpDefault;
    TFontCharset FCharset = DEFAULT_CHARSET;
    int FPixelsPerInch = 96;
};

// ---------------------------------------------------------------------------------------------
// Canvas
// ---------------------------------------------------------------------------------------------

class TGraphic;

// The ternary raster operation of `CopyRect`.
using TCopyMode = std::uint32_t;
constexpr TCopyMode cmBlackness = BLACKNESS;
constexpr TCopyMode cmDstInvert = DSTINVERT;
constexpr TCopyMode cmMergeCopy = MERGECOPY;
constexpr TCopyMode cmMergePaint = MERGEPAINT;
constexpr TCopyMode cmNotSrcCopy = NOTSRCCOPY;
constexpr TCopyMode cmNotSrcErase = NOTSRCERASE;
constexpr TCopyMode cmPatCopy = PATCOPY;
constexpr TCopyMode cmPatInvert = PATINVERT;
constexpr TCopyMode cmPatPaint = PATPAINT;
constexpr TCopyMode cmSrcAnd = SRCAND;
constexpr TCopyMode cmSrcCopy = SRCCOPY;
constexpr TCopyMode cmSrcErase = SRCERASE;
constexpr TCopyMode cmSrcInvert = SRCINVERT;
constexpr TCopyMode cmSrcPaint = SRCPAINT;
constexpr TCopyMode cmWhiteness = WHITENESS;

// Drawing without a device context.
class EInvalidOperation : public Exception {
    using Exception::Exception;
};

class TCanvas : public TPersistent {
public:
    TCanvas();
    ~TCanvas() override;

    // The device context with the current pen, brush and font selected. Without a context the
    // `CreateHandle` hook is asked for one; if there is still none, `EInvalidOperation` "Canvas does
    // not allow drawing" is raised.
    HDC Handle();
    // The context as it is, without selecting anything (null when there is none).
    HDC HandleAllocated() const { return FHandle; }
    // Sets the context to draw on; the canvas does not own it. The objects selected into the previous
    // context are taken out of it again.
    void SetHandle(HDC Value);

    TPen& Pen() { return *FPen; }
    TBrush& Brush() { return *FBrush; }
    TFont& Font() { return *FFont; }
    // Assign the attributes of another pen, brush or font.
    void SetPen(TPen& Value) { FPen->Assign(&Value); }
    void SetBrush(TBrush& Value) { FBrush->Assign(&Value); }
    void SetFont(TFont& Value) { FFont->Assign(&Value); }

    TCopyMode CopyMode() const { return FCopyMode; }
    void SetCopyMode(TCopyMode Value) { FCopyMode = Value; }

    TPoint PenPos();
    void SetPenPos(TPoint Value) { MoveTo(Value.x, Value.y); }

    void MoveTo(int X, int Y);
    void LineTo(int X, int Y);
    void Polyline(std::span<const TPoint> Points);
    void Polygon(std::span<const TPoint> Points);
    void Rectangle(int X1, int Y1, int X2, int Y2);
    void Rectangle(const TRect& Rect) { Rectangle(Rect.Left, Rect.Top, Rect.Right, Rect.Bottom); }
    void Ellipse(int X1, int Y1, int X2, int Y2);
    void Ellipse(const TRect& Rect) { Ellipse(Rect.Left, Rect.Top, Rect.Right, Rect.Bottom); }
    void RoundRect(int X1, int Y1, int X2, int Y2, int X3, int Y3);
    // Fills with the brush only, right and bottom excluded.
    void FillRect(const TRect& Rect);
    // A one-pixel frame in the brush colour.
    void FrameRect(const TRect& Rect);

    // Draws the text with its top left at (X, Y) and moves the pen position to its right end.
    void TextOut(int X, int Y, const QString& Text);
    // Draws the text at (X, Y) clipped to `Rect`; unless the brush is clear, `Rect` is filled first.
    void TextRect(const TRect& Rect, int X, int Y, const QString& Text);
    TSize TextExtent(const QString& Text);
    int TextWidth(const QString& Text) { return TextExtent(Text).cx; }
    int TextHeight(const QString& Text) { return TextExtent(Text).cy; }

    // Draws the graphic at its own size (in logical units) with its top left at (X, Y).
    void Draw(int X, int Y, TGraphic* Graphic);
    // Draws the graphic stretched onto `Rect`; a rectangle that is reversed on the device mirrors it.
    void StretchDraw(const TRect& Rect, TGraphic* Graphic);
    // Copies `Source` of another canvas onto `Dest` with `CopyMode`.
    void CopyRect(const TRect& Dest, TCanvas& Canvas, const TRect& Source);

    TColor Pixels(int X, int Y);
    void SetPixels(int X, int Y, TColor Value);

    // The visible area in logical units.
    TRect ClipRect();

    // The library draws from one thread only, so a lock guards nothing: `Lock` and `Unlock` only keep
    // count of how deep the calls are nested, for code written to take the canvas around its drawing.
    // Each `Unlock` must follow a `Lock`; one without leaves the count at 0 (an invariant violation
    // that `VL_ASSERT` reports where checks are on).
    void Lock();
    void Unlock();
    int LockCount() const { return FLockCount; }

    // Fired before and after every drawing operation.
    const TNotifyEvent& OnChange() const { return FOnChange; }
    void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }
    const TNotifyEvent& OnChanging() const { return FOnChanging; }
    void SetOnChanging(TNotifyEvent Value) { FOnChanging = std::move(Value); }

protected:
    // Asked for a context when drawing finds none; a subclass sets one with `SetHandle`.
    virtual void CreateHandle() {}
    virtual void Changed();
    virtual void Changing();
    // Takes the selected objects out of the context and forgets them.
    void DeselectHandles();

private:
    enum : std::uint8_t { csHandleValid = 1, csPenValid = 2, csBrushValid = 4, csFontValid = 8 };
    void RequireHandle();
    void SelectObjects();

    HDC FHandle = nullptr;
    std::uint8_t FState = 0;
    std::unique_ptr<TPen> FPen;
    std::unique_ptr<TBrush> FBrush;
    std::unique_ptr<TFont> FFont;
    TCopyMode FCopyMode = cmSrcCopy;
    int FLockCount = 0;
    TNotifyEvent FOnChange;
    TNotifyEvent FOnChanging;
};

} // namespace vl
