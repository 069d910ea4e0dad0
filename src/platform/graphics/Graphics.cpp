#include "platform/graphics/Graphics.h"

#include "platform/core/Assert.h"
#include "platform/core/Numerics.h"
#include "platform/graphics/Images.h"

#include <QColor>

#include <algorithm>
#include <array>

namespace vl {

// ---------------------------------------------------------------------------------------------
// Colours
// ---------------------------------------------------------------------------------------------

namespace {

// The classic default colours of the Windows 95/98/2000 "Windows Standard" scheme, indexed by the
// system colour number. Index 25 has no colour and answers black; 26 to 30 (hot-tracking, caption
// gradients, flat menus) take the values the classic scheme gives them.
constexpr std::array<COLORREF, SystemColorCount> SystemColors = {
    RGB(192, 192, 192), // 0  scroll bar
    RGB(0, 128, 128),   // 1  desktop background
    RGB(0, 0, 128),     // 2  active caption
    RGB(128, 128, 128), // 3  inactive caption
    RGB(192, 192, 192), // 4  menu
    RGB(255, 255, 255), // 5  window
    RGB(0, 0, 0),       // 6  window frame
    RGB(0, 0, 0),       // 7  menu text
    RGB(0, 0, 0),       // 8  window text
    RGB(255, 255, 255), // 9  caption text
    RGB(192, 192, 192), // 10 active border
    RGB(192, 192, 192), // 11 inactive border
    RGB(128, 128, 128), // 12 application workspace
    RGB(0, 0, 128),     // 13 highlight
    RGB(255, 255, 255), // 14 highlight text
    RGB(192, 192, 192), // 15 button face
    RGB(128, 128, 128), // 16 button shadow
    RGB(128, 128, 128), // 17 grey text
    RGB(0, 0, 0),       // 18 button text
    RGB(192, 192, 192), // 19 inactive caption text
    RGB(255, 255, 255), // 20 button highlight
    RGB(0, 0, 0),       // 21 3-D dark shadow
    RGB(192, 192, 192), // 22 3-D light
    RGB(0, 0, 0),       // 23 tooltip text
    RGB(255, 255, 225), // 24 tooltip background
    RGB(0, 0, 0),       // 25 (none)
    RGB(0, 0, 255),     // 26 hot-tracked item
    RGB(16, 132, 208),  // 27 gradient of the active caption
    RGB(181, 181, 181), // 28 gradient of the inactive caption
    RGB(0, 0, 128),     // 29 menu highlight
    RGB(192, 192, 192), // 30 menu bar
};

} // namespace

COLORREF GetSysColor(int Index) {
    if (Index < 0 || Index >= SystemColorCount) return 0;
    return SystemColors[std::size_t(Index)];
}

COLORREF ColorToRGB(TColor Color) {
    if (Color < 0) return GetSysColor(Color & 0xFF);
    return static_cast<COLORREF>(Color);
}

QColor ColorToQColor(TColor Color) {
    const COLORREF c = ColorToRGB(Color);
    return QColor(GetRValue(c), GetGValue(c), GetBValue(c));
}

TColor QColorToColor(const QColor& Color) {
    return static_cast<TColor>(
        RGB(std::uint8_t(Color.red()), std::uint8_t(Color.green()), std::uint8_t(Color.blue())));
}

int PenModeToROP2(TPenMode Mode) {
    switch (Mode) {
    case pmBlack: return R2_BLACK;
    case pmWhite: return R2_WHITE;
    case pmNop: return R2_NOP;
    case pmNot: return R2_NOT;
    case pmCopy: return R2_COPYPEN;
    case pmNotCopy: return R2_NOTCOPYPEN;
    case pmMergePenNot: return R2_MERGEPENNOT;
    case pmMaskPenNot: return R2_MASKPENNOT;
    case pmMergeNotPen: return R2_MERGENOTPEN;
    case pmMaskNotPen: return R2_MASKNOTPEN;
    case pmMerge: return R2_MERGEPEN;
    case pmNotMerge: return R2_NOTMERGEPEN;
    case pmMask: return R2_MASKPEN;
    case pmNotMask: return R2_NOTMASKPEN;
    case pmXor: return R2_XORPEN;
    case pmNotXor: return R2_NOTXORPEN;
    }
    return R2_COPYPEN;
}

namespace {
// The colour handed to the device: system colours resolved, the flag byte of other values dropped.
COLORREF DeviceColor(TColor Color) {
    return ColorToRGB(Color) & 0x00FFFFFFu;
}
} // namespace

// ---------------------------------------------------------------------------------------------
// TGraphicsObject
// ---------------------------------------------------------------------------------------------

TGraphicsObject::~TGraphicsObject() {
    DropObject();
}

void TGraphicsObject::DropObject() {
    // An object that is still selected into a context is deleted by the device layer once it is
    // deselected.
    if (FObject) DeleteObject(FObject);
    FObject = nullptr;
}

void TGraphicsObject::Changed() {
    DropObject();
    if (FOnChange) FOnChange(this);
}

HGDIOBJ TGraphicsObject::Object() {
    if (!FObject) FObject = CreateObject();
    return FObject;
}

// ---------------------------------------------------------------------------------------------
// TPen
// ---------------------------------------------------------------------------------------------

void TPen::SetColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    Changed();
}

