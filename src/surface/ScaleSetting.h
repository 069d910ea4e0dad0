// The scale setting: the mapping between the three coordinate spaces of a drawing.
//
//  - logical: the 32-bit integers in which all objects live; one unit is `MinLen` metres, or one
//    device pixel when `MinUnit` is `Pixel`;
//  - device: pixels of a canvas;
//  - world: doubles in the unit `Measure`, what a user reads on a ruler.
//
// Each draw box, each print job and each metafile export has one; the global `ActScaleSet` names the
// one in force. The mapping reaches a device context only through `SetMap`, as an anisotropic map
// mode whose window and viewport extents are chosen by `CorrectContext` so that the larger of the two
// is `MaxCoord` (except in the pixel unit at scales above 1).
//
// The scale setting borrows its canvas (it never frees it). It holds no font: objects and creators
// adapt to a change of scale through `scChanged` and report font-driven size changes through
// `scFontChanged` and `scBoundsChanged`.
//
// Invariants: `Frcp_Scale` is round(1 / `FScale`) after every `SetScale`; the conversions need
// `FPixPerM` set (the draw box's `Loaded` does it through `InitMapping`), else `PixToLog` and the
// paper conversions raise the platform's division by zero.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/core/Classes.h"
#include "platform/core/Types.h"
#include "platform/gdi/Gdi.h"

#include <concepts>
#include <cstdint>
#include <functional>

namespace vl {

class TCanvas;

// The length units, for the size of one logical unit (`MinUnit`) and for world values (`Measure`).
enum class TLenUnits : std::uint8_t { Meter, dm, cm, mm, mm_10, Pixel };

// The corner of the window where logical (0, 0) sits, and the direction of the axes from it.
// `Center` maps like `LeftTop`; it only names a reference point for scrolling.
enum class TOrigin : std::uint8_t { LeftTop, LeftBottom, RightTop, RightBottom, Center };

// The flags of a scale setting's state, at their bit positions.
enum TScaleStateFlag : std::uint8_t {
    scChanged,       // the scale changed; objects adapt at the next paint that has objects
    scFontChanged,   // a new font changed an object's size
    scMMScaled,      // the canvas is in the paper mapping of `ScaleToMM`
    scRefScale,      // `SetMap` uses the reference extents (text measuring independent of the zoom)
    scPrinting,      // a print job runs on this setting
    scNewLimits,     // an object's position changed the limits
    scBoundsChanged, // an object's bounds changed with its font
    scCenterH,       // `CalcVPHome` centres horizontally
    scCenterV,       // `CalcVPHome` centres vertically
    scMovingObjects, // objects are being moved
    scDesigning,     // the owner is in a form designer
};

// The state flags of a scale setting, 16 bits wide; bits beyond the eleven flags are dropped.
using TScaleState = TFlagSet<TScaleStateFlag, std::uint16_t, 0x7FF>;

constexpr TScaleState operator|(TScaleStateFlag a, TScaleStateFlag b) {
    return TScaleState(a) | TScaleState(b);
}

// The block of fields that makes one scale setting the equal of another; it is copied as one piece.
struct TScaleRec {
    TPoint FVPHome;
    TPoint FVPOrg;
    std::int32_t FVPExt = 0;
    std::int32_t FWndExt = 0;
    TLenUnits FMinUnit = TLenUnits::mm_10;
    double FScale = 0.0;
    double FmaxScale = 0.0;
    TLenUnits FMeasure = TLenUnits::Meter;
    std::int32_t FPixPerM = 0;
    std::int32_t FBlankZone = 0;
    TOrigin FOrigin = TOrigin::LeftTop;
    friend bool operator==(const TScaleRec&, const TScaleRec&) = default;
};

// The extents fixed at load time: the reference scale that `scRefScale` maps with.
struct TRefScale {
    std::int32_t VPExt = 0;
    std::int32_t WndExt = 0;
    friend constexpr bool operator==(const TRefScale&, const TRefScale&) = default;
};

// What fitting the whole drawing needs of a data module: its limits, the rebuilding of its limits,
// and the adaptation of every object to the present scale (`AllObjects` with `AdjustToScale`). The
// data module implements it; the scale setting knows no more of the store than this.
class TScaleFitSource {
public:
    virtual ~TScaleFitSource() = default;
    virtual TLimRec GetLimits() = 0;
    virtual void InitLimits() = 0;
    virtual void AdjustAllToScale() = 0;
};

// A window whose client area the drawing is fitted into (the window control implements it).
class TClientAreaSource {
public:
    virtual ~TClientAreaSource() = default;
    virtual TRect GetClientRect() const = 0;
};

class TScaleSetting : public TPersistent {
public:
    // The canvas is borrowed and may be null (a print job assigns one later).
    explicit TScaleSetting(TCanvas* ACanvas);
    ~TScaleSetting() override;

