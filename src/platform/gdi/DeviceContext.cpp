// The device context: state, mapping, saved states and clipping, and the public operations that
// map logical geometry to the device and hand it to the backend.
//
// Mapping rule, per axis: device = viewport origin + (logical - window origin) * viewport extent /
// window extent, computed in 128-bit intermediates, the quotient rounded half away from zero (as the
// platform's MulDiv); the inverse swaps the roles. Results beyond 32 bits are clamped.

#include "platform/gdi/DeviceContext.h"

#include "platform/core/Assert.h"

#include <QImage>
#include <QPaintDevice>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>
#include <utility>

namespace vl {

namespace {

__extension__ typedef __int128 Int128;

std::int32_t Clamp32(Int128 v) {
    if (v > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
    if (v < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
    return std::int32_t(v);
}

// num / den rounded half away from zero; den != 0.
Int128 RoundDiv(Int128 num, Int128 den) {
    const bool negative = (num < 0) != (den < 0);
    const Int128 n = num < 0 ? -num : num;
    const Int128 d = den < 0 ? -den : den;
    const Int128 q = (2 * n + d) / (2 * d);
    return negative ? -q : q;
}

TRect Normalise(const TRect& r) {
    return {std::min(r.Left, r.Right), std::min(r.Top, r.Bottom), std::max(r.Left, r.Right),
            std::max(r.Top, r.Bottom)};
}

bool IsEmptyRect(const TRect& r) {
    return r.Left >= r.Right || r.Top >= r.Bottom;
}

TRect UnionRect(const TRect& a, const TRect& b) {
    if (IsEmptyRect(a)) return b;
    if (IsEmptyRect(b)) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
}

std::unordered_set<const TDeviceContext*>& LiveContexts() {
    static std::unordered_set<const TDeviceContext*> contexts;
    return contexts;
}

} // namespace

bool TDeviceContext::IsLive(HDC dc) {
    return dc && LiveContexts().count(dc) != 0;
}

namespace {
bool Live(HDC dc) {
    return TDeviceContext::IsLive(dc);
}
} // namespace

// --- the context ------------------------------------------------------------------------------

TDeviceContext::TDeviceContext(std::unique_ptr<gdi::TDeviceBackend> backend, bool memory)
    : FBackend(std::move(backend)), FMemory(memory) {
    FState.Pen = TObjRef(GetStockObject(BLACK_PEN));
    FState.Brush = TObjRef(GetStockObject(WHITE_BRUSH));
    FState.Font = TObjRef(GetStockObject(SYSTEM_FONT));
    LiveContexts().insert(this);
}

TDeviceContext::~TDeviceContext() {
    LiveContexts().erase(this);
    // Let go of every selection before the default bitmap goes.
    FSaved.clear();
    FState = TDcState{};
    if (FDefaultBitmap) DeleteObject(FDefaultBitmap);
}

namespace {
// One axis of the mapping: `to` origin + (v - `from` origin) * `to` extent / `from` extent, rounded
// half away from zero; equal extents map by the origins alone.
std::int32_t MapAxis(std::int64_t v, std::int32_t fromOrg, std::int32_t toOrg, std::int32_t fromExt,
                     std::int32_t toExt) {
    if (fromExt == toExt) return Clamp32(Int128(toOrg) + v - fromOrg);
    return Clamp32(toOrg + RoundDiv((Int128(v) - fromOrg) * toExt, fromExt));
}
} // namespace

std::int32_t TDeviceContext::LogToDevX(std::int64_t x) const {
    const TDcState& s = FState;
    return MapAxis(x, s.WindowOrg.x, s.ViewportOrg.x, s.WindowExt.cx, s.ViewportExt.cx);
}

std::int32_t TDeviceContext::LogToDevY(std::int64_t y) const {
    const TDcState& s = FState;
    return MapAxis(y, s.WindowOrg.y, s.ViewportOrg.y, s.WindowExt.cy, s.ViewportExt.cy);
}

std::int32_t TDeviceContext::DevToLogX(std::int64_t x) const {
    const TDcState& s = FState;
    return MapAxis(x, s.ViewportOrg.x, s.WindowOrg.x, s.ViewportExt.cx, s.WindowExt.cx);
}

std::int32_t TDeviceContext::DevToLogY(std::int64_t y) const {
    const TDcState& s = FState;
    return MapAxis(y, s.ViewportOrg.y, s.WindowOrg.y, s.ViewportExt.cy, s.WindowExt.cy);
}

std::int64_t TDeviceContext::LengthToDevX(std::int64_t w) const {
    const Int128 v = RoundDiv(Int128(w) * FState.ViewportExt.cx, FState.WindowExt.cx);
    return std::int64_t(v < 0 ? -v : v);
}

std::int64_t TDeviceContext::LengthToDevY(std::int64_t h) const {
    const Int128 v = RoundDiv(Int128(h) * FState.ViewportExt.cy, FState.WindowExt.cy);
    return std::int64_t(v < 0 ? -v : v);
}

std::int64_t TDeviceContext::LengthToLogX(std::int64_t w) const {
    const Int128 v = RoundDiv(Int128(w) * FState.WindowExt.cx, FState.ViewportExt.cx);
    return std::int64_t(v < 0 ? -v : v);
}

std::int64_t TDeviceContext::LengthToLogY(std::int64_t h) const {
    const Int128 v = RoundDiv(Int128(h) * FState.WindowExt.cy, FState.ViewportExt.cy);
    return std::int64_t(v < 0 ? -v : v);
}

TRect TDeviceContext::LogToDevRect(const TRect& r) const {
    return {LogToDevX(r.Left), LogToDevY(r.Top), LogToDevX(r.Right), LogToDevY(r.Bottom)};
}

const gdi::TDeviceClip& TDeviceContext::Clip() {
    if (FClipDirty) {
        FClip.Build(FState.Clip, FBackend->BoundsDev());
        FClipDirty = false;
    }
    return FClip;
}

gdi::TShapePtr TDeviceContext::EffectiveClipShape() const {
    const gdi::TShapePtr bounds = gdi::TRegionShape::MakeRect(FBackend->BoundsDev());
    if (!FState.Clip) return bounds;
    return gdi::TRegionShape::Combine(FState.Clip, bounds, RGN_AND);
}

gdi::TDrawAttrs TDeviceContext::Attrs() const {
    gdi::TDrawAttrs a;
    const auto* pen = static_cast<const TGdiPen*>(FState.Pen.Get());
    const auto* brush = static_cast<const TGdiBrush*>(FState.Brush.Get());
    a.Pen.Style = pen->FLogPen.lopnStyle;
    a.Pen.Color = pen->FLogPen.lopnColor;
    const std::int64_t width = pen->FLogPen.lopnWidth.x;
    a.Pen.Width = width <= 0 ? 1 : std::int32_t(std::clamp<std::int64_t>(LengthToDevX(width), 1, 1 << 20));
    // Styled pens wider than one pixel draw solid.
    if (a.Pen.Width > 1 && a.Pen.Style >= PS_DASH && a.Pen.Style <= PS_DASHDOTDOT) a.Pen.Style = PS_SOLID;
    a.Brush.Style = brush->FLogBrush.lbStyle;
    a.Brush.Color = brush->FLogBrush.lbColor;
    a.Brush.Hatch = int(brush->FLogBrush.lbHatch);
    const bool rops = FBackend->HasRasterOps();
    a.Rop2 = rops ? FState.Rop2 : R2_COPYPEN;
    a.BkMode = FState.BkMode;
    a.BkColor = FState.BkColor;
    a.TextColor = FState.TextColor;
    a.PolyFillMode = FState.PolyFillMode;
    a.TextAlign = FState.TextAlign;
    return a;
}

LOGFONTW TDeviceContext::FontDev() const {
    LOGFONTW f = static_cast<const TGdiFont*>(FState.Font.Get())->FLogFont;
    if (f.lfHeight != 0) {
        const std::int64_t h = std::max<std::int64_t>(1, LengthToDevY(std::abs(std::int64_t(f.lfHeight))));
        f.lfHeight = std::int32_t(std::min<std::int64_t>(h, 1 << 16)) * (f.lfHeight < 0 ? -1 : 1);
    }
    if (f.lfWidth != 0)
        f.lfWidth = std::int32_t(
            std::clamp<std::int64_t>(LengthToDevX(std::abs(std::int64_t(f.lfWidth))), 1, 1 << 16));
    return f;
}

void TDeviceContext::Drawn(const TRect& drawnDev) {
    if (IsEmptyRect(drawnDev)) return;
    FDrawnBounds = UnionRect(FDrawnBounds, drawnDev);
    if (FOnDrawn) FOnDrawn(drawnDev);
}

void TDeviceContext::SelectBitmap(TGdiBitmap* bitmap) {
    const int dpiX = FBackend->DeviceCaps(LOGPIXELSX), dpiY = FBackend->DeviceCaps(LOGPIXELSY);
    FState.Bitmap = TObjRef(bitmap);
    FBackend = gdi::MakeRasterBackend(&bitmap->FImage);
    FBackend->SetResolution(dpiX, dpiY);
    FClipDirty = true;
}

void TDeviceContext::AdjustIsotropic() {
    if (FState.MapMode != MM_ISOTROPIC) return;
    TDcState& s = FState;
    // Keep one scale on both axes: the smaller of the two, with each axis keeping its sign.
    const long double sx = std::fabs((long double)s.ViewportExt.cx / s.WindowExt.cx);
    const long double sy = std::fabs((long double)s.ViewportExt.cy / s.WindowExt.cy);
    if (sx < sy) {
        const Int128 v =
            RoundDiv(Int128(std::abs(s.WindowExt.cy)) * std::abs(s.ViewportExt.cx), std::abs(s.WindowExt.cx));
        s.ViewportExt.cy = std::max<std::int32_t>(1, Clamp32(v)) * (s.ViewportExt.cy < 0 ? -1 : 1);
    } else if (sy < sx) {
        const Int128 v =
            RoundDiv(Int128(std::abs(s.WindowExt.cx)) * std::abs(s.ViewportExt.cy), std::abs(s.WindowExt.cy));
        s.ViewportExt.cx = std::max<std::int32_t>(1, Clamp32(v)) * (s.ViewportExt.cx < 0 ? -1 : 1);
    }
}

// --- devices ----------------------------------------------------------------------------------

HDC CreateImageDC(QImage* image) {
    if (!image || image->isNull()) return nullptr;
    return new TDeviceContext(gdi::MakeRasterBackend(image), false);
}

HDC CreatePaintDeviceDC(QPaintDevice* device) {
    if (!device) return nullptr;
    auto backend = gdi::MakePaintDeviceBackend(device);
    if (!backend) return nullptr;
    return new TDeviceContext(std::move(backend), false);
}

HDC CreateCompatibleDC(HDC dc) {
    HBITMAP bitmap = CreateCompatibleBitmap(dc, 1, 1);
    auto* memory = new TDeviceContext(gdi::MakeRasterBackend(&bitmap->FImage), true);
    if (Live(dc))
        memory->Backend().SetResolution(GetDeviceCaps(dc, LOGPIXELSX), GetDeviceCaps(dc, LOGPIXELSY));
    memory->FState.Bitmap = TObjRef(bitmap);
    memory->FDefaultBitmap = bitmap;
    return memory;
}

bool DeleteDC(HDC dc) {
    if (!Live(dc)) return false;
    delete dc;
    return true;
}

void SetDrawnEvent(HDC dc, TDrawnEvent event) {
    if (Live(dc)) dc->FOnDrawn = std::move(event);
}

TRect GetDrawnBoundsDev(HDC dc, bool reset) {
    if (!Live(dc)) return {};
    const TRect r = dc->FDrawnBounds;
    if (reset) dc->FDrawnBounds = {};
    return r;
}

int GetDeviceCaps(HDC dc, int index) {
    return Live(dc) ? dc->Backend().DeviceCaps(index) : 0;
}

bool SetDeviceResolution(HDC dc, int dpiX, int dpiY) {
    if (!Live(dc) || dpiX <= 0 || dpiY <= 0) return false;
    dc->Backend().SetResolution(dpiX, dpiY);
    return true;
}

// --- mapping ----------------------------------------------------------------------------------

int SetMapMode(HDC dc, int mode) {
    if (!Live(dc) || mode < MM_TEXT || mode > MM_ANISOTROPIC) return 0;
    TDcState& s = dc->FState;
    const int previous = s.MapMode;
    s.MapMode = mode;
    const int hres = GetDeviceCaps(dc, HORZRES), vres = GetDeviceCaps(dc, VERTRES);
    const int hsize = std::max(1, GetDeviceCaps(dc, HORZSIZE)),
              vsize = std::max(1, GetDeviceCaps(dc, VERTSIZE));
    auto metric = [&](long double unitsPerMm) {
        s.WindowExt = {std::max(1, int(std::lround(hsize * unitsPerMm))),
                       std::max(1, int(std::lround(vsize * unitsPerMm)))};
        s.ViewportExt = {std::max(1, hres), -std::max(1, vres)};
    };
    switch (mode) {
    case MM_TEXT:
        s.WindowExt = {1, 1};
        s.ViewportExt = {1, 1};
        break;
    case MM_LOMETRIC: metric(10); break;
    case MM_HIMETRIC: metric(100); break;
    case MM_LOENGLISH: metric(100 / 25.4L); break;
    case MM_HIENGLISH: metric(1000 / 25.4L); break;
    case MM_TWIPS: metric(1440 / 25.4L); break;
    case MM_ISOTROPIC: dc->AdjustIsotropic(); break;
    default: break; // anisotropic keeps the current extents
    }
    return previous;
}

int GetMapMode(HDC dc) {
    return Live(dc) ? dc->FState.MapMode : 0;
}

namespace {
bool ExtentsSettable(HDC dc) {
    return dc->FState.MapMode == MM_ISOTROPIC || dc->FState.MapMode == MM_ANISOTROPIC;
}
} // namespace

bool SetWindowExtEx(HDC dc, int x, int y, TSize* previous) {
    if (!Live(dc)) return false;
    if (previous) *previous = dc->FState.WindowExt;
    if (!ExtentsSettable(dc)) return true;
    if (x == 0 || y == 0) return false;
    dc->FState.WindowExt = {x, y};
    dc->AdjustIsotropic();
    return true;
}

bool SetViewportExtEx(HDC dc, int x, int y, TSize* previous) {
    if (!Live(dc)) return false;
    if (previous) *previous = dc->FState.ViewportExt;
    if (!ExtentsSettable(dc)) return true;
    if (x == 0 || y == 0) return false;
    dc->FState.ViewportExt = {x, y};
    dc->AdjustIsotropic();
    return true;
}

bool SetWindowOrgEx(HDC dc, int x, int y, TPoint* previous) {
    if (!Live(dc)) return false;
    if (previous) *previous = dc->FState.WindowOrg;
    dc->FState.WindowOrg = {x, y};
    return true;
}

bool SetViewportOrgEx(HDC dc, int x, int y, TPoint* previous) {
    if (!Live(dc)) return false;
    if (previous) *previous = dc->FState.ViewportOrg;
    dc->FState.ViewportOrg = {x, y};
    return true;
}

bool OffsetWindowOrgEx(HDC dc, int dx, int dy, TPoint* previous) {
    if (!Live(dc)) return false;
    const TPoint o = dc->FState.WindowOrg;
    return SetWindowOrgEx(dc, Clamp32(Int128(o.x) + dx), Clamp32(Int128(o.y) + dy), previous);
}

bool OffsetViewportOrgEx(HDC dc, int dx, int dy, TPoint* previous) {
    if (!Live(dc)) return false;
    const TPoint o = dc->FState.ViewportOrg;
    return SetViewportOrgEx(dc, Clamp32(Int128(o.x) + dx), Clamp32(Int128(o.y) + dy), previous);
}

bool GetWindowOrgEx(HDC dc, TPoint* origin) {
    if (!Live(dc) || !origin) return false;
    *origin = dc->FState.WindowOrg;
    return true;
}

bool GetWindowExtEx(HDC dc, TSize* extent) {
    if (!Live(dc) || !extent) return false;
    *extent = dc->FState.WindowExt;
    return true;
}

bool GetViewportOrgEx(HDC dc, TPoint* origin) {
    if (!Live(dc) || !origin) return false;
    *origin = dc->FState.ViewportOrg;
    return true;
}

bool GetViewportExtEx(HDC dc, TSize* extent) {
    if (!Live(dc) || !extent) return false;
    *extent = dc->FState.ViewportExt;
    return true;
}

bool LPtoDP(HDC dc, TPoint* points, int count) {
    if (!Live(dc) || (!points && count > 0) || count < 0) return false;
    for (int i = 0; i < count; ++i) points[i] = dc->LogToDev(points[i]);
    return true;
}

bool DPtoLP(HDC dc, TPoint* points, int count) {
    if (!Live(dc) || (!points && count > 0) || count < 0) return false;
    for (int i = 0; i < count; ++i) points[i] = dc->DevToLog(points[i]);
    return true;
}

// --- attributes -------------------------------------------------------------------------------

COLORREF SetTextColor(HDC dc, COLORREF color) {
    if (!Live(dc)) return CLR_INVALID;
    return std::exchange(dc->FState.TextColor, color & 0xFFFFFF);
}
COLORREF GetTextColor(HDC dc) {
    return Live(dc) ? dc->FState.TextColor : CLR_INVALID;
}
COLORREF SetBkColor(HDC dc, COLORREF color) {
    if (!Live(dc)) return CLR_INVALID;
    return std::exchange(dc->FState.BkColor, color & 0xFFFFFF);
}
COLORREF GetBkColor(HDC dc) {
    return Live(dc) ? dc->FState.BkColor : CLR_INVALID;
}
int SetBkMode(HDC dc, int mode) {
    if (!Live(dc) || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
    return std::exchange(dc->FState.BkMode, mode);
}
int GetBkMode(HDC dc) {
    return Live(dc) ? dc->FState.BkMode : 0;
}
int SetROP2(HDC dc, int mode) {
    if (!Live(dc) || mode < R2_BLACK || mode > R2_WHITE) return 0;
    return std::exchange(dc->FState.Rop2, mode);
}
int GetROP2(HDC dc) {
    return Live(dc) ? dc->FState.Rop2 : 0;
}
int SetPolyFillMode(HDC dc, int mode) {
    if (!Live(dc) || (mode != ALTERNATE && mode != WINDING)) return 0;
    return std::exchange(dc->FState.PolyFillMode, mode);
}
int GetPolyFillMode(HDC dc) {
    return Live(dc) ? dc->FState.PolyFillMode : 0;
}
std::uint32_t SetTextAlign(HDC dc, std::uint32_t align) {
    if (!Live(dc)) return 0xFFFFFFFFu;
    return std::exchange(dc->FState.TextAlign, align);
}
std::uint32_t GetTextAlign(HDC dc) {
    return Live(dc) ? dc->FState.TextAlign : 0xFFFFFFFFu;
}

int SaveDC(HDC dc) {
    if (!Live(dc)) return 0;
    dc->FSaved.push_back(dc->FState);
    return int(dc->FSaved.size());
}

bool RestoreDC(HDC dc, int saved) {
    if (!Live(dc) || saved == 0) return false;
    const int levels = int(dc->FSaved.size());
    const int target = saved > 0 ? saved : levels + saved + 1;
    if (target < 1 || target > levels) return false;
    const TGdiObject* bitmapBefore = dc->FState.Bitmap.Get();
    TDcState state = dc->FSaved[std::size_t(target - 1)];
    dc->FSaved.resize(std::size_t(target - 1));
    // The stack only shrinks here, to exactly the level below the one restored.
    VL_ASSERT(int(dc->FSaved.size()) == target - 1 && int(dc->FSaved.size()) < levels);
    if (dc->IsMemory() && state.Bitmap.Get() != bitmapBefore && state.Bitmap.Get())
        dc->SelectBitmap(static_cast<TGdiBitmap*>(state.Bitmap.Get()));
    dc->FState = std::move(state);
    dc->ClipChanged();
    return true;
}

// --- objects ----------------------------------------------------------------------------------

namespace {
// Puts `object` in the slot and answers the previous object, or null when letting it go deleted it.
HGDIOBJ SwapSelected(TObjRef& slot, HGDIOBJ object) {
    HGDIOBJ previous = slot.Get();
    slot = TObjRef(object);
    return IsLiveObject(previous) ? previous : nullptr;
}
} // namespace

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    if (!Live(dc) || !IsLiveObject(object)) return nullptr;
    TDcState& s = dc->FState;
    switch (object->ObjectType()) {
    case OBJ_PEN: return SwapSelected(s.Pen, object);
    case OBJ_BRUSH: return SwapSelected(s.Brush, object);
    case OBJ_FONT: return SwapSelected(s.Font, object);
    case OBJ_BITMAP: {
        if (!dc->IsMemory()) return nullptr;
        HGDIOBJ previous = s.Bitmap.Get();
        dc->SelectBitmap(static_cast<TGdiBitmap*>(object));
        return IsLiveObject(previous) ? previous : nullptr;
    }
    case OBJ_REGION: SelectClipRgn(dc, static_cast<HRGN>(object)); return nullptr;
    default: return nullptr;
    }
}

HGDIOBJ GetCurrentObject(HDC dc, int objectType) {
    if (!Live(dc)) return nullptr;
    switch (objectType) {
    case OBJ_PEN: return dc->FState.Pen.Get();
    case OBJ_BRUSH: return dc->FState.Brush.Get();
    case OBJ_FONT: return dc->FState.Font.Get();
    case OBJ_BITMAP: return dc->FState.Bitmap.Get();
    default: return nullptr;
    }
}

// --- drawing ----------------------------------------------------------------------------------

bool MoveToEx(HDC dc, int x, int y, TPoint* previous) {
    if (!Live(dc)) return false;
    if (previous) *previous = dc->FState.Position;
    dc->FState.Position = {x, y};
    dc->FStyleOffset = 0;
    return true;
}

bool GetCurrentPositionEx(HDC dc, TPoint* position) {
    if (!Live(dc) || !position) return false;
    *position = dc->FState.Position;
    return true;
}

bool LineTo(HDC dc, int x, int y) {
    if (!Live(dc)) return false;
    const TPoint points[2] = {dc->LogToDev(dc->FState.Position), dc->LogToDev({x, y})};
    dc->FState.Position = {x, y};
    const gdi::TDrawAttrs attrs = dc->Attrs();
    dc->Drawn(dc->Backend().Polyline(points, 2, attrs, dc->Clip(), dc->FStyleOffset));
    return true;
}

bool Polyline(HDC dc, const TPoint* points, int count) {
    if (!Live(dc) || !points || count < 2) return false;
    std::vector<TPoint> dev(std::size_t(count), TPoint{});
    for (int i = 0; i < count; ++i) dev[std::size_t(i)] = dc->LogToDev(points[i]);
    int offset = 0;
    dc->Drawn(dc->Backend().Polyline(dev.data(), count, dc->Attrs(), dc->Clip(), offset));
    return true;
}

bool PolyPolyline(HDC dc, const TPoint* points, const std::uint32_t* counts, int polylines) {
    if (!Live(dc) || !points || !counts || polylines <= 0) return false;
    std::size_t start = 0;
    for (int i = 0; i < polylines; ++i) {
        if (counts[i] < 2) return false;
        Polyline(dc, points + start, int(counts[i]));
        start += counts[i];
    }
    return true;
}

bool PolyPolygon(HDC dc, const TPoint* points, const int* counts, int polygons) {
    if (!Live(dc) || !points || !counts || polygons <= 0) return false;
    std::size_t total = 0;
    for (int i = 0; i < polygons; ++i) {
        if (counts[i] < 2) return false;
        total += std::size_t(counts[i]);
    }
    std::vector<TPoint> dev(total);
    for (std::size_t i = 0; i < total; ++i) dev[i] = dc->LogToDev(points[i]);
    dc->Drawn(dc->Backend().Polygons(dev.data(), counts, polygons, dc->Attrs(), dc->Clip()));
    return true;
}

bool Polygon(HDC dc, const TPoint* points, int count) {
    return PolyPolygon(dc, points, &count, 1);
}

namespace {
bool DrawShape(HDC dc, gdi::TShapeKindDev kind, int left, int top, int right, int bottom, int cw, int ch) {
    if (!Live(dc)) return false;
    const TRect r = Normalise(dc->LogToDevRect({left, top, right, bottom}));
    const std::int32_t cwDev = std::int32_t(std::min<std::int64_t>(dc->LengthToDevX(cw), INT32_MAX));
    const std::int32_t chDev = std::int32_t(std::min<std::int64_t>(dc->LengthToDevY(ch), INT32_MAX));
    dc->Drawn(dc->Backend().Shape(kind, r, cwDev, chDev, dc->Attrs(), dc->Clip()));
    return true;
}
} // namespace

bool Rectangle(HDC dc, int left, int top, int right, int bottom) {
    return DrawShape(dc, gdi::TShapeKindDev::Rect, left, top, right, bottom, 0, 0);
}

bool Ellipse(HDC dc, int left, int top, int right, int bottom) {
    return DrawShape(dc, gdi::TShapeKindDev::Ellipse, left, top, right, bottom, 0, 0);
}

bool RoundRect(HDC dc, int left, int top, int right, int bottom, int width, int height) {
    return DrawShape(dc, gdi::TShapeKindDev::RoundRect, left, top, right, bottom, width, height);
}

namespace {
bool FillShapeDev(HDC dc, const gdi::TShapePtr& shapeDev, HBRUSH brush, int rop2) {
    gdi::TDrawAttrs attrs = dc->Attrs();
    gdi::TBrushDev b;
    if (brush) {
        b.Style = brush->FLogBrush.lbStyle;
        b.Color = brush->FLogBrush.lbColor;
        b.Hatch = int(brush->FLogBrush.lbHatch);
    }
    if (!dc->Backend().HasRasterOps()) rop2 = R2_COPYPEN;
    dc->Drawn(dc->Backend().FillRegion(*shapeDev, b, rop2, attrs, dc->Clip()));
    return true;
}

gdi::TShapePtr RegionToDev(HDC dc, const gdi::TShapePtr& shape) {
    return shape->Mapped([dc](std::int32_t x) { return dc->LogToDevX(x); },
                         [dc](std::int32_t y) { return dc->LogToDevY(y); });
}
} // namespace

int FillRect(HDC dc, const TRect* rect, HBRUSH brush) {
    if (!Live(dc) || !rect || !IsLiveObject(brush)) return 0;
    return FillShapeDev(dc, gdi::TRegionShape::MakeRect(dc->LogToDevRect(*rect)), brush, R2_COPYPEN) ? 1 : 0;
}

int FrameRect(HDC dc, const TRect* rect, HBRUSH brush) {
    if (!Live(dc) || !rect || !IsLiveObject(brush)) return 0;
    const TRect r = Normalise(dc->LogToDevRect(*rect));
    const gdi::TShapePtr outer = gdi::TRegionShape::MakeRect(r);
    const gdi::TShapePtr inner =
        gdi::TRegionShape::MakeRect({r.Left + 1, r.Top + 1, r.Right - 1, r.Bottom - 1});
    return FillShapeDev(dc, gdi::TRegionShape::Combine(outer, inner, RGN_DIFF), brush, R2_COPYPEN) ? 1 : 0;
}

bool InvertRect(HDC dc, const TRect* rect) {
    if (!Live(dc) || !rect) return false;
    return FillShapeDev(dc, gdi::TRegionShape::MakeRect(dc->LogToDevRect(*rect)),
                        static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)), R2_NOT);
}

bool FillRgn(HDC dc, HRGN region, HBRUSH brush) {
    if (!Live(dc) || !IsLiveObject(region) || !IsLiveObject(brush)) return false;
    return FillShapeDev(dc, RegionToDev(dc, region->FShape), brush, dc->FState.Rop2);
}

bool PaintRgn(HDC dc, HRGN region) {
    if (!Live(dc) || !IsLiveObject(region)) return false;
    return FillShapeDev(dc, RegionToDev(dc, region->FShape), static_cast<HBRUSH>(dc->FState.Brush.Get()),
                        dc->FState.Rop2);
}

bool InvertRgn(HDC dc, HRGN region) {
    if (!Live(dc) || !IsLiveObject(region)) return false;
    return FillShapeDev(dc, RegionToDev(dc, region->FShape), static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)),
                        R2_NOT);
}