void TPen::SetWidth(int Value) {
    Value = std::max(Value, 1);
    if (FWidth == Value) return;
    FWidth = Value;
    Changed();
}

void TPen::SetStyle(TPenStyle Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

void TPen::SetMode(TPenMode Value) {
    if (FMode == Value) return;
    FMode = Value;
    Changed();
}

void TPen::Assign(TPersistent* Source) {
    auto* pen = dynamic_cast<TPen*>(Source);
    if (!pen) {
        TPersistent::Assign(Source);
        return;
    }
    if (FColor == pen->FColor && FWidth == pen->FWidth && FStyle == pen->FStyle && FMode == pen->FMode)
        return;
    FColor = pen->FColor;
    FWidth = pen->FWidth;
    FStyle = pen->FStyle;
    FMode = pen->FMode;
    Changed();
}

HPEN TPen::Handle() {
    return static_cast<HPEN>(Object());
}

HGDIOBJ TPen::CreateObject() const {
    return CreatePen(int(static_cast<std::uint8_t>(FStyle)), FWidth, DeviceColor(FColor));
}

// ---------------------------------------------------------------------------------------------
// TBrush
// ---------------------------------------------------------------------------------------------

void TBrush::SetColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    Changed();
}

void TBrush::SetStyle(TBrushStyle Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

void TBrush::Assign(TPersistent* Source) {
    auto* brush = dynamic_cast<TBrush*>(Source);
    if (!brush) {
        TPersistent::Assign(Source);
        return;
    }
    if (FColor == brush->FColor && FStyle == brush->FStyle) return;
    FColor = brush->FColor;
    FStyle = brush->FStyle;
    Changed();
}

HBRUSH TBrush::Handle() {
    return static_cast<HBRUSH>(Object());
}

HGDIOBJ TBrush::CreateObject() const {
    LOGBRUSH lb;
    lb.lbColor = DeviceColor(FColor);
    switch (FStyle) {
    case bsSolid: lb.lbStyle = BS_SOLID; break;
    case bsClear: lb.lbStyle = BS_NULL; break;
    default:
        lb.lbStyle = BS_HATCHED;
        lb.lbHatch =
            std::uintptr_t(static_cast<std::uint8_t>(FStyle) - static_cast<std::uint8_t>(bsHorizontal));
    }
    return CreateBrushIndirect(&lb);
}

// ---------------------------------------------------------------------------------------------
// TFont
// ---------------------------------------------------------------------------------------------

void SetLogFontFace(LOGFONTW& lf, QStringView Face) {
    const qsizetype n = std::min<qsizetype>(Face.size(), LF_FACESIZE - 1);
    for (qsizetype i = 0; i < n; ++i) lf.lfFaceName[i] = Face.at(i).unicode();
    for (qsizetype i = n; i < LF_FACESIZE; ++i) lf.lfFaceName[i] = 0;
}

TFont::TFont() : FName(QString::fromUtf16(DefFontName)) {}

void TFont::SetName(const TFontName& Value) {
    if (Value.isEmpty() || FName == Value) return;
    FName = Value;
    Changed();
}

void TFont::SetHeight(int Value) {
    if (FHeight == Value) return;
    FHeight = Value;
    Changed();
}

int TFont::Size() const {
    return -MulDiv(FHeight, 72, FPixelsPerInch);
}

void TFont::SetSize(int Value) {
    SetHeight(-MulDiv(Value, FPixelsPerInch, 72));
}

void TFont::SetColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    Changed();
}

