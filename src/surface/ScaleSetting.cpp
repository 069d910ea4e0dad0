// The scale setting's arithmetic: units, conversions, scale and extents, viewport placement and fitting.
//
// Every product and quotient is formed in long double, in the order written, and rounded to the
// nearest integer with ties to the even neighbour (`vl::Round`). Integer sums and differences of
// coordinates wrap in 32 bits, as the platform's integer arithmetic does.

#include "surface/ScaleSetting.h"

#include "geometry/Vlprocs.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Numerics.h"

namespace vl {

namespace {

using Ext = long double;

// A 64-bit intermediate put into a 32-bit integer, wrapping as the platform's assignment does.
constexpr std::int32_t Wrap32(std::int64_t v) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
}

std::int32_t Round32(Ext x) {
    return Wrap32(Round(x));
}

// The extents of a limit record along each axis, in 32-bit arithmetic.
std::int32_t LimWidth(const TLimRec& L) {
    return Wrap32(std::int64_t(L.Xmax) - L.Xmin);
}
std::int32_t LimHeight(const TLimRec& L) {
    return Wrap32(std::int64_t(L.Ymax) - L.Ymin);
}

} // namespace

TScaleSetting::TScaleSetting(TCanvas* ACanvas) : FCanvas(ACanvas) {
    FRec.FMinUnit = TLenUnits::mm_10;
    Frcp_Scale = 1;
}

TScaleSetting::~TScaleSetting() {
    // A setting that goes while it is in force must not be left behind as a dangling global.
    if (ActScaleSet == this) ActScaleSet = nullptr;
}

void TScaleSetting::Assign(TPersistent* Source) {
    if (auto* source = dynamic_cast<TScaleSetting*>(Source)) {
        if (FCanvas == nullptr) FCanvas = source->FCanvas;
        SetScaleRec(source->ScaleRec());
        State = source->State;
        State.Include(scChanged);
        return;
    }
    TPersistent::Assign(Source);
}

// --- Units ----------------------------------------------------------------------------------------

double TScaleSetting::GetMinLen() const {
    switch (FRec.FMinUnit) {
    case TLenUnits::Meter: return 1.0;
    case TLenUnits::dm: return 0.1;
    case TLenUnits::cm: return 0.01;
    case TLenUnits::mm: return 0.001;
    case TLenUnits::mm_10: return 0.0001;
    case TLenUnits::Pixel: return 1.0;
    }
    return 1.0;
}

double TScaleSetting::GetMeasureFact() const {
    switch (FRec.FMeasure) {
    case TLenUnits::Meter: return 1.0;
    case TLenUnits::dm: return 10.0;
    case TLenUnits::cm: return 100.0;
    case TLenUnits::mm: return 1000.0;
    case TLenUnits::mm_10: return 10000.0;
    case TLenUnits::Pixel: return 1.0;
    }
    return 1.0;
}

void TScaleSetting::SetMinUnit(TLenUnits Value) {
    if (Value == FRec.FMinUnit) return;
    FRec.FMinUnit = Value;
    // Outside the designer a new unit is taken as it is; the load computes the rest.
    if (!State.Contains(scDesigning)) return;
    if (Value != TLenUnits::Pixel) {
        // Keep the scale where `MaxCoord` logical units still span a useful paper length.
        const Ext L = GetMinLen();
        FRec.FmaxScale = static_cast<double>(1 / L / 10000);
        if (FRec.FScale > FRec.FmaxScale) SetRcp_Scale(Round32(L * 10000));
    } else {
        FRec.FMeasure = TLenUnits::Pixel;
    }
}

// --- Scale ----------------------------------------------------------------------------------------

double TScaleSetting::GetScale() const {
    return FRec.FScale > 0 ? FRec.FScale : 1.0;
}

void TScaleSetting::SetScale(double Value) {
    if (Value == FRec.FScale) return;
    if (Value <= 0) {
        FRec.FScale = 1.0;
    } else if (FRec.FmaxScale > 0 && FRec.FmaxScale < Value) {
        // The clamped value runs the whole setter, notification included, and then the rest below
        // runs once more: a clamped change notifies twice.
        SetScale(FRec.FmaxScale);
    } else {
        FRec.FScale = Value;
    }
    Frcp_Scale = Round32(FloatDiv(1, FRec.FScale));
    CorrectContext();
    if (FOnScaleChange) FOnScaleChange(this);
    State.Include(scChanged);
}

void TScaleSetting::SetRcp_Scale(std::int32_t Value) {
    // Serves the streaming of the property: no extents and no notification, the load finishes the
    // work. The scale takes the value as given, so a negative one gives a negative scale (read as
    // 1.0) and zero divides by zero.
    Frcp_Scale = Value > 0 ? Value : 1;
    FRec.FScale = static_cast<double>(FloatDiv(1, Value));
}