bool FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height) {
    if (!Live(dc) || !IsLiveObject(region) || !IsLiveObject(brush)) return false;
    const gdi::TShapePtr shape = RegionToDev(dc, region->FShape);
    const std::int32_t w = std::int32_t(std::clamp<std::int64_t>(dc->LengthToDevX(width), 1, 1 << 20));
    const std::int32_t h = std::int32_t(std::clamp<std::int64_t>(dc->LengthToDevY(height), 1, 1 << 20));
    // A pixel (x, y) of the region stays unframed when its four diagonal neighbours at the brush's
    // size, (x - w, y - h), (x + w, y - h), (x - w, y + h) and (x + w, y + h), all lie in the
    // region; the frame is the rest, so the inside of a concave corner is framed too. Orthogonal
    // neighbours need no test of their own for rectangles: one of them outside puts the two
    // diagonal ones on its side outside as well.
    gdi::TShapePtr interior = shape;
    for (const auto& [dx, dy] : {std::pair{w, h}, std::pair{-w, h}, std::pair{w, -h}, std::pair{-w, -h}})
        interior = gdi::TRegionShape::Combine(interior, shape->Offset(dx, dy), RGN_AND);
    return FillShapeDev(dc, gdi::TRegionShape::Combine(shape, interior, RGN_DIFF), brush, dc->FState.Rop2);
}

