// The draw box: construction, loading, paint, invalidation and event dispatch.

#include "surface/Drawbox.h"

#include "geometry/Vlprocs.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Scoped.h"
#include "platform/services/Services.h"
#include "surface/AppIdentity.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace vl {

namespace {

// A device rectangle cut to just beyond the client area. The window invalidates only what lies in
// its client area anyway; the cut keeps the far corners of huge logical rectangles from reaching
// the window layer's arithmetic.
TRect ClampToClient(const TLimRec& Dev, const TRect& Client) {
    auto clampX = [&](std::int32_t v) { return std::clamp(v, Client.Left - 1, Client.Right + 1); };
    auto clampY = [&](std::int32_t v) { return std::clamp(v, Client.Top - 1, Client.Bottom + 1); };
    return Rect(clampX(Dev.Xmin), clampY(Dev.Ymin), clampX(Dev.Xmax), clampY(Dev.Ymax));
}

// Scroll arithmetic runs in 64 bits and comes back into the 32-bit range of the viewport points
// and bars. The bound is symmetric, so that a result can be negated again.
constexpr std::int64_t MaxScrollValue = std::numeric_limits<std::int32_t>::max();

std::int32_t ToScrollValue(std::int64_t Value) {
    return static_cast<std::int32_t>(std::clamp(Value, -MaxScrollValue, MaxScrollValue));
}

// The data module as the fitting of the whole drawing sees it.
class TStoreFitSource : public TScaleFitSource {
public:
    explicit TStoreFitSource(TBoxStore& Store) : FStore(Store) {}
    TLimRec GetLimits() override { return FStore.GetLimits(); }
    void InitLimits() override { FStore.InitLimits(); }
    void AdjustAllToScale() override {
        FStore.AllBoxObjects([](TBoxObject* obj, void*) { obj->AdjustToScale(); }, nullptr);
    }

private:
    TBoxStore& FStore;
};

// The low and high end of one bar's range in device pixels, from the limits along that axis.
struct TAxisRange {
    std::int64_t Low;
    std::int64_t High;
};

} // namespace

// ---------------------------------------------------------------------------------------------
// Construction and destruction
// ---------------------------------------------------------------------------------------------

TCustomDrawBox::TCustomDrawBox(TComponent* AOwner) : TScrollPaint(AOwner) {
    FScaleSetting = std::make_unique<TScaleSetting>(&Canvas());
    if (ComponentState().Contains(csDesigning))
        FScaleSetting->State.Include(scDesigning);
    else
        FScaleSetting->State.Exclude(scDesigning);
    FGrid = std::make_unique<TvlGrid>(this);
    FShadows = std::make_unique<TShadows>();
    FclMarkPen = 255;
    FApplication = std::make_unique<TvlApplication>();
}

TCustomDrawBox::~TCustomDrawBox() {
    if (State.Contains(bsOwnDataMod) && FDataModule) {
        TBoxStore* own = FDataModule;
        FDataModule = nullptr;
        delete own; // leaves its owner's list on the way
    }
    FScaleHorz.reset();
    FScaleVert.reset();
    if (ActScaleSet == FScaleSetting.get()) ActScaleSet = nullptr;
    FGrid.reset();
    FShadows.reset();
    FApplication.reset();
    ClipCursor(nullptr);
    FScaleSetting.reset();
}

// ---------------------------------------------------------------------------------------------
// Loading and notification
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::Loaded() {
    TScrollPaint::Loaded();
    Screen.SetCursors(CursorSmallCross, LoadCursorByName(QStringLiteral("SMALL_CROSS")));
    if (ComponentState().Contains(csDesigning)) return;

    FScaleSetting->SetOnScaleChange([this](TObject* Sender) { ScaleChanged(Sender); });
    FScaleSetting->InitMapping(Screen.PixelsPerInch());
    if (FScaleSetting->RightOrigin()) FScaleSetting->SetVPHomeX(ClientWidth());
    if (FScaleSetting->BottomOrigin()) FScaleSetting->SetVPHomeY(ClientHeight());
    FScaleSetting->SetVPOrg(FScaleSetting->VPHome());

    const QString ownerName = Owner() ? Owner()->Name() : QString();
    FClipboardFmt = static_cast<int>(
        RegisterClipboardFormat(QString::number(ThisAppID) + ownerName + QStringLiteral("_") + Name()));
    Initializing = true;

    // A data module that holds objects at this moment is passed over for a fresh one of the box's
    // own, and so is one whose test fails.
    bool install = false;
    try {
        install = FDataModule == nullptr || !FDataModule->Empty();
    } catch (...) {
        install = true;
    }
    if (install) InstallDataModule();

    ActScaleSet = FScaleSetting.get();
    InitTools();
}