std::int32_t TScaleSetting::Getrcp_Limit() const {
    if (FRec.FmaxScale == 0) return 0;
    return Round32(FloatDiv(1, FRec.FmaxScale));
}

void TScaleSetting::Setrcp_Limit(std::int32_t Value) {
    FRec.FmaxScale = Value > 0 ? static_cast<double>(Ext(1) / Value) : 0.0;
}

double TScaleSetting::GetMaxWorld() const {
    if (FRec.FMinUnit == TLenUnits::Pixel) return MaxCoord;
    return static_cast<double>(Ext(GetMinLen()) * MaxCoord * GetMeasureFact());
}

void TScaleSetting::SetMaxWorld(double Value) {
    if (FRec.FMinUnit == TLenUnits::Pixel) return;
    // Coarsen the unit until `MaxCoord` logical units cover the wanted world size.
    const Ext v = Ext(Value) / MaxCoord / GetMeasureFact();
    while (GetMinLen() < v && FRec.FMinUnit != TLenUnits::Meter)
        SetMinUnit(static_cast<TLenUnits>(static_cast<std::uint8_t>(FRec.FMinUnit) - 1));
}

void TScaleSetting::InitMapping(double PixelsPerInch) {
    FRec.FScale = static_cast<double>(FloatDiv(1, Frcp_Scale));
    FRec.FPixPerM = Round32(Ext(InchPerMeter) * PixelsPerInch);
    CorrectContext();
    FRefScale.VPExt = FRec.FVPExt;
    FRefScale.WndExt = FRec.FWndExt;
}

void TScaleSetting::CorrectContext() {
    const Ext S = GetScale();
    const Ext C = MaxCoord;
    if (FRec.FMinUnit == TLenUnits::Pixel) {
        Ext E = S * C;
        bool raised = false;
        while (E < 1) {
            E = E * 10;
            raised = true;
        }
        // A scale below 1 / MaxCoord cannot be represented: take the smallest that can. Only a raised
        // E counts; without it E / MaxCoord is S itself, up to the last bit of the quotient.
        const Ext T = E / C;
        if (raised && T > S) {
            SetScale(static_cast<double>(T));
            return;
        }
        FRec.FVPExt = Round32(E);
        FRec.FWndExt = Round32(E / S);
        return;
    }

    // K: pixels per logical unit at scale 1. The larger extent becomes MaxCoord, which keeps the
    // integer ratio as fine as 15 bits allow.
    const Ext K = Ext(GetMinLen()) * FRec.FPixPerM;
    Ext E = K < 1 / S ? S * C : C / K;
    if (Round(K * E) == 0) {
        do {
            E = E * 10;
        } while (Round(K * E) <= 0);
        const Ext T = E / C;
        if (T > S) {
            SetScale(static_cast<double>(T));
            return;
        }
    }
    FRec.FVPExt = Round32(K * E);
    FRec.FWndExt = Round32(E / S);
}

// --- Conversions ----------------------------------------------------------------------------------

std::int32_t TScaleSetting::LogToPix(std::int32_t x) const {
    if (x == 0) return 0;
    const Ext S = GetScale();
    if (FRec.FMinUnit == TLenUnits::Pixel) return Round32(S * x);
    return Round32(S * (Ext(GetMinLen()) * x * FRec.FPixPerM));
}

std::int32_t TScaleSetting::PixToLog(std::int32_t x) const {
    if (x == 0) return 0;
    const Ext S = GetScale();
    if (FRec.FMinUnit == TLenUnits::Pixel) return Round32(FloatDiv(x, S));
    return Round32(FloatDiv(x, Ext(GetMinLen()) * FRec.FPixPerM * S));
}

double TScaleSetting::LogToWorld(std::int32_t x) const {
    if (FRec.FMinUnit == TLenUnits::Pixel) return x;
    return static_cast<double>(Ext(GetMeasureFact()) * (Ext(GetMinLen()) * x));
}

std::int32_t TScaleSetting::WorldToLog(double w) const {
    if (FRec.FMinUnit == TLenUnits::Pixel) return Round32(w);
    return Round32(Ext(w) / GetMinLen() / GetMeasureFact());
}

TPoint TScaleSetting::WldToLogPnt(double x, double y) const {
    return {WorldToLog(x), WorldToLog(y)};
}

std::int32_t TScaleSetting::MMToLog(double m) const {
    if (m == 0) return 0;
    const Ext S = GetScale();
    if (FRec.FMinUnit == TLenUnits::Pixel) return Round32(Ext(m) / S / 1000 * FRec.FPixPerM);
    return Round32(Ext(m) / S / 1000 / GetMinLen());
}

std::int32_t TScaleSetting::MMToPix(double m) const {
    if (m == 0) return 0;
    return Round32(Ext(FRec.FPixPerM) / 1000 * m);
}