COLORREF SetPixel(HDC dc, int x, int y, COLORREF color) {
    if (!Live(dc)) return CLR_INVALID;
    const TPoint p = dc->LogToDev({x, y});
    const TRect drawn = dc->Backend().SetPixel(p.x, p.y, color & 0xFFFFFF, dc->Clip());
    if (IsEmptyRect(drawn)) return CLR_INVALID;
    dc->Drawn(drawn);
    return color & 0xFFFFFF;
}

COLORREF GetPixel(HDC dc, int x, int y) {
    if (!Live(dc)) return CLR_INVALID;
    const TPoint p = dc->LogToDev({x, y});
    if (!dc->Clip().Contains(p.x, p.y)) return CLR_INVALID;
    return dc->Backend().GetPixel(p.x, p.y);
}

// --- clipping ---------------------------------------------------------------------------------

namespace {
int ClipType(HDC dc) {
    return dc->EffectiveClipShape()->RegionType();
}

void SetClip(HDC dc, gdi::TShapePtr shape) {
    dc->FState.Clip = std::move(shape);
    dc->ClipChanged();
}

gdi::TShapePtr CurrentClipOrBounds(HDC dc) {
    return dc->FState.Clip ? dc->FState.Clip : gdi::TRegionShape::MakeRect(dc->Backend().BoundsDev());
}
} // namespace