void TCustomDrawBox::Notification(TComponent* AComponent, TOperation Operation) {
    TScrollPaint::Notification(AComponent, Operation);
    if (Operation == opRemove) {
        // Borrowed references never outlive what they point to, at run time as at design time.
        if (AComponent == FDataModule) FDataModule = nullptr;
        if (AComponent == FTool) FTool = nullptr;
        return;
    }
    if (!ComponentState().Contains(csDesigning)) return;
    if (auto* env = dynamic_cast<TEnvironment*>(AComponent); env && env->FDrawForm == nullptr) {
        if (auto* dm = dynamic_cast<TBoxStore*>(env); dm && FDataModule == nullptr) FDataModule = dm;
        env->FDrawForm = this;
    }
}

void TCustomDrawBox::InstallDataModule() {
    TBoxStore* dm = DataModuleFactory ? DataModuleFactory(Owner()) : NewDefaultDataModule(Owner());
    FDataModule = dm;
    dm->FDrawForm = this;
    State.Include(bsOwnDataMod);
}

HDC TCustomDrawBox::GetDeviceContext() {
    HDC dc = TScrollPaint::GetDeviceContext();
    if (!ComponentState().Contains(csDesigning) && FScaleSetting) FScaleSetting->SetMap(dc);
    return dc;
}

// ---------------------------------------------------------------------------------------------
// Initialisation, files, objects
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::DoInitialize() {
    Initializing = false;
    PredefineObjects();
}

void TCustomDrawBox::PredefineObjects() {
    if (!OnPredefineObjects) return;
    const TCursor keep = Cursor();
    OnPredefineObjects(this);
    SetCursor(keep);
    CheckScrollRange();
}

void TCustomDrawBox::LoadFromFile(const QString& FileName) {
    if (!FDataModule) throw Exception(QStringLiteral("Draw box has no data module"));
    FDataModule->LoadFromFile(FileName);
    Invalidate();
}

void TCustomDrawBox::SaveToFile(const QString& FileName) {
    if (!FDataModule) throw Exception(QStringLiteral("Draw box has no data module"));
    FDataModule->SaveToFile(FileName);
}

bool TCustomDrawBox::CanClose() const {
    if (!FDataModule) return true;
    return !FDataModule->State.Contains(dmLoading) && !FDataModule->State.Contains(dmSaving);
}

TBoxObject* TCustomDrawBox::CreateObject(std::int16_t ToolID) {
    TBoxCreator* creator = FindCreatorByID(Owner(), ToolID);
    if (!creator) throw Exception(QStringLiteral("No creator for tool ID %1").arg(ToolID));
    return creator->CreateObject();
}

// ---------------------------------------------------------------------------------------------
// Coordinates
// ---------------------------------------------------------------------------------------------

TRect TCustomDrawBox::GetClientRect_Log() {
    const TRect r = ClientRect();
    TPoint pts[2] = {r.TopLeft(), r.BottomRight()};
    DPtoLP(Canvas().Handle(), pts, 2);
    return Rect(pts[0].x, pts[0].y, pts[1].x, pts[1].y);
}

TPoint TCustomDrawBox::LogToScreen(TPoint LogPnt) {
    LPtoDP(Canvas().Handle(), &LogPnt, 1);
    return ClientToScreen(LogPnt);
}

TPoint TCustomDrawBox::DevToLog(int XDev, int YDev) {
    TPoint p = Point(XDev, YDev);
    DPtoLP(Canvas().Handle(), &p, 1);
    return p;
}

// ---------------------------------------------------------------------------------------------
// Local objects and tools
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::AllLocalObjects(const TBoxObjectProc& Action, void* Params) {
    if (FScaleHorz) Action(FScaleHorz.get(), Params);
    if (FScaleVert) Action(FScaleVert.get(), Params);
}