    // From another scale setting: the canvas only if this one has none, the block of `TScaleRec` and
    // `State`, plus `scChanged`. Other sources go to the base.
    void Assign(TPersistent* Source) override;

    // --- Units ------------------------------------------------------------------------------------
    TLenUnits MinUnit() const { return FRec.FMinUnit; }
    void SetMinUnit(TLenUnits Value);
    TLenUnits Measure() const { return FRec.FMeasure; }
    void SetMeasure(TLenUnits Value) { FRec.FMeasure = Value; }
    // Metres per logical unit (1.0 for `Pixel`).
    double MinLen() const { return GetMinLen(); }
    double GetMinLen() const;
    // World units per metre (1 for `Pixel`).
    double MeasureFact() const { return GetMeasureFact(); }
    double GetMeasureFact() const;

    // --- Scale ------------------------------------------------------------------------------------
    // `FRec.FScale`, or 1.0 while it is 0 or less.
    double GetScale() const;
    double Scale() const { return GetScale(); }
    double RawScale() const { return FRec.FScale; }
    void SetScale(double Value);
    std::int32_t Rcp_Scale() const { return Frcp_Scale; }
    void SetRcp_Scale(std::int32_t Value);
    double MaxScale() const { return FRec.FmaxScale; }
    void SetMaxScale(double Value) { FRec.FmaxScale = Value; }
    std::int32_t Getrcp_Limit() const;
    std::int32_t Rcp_Limit() const { return Getrcp_Limit(); }
    void Setrcp_Limit(std::int32_t Value);
    double GetMaxWorld() const;
    double MaxWorld() const { return GetMaxWorld(); }
    void SetMaxWorld(double Value);

    // --- Device -----------------------------------------------------------------------------------
    std::int32_t PixPerM() const { return FRec.FPixPerM; }
    // Stores a changed value, or for a value below 1 the pixels per metre of the canvas's device;
    // then chooses the extents anew.
    void SetPixPerM(std::int32_t Value);
    std::int32_t VPExt() const { return FRec.FVPExt; }
    std::int32_t WndExt() const { return FRec.FWndExt; }
    const TRefScale& RefScale() const { return FRefScale; }
    void SetRefScale(const TRefScale& Value) { FRefScale = Value; }
    std::int32_t BlankZone() const { return FRec.FBlankZone; }
    void SetBlankZone(std::int32_t Value) { FRec.FBlankZone = Value; }
    TOrigin Origin() const { return FRec.FOrigin; }
    void SetOrigin(TOrigin Value) { FRec.FOrigin = Value; }
    TCanvas* Canvas() const { return FCanvas; }
    void SetCanvas(TCanvas* Value) { FCanvas = Value; }

    // The mapping of the draw box's load: `FRec.FScale` := 1 / `Frcp_Scale`, `FRec.FPixPerM` :=
    // round(`InchPerMeter` × `PixelsPerInch`), `CorrectContext`, and the reference extents.
    void InitMapping(double PixelsPerInch);
    // Chooses `FRec.FVPExt` and `FRec.FWndExt` for the present scale, unit and resolution; raises a scale too
    // small to be represented to the smallest one that is.
    void CorrectContext();

    // --- Mapping onto a device context ------------------------------------------------------------
    // The one place where the mapping reaches a device context.
    void SetMap(HDC DC);
    // `SetMap` on the handle of the canvas.
    void SetupScale();
    // Puts the canvas into the paper mapping: one logical unit is a tenth of a millimetre whatever the
    // scale. The next `SetMap` ends it.
    void ScaleToMM();

    // --- Viewport ---------------------------------------------------------------------------------
    // These read and write the points without any further effect: the caller invalidates.
    TPoint VPHome() const { return FRec.FVPHome; }
    void SetVPHome(TPoint Value) { FRec.FVPHome = Value; }
    std::int32_t VPHomeX() const { return FRec.FVPHome.x; }
    std::int32_t VPHomeY() const { return FRec.FVPHome.y; }
    std::int32_t VPOrgX() const { return FRec.FVPOrg.x; }
    std::int32_t VPOrgY() const { return FRec.FVPOrg.y; }
    std::int32_t GetVPHomeX() const { return FRec.FVPHome.x; }
    std::int32_t GetVPHomeY() const { return FRec.FVPHome.y; }
    void SetVPHomeX(std::int32_t Value) { FRec.FVPHome.x = Value; }
    void SetVPHomeY(std::int32_t Value) { FRec.FVPHome.y = Value; }
    TPoint VPOrg() const { return FRec.FVPOrg; }
    void SetVPOrg(TPoint Value) { FRec.FVPOrg = Value; }
    std::int32_t GetVPOrgX() const { return FRec.FVPOrg.x; }
    std::int32_t GetVPOrgY() const { return FRec.FVPOrg.y; }
    void SetVPOrgX(std::int32_t Value) { FRec.FVPOrg.x = Value; }
    void SetVPOrgY(std::int32_t Value) { FRec.FVPOrg.y = Value; }