double TScaleSetting::PixToMM(std::int32_t x) const {
    if (x == 0) return 0.0;
    return static_cast<double>(FloatDiv(1000, FRec.FPixPerM) * x);
}

std::int32_t TScaleSetting::GetTempFrame() const {
    return PixToLog(FrameSpace);
}

std::int32_t TScaleSetting::WorldDcls() const {
    double d = LogToWorld(1);
    std::int32_t count = 0;
    // A unit of 1.0 world units or more needs no decimals; the loop ends since `d` is positive.
    while (d < 1.0) {
        d = d * 10;
        ++count;
    }
    return count;
}

// --- Direction and origin -------------------------------------------------------------------------

std::int32_t TScaleSetting::GetDirHorz() const {
    return FRec.FOrigin == TOrigin::RightTop || FRec.FOrigin == TOrigin::RightBottom ? -1 : 1;
}

std::int32_t TScaleSetting::GetDirVert() const {
    return FRec.FOrigin == TOrigin::LeftBottom || FRec.FOrigin == TOrigin::RightBottom ? -1 : 1;
}

bool TScaleSetting::GetRightOrigin() const {
    return GetDirHorz() < 0;
}

bool TScaleSetting::GetBottomOrigin() const {
    return GetDirVert() < 0;
}

TPoint TScaleSetting::TopLeft(const TLimRec& L) const {
    return {GetRightOrigin() ? L.Xmax : L.Xmin, GetBottomOrigin() ? L.Ymax : L.Ymin};
}

TPoint TScaleSetting::TopRight(const TLimRec& L) const {
    return {GetRightOrigin() ? L.Xmin : L.Xmax, GetBottomOrigin() ? L.Ymax : L.Ymin};
}

TPoint TScaleSetting::BottomLeft(const TLimRec& L) const {
    return {GetRightOrigin() ? L.Xmax : L.Xmin, GetBottomOrigin() ? L.Ymin : L.Ymax};
}

TPoint TScaleSetting::BottomRight(const TLimRec& L) const {
    return {GetRightOrigin() ? L.Xmin : L.Xmax, GetBottomOrigin() ? L.Ymin : L.Ymax};
}

TPoint TScaleSetting::GetTopLeft_Log() const {
    return {Wrap32(-std::int64_t(PixToLog(FRec.FVPOrg.x)) * GetDirHorz()),
            Wrap32(-std::int64_t(PixToLog(FRec.FVPOrg.y)) * GetDirVert())};
}

void TScaleSetting::SetTopLeft_Log(TPoint P) {
    FRec.FVPOrg.x = Wrap32(-std::int64_t(LogToPix(P.x)) * GetDirHorz());
    FRec.FVPOrg.y = Wrap32(-std::int64_t(LogToPix(P.y)) * GetDirVert());
}

TPoint TScaleSetting::ClientMin_Log() const {
    const TRect& r = FClientRect_Log;
    return {std::min(r.Left, r.Right), std::min(r.Top, r.Bottom)};
}

TPoint TScaleSetting::ClientMax_Log() const {
    const TRect& r = FClientRect_Log;
    return {std::max(r.Left, r.Right), std::max(r.Top, r.Bottom)};
}

// --- Placement and fitting ------------------------------------------------------------------------

void TScaleSetting::CalcVPHome(const TRect& Rect, const TLimRec& LimRec) {
    FRec.FVPHome.x =
        Wrap32(std::int64_t(Rect.Left) + (GetRightOrigin() ? std::int64_t(LogToPix(LimRec.Xmax))
                                                           : -std::int64_t(LogToPix(LimRec.Xmin))));
    FRec.FVPHome.y =
        Wrap32(std::int64_t(Rect.Top) + (GetBottomOrigin() ? std::int64_t(LogToPix(LimRec.Ymax))
                                                           : -std::int64_t(LogToPix(LimRec.Ymin))));
    // Centring halves the free room toward zero.
    if (State.Contains(scCenterH)) {
        const std::int32_t free =
            Wrap32(std::int64_t(Wrap32(std::int64_t(Rect.Right) - Rect.Left)) - LogToPix(LimWidth(LimRec)));
        FRec.FVPHome.x = Wrap32(std::int64_t(FRec.FVPHome.x) + free / 2);
    }
    if (State.Contains(scCenterV)) {
        const std::int32_t free =
            Wrap32(std::int64_t(Wrap32(std::int64_t(Rect.Bottom) - Rect.Top)) - LogToPix(LimHeight(LimRec)));
        FRec.FVPHome.y = Wrap32(std::int64_t(FRec.FVPHome.y) + free / 2);
    }
}

