// Pens, brushes, fonts, bitmaps and regions: creation, stock objects, deletion, queries, and the
// region operations that need no device.

#include "platform/gdi/GdiObjects.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

namespace vl {

namespace {

std::unordered_set<const TGdiObject*>& LiveObjects() {
    static std::unordered_set<const TGdiObject*> objects;
    return objects;
}

void CopyFace(LOGFONTW& font, const char16_t* face) {
    int i = 0;
    for (; face[i] && i < LF_FACESIZE - 1; ++i) font.lfFaceName[i] = face[i];
    font.lfFaceName[i] = 0;
}

LOGFONTW StockFont(const char16_t* face, int height, int weight, std::uint8_t pitch) {
    LOGFONTW f;
    f.lfHeight = height;
    f.lfWeight = weight;
    f.lfPitchAndFamily = pitch;
    CopyFace(f, face);
    return f;
}

TGdiObject* MakeStock(int index) {
    switch (index) {
    case WHITE_BRUSH: return new TGdiBrush({BS_SOLID, RGB(255, 255, 255), 0});
    case LTGRAY_BRUSH: return new TGdiBrush({BS_SOLID, RGB(192, 192, 192), 0});
    case GRAY_BRUSH: return new TGdiBrush({BS_SOLID, RGB(128, 128, 128), 0});
    case DKGRAY_BRUSH: return new TGdiBrush({BS_SOLID, RGB(64, 64, 64), 0});
    case BLACK_BRUSH: return new TGdiBrush({BS_SOLID, RGB(0, 0, 0), 0});
    case NULL_BRUSH: return new TGdiBrush({BS_NULL, 0, 0});
    case WHITE_PEN: return new TGdiPen({PS_SOLID, {0, 0}, RGB(255, 255, 255)});
    case BLACK_PEN: return new TGdiPen({PS_SOLID, {0, 0}, RGB(0, 0, 0)});
    case NULL_PEN: return new TGdiPen({PS_NULL, {0, 0}, 0});
    case OEM_FIXED_FONT:
    case ANSI_FIXED_FONT:
    case SYSTEM_FIXED_FONT: return new TGdiFont(StockFont(u"Courier", 13, FW_NORMAL, FIXED_PITCH));
    case ANSI_VAR_FONT: return new TGdiFont(StockFont(u"MS Sans Serif", 13, FW_NORMAL, VARIABLE_PITCH));
    case SYSTEM_FONT:
    case DEVICE_DEFAULT_FONT: return new TGdiFont(StockFont(u"System", 16, FW_BOLD, VARIABLE_PITCH));
    case DEFAULT_GUI_FONT: return new TGdiFont(StockFont(u"MS Shell Dlg", -11, FW_NORMAL, DEFAULT_PITCH));
    default: return nullptr;
    }
}

HRGN NewRegion(gdi::TShapePtr shape) {
    return new TGdiRegion(std::move(shape));
}

} // namespace

TGdiObject::TGdiObject() {
    LiveObjects().insert(this);
}

void TGdiObject::Release() {
    if (--FRefs <= 0 && FDeletePending && !FStock) {
        LiveObjects().erase(this);
        delete this;
    }
}

void TGdiObject::Delete() {
    if (FStock) return;
    if (FRefs > 0) {
        FDeletePending = true;
        return;
    }
    LiveObjects().erase(this);
    delete this;
}

bool IsLiveObject(const TGdiObject* object) {
    return object && LiveObjects().count(object) != 0;
}

HPEN CreatePen(int style, int width, COLORREF color) {
    if (style < int(PS_SOLID) || style > int(PS_INSIDEFRAME)) return nullptr;
    // A negative width draws with its absolute value.
    const std::int32_t absWidth =
        std::int32_t(std::min<std::int64_t>(std::abs(std::int64_t(width)), INT32_MAX));
    return new TGdiPen({std::uint32_t(style), {absWidth, 0}, color & 0xFFFFFF});
}

HPEN CreatePenIndirect(const LOGPEN* pen) {
    if (!pen) return nullptr;
    return CreatePen(int(pen->lopnStyle), pen->lopnWidth.x, pen->lopnColor);
}

HBRUSH CreateSolidBrush(COLORREF color) {
    return new TGdiBrush({BS_SOLID, color & 0xFFFFFF, 0});
}

HBRUSH CreateHatchBrush(int hatch, COLORREF color) {
    if (hatch < HS_HORIZONTAL || hatch > HS_DIAGCROSS) return nullptr;
    return new TGdiBrush({BS_HATCHED, color & 0xFFFFFF, std::uintptr_t(hatch)});
}

HBRUSH CreateBrushIndirect(const LOGBRUSH* brush) {
    if (!brush) return nullptr;
    switch (brush->lbStyle) {
    case BS_SOLID: return CreateSolidBrush(brush->lbColor);
    case BS_NULL: return new TGdiBrush({BS_NULL, brush->lbColor & 0xFFFFFF, 0});
    case BS_HATCHED: return CreateHatchBrush(int(brush->lbHatch), brush->lbColor);
    default: return nullptr;
    }
}

HFONT CreateFontIndirectW(const LOGFONTW* font) {
    if (!font) return nullptr;
    return new TGdiFont(*font);
}

HBITMAP CreateCompatibleBitmap(HDC, int width, int height) {
    if (width <= 0 || height <= 0 || std::int64_t(width) * height > (std::int64_t(1) << 28)) return nullptr;
    QImage image(width, height, QImage::Format_RGB32);
    if (image.isNull()) return nullptr;
    image.fill(0xFFFFFFFFu);
    return new TGdiBitmap(std::move(image));
}

HBITMAP CreateBitmapFromImage(const QImage& image) {
    if (image.isNull()) return nullptr;
    return new TGdiBitmap(image.convertToFormat(QImage::Format_RGB32));
}

HGDIOBJ GetStockObject(int index) {
    static std::array<TGdiObject*, 18> stock = [] {
        std::array<TGdiObject*, 18> s{};
        for (int i = 0; i < int(s.size()); ++i) {
            s[std::size_t(i)] = MakeStock(i);
            if (s[std::size_t(i)]) s[std::size_t(i)]->MarkStock();
        }
        return s;
    }();
    if (index < 0 || index >= int(stock.size())) return nullptr;
    return stock[std::size_t(index)];
}

bool DeleteObject(HGDIOBJ object) {
    if (!IsLiveObject(object)) return false;
    object->Delete();
    return true;
}

int GetObjectType(HGDIOBJ object) {
    return IsLiveObject(object) ? object->ObjectType() : 0;
}

bool GetLogPen(HPEN pen, LOGPEN* out) {
    if (!IsLiveObject(pen) || !out) return false;
    *out = pen->FLogPen;
    return true;
}

bool GetLogBrush(HBRUSH brush, LOGBRUSH* out) {
    if (!IsLiveObject(brush) || !out) return false;
    *out = brush->FLogBrush;
    return true;
}

bool GetLogFont(HFONT font, LOGFONTW* out) {
    if (!IsLiveObject(font) || !out) return false;
    *out = font->FLogFont;
    return true;
}

QImage* GetBitmapImage(HBITMAP bitmap) {
    return IsLiveObject(bitmap) ? &bitmap->FImage : nullptr;
}

bool GetBitmapSize(HBITMAP bitmap, TSize* size) {
    if (!IsLiveObject(bitmap) || !size) return false;
    *size = {bitmap->FImage.width(), bitmap->FImage.height()};
    return true;
}

// --- regions ----------------------------------------------------------------------------------

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    return NewRegion(gdi::TRegionShape::MakeRect({left, top, right, bottom}));
}