TBoxObject* TCustomDrawBox::FindLocalObject(const TBoxObjectFunc& Condition, void* Params) {
    if (FScaleHorz && Condition(FScaleHorz.get(), Params)) return FScaleHorz.get();
    if (FScaleVert && Condition(FScaleVert.get(), Params)) return FScaleVert.get();
    return nullptr;
}

void TCustomDrawBox::WithToolsDo(const TCompFilter& Filter, const TComponentProc& Action) {
    TComponent* owner = Owner();
    if (!owner) return;
    bool done = false;
    for (int i = 0; i < owner->ComponentCount(); ++i) {
        auto* tool = dynamic_cast<TBoxTool*>(owner->Components(i));
        if (!tool || tool->FDrawForm != this || !Filter(tool)) continue;
        Action(tool, done);
        if (done) break;
    }
}

void TCustomDrawBox::ForgetObject(TBoxObject* Gone) {
    if (!Gone || FMouseFnd == Gone) FMouseFnd = nullptr;
    WithToolsDo([](TComponent*) { return true; },
                [Gone](TComponent* c, bool&) { static_cast<TBoxTool*>(c)->ObjectGone(Gone); });
}

bool TCustomDrawBox::Creators(TComponent* AComponent) {
    return dynamic_cast<TBoxCreator*>(AComponent) != nullptr;
}

void TCustomDrawBox::InitTools() {
    TComponent* owner = Owner();
    if (!owner) return;
    // The count is read anew after each step: a tool may add components.
    for (int i = 0; i < owner->ComponentCount(); ++i) {
        auto* tool = dynamic_cast<TBoxTool*>(owner->Components(i));
        if (tool && tool->FDrawForm == this) tool->Init();
    }
}

void TCustomDrawBox::SetDefaultTool() {
    WithToolsDo([](TComponent* c) { return static_cast<TBoxTool*>(c)->Options().Contains(toDefaultTool); },
                [this](TComponent* c, bool& done) {
                    static_cast<TBoxTool*>(c)->Activate(this);
                    done = true;
                });
}

void TCustomDrawBox::SetClipping() {
    const TRect r = ClientRect();
    const TPoint topLeft = ClientToScreen(r.TopLeft());
    const TPoint bottomRight = ClientToScreen(Point(r.Right - 1, r.Bottom - 1));
    const TRect screenRect = Rect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
    ClipCursor(&screenRect);
}

void TCustomDrawBox::MoveObjects(TPoint DeltaPos) {
    ActScaleSet = FScaleSetting.get();
    if (FGrid->Capture()) FGrid->MatchCoords(DeltaPos);
    if (!FDataModule) return;
    for (int i = 0; i < FDataModule->MarkCount(); ++i) {
        TBoxObject* obj = FDataModule->Marked(i);
        obj->Invalidate();
        obj->MovePos(DeltaPos);
        obj->Invalidate();
    }
    FDataModule->UnmarkAll();
}

// ---------------------------------------------------------------------------------------------
// Invalidation
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::InvalidateChanges() {
    if (!Visible() || !FDataModule) return;
    const TLimRec& rr = FDataModule->RestoreRect();
    // This guard tests the opposite of what an empty restore rect holds: an untouched rect passes it
    // and invalidates whatever its corners map to. Kept as the drawing's behaviour.
    if (rr.Xmin == -2147483647 && rr.Xmax == 2147483647) return;
    HDC dc = Canvas().Handle();
    SetWindowOrgEx(dc, 0, 0);
    TPoint pts[2] = {rr.Min(), rr.Max()};
    LPtoDP(dc, pts, 2);
    TLimRec dev = LimRec(pts[0].x, pts[0].y, pts[1].x, pts[1].y);
    LimRecDirection(dev);
    const TRect r = ClampToClient(dev, ClientRect());
    InvalidateRect(&r, true);
}

void TCustomDrawBox::InvalidateRestoreRect() {
    if (FDataModule) FDataModule->InvalidateRestoreRect();
}

void TCustomDrawBox::UpdateRect(const TLimRec& LimRec) {
    if (ActScaleSet && ActScaleSet->Canvas()) SetWindowOrgEx(ActScaleSet->Canvas()->Handle(), 0, 0);
    TPoint pts[2] = {LimRec.Min(), LimRec.Max()};
    LPtoDP(Canvas().Handle(), pts, 2);
    TLimRec dev = vl::LimRec(pts[0].x, pts[0].y, pts[1].x, pts[1].y);
    LimRecDirection(dev);
    const TRect r = ClampToClient(dev, ClientRect());
    InvalidateRect(&r, true);
    Update();
}