void TScaleSetting::ScaleToFit(const TRect& Rect, const TLimRec& LimRec) {
    const std::int32_t limW = LimWidth(LimRec);
    const std::int32_t limH = LimHeight(LimRec);
    if (limW == 0 || limH == 0) return;
    const std::int32_t rectW = Wrap32(std::int64_t(Rect.Right) - Rect.Left);
    const std::int32_t rectH = Wrap32(std::int64_t(Rect.Bottom) - Rect.Top);
    Ext sx;
    Ext sy;
    if (FRec.FMinUnit == TLenUnits::Pixel) {
        sx = FloatDiv(rectW, limW);
        sy = FloatDiv(rectH, limH);
    } else {
        const Ext L = GetMinLen();
        sx = FloatDiv(rectW, L * limW * FRec.FPixPerM);
        sy = FloatDiv(rectH, L * limH * FRec.FPixPerM);
    }
    // The smaller scale makes both axes fit; the vertical one wins a tie.
    SetScale(static_cast<double>(sx < sy ? sx : sy));
}

void TScaleSetting::SetFullScreen(TScaleFitSource& DataMod, TRect Target) {
    FitToRect(DataMod, Target, false);
}

void TScaleSetting::SetFullScreen(TScaleFitSource& DataMod, const TClientAreaSource& Target) {
    FitToRect(DataMod, Target.GetClientRect(), true);
}

void TScaleSetting::FitToRect(TScaleFitSource& DataMod, TRect Target, bool Windowed) {
    if (FRec.FBlankZone > 0) {
        const std::int32_t b = MMToPix(FRec.FBlankZone);
        Target.Left += b;
        Target.Top += b;
        Target.Right -= b;
        Target.Bottom -= b;
    }
    // A window is always fitted centred; a target rectangle only where the caller asked for it.
    if (Windowed) {
        State.Include(scCenterH);
        State.Include(scCenterV);
    }
    ScaleToFit(Target, DataMod.GetLimits());
    if (State.Contains(scChanged)) {
        // Objects that keep a paper size change their limits with the scale, so the fit is repeated
        // until their bounds hold still. For a window the objects adapt in the first four rounds only,
        // which ends the loop there at the latest.
        DataMod.InitLimits();
        SetupScale();
        DataMod.AdjustAllToScale();
        int rounds = 0;
        while (State.Contains(scBoundsChanged)) {
            State.Exclude(scBoundsChanged);
            ScaleToFit(Target, DataMod.GetLimits());
            if (!Windowed || rounds < 4) {
                DataMod.InitLimits();
                SetupScale();
                DataMod.AdjustAllToScale();
            }
            ++rounds;
        }
        State.Exclude(scChanged);
    }
    CalcVPHome(Target, DataMod.GetLimits());
    FRec.FVPOrg = FRec.FVPHome;
    State.Exclude(scCenterH);
    State.Exclude(scCenterV);
}

// --- Mapping onto a device context ----------------------------------------------------------------

void TScaleSetting::SetMap(HDC DC) {
    SetMapMode(DC, MM_ANISOTROPIC);
    SetViewportOrgEx(DC, FRec.FVPOrg.x, FRec.FVPOrg.y);
    SetWindowOrgEx(DC, 0, 0);
    if (State.Contains(scRefScale)) {
        // Text is measured at the load-time scale, so the direction does not matter here.
        SetWindowExtEx(DC, FRefScale.WndExt, FRefScale.WndExt);
        SetViewportExtEx(DC, FRefScale.VPExt, FRefScale.VPExt);
    } else {
        SetWindowExtEx(DC, FRec.FWndExt, FRec.FWndExt);
        SetViewportExtEx(DC, Wrap32(std::int64_t(GetDirHorz()) * FRec.FVPExt),
                         Wrap32(std::int64_t(GetDirVert()) * FRec.FVPExt));
    }
    State.Exclude(scMMScaled);
}

void TScaleSetting::SetupScale() {
    SetMap(CanvasHandle());
}

void TScaleSetting::ScaleToMM() {
    HDC dc = CanvasHandle();
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 10000, 10000);
    SetViewportExtEx(dc, FRec.FPixPerM, FRec.FPixPerM);
    State.Include(scMMScaled);
}

void TScaleSetting::SetPixPerM(std::int32_t Value) {
    if (Value == FRec.FPixPerM) return;
    if (Value < 1) {
        HDC dc = CanvasHandle();
        TDeviceResolution device;
        device.HorzRes = GetDeviceCaps(dc, HORZRES);
        device.VertRes = GetDeviceCaps(dc, VERTRES);
        device.HorzSize = GetDeviceCaps(dc, HORZSIZE);
        device.VertSize = GetDeviceCaps(dc, VERTSIZE);
        FRec.FPixPerM = CalcPixPerM(device).x;
    } else {
        FRec.FPixPerM = Value;
    }
    CorrectContext();
}

} // namespace vl