int SelectClipRgn(HDC dc, HRGN region) {
    if (!Live(dc)) return ERROR;
    if (!region) {
        SetClip(dc, nullptr);
        return SIMPLEREGION;
    }
    if (!IsLiveObject(region)) return ERROR;
    SetClip(dc, region->FShape);
    return ClipType(dc);
}

int ExtSelectClipRgn(HDC dc, HRGN region, int mode) {
    if (!Live(dc)) return ERROR;
    if (mode == RGN_COPY) return SelectClipRgn(dc, region);
    if (!IsLiveObject(region) || mode < RGN_AND || mode > RGN_DIFF) return ERROR;
    SetClip(dc, gdi::TRegionShape::Combine(CurrentClipOrBounds(dc), region->FShape, mode));
    return ClipType(dc);
}

int GetClipBox(HDC dc, TRect* box) {
    if (!Live(dc) || !box) return ERROR;
    const gdi::TShapePtr shape = dc->EffectiveClipShape();
    if (shape->IsEmpty()) {
        *box = {};
        return NULLREGION;
    }
    const TRect b = shape->Bounds();
    const TPoint a = dc->DevToLog({b.Left, b.Top}), c = dc->DevToLog({b.Right, b.Bottom});
    *box = Normalise({a.x, a.y, c.x, c.y});
    return shape->RegionType();
}