void TCustomDrawBox::InvalidateBox() {
    InvalidateRect(nullptr, !ControlStyle().Contains(csOpaque));
}

// ---------------------------------------------------------------------------------------------
// Scale and ranges
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::ScaleChanged(TObject*) {
    State.Include(bsNewRange);
    if (OnScaleChange) OnScaleChange(this);
}

void TCustomDrawBox::CheckScrollRange() {
    TScaleSetting& ss = *FScaleSetting;
    if (ss.State.Contains(scMovingObjects)) {
        if (FDataModule) FDataModule->InitLimits();
        return;
    }
    if (FDataModule && !FDataModule->Empty() && !State.Contains(bsUpdateScrollbars) && AutoScroll()) {
        SetWindowOrgEx(Canvas().Handle(), 0, 0);
        const std::int64_t blank = ss.BlankZone() >= 1 ? ss.MMToPix(ss.BlankZone()) : 0;
        const TLimRec lim = FDataModule->GetLimits();
        // One axis: the limits widened by the blank zone, the window kept in view, the anchor
        // reached; `Client` is the client extent and `Org` the viewport origin along the axis.
        auto axis = [&](std::int32_t Min, std::int32_t Max, bool FarOrigin, std::int32_t Client,
                        std::int32_t Org, std::int32_t Anchor, std::int32_t Dir) {
            TAxisRange r{};
            if (!FarOrigin) {
                r.Low = std::int64_t{ss.LogToPix(Min)} - blank;
                r.High = ss.LogToPix(Max);
            } else {
                r.Low = -std::int64_t{ss.LogToPix(Max)} - blank;
                r.High = -std::int64_t{ss.LogToPix(Min)};
            }
            r.High += blank;
            const std::int64_t farEdge = std::int64_t{Client} - Org;
            if (farEdge > r.High) r.High = farEdge;
            if (r.Low > -std::int64_t{Org}) r.Low = -std::int64_t{Org};
            if (FScrollAnchor) {
                const std::int64_t a = std::int64_t{ss.LogToPix(Anchor)} * Dir;
                if (a > r.High) r.High = a;
                if (a < r.Low) r.Low = a;
            }
            return r;
        };
        TSize range;
        TPoint position;
        if (HorzScrollBar().Visible()) {
            const TAxisRange r = axis(lim.Xmin, lim.Xmax, ss.RightOrigin(), ClientWidth(), ss.GetVPOrgX(),
                                      FAnchor.x, ss.Dir_Horizontal());
            ss.SetVPHomeX(ToScrollValue(-r.Low));
            range.cx = ToScrollValue(r.High - r.Low);
            position.x = ToScrollValue(std::int64_t{ss.GetVPHomeX()} - ss.GetVPOrgX());
        }
        if (VertScrollBar().Visible()) {
            const TAxisRange r = axis(lim.Ymin, lim.Ymax, ss.BottomOrigin(), ClientHeight(), ss.GetVPOrgY(),
                                      FAnchor.y, ss.Dir_Vertical());
            ss.SetVPHomeY(ToScrollValue(-r.Low));
            range.cy = ToScrollValue(r.High - r.Low);
            position.y = ToScrollValue(std::int64_t{ss.GetVPHomeY()} - ss.GetVPOrgY());
        }
        SyncScrollbars(range, position);
    }
    State.Exclude(bsNewRange);
}

void TCustomDrawBox::SetScale(double Value) {
    TScaleSetting& ss = *FScaleSetting;
    if (Value <= 0) {
        HideScrollBars();
        if (FDataModule) {
            TStoreFitSource fit(*FDataModule);
            ss.SetFullScreen(fit, *this);
        }
    } else {
        ss.SetScale(Value);
        if (ss.State.Contains(scChanged)) State.Include(bsNewRange);
    }
    if (FDataModule) FDataModule->UnmarkAll();
    const TRect r = ClientRect();
    InvalidateRect(&r, true);
}

