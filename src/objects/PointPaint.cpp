// Painting of point objects on the canvas of `ActScaleSet`, in local coordinates: shapes, rotated
// shapes, pictures clipped to the shape and never mirrored, printing through device-independent
// transfers, and the moving outline.
#include "objects/PointObj.h"

#include "geometry/Vlprocs.h"
#include "geometry/Vlrotation.h"
#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Exceptions.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"
#include "platform/services/Services.h"
#include "surface/ScaleSetting.h"

#include <memory>

namespace vl {

namespace {

// The graphic of the object's picture; null when there is none or it holds no pixels.
TGraphic* GraphicOf(TPicture* Picture) {
    if (!Picture || !Picture->Graphic() || Picture->Graphic()->Empty()) return nullptr;
    return Picture->Graphic();
}

// Prepares a bitmap for a transparent draw when the brush is clear: the colour of its top-left pixel
// is left out.
void PrepareTransparency(TBitmap& Bitmap, bool Clear) {
    if (!Clear) return;
    Bitmap.SetTransparent(true);
    Bitmap.SetTransparentColor(Bitmap.Canvas().Pixels(0, 0));
}

// `Bitmap` through a device-independent transfer onto `Dest` with the raster operation `Rop`.
void StretchBitmapBits(HDC Dc, const TRect& Dest, const TBitmap& Bitmap, std::uint32_t Rop) {
    StretchDIBitsOf(Dc, Dest.Left, Dest.Top, Dest.Width(), Dest.Height(), Bitmap.Image(), Rop);
}

// Prints `Color` onto `Dest` leaving out where `Mask` is white. Printers can't be relied on for
// transparent transfers: the mask clears the opaque part to black, and the picture with black where
// it is transparent is laid over it.
void PrintMasked(HDC Dc, const TRect& Dest, TBitmap& Color, TBitmap& Mask) {
    StretchBitmapBits(Dc, Dest, Mask, SRCAND);
    const int w = Color.Width();
    const int h = Color.Height();
    TBitmap cutOut(w, h);
    BitBlt(cutOut.Canvas().Handle(), 0, 0, w, h, Mask.Canvas().Handle(), 0, 0, SRCCOPY);
    BitBlt(cutOut.Canvas().Handle(), 0, 0, w, h, Color.Canvas().Handle(), 0, 0, SRCERASE);
    StretchBitmapBits(Dc, Dest, cutOut, SRCINVERT);
}

// Holds the canvas locked for its lifetime.
class TCanvasLock {
public:
    explicit TCanvasLock(TCanvas& Canvas) : FCanvas(Canvas) { FCanvas.Lock(); }
    ~TCanvasLock() { FCanvas.Unlock(); }
    TCanvasLock(const TCanvasLock&) = delete;
    TCanvasLock& operator=(const TCanvasLock&) = delete;

private:
    TCanvas& FCanvas;
};

} // namespace

// --- Outlines -------------------------------------------------------------------------------------

void TPointObj::Shape() {
    if (FTool && FTool->OnObjectShape) {
        FTool->ObjectShape(this);
        return;
    }
    if (Rotated()) {
        RotatedShape();
        return;
    }
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    if (shape == stLine) {
        ShapeLine();
        return;
    }
    TCanvas& canvas = ScaleCanvas();
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    const std::int32_t d = SmallerSide();
    const std::int32_t r = d / GetDRoundRect();
    switch (shape) {
    case stRectangle: canvas.Rectangle(0, 0, w, h); break;
    case stEllipse: canvas.Ellipse(0, 0, w, h); break;
    case stCircle: canvas.Ellipse(0, 0, d, d); break;
    case stSquare: canvas.Rectangle(0, 0, d, d); break;
    case stRoundRect: canvas.RoundRect(0, 0, w, h, r, r); break;
    case stRoundSquare: canvas.RoundRect(0, 0, d, d, r, r); break;
    case stRegion: FrameShapeRgn(); break;
    case stLine: break;
    }
}

void TPointObj::FrameShapeRgn() {
    HRGN rgn = CreateShapeRgn(rmLog);
    if (!rgn) return;
    TCanvas& canvas = ScaleCanvas();
    const std::int32_t w = Scale().PixToLog(FrameRgn_W);
    LOGBRUSH lb;
    lb.lbStyle = BS_SOLID;
    lb.lbColor = ColorToRGB(canvas.Pen().Color());
    HBRUSH brush = CreateBrushIndirect(&lb);
    FrameRgn(canvas.Handle(), rgn, brush, w, w);
    DeleteObject(brush);
    DeleteObject(rgn);
}

void TPointObj::ShapeLine() {
    TCustomGenerator* gen = Generator();
    TCanvas& canvas = ScaleCanvas();
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    if (!gen || (gen->Width() >= 0 && gen->Height() >= 0)) {
        canvas.MoveTo(0, 0);
        canvas.LineTo(w, h);
    } else {
        canvas.MoveTo(0, h);
        canvas.LineTo(w, 0);
    }
}

void TPointObj::RotatedShape() {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    if (shape == stLine) return;
    if (shape == stRegion) {
        // The region itself follows the rotation.
        FrameShapeRgn();
        return;
    }
    HDC dc = ScaleCanvas().Handle();
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    const TPoint hot = GetHotSpot();
    const double alpha = GetAlpha();
    // The rotated circle, square and rounded square take the width as the side.
    switch (shape) {
    case stRectangle: Rotated_Rectangle(dc, Rect(0, 0, w, h), hot, alpha); break;
    case stEllipse: Rotated_Ellipse(dc, Rect(0, 0, w, h), hot, alpha); break;
    case stCircle: Rotated_Ellipse(dc, Rect(0, 0, w, w), hot, alpha); break;
    case stSquare: Rotated_Rectangle(dc, Rect(0, 0, w, w), hot, alpha); break;
    case stRoundRect: {
        const std::int32_t r = SmallerSide() / GetDRoundRect();
        Rotated_RoundRect(dc, Rect(0, 0, w, h), r, r, hot, alpha);
        break;
    }
    case stRoundSquare: {
        const std::int32_t r = w / GetDRoundRect();
        Rotated_RoundRect(dc, Rect(0, 0, w, w), r, r, hot, alpha);
        break;
    }
    case stRegion:
    case stLine: break;
    }
}

// --- Drawing --------------------------------------------------------------------------------------

void TPointObj::Draw() {
    TCustomGenerator* gen = Generator();
    if (gen && gen->Options().Contains(goShadows)) DrawShade();
    if (FTool && FTool->OnObjectDraw) {
        FTool->ObjectColors(this);
        FTool->OnObjectDraw(this);
        return;
    }
    if (!GraphicOf(GetPicture())) {
        if (FTool) FTool->ObjectColors(this);
        Shape();
        return;
    }
    DrawGraphic();
}

void TPointObj::Unmirror(HDC DC) {
    TScaleSetting& scale = Scale();
    const bool right = scale.RightOrigin();
    const bool bottom = scale.BottomOrigin();
    if (!right && !bottom) return;
    // The corner of the box that lies top left on the device, in device pixels.
    TPoint pt{right ? GetWidth() : 0, bottom ? GetHeight() : 0};
    LPtoDP(DC, &pt, 1);
    const std::int32_t e = scale.VPExt();
    SetViewportExtEx(DC, e, e);
    SetWindowOrgEx(DC, 0, 0);
    DPtoLP(DC, &pt, 1);
    SetWindowOrgEx(DC, -pt.x, -pt.y);
}

void TPointObj::PaintGraphic(bool ForPrinter) {
    TCanvas& canvas = ScaleCanvas();
    HDC dc = canvas.Handle();
    TGraphic* graphic = GraphicOf(GetPicture());
    TCustomGenerator* gen = Generator();

    // A picture takes the form of the shape.
    HRGN rgn = CreateShapeRgn(rmDev);
    if (rgn) {
        TRect box;
        const bool clipped = ForPrinter && GetClipBox(dc, &box) != ERROR;
        SelectClipRgn(dc, rgn);
        // A printer keeps what it already clips: the band or page it prints.
        if (clipped) IntersectClipRect(dc, box.Left, box.Top, box.Right, box.Bottom);
    }
    Unmirror(dc);

    const bool clear = gen && gen->Brush().Style() == bsClear;
    const bool stretch = gen && gen->Options().Contains(goStretchPicture);
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    if (Rotated()) {
        // A point object turns its outline, not its pixels; the rotated picture objects do that.
        Shape();
    } else if (!ForPrinter) {
        if (clear) {
            graphic->SetTransparent(true);
            if (auto* bitmap = dynamic_cast<TBitmap*>(graphic)) PrepareTransparency(*bitmap, true);
        }
        if (stretch)
            canvas.StretchDraw(Rect(0, 0, w, h), graphic);
        else
            canvas.Draw(0, 0, graphic);
    } else {
        const TSize size{w, h};
        const TSize* wanted = stretch ? &size : nullptr;
        if (auto* jpeg = dynamic_cast<TJPEGImage*>(graphic)) {
            TBitmap copy;
            copy.Assign(jpeg);
            PrepareTransparency(copy, clear);
            PrintBitmap(dc, copy, Point(0, 0), wanted);
        } else if (auto* icon = dynamic_cast<TIcon*>(graphic)) {
            icon->SetTransparent(clear);
            PrintIcon(dc, *icon, Point(0, 0), wanted);
        } else if (auto* bitmap = dynamic_cast<TBitmap*>(graphic)) {
            PrepareTransparency(*bitmap, clear);
            PrintBitmap(dc, *bitmap, Point(0, 0), wanted);
        }
        // Pictures of any other class don't print.
    }
    if (rgn) {
        SelectClipRgn(dc, nullptr);
        DeleteObject(rgn);
    }
}

void TPointObj::DrawGraphic() {
    TCanvas& canvas = ScaleCanvas();
    HDC dc = canvas.Handle();
    TGraphic* graphic = GraphicOf(GetPicture());
    const int saved = SaveDC(dc);
    if (IsMetafileGraphic && IsMetafileGraphic(*graphic))
        DrawMetafile(dc);
    else
        PaintGraphic(false);
    RestoreDC(dc, saved);
    FrameOverPicture(false);
}

void TPointObj::FrameOverPicture(bool ForPrinter) {
    // The frame is drawn over the picture unless the tool's pen is clear. The tool's pen is asked,
    // not the canvas's, which still holds the pen of whatever was drawn before.
    TCustomGenerator* gen = Generator();
    if (!gen || gen->Pen().Style() == psClear) return;
    TCanvas& canvas = ScaleCanvas();
    if (ForPrinter) {
        FTool->ObjectColors(this);
        canvas.Brush().SetStyle(bsClear);
        SetWindowOrgEx(canvas.Handle(), -GetMinX(), -GetMinY());
    } else {
        SetWindowOrgEx(canvas.Handle(), -GetMinX(), -GetMinY());
        FTool->ObjectColors(this);
        canvas.Brush().SetStyle(bsClear);
    }
    Shape();
}

void TPointObj::DrawMetafile(HDC DC) {
    TCanvas& canvas = ScaleCanvas();
    TScaleSetting& scale = Scale();
    TGraphic* graphic = GraphicOf(GetPicture());
    const TCanvasLock lock(canvas);
    const bool mirror = scale.RightOrigin() != scale.BottomOrigin();
    const bool flipped = scale.RightOrigin() || scale.BottomOrigin();
    Unmirror(DC);
    if (!Rotated()) {
        canvas.Draw(0, 0, graphic);
    } else {
        TPoint hot = GetHotSpot();
        if (!flipped) LPtoDP(DC, &hot, 1);
        const double angle = mirror ? -GetAlpha() : GetAlpha();
        try {
            if (RotatedMetafileDrawer)
                RotatedMetafileDrawer(DC, *graphic, hot, angle);
            else
                canvas.Draw(0, 0, graphic);
        } catch (const EAbort&) {
            throw;
        } catch (...) {
            // A metafile that can't be turned is not worth stopping the paint for.
            MessageBeep(1);
        }
    }
}

void TPointObj::DrawRotatedBmp(HDC DC, TPoint& Offset) {
    (void)DC;
    if (TGraphic* graphic = GraphicOf(GetPicture())) ScaleCanvas().Draw(Offset.x, Offset.y, graphic);
}

// --- Printing -------------------------------------------------------------------------------------

void TPointObj::Print() {
    if (!GetVisible()) return;
    HDC dc = ScaleCanvas().Handle();
    SetWindowOrgEx(dc, -GetMinX(), -GetMinY());
    if (!GraphicOf(GetPicture())) {
        Draw();
        return;
    }
    TCustomGenerator* gen = Generator();
    if (gen && gen->Options().Contains(goShadows)) DrawShade();
    if (FTool) FTool->ObjectColors(this);
    if (FTool && FTool->OnObjectDraw) {
        FTool->ObjectColors(this);
        FTool->OnObjectDraw(this);
        return;
    }
    PrintGraphic();
}

void TPointObj::PrintGraphic() {
    HDC dc = ScaleCanvas().Handle();
    const int saved = SaveDC(dc);
    PaintGraphic(true);
    RestoreDC(dc, saved);
    FrameOverPicture(true);
}

void TPointObj::PrintBitmap(HDC DC, TBitmap& Bitmap, TPoint Pos, const TSize* Size) {
    const TSize size = Size ? *Size : TSize{Bitmap.Width(), Bitmap.Height()};
    const TRect dest = Rect(Pos.x, Pos.y, Pos.x + size.cx, Pos.y + size.cy);
    if (!Bitmap.Transparent()) {
        StretchBitmapBits(DC, dest, Bitmap, SRCCOPY);
        return;
    }
    TBitmap mask;
    mask.Assign(&Bitmap);
    mask.Mask(Bitmap.TransparentColor());
    PrintMasked(DC, dest, Bitmap, mask);
}

void TPointObj::PrintIcon(HDC DC, TIcon& Icon, TPoint Pos, const TSize* Size) {
    TBitmap color;
    TBitmap mask;
    GetIconInfo(Icon, color, mask);
    const TSize size = Size ? *Size : TSize{Icon.Width(), Icon.Height()};
    const TRect dest = Rect(Pos.x, Pos.y, Pos.x + size.cx, Pos.y + size.cy);
    if (!Icon.Transparent()) {
        StretchBitmapBits(DC, dest, color, SRCCOPY);
        return;
    }
    PrintMasked(DC, dest, color, mask);
}

// --- The moving outline ---------------------------------------------------------------------------

void TPointObj::RectOutline(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    TCanvas& canvas = ScaleCanvas();
    SetWindowOrgEx(canvas.Handle(), -GetMinX(), -GetMinY());
    canvas.MoveTo(l, t);
    canvas.LineTo(r - 1, t);
    canvas.MoveTo(r, t);
    canvas.LineTo(r, b - 1);
    canvas.MoveTo(r, b);
    canvas.LineTo(l + 1, b);
    canvas.MoveTo(l, b);
    canvas.LineTo(l, t + 1);
}

void TPointObj::DrawShadow() {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    const bool rotated = Rotated();
    if (!rotated && shape == stRectangle) {
        RectOutline(0, 0, GetWidth(), GetHeight());
    } else if (!rotated && shape == stSquare) {
        const std::int32_t d = SmallerSide();
        RectOutline(0, 0, d, d);
    } else {
        TvlObject::DrawShadow();
    }
    if (SizingHandle != szRotate) return;
    // The rotate cross at the hot spot, turned with the object.
    const TPoint hot = GetHotSpot();
    TPoint cross[4] = {{hot.x, hot.y - 10}, {hot.x, hot.y + 10}, {hot.x - 10, hot.y}, {hot.x + 10, hot.y}};
    RotatePoints(cross, 4, hot, GetAlpha());
    TCanvas& canvas = ScaleCanvas();
    canvas.MoveTo(cross[0].x, cross[0].y);
    canvas.LineTo(cross[1].x, cross[1].y);
    canvas.MoveTo(cross[2].x, cross[2].y);
    canvas.LineTo(cross[3].x, cross[3].y);
}

} // namespace vl
