// The device context behind `HDC`: its state, the stack of saved states, the mapping, and the device
// backend it owns.
//
// Invariants: the state always holds a pen, a brush and a font (stock ones at first), and a memory
// context a bitmap; the clip region, when present, is in device units and immutable (shared with saved
// states); `FClip` is rebuilt from it whenever it or the device changes.
#pragma once

#include "platform/gdi/DeviceBackend.h"
#include "platform/gdi/Gdi.h"
#include "platform/gdi/GdiObjects.h"

#include <memory>
#include <vector>

namespace vl {

struct TDcState {
    int MapMode = MM_TEXT;
    TPoint WindowOrg{0, 0};
    TSize WindowExt{1, 1};
    TPoint ViewportOrg{0, 0};
    TSize ViewportExt{1, 1};
    TPoint Position{0, 0};
    TObjRef Pen, Brush, Font, Bitmap;
    COLORREF TextColor = 0;
    COLORREF BkColor = 0xFFFFFF;
    int BkMode = OPAQUE;
    int Rop2 = R2_COPYPEN;
    int PolyFillMode = ALTERNATE;
    std::uint32_t TextAlign = TA_TOP | TA_LEFT;
    gdi::TShapePtr Clip; // device units; null: no clip region
};

class TDeviceContext {
public:
    // Whether `dc` is a context that exists now; every public operation checks its handle so.
    static bool IsLive(HDC dc);

    TDeviceContext(std::unique_ptr<gdi::TDeviceBackend> backend, bool memory);
    ~TDeviceContext();

    gdi::TDeviceBackend& Backend() { return *FBackend; }
    bool IsMemory() const { return FMemory; }

    // Mapping, one axis at a time (half away from zero).
    std::int32_t LogToDevX(std::int64_t x) const;
    std::int32_t LogToDevY(std::int64_t y) const;
    std::int32_t DevToLogX(std::int64_t x) const;
    std::int32_t DevToLogY(std::int64_t y) const;
    TPoint LogToDev(TPoint p) const { return {LogToDevX(p.x), LogToDevY(p.y)}; }
    TPoint DevToLog(TPoint p) const { return {DevToLogX(p.x), DevToLogY(p.y)}; }
    // A logical length on an axis to device pixels and back (extents only, absolute).
    std::int64_t LengthToDevX(std::int64_t w) const;
    std::int64_t LengthToDevY(std::int64_t h) const;
    std::int64_t LengthToLogX(std::int64_t w) const;
    std::int64_t LengthToLogY(std::int64_t h) const;
    // A logical rectangle mapped corner by corner (may come out reversed).
    TRect LogToDevRect(const TRect& r) const;

    // The clip in device pixels (device bounds intersected with the clip region).
    const gdi::TDeviceClip& Clip();
    void ClipChanged() { FClipDirty = true; }
    // The effective clip shape: the clip region intersected with the device bounds.
    gdi::TShapePtr EffectiveClipShape() const;

    // Pen, brush, font and attributes resolved to device units.
    gdi::TDrawAttrs Attrs() const;
    LOGFONTW FontDev() const;

    void Drawn(const TRect& drawnDev);
    void SelectBitmap(TGdiBitmap* bitmap);
    void AdjustIsotropic();

    TDcState FState;
    std::vector<TDcState> FSaved;
    int FStyleOffset = 0;
    TRect FDrawnBounds;
    TDrawnEvent FOnDrawn;
    HBITMAP FDefaultBitmap = nullptr; // owned: the 1 x 1 bitmap a memory context starts with

private:
    std::unique_ptr<gdi::TDeviceBackend> FBackend;
    bool FMemory;
    gdi::TDeviceClip FClip;
    bool FClipDirty = true;
};

} // namespace vl