void TCustomDrawBox::HideScrollBars() {
    HorzScrollBar().NoRange();
    VertScrollBar().NoRange();
    // Hiding a bar resizes the client area; the size handler must not compute the ranges back
    // while the bars are being hidden.
    const TScopedFlag hiding(State, bsUpdateScrollbars);
    ShowScrollBar(SB_HORZ, false);
    ShowScrollBar(SB_VERT, false);
}

void TCustomDrawBox::GetSpace(int ASpace, TSpaceDir Direction) {
    TScaleSetting& ss = *FScaleSetting;
    switch (Direction) {
    case dirLeft:
        HorzScrollBar().SetPosition(0);
        ss.SetVPHomeX(ToScrollValue(std::int64_t{ss.GetVPHomeX()} + ASpace));
        State.Include(bsNewRange);
        break;
    case dirTop:
        VertScrollBar().SetPosition(0);
        ss.SetVPHomeY(ToScrollValue(std::int64_t{ss.GetVPHomeY()} + ASpace));
        State.Include(bsNewRange);
        break;
    case dirRight: {
        TvlScrollBar& h = HorzScrollBar();
        h.SetRange(ToScrollValue(std::int64_t{h.Range()} + ASpace));
        h.SetPosition(h.Range()); // the bar caps it at its largest valid position
        ss.SetVPOrgX(ToScrollValue(std::int64_t{ss.GetVPHomeX()} - h.Position()));
        break;
    }
    case dirBottom: {
        TvlScrollBar& v = VertScrollBar();
        v.SetRange(ToScrollValue(std::int64_t{v.Range()} + ASpace));
        v.SetPosition(v.Range());
        ss.SetVPOrgY(ToScrollValue(std::int64_t{ss.GetVPHomeY()} - v.Position()));
        break;
    }
    }
    const TRect r = ClientRect();
    InvalidateRect(&r, true);
}

void TCustomDrawBox::StepToLowEnd(TScrollBarKind Kind) {
    const bool horz = Kind == sbHorizontal;
    TScaleSetting& ss = *FScaleSetting;
    TvlScrollBar& bar = horz ? HorzScrollBar() : VertScrollBar();
    const int inc = bar.Increment();
    TPoint home = ss.VPHome();
    TPoint org = ss.VPOrg();
    std::int32_t& homeA = horz ? home.x : home.y;
    std::int32_t& orgA = horz ? org.x : org.y;
    if (!bar.Visible()) {
        orgA = ToScrollValue(std::int64_t{orgA} + inc);
        ss.SetVPOrg(org);
    } else if (bar.Position() < 1) {
        // The window stands at the low end of the range: the range grows there, and logical (0, 0)
        // moves with the window's content.
        homeA = ToScrollValue(std::int64_t{homeA} + inc);
        orgA = homeA;
        ss.SetVPHome(home);
        ss.SetVPOrg(org);
        bar.SetRange(ToScrollValue(std::int64_t{bar.Range()} + inc));
    } else {
        // Inside the range the bar's own line step takes the normal road.
        TMessage m;
        m.Msg = horz ? WM_HSCROLL : WM_VSCROLL;
        m.ScrollCode = SB_LINEUP;
        if (horz)
            WMHScroll(m);
        else
            WMVScroll(m);
        return;
    }
    if (horz)
        ScrollBy(inc, 0);
    else
        ScrollBy(0, inc);
}

void TCustomDrawBox::StepToHighEnd(TScrollBarKind Kind) {
    const bool horz = Kind == sbHorizontal;
    TScaleSetting& ss = *FScaleSetting;
    TvlScrollBar& bar = horz ? HorzScrollBar() : VertScrollBar();
    const TvlScrollBar& other = horz ? VertScrollBar() : HorzScrollBar();
    const int inc = bar.Increment();
    TPoint org = ss.VPOrg();
    std::int32_t& orgA = horz ? org.x : org.y;
    orgA = ToScrollValue(std::int64_t{orgA} - inc);
    ss.SetVPOrg(org);
    if (horz)
        ScrollBy(-inc, 0);
    else
        ScrollBy(0, -inc);
    if (!bar.Visible()) return;
    // The range grows at the high end as far as the window now reaches.
    const std::int32_t homeA = horz ? ss.GetVPHomeX() : ss.GetVPHomeY();
    const std::int32_t pos = ToScrollValue(std::int64_t{homeA} - orgA);
    const int client = horz ? ClientWidth() : ClientHeight();
    const std::int32_t range =
        std::int64_t{bar.Range()} - client < pos ? ToScrollValue(std::int64_t{client} + pos) : bar.Range();
    if (horz)
        SyncScrollbars(TSize{range, other.Range()}, Point(pos, other.Position()));
    else
        SyncScrollbars(TSize{other.Range(), range}, Point(other.Position(), pos));
}

