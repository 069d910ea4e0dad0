// The draw box: construction, loading, paint, invalidation and event dispatch.

#include "surface/Drawbox.h"

#include "geometry/Vlprocs.h"
#include "platform/core/Exceptions.h"
#include "platform/services/Services.h"
#include "surface/AppIdentity.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <algorithm>

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
        const int blank = ss.BlankZone() >= 1 ? ss.MMToPix(ss.BlankZone()) : 0;
        const TLimRec lim = FDataModule->GetLimits();
        TSize range;
        TPoint position;
        if (HorzScrollBar().Visible()) {
            int low;
            int high;
            if (!ss.RightOrigin()) {
                low = ss.LogToPix(lim.Xmin) - blank;
                high = ss.LogToPix(lim.Xmax);
            } else {
                low = -ss.LogToPix(lim.Xmax) - blank;
                high = -ss.LogToPix(lim.Xmin);
            }
            high += blank;
            if (ClientWidth() - ss.GetVPOrgX() > high) high = ClientWidth() - ss.GetVPOrgX();
            if (low > -ss.GetVPOrgX()) low = -ss.GetVPOrgX();
            if (FScrollAnchor) {
                const int a = ss.LogToPix(FAnchor.x) * ss.Dir_Horizontal();
                if (a > high) high = a;
                if (a < low) low = a;
            }
            ss.SetVPHomeX(-low);
            range.cx = high - low;
            position.x = ss.GetVPHomeX() - ss.GetVPOrgX();
        }
        if (VertScrollBar().Visible()) {
            int low;
            int high;
            if (!ss.BottomOrigin()) {
                low = ss.LogToPix(lim.Ymin) - blank;
                high = ss.LogToPix(lim.Ymax);
            } else {
                low = -ss.LogToPix(lim.Ymax) - blank;
                high = -ss.LogToPix(lim.Ymin);
            }
            high += blank;
            if (ClientHeight() - ss.GetVPOrgY() > high) high = ClientHeight() - ss.GetVPOrgY();
            if (low > -ss.GetVPOrgY()) low = -ss.GetVPOrgY();
            if (FScrollAnchor) {
                const int a = ss.LogToPix(FAnchor.y) * ss.Dir_Vertical();
                if (a > high) high = a;
                if (a < low) low = a;
            }
            ss.SetVPHomeY(-low);
            range.cy = high - low;
            position.y = ss.GetVPHomeY() - ss.GetVPOrgY();
        }
        SyncScrollbars(range, position);
    }
    State.Exclude(bsNewRange);
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