HRGN CreateRectRgnIndirect(const TRect* rect) {
    return rect ? CreateRectRgn(rect->Left, rect->Top, rect->Right, rect->Bottom) : nullptr;
}

HRGN CreateEllipticRgn(int left, int top, int right, int bottom) {
    return NewRegion(gdi::TRegionShape::MakeEllipse({left, top, right, bottom}));
}

HRGN CreateEllipticRgnIndirect(const TRect* rect) {
    return rect ? CreateEllipticRgn(rect->Left, rect->Top, rect->Right, rect->Bottom) : nullptr;
}

HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height) {
    return NewRegion(gdi::TRegionShape::MakeRoundRect({left, top, right, bottom}, width, height));
}

HRGN CreatePolygonRgn(const TPoint* points, int count, int fillMode) {
    if (!points || count < 0) return nullptr;
    return CreatePolyPolygonRgn(points, &count, 1, fillMode);
}

HRGN CreatePolyPolygonRgn(const TPoint* points, const int* counts, int polygons, int fillMode) {
    if (!points || !counts || polygons <= 0) return nullptr;
    if (fillMode != ALTERNATE && fillMode != WINDING) return nullptr;
    std::vector<int> cnt(counts, counts + polygons);
    std::size_t total = 0;
    for (int c : cnt) {
        if (c < 0) return nullptr;
        total += std::size_t(c);
    }
    std::vector<TPoint> pts(points, points + total);
    return NewRegion(gdi::TRegionShape::MakePolygon(std::move(pts), std::move(cnt), fillMode));
}

int CombineRgn(HRGN dest, HRGN source1, HRGN source2, int mode) {
    if (!IsLiveObject(dest) || !IsLiveObject(source1)) return ERROR;
    if (mode == RGN_COPY) {
        dest->FShape = source1->FShape;
        return dest->FShape->RegionType();
    }
    if (!IsLiveObject(source2) || mode < RGN_AND || mode > RGN_DIFF) return ERROR;
    dest->FShape = gdi::TRegionShape::Combine(source1->FShape, source2->FShape, mode);
    return dest->FShape->RegionType();
}

int OffsetRgn(HRGN region, int dx, int dy) {
    if (!IsLiveObject(region)) return ERROR;
    region->FShape = region->FShape->Offset(dx, dy);
    return region->FShape->RegionType();
}

bool SetRectRgn(HRGN region, int left, int top, int right, int bottom) {
    if (!IsLiveObject(region)) return false;
    region->FShape = gdi::TRegionShape::MakeRect({left, top, right, bottom});
    return true;
}

bool PtInRegion(HRGN region, int x, int y) {
    return IsLiveObject(region) && region->FShape->Contains(x, y);
}

bool RectInRegion(HRGN region, const TRect* rect) {
    return IsLiveObject(region) && rect && region->FShape->IntersectsRect(*rect);
}

bool EqualRgn(HRGN a, HRGN b) {
    return IsLiveObject(a) && IsLiveObject(b) && gdi::TRegionShape::SamePixels(*a->FShape, *b->FShape);
}

int GetRgnBox(HRGN region, TRect* box) {
    if (!IsLiveObject(region) || !box) return ERROR;
    *box = region->FShape->Bounds();
    return region->FShape->RegionType();
}

} // namespace vl