int GetClipRgn(HDC dc, HRGN region) {
    if (!Live(dc) || !IsLiveObject(region)) return -1;
    if (!dc->FState.Clip) return 0;
    region->FShape = dc->FState.Clip;
    return 1;
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
    if (!Live(dc)) return ERROR;
    const gdi::TShapePtr rect = gdi::TRegionShape::MakeRect(dc->LogToDevRect({left, top, right, bottom}));
    SetClip(dc, dc->FState.Clip ? gdi::TRegionShape::Combine(dc->FState.Clip, rect, RGN_AND) : rect);
    return ClipType(dc);
}

int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom) {
    if (!Live(dc)) return ERROR;
    const gdi::TShapePtr rect = gdi::TRegionShape::MakeRect(dc->LogToDevRect({left, top, right, bottom}));
    SetClip(dc, gdi::TRegionShape::Combine(CurrentClipOrBounds(dc), rect, RGN_DIFF));
    return ClipType(dc);
}

int OffsetClipRgn(HDC dc, int dx, int dy) {
    if (!Live(dc)) return ERROR;
    if (dc->FState.Clip) {
        const std::int64_t ddx = dc->LogToDevX(dx) - std::int64_t(dc->LogToDevX(0));
        const std::int64_t ddy = dc->LogToDevY(dy) - std::int64_t(dc->LogToDevY(0));
        SetClip(dc, dc->FState.Clip->Offset(Clamp32(ddx), Clamp32(ddy)));
    }
    return ClipType(dc);
}

bool PtVisible(HDC dc, int x, int y) {
    if (!Live(dc)) return false;
    const TPoint p = dc->LogToDev({x, y});
    return dc->Clip().Contains(p.x, p.y);
}

bool RectVisible(HDC dc, const TRect* rect) {
    if (!Live(dc) || !rect) return false;
    return dc->EffectiveClipShape()->IntersectsRect(Normalise(dc->LogToDevRect(*rect)));
}

} // namespace vl