void TCustomDrawBox::LeftScroll() {
    StepToLowEnd(sbHorizontal);
}

void TCustomDrawBox::TopScroll() {
    StepToLowEnd(sbVertical);
}

void TCustomDrawBox::RightScroll() {
    StepToHighEnd(sbHorizontal);
}

void TCustomDrawBox::BottomScroll() {
    StepToHighEnd(sbVertical);
}

bool TCustomDrawBox::LeftCondition(TPoint CurPos) const {
    return CurPos.x < 2;
}

bool TCustomDrawBox::TopCondition(TPoint CurPos) const {
    return CurPos.y < 2;
}

bool TCustomDrawBox::RightCondition(TPoint CurPos) const {
    return CurPos.x > ClientRect().Right - 3;
}

bool TCustomDrawBox::BottomCondition(TPoint CurPos) const {
    return CurPos.y > ClientRect().Bottom - 3;
}

void TCustomDrawBox::doToolScroll(TPoint CurPos) {
    using TCondition = bool (TCustomDrawBox::*)(TPoint) const;
    using TStep = void (TCustomDrawBox::*)();
    // The first zone that holds fixes zone and direction for the whole loop: a corner scrolls one way.
    TCondition condition = nullptr;
    TStep step = nullptr;
    if (LeftCondition(CurPos)) {
        condition = &TCustomDrawBox::LeftCondition;
        step = &TCustomDrawBox::LeftScroll;
    } else if (RightCondition(CurPos)) {
        condition = &TCustomDrawBox::RightCondition;
        step = &TCustomDrawBox::RightScroll;
    } else if (TopCondition(CurPos)) {
        condition = &TCustomDrawBox::TopCondition;
        step = &TCustomDrawBox::TopScroll;
    } else if (BottomCondition(CurPos)) {
        condition = &TCustomDrawBox::BottomCondition;
        step = &TCustomDrawBox::BottomScroll;
    } else {
        return;
    }
    const TScrollProc scrollProc = [this, step] { (this->*step)(); };
    std::uint32_t last = GetTickCount();
    const TScopedFlag scrolling(State, bsToolScroll);
    TPoint p = CurPos;
    // The box pumps no messages here; only a tool's `Scroll` may. The tool is read anew each turn,
    // since its gesture (or its life) may end meanwhile.
    while ((this->*condition)(p) && FTool && FTool->ToolState.Contains(tsCanScroll)) {
        if (GetTickCount() - last > std::uint32_t{AutoScrollTime}) {
            last = GetTickCount();
            TPoint logPos = p;
            DPtoLP(Canvas().Handle(), &logPos, 1);
            FTool->Scroll(scrollProc, logPos);
            SetWindowOrgEx(Canvas().Handle(), 0, 0);
        }
        TPoint screenPos;
        GetCursorPos(&screenPos);
        p = ScreenToClient(screenPos);
    }
}

void TCustomDrawBox::ScrollTo(TPoint NewPos, TOrigin Origin) {
    const TRect r = ClientRect();
    std::int64_t refX = r.Left;
    std::int64_t refY = r.Top;
    switch (Origin) {
    case TOrigin::LeftTop: break;
    case TOrigin::LeftBottom: refY = r.Bottom; break;
    case TOrigin::RightTop: refX = r.Right; break;
    case TOrigin::RightBottom:
        refX = r.Right;
        refY = r.Bottom;
        break;
    case TOrigin::Center:
        // Integer division truncates toward zero.
        refX = (std::int64_t{r.Right} + r.Left) / 2;
        refY = (std::int64_t{r.Bottom} + r.Top) / 2;
        break;
    }
    const std::int64_t dx = NewPos.x - refX;
    const std::int64_t dy = NewPos.y - refY;
    // One step per axis, with the distance as the bar's increment. The increment is 16 bits wide:
    // a distance beyond that is cut to its low 16 bits.
    auto stepBy = [](TvlScrollBar& Bar, std::int64_t Delta, auto&& Back, auto&& Forth) {
        const TScrollBarInc keep = Bar.Increment();
        const std::uint64_t magnitude =
            Delta < 0 ? 0 - static_cast<std::uint64_t>(Delta) : static_cast<std::uint64_t>(Delta);
        Bar.SetIncrement(static_cast<TScrollBarInc>(magnitude & 0xFFFF));
        if (Delta < 0)
            Back();
        else if (Delta > 0)
            Forth();
        Bar.SetIncrement(keep);
    };
    stepBy(
        HorzScrollBar(), dx, [this] { LeftScroll(); }, [this] { RightScroll(); });
    stepBy(
        VertScrollBar(), dy, [this] { TopScroll(); }, [this] { BottomScroll(); });
}