    // Places the limits in a device rectangle: sets `FRec.FVPHome` (centred with `scCenterH`/`scCenterV`).
    void CalcVPHome(const TRect& Rect, const TLimRec& LimRec);
    // Sets the scale at which the limits fill the rectangle; nothing for limits without width or height.
    void ScaleToFit(const TRect& Rect, const TLimRec& LimRec);
    // Fits the whole drawing into a target rectangle; centres only where the caller set the centring
    // flags, and re-fits as long as objects report changed bounds.
    void SetFullScreen(TScaleFitSource& DataMod, TRect Target);
    // Fits the whole drawing into a window's client area, centred, with at most four re-fits.
    void SetFullScreen(TScaleFitSource& DataMod, const TClientAreaSource& Target);
    // The same for any window control that answers its client rectangle.
    template <class TControl>
    requires requires(const TControl& c) {
        { c.ClientRect() } -> std::convertible_to<TRect>;
    }
    void SetFullScreen(TScaleFitSource& DataMod, const TControl& Target) {
        FitToRect(DataMod, Target.ClientRect(), true);
    }

    // --- Direction and origin ---------------------------------------------------------------------
    std::int32_t GetDirHorz() const;
    std::int32_t GetDirVert() const;
    std::int32_t Dir_Horizontal() const { return GetDirHorz(); }
    std::int32_t Dir_Vertical() const { return GetDirVert(); }
    bool GetRightOrigin() const;
    bool GetBottomOrigin() const;
    bool RightOrigin() const { return GetRightOrigin(); }
    bool BottomOrigin() const { return GetBottomOrigin(); }

    // The corners of limits as seen on the screen.
    TPoint TopLeft(const TLimRec& LimRec) const;
    TPoint TopRight(const TLimRec& LimRec) const;
    TPoint BottomLeft(const TLimRec& LimRec) const;
    TPoint BottomRight(const TLimRec& LimRec) const;

    // The logical point at the device's corner (0, 0), and the viewport origin that puts `P` there.
    TPoint GetTopLeft_Log() const;
    void SetTopLeft_Log(TPoint P);
    TPoint TopLeft_Log() const { return GetTopLeft_Log(); }

    // The client area in logical coordinates as of the last paint (not normalised).
    const TRect& ClientRect_Log() const { return FClientRect_Log; }
    void SetClientRect_Log(const TRect& Value) { FClientRect_Log = Value; }
    TPoint ClientMin_Log() const;
    TPoint ClientMax_Log() const;

    // --- Conversions ------------------------------------------------------------------------------
    std::int32_t LogToPix(std::int32_t x) const;
    std::int32_t PixToLog(std::int32_t x) const;
    double LogToWorld(std::int32_t x) const;
    std::int32_t WorldToLog(double w) const;
    TPoint WldToLogPnt(double x, double y) const;
    // The logical length that appears `m` millimetres long at the present scale.
    std::int32_t MMToLog(double m) const;
    // Paper lengths, independent of the scale.
    std::int32_t MMToPix(double m) const;
    double PixToMM(std::int32_t x) const;
    // `FrameSpace` pixels in logical units: the frame around a dragged shape.
    std::int32_t GetTempFrame() const;
    std::int32_t TempFrame() const { return GetTempFrame(); }
    // The number of decimals that a world value needs.
    std::int32_t WorldDcls() const;

    // --- The block and the notification ------------------------------------------------------------
    TScaleRec ScaleRec() const { return FRec; }
    void SetScaleRec(const TScaleRec& Rec) { FRec = Rec; }

    const TNotifyEvent& OnScaleChange() const { return FOnScaleChange; }
    void SetOnScaleChange(TNotifyEvent Value) { FOnScaleChange = std::move(Value); }

    TScaleState State;

private:
    TCanvas* FCanvas = nullptr; // borrowed
    // The block that makes one scale setting the equal of another.
    TScaleRec FRec;
    TRefScale FRefScale;
    std::int32_t Frcp_Scale = 1;
    TRect FClientRect_Log;
    TNotifyEvent FOnScaleChange;

    HDC CanvasHandle() const;
    void FitToRect(TScaleFitSource& DataMod, TRect Target, bool Windowed);
};

// The scale setting in force: through it objects reach the canvas and the mapping. Every entry into
// the system sets it first; nullptr until a draw box is loaded.
inline TScaleSetting* ActScaleSet = nullptr;

} // namespace vl