void TFont::SetStyle(TFontStyles Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

void TFont::SetPitch(TFontPitch Value) {
    if (FPitch == Value) return;
    FPitch = Value;
    Changed();
}

void TFont::SetCharset(TFontCharset Value) {
    if (FCharset == Value) return;
    FCharset = Value;
    Changed();
}

void TFont::SetPixelsPerInch(int Value) {
    if (Value > 0) FPixelsPerInch = Value;
}

void TFont::Assign(TPersistent* Source) {
    auto* font = dynamic_cast<TFont*>(Source);
    if (!font) {
        TPersistent::Assign(Source);
        return;
    }
    const int height =
        font->FPixelsPerInch == FPixelsPerInch ? font->FHeight : -MulDiv(font->Size(), FPixelsPerInch, 72);
    if (FName == font->FName && FHeight == height && FColor == font->FColor && FStyle == font->FStyle &&
        FPitch == font->FPitch && FCharset == font->FCharset)
        return;
    FName = font->FName;
    FHeight = height;
    FColor = font->FColor;
    FStyle = font->FStyle;
    FPitch = font->FPitch;
    FCharset = font->FCharset;
    Changed();
}

LOGFONTW TFont::LogFont() const {
    LOGFONTW lf;
    lf.lfHeight = FHeight;
    lf.lfWeight = FStyle.Contains(fsBold) ? FW_BOLD : FW_NORMAL;
    lf.lfItalic = FStyle.Contains(fsItalic) ? 1 : 0;
    lf.lfUnderline = FStyle.Contains(fsUnderline) ? 1 : 0;
    lf.lfStrikeOut = FStyle.Contains(fsStrikeOut) ? 1 : 0;
    lf.lfCharSet = FCharset;
    lf.lfPitchAndFamily = FPitch == fpVariable ? VARIABLE_PITCH
                          : FPitch == fpFixed  ? FIXED_PITCH
                                               : DEFAULT_PITCH;
    SetLogFontFace(lf, FName);
    return lf;
}

HFONT TFont::Handle() {
    return static_cast<HFONT>(Object());
}

HGDIOBJ TFont::CreateObject() const {
    const LOGFONTW lf = LogFont();
    return CreateFontIndirectW(&lf);
}

// ---------------------------------------------------------------------------------------------
// TCanvas
// ---------------------------------------------------------------------------------------------

TCanvas::TCanvas()
    : FPen(std::make_unique<TPen>()), FBrush(std::make_unique<TBrush>()), FFont(std::make_unique<TFont>()) {
    FPen->SetOnChange([this](TObject*) { FState &= std::uint8_t(~csPenValid); });
    FBrush->SetOnChange([this](TObject*) { FState &= std::uint8_t(~csBrushValid); });
    FFont->SetOnChange([this](TObject*) { FState &= std::uint8_t(~csFontValid); });
}

TCanvas::~TCanvas() {
    DeselectHandles();
}

void TCanvas::DeselectHandles() {
    if (FHandle && (FState & (csPenValid | csBrushValid | csFontValid))) {
        SelectObject(FHandle, GetStockObject(BLACK_PEN));
        SelectObject(FHandle, GetStockObject(HOLLOW_BRUSH));
        SelectObject(FHandle, GetStockObject(SYSTEM_FONT));
    }
    FState &= std::uint8_t(~(csPenValid | csBrushValid | csFontValid));
}

void TCanvas::SetHandle(HDC Value) {
    if (FHandle == Value) return;
    DeselectHandles();
    FHandle = Value;
    FState = Value ? std::uint8_t(csHandleValid) : std::uint8_t(0);
}

void TCanvas::RequireHandle() {
    if (!FHandle) CreateHandle();
    if (!FHandle) throw EInvalidOperation(QStringLiteral("Canvas does not allow drawing"));
}

void TCanvas::SelectObjects() {
    if (!(FState & csPenValid)) {
        SelectObject(FHandle, FPen->Handle());
        SetROP2(FHandle, PenModeToROP2(FPen->Mode()));
        FState |= csPenValid;
    }
    if (!(FState & csBrushValid)) {
        SelectObject(FHandle, FBrush->Handle());
        // A solid brush gives the background of styled lines and text; hatches and a clear brush
        // leave it alone.
        if (FBrush->Style() == bsSolid) {
            SetBkColor(FHandle, DeviceColor(FBrush->Color()));
            SetBkMode(FHandle, OPAQUE);
        } else {
            SetBkColor(FHandle, ~DeviceColor(FBrush->Color()) & 0x00FFFFFFu);
            SetBkMode(FHandle, TRANSPARENT);
        }
        FState |= csBrushValid;
    }
    if (!(FState & csFontValid)) {
        SelectObject(FHandle, FFont->Handle());
        SetTextColor(FHandle, DeviceColor(FFont->Color()));
        FState |= csFontValid;
    }
}

HDC TCanvas::Handle() {
    RequireHandle();
    SelectObjects();
    return FHandle;
}

void TCanvas::Changed() {
    if (FOnChange) FOnChange(this);
}

void TCanvas::Changing() {
    if (FOnChanging) FOnChanging(this);
}

TPoint TCanvas::PenPos() {
    TPoint p;
    GetCurrentPositionEx(Handle(), &p);
    return p;
}

void TCanvas::MoveTo(int X, int Y) {
    MoveToEx(Handle(), X, Y);
}

void TCanvas::LineTo(int X, int Y) {
    Changing();
    vl::LineTo(Handle(), X, Y);
    Changed();
}

void TCanvas::Polyline(std::span<const TPoint> Points) {
    Changing();
    vl::Polyline(Handle(), Points.data(), int(Points.size()));
    Changed();
}

void TCanvas::Polygon(std::span<const TPoint> Points) {
    Changing();
    vl::Polygon(Handle(), Points.data(), int(Points.size()));
    Changed();
}

void TCanvas::Rectangle(int X1, int Y1, int X2, int Y2) {
    Changing();
    vl::Rectangle(Handle(), X1, Y1, X2, Y2);
    Changed();
}

void TCanvas::Ellipse(int X1, int Y1, int X2, int Y2) {
    Changing();
    vl::Ellipse(Handle(), X1, Y1, X2, Y2);
    Changed();
}

void TCanvas::RoundRect(int X1, int Y1, int X2, int Y2, int X3, int Y3) {
    Changing();
    vl::RoundRect(Handle(), X1, Y1, X2, Y2, X3, Y3);
    Changed();
}

void TCanvas::FillRect(const TRect& Rect) {
    Changing();
    HDC dc = Handle();
    vl::FillRect(dc, &Rect, FBrush->Handle());
    Changed();
}

void TCanvas::FrameRect(const TRect& Rect) {
    Changing();
    HDC dc = Handle();
    vl::FrameRect(dc, &Rect, FBrush->Handle());
    Changed();
}

void TCanvas::TextOut(int X, int Y, const QString& Text) {
    Changing();
    HDC dc = Handle();
    TextOutW(dc, X, Y, reinterpret_cast<const char16_t*>(Text.utf16()), int(Text.size()));
    MoveToEx(dc, X + TextWidth(Text), Y);
    Changed();
}

void TCanvas::TextRect(const TRect& Rect, int X, int Y, const QString& Text) {
    Changing();
    HDC dc = Handle();
    const int saved = SaveDC(dc);
    IntersectClipRect(dc, Rect.Left, Rect.Top, Rect.Right, Rect.Bottom);
    if (FBrush->Style() != bsClear) vl::FillRect(dc, &Rect, FBrush->Handle());
    TextOutW(dc, X, Y, reinterpret_cast<const char16_t*>(Text.utf16()), int(Text.size()));
    RestoreDC(dc, saved);
    Changed();
}

TSize TCanvas::TextExtent(const QString& Text) {
    TSize size;
    GetTextExtentPoint32W(Handle(), reinterpret_cast<const char16_t*>(Text.utf16()), int(Text.size()), &size);
    return size;
}

void TCanvas::Draw(int X, int Y, TGraphic* Graphic) {
    if (!Graphic || Graphic->Empty()) return;
    Changing();
    Graphic->Draw(*this, Rect(X, Y, X + Graphic->Width(), Y + Graphic->Height()));
    Changed();
}

void TCanvas::StretchDraw(const TRect& Rect, TGraphic* Graphic) {
    if (!Graphic || Graphic->Empty()) return;
    Changing();
    Graphic->Draw(*this, Rect);
    Changed();
}

void TCanvas::CopyRect(const TRect& Dest, TCanvas& Canvas, const TRect& Source) {
    Changing();
    StretchBlt(Handle(), Dest.Left, Dest.Top, Dest.Width(), Dest.Height(), Canvas.Handle(), Source.Left,
               Source.Top, Source.Width(), Source.Height(), FCopyMode);
    Changed();
}

TColor TCanvas::Pixels(int X, int Y) {
    return static_cast<TColor>(GetPixel(Handle(), X, Y));
}

void TCanvas::SetPixels(int X, int Y, TColor Value) {
    Changing();
    SetPixel(Handle(), X, Y, DeviceColor(Value));
    Changed();
}

TRect TCanvas::ClipRect() {
    TRect r;
    GetClipBox(Handle(), &r);
    return r;
}

void TCanvas::Lock() {
    ++FLockCount;
}

void TCanvas::Unlock() {
    VL_ASSERT(FLockCount > 0);
    if (FLockCount > 0) --FLockCount;
}

} // namespace vl