void TCustomDrawBox::ScrollTo_Log(TPoint NewPos, TOrigin Origin) {
    HDC dc = Canvas().Handle();
    FScaleSetting->SetMap(dc);
    LPtoDP(dc, &NewPos, 1);
    ScrollTo(NewPos, Origin);
}

void TCustomDrawBox::WMHScroll(TMessage& Message) {
    TScrollPaint::WMHScroll(Message);
    FScaleSetting->SetVPOrgX(FScaleSetting->GetVPHomeX() - HorzScrollBar().Position());
}

void TCustomDrawBox::WMVScroll(TMessage& Message) {
    TScrollPaint::WMVScroll(Message);
    FScaleSetting->SetVPOrgY(FScaleSetting->GetVPHomeY() - VertScrollBar().Position());
}

// ---------------------------------------------------------------------------------------------
// Paint
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::WMPaint(TMessage& Message) {
    if (Initializing) DoInitialize();
    PaintHandler(Message);
}

void TCustomDrawBox::Paint() {
    if (ThisAppID < 0) FApplication->TakeOverIdentity();
    if (ComponentState().Contains(csDesigning)) return;
    if (ActScaleSet && ActScaleSet->State.Contains(scPrinting)) return;

    TScaleSetting& ss = *FScaleSetting;
    ss.SetMap(Canvas().Handle());
    ss.SetClientRect_Log(GetClientRect_Log());
    const TRect clip = Canvas().ClipRect();
    TLimRec r = LimRec(clip.Left, clip.Top, clip.Right, clip.Bottom);
    LimRecDirection(r);

    ActScaleSet = FScaleSetting.get();
    Canvas().Brush().SetColor(Color());

    if (FGrid->Visible()) FGrid->Draw(r);
    DoBeforePaint();
    AllLocalObjects(&TCustomDrawBox::PaintObjects, &r);

    if (FDataModule && !FDataModule->Empty()) {
        const TLimRec kept = FDataModule->GetLimits();
        if (ss.State.Contains(scChanged)) {
            WithToolsDo(&TCustomDrawBox::Creators,
                        [](TComponent* c, bool&) { dynamic_cast<TBoxCreator*>(c)->CheckScaling(); });
            FDataModule->AllBoxObjects([](TBoxObject* obj, void*) { obj->AdjustToScale(); }, nullptr);
            if (ss.State.Contains(scBoundsChanged)) FDataModule->InitLimits();
        }
        FDataModule->AllBoxObjects(&TCustomDrawBox::PaintObjects, &r);
        if (ActScaleSet && ActScaleSet->Canvas()) SetWindowOrgEx(ActScaleSet->Canvas()->Handle(), 0, 0);
        if (!FDataModule->CompareLimits(kept)) State.Include(bsNewRange);
        if (State.Contains(bsNewRange)) CheckScrollRange();
        ss.State.Exclude(scChanged);
        ss.State.Exclude(scFontChanged);
        ss.State.Exclude(scBoundsChanged);
    }

    DoAfterPaint();
    State.Exclude(bsHScrolling);
    State.Exclude(bsVScrolling);
    State.Exclude(bsUpdateScrollbars);
}

void TCustomDrawBox::PaintObjects(TBoxObject* AnyObject, void* Params) {
    if (AnyObject->Nosy()) {
        TObjMessage msg;
        msg.Msg = msgObjPaint;
        AnyObject->ObjectMessage(msg);
    }
    if (!AnyObject->Visible()) return;
    if (!AnyObject->CheckFrame(Params, cfLimRec)) return;
    AnyObject->Show();
}

void TCustomDrawBox::DoBeforePaint() {
    if (BeforePaint) BeforePaint(this);
}

void TCustomDrawBox::DoAfterPaint() {
    if (AfterPaint) AfterPaint(this);
    WithToolsDo(&TCustomDrawBox::Creators,
                [](TComponent* c, bool&) { dynamic_cast<TBoxCreator*>(c)->ReleaseResources(); });
}

// ---------------------------------------------------------------------------------------------
// Input
// ---------------------------------------------------------------------------------------------

void TCustomDrawBox::Resize() {
    TScrollPaint::Resize();
    if (FTool && FTool->ToolState.Contains(tsCanScroll)) SetClipping();
}

void TCustomDrawBox::MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) {
    if (!FTool || State.Contains(bsToolScroll)) return;
    const TPoint p = DevToLog(XDev, YDev);
    ActScaleSet = FScaleSetting.get();
    RefuseKeyCombination(Shift);
    DoMouseDown(Button, Shift, p.x, p.y);
    if (!FTool) return; // the host's event may have ended the tool's life
    switch (Button) {
    case mbLeft:
        if (Shift.Contains(ssDouble))
            FTool->LeftDblClk(Shift, p);
        else
            FTool->LMouseDown(Shift, p);
        break;
    case mbRight: FTool->RMouseDown(Shift, p); break;
    case mbMiddle: break;
    }
}

void TCustomDrawBox::MouseMove(TShiftState Shift, int XDev, int YDev) {
    if (!FTool || State.Contains(bsToolScroll)) return;
    ActScaleSet = FScaleSetting.get();
    // At an edge the tool's gesture scrolls first; the event's own point is then mapped anew.
    if (AutoScroll() && FTool->ToolState.Contains(tsCanScroll)) {
        doToolScroll(Point(XDev, YDev));
        if (!FTool) return;
    }
    const TPoint p = DevToLog(XDev, YDev);
    FTool->MouseMove(Shift, p);
    DoMouseMove(Shift, p.x, p.y);
}

void TCustomDrawBox::MouseUp(TMouseButton Button, TShiftState Shift, int XDev, int YDev) {
    if (!FTool) return;
    const TPoint p = DevToLog(XDev, YDev);
    ActScaleSet = FScaleSetting.get();
    DoMouseUp(Button, Shift, p.x, p.y);
    if (!FTool) return;
    if (Button == mbLeft)
        FTool->LMouseUp(Shift, p);
    else if (Button == mbRight)
        FTool->RMouseUp(Shift, p);
}

void TCustomDrawBox::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    ActScaleSet = FScaleSetting.get();
    TScrollPaint::KeyDown(Key, Shift);
    if (FTool) FTool->KeyDown(Key, Shift);
}

void TCustomDrawBox::KeyUp(std::uint16_t& Key, TShiftState Shift) {
    ActScaleSet = FScaleSetting.get();
    TScrollPaint::KeyUp(Key, Shift);
    if (FTool) FTool->KeyUp(Key, Shift);
}

void TCustomDrawBox::DragOver(QObject* Source, int XDev, int YDev, TDragState State, bool& Accept) {
    const TPoint p = DevToLog(XDev, YDev);
    DoDragOver(Source, p.x, p.y, State, Accept);
}

void TCustomDrawBox::DragDrop(QObject* Source, int XDev, int YDev) {
    const TPoint p = DevToLog(XDev, YDev);
    DoDragDrop(Source, p.x, p.y);
}

// ---------------------------------------------------------------------------------------------
// TvlDrawbox
// ---------------------------------------------------------------------------------------------

TvlDrawbox::TvlDrawbox(TComponent* AOwner) : TCustomDrawBox(AOwner) {}

void TvlDrawbox::WndProc(TMessage& Message) {
    if (!ComponentState().Contains(csDesigning) &&
        (Message.Msg == WM_LBUTTONDOWN || Message.Msg == WM_LBUTTONDBLCLK || Message.Msg == WM_RBUTTONDOWN)) {
        if (!Focused()) {
            SetFocus();
            if (!Focused()) return;
        }
    }
    TCustomDrawBox::WndProc(Message);
}

void TvlDrawbox::CNKeyDown(TMessage& Message) {
    Message.Result = 0;
}

void TvlDrawbox::CNKeyUp(TMessage& Message) {
    Message.Result = 0;
}

} // namespace vl
