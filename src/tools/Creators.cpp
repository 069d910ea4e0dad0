// The drawing creators: points, lines with their preview, chains and connectors.
#include "tools/Creators.h"

#include "objects/Generators.h"
#include "platform/graphics/Images.h"
#include "platform/services/Services.h"
#include "store/DataModBase.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <cstdlib>

namespace vl {

namespace {

const char* const MasterUndefined = "MasterObject property undefined";
const char* const WrongClass = "wrong class definition";

void ShowError(const char* Text) {
    MessageDlg(QString::fromLatin1(Text), mtError, TMsgDlgButtons(mbOK), 0);
}

// Whether a picture is a raster that the rotated picture objects turn.
bool IsTurnableRaster(TGraphic* Graphic) {
    return dynamic_cast<TBitmap*>(Graphic) || dynamic_cast<TJPEGImage*>(Graphic) ||
           dynamic_cast<TIcon*>(Graphic);
}

} // namespace

// ---------------------------------------------------------------------------------------------------
// Points
// ---------------------------------------------------------------------------------------------------

TCustomPoints::TCustomPoints(TComponent* AOwner) : TvlCreator(AOwner) {
    TCustomPoints::CreateGenerator();
}

void TCustomPoints::CreateGenerator() {
    FGenerator = std::make_unique<TPtGenerator>();
}

TCapClass TCustomPoints::DefaultClass() {
    if (RotatedPicClass && FGenerator->Options().Contains(goRotation) &&
        IsTurnableRaster(FGenerator->Picture().Graphic()))
        return RotatedPicClass;
    return &NewObjectOf<TPointObj>;
}

void TCustomPoints::SetSlaveObject(TvlCreator* Value) {
    FSlaveObject = Value;
    if (Value) Value->FreeNotification(this);
}

void TCustomPoints::Notification(TComponent* AComponent, TOperation Operation) {
    TvlCreator::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FSlaveObject) FSlaveObject = nullptr;
}

TvlObject* TCustomPoints::SetNewObj(const TPoint& CurPos) {
    std::unique_ptr<TvlObject> made;
    if (OnObjectFound) {
        // Only on another object, as its slave.
        TvlObject* master = MouseFnd();
        if (!master) return nullptr;
        made.reset(CreateObject());
        made->SetMaster(master);
    } else {
        made.reset(CreateObject());
    }
    made->SetPos(CurPos);
    if (auto* line = dynamic_cast<TLineObj*>(made.get())) {
        // A line class makes a line of the generator's size with one click.
        line->SetX2(line->GetX() + FGenerator->Width());
        line->SetY2(line->GetY() + FGenerator->Height());
    }
    return RegisterNewObj(std::move(made));
}

TvlObject* TCustomPoints::RegisterNewObj(std::unique_ptr<TvlObject> Made) {
    TvlObject* CurObject = Made.get();
    if (!FCreateBoxObjects) CurObject->Count();
    ObjectSetData(CurObject);
    if (!FCreateBoxObjects)
        AddToDataModule(std::move(Made));
    else
        Made.release(); // the caller hands it to the box
    CurObject->Invalidate();
    // Visible after the invalidation, whatever the data did.
    CurObject->SetVisible(true);
    if (FSlaveObject) FSlaveObject->CreateSlave(CurObject);
    return CurObject;
}

bool TCustomPoints::MouseFind(TvlObject* FndObject, void* Params) {
    return FndObject->Found(*static_cast<TLimRec*>(Params)) && ObjectFound(FndObject);
}

void TCustomPoints::MouseMove(TShiftState Shift, const TPoint& CurPos) {
    (void)Shift;
    // Without the event nobody asks for the object under the mouse, and the mouse costs nothing.
    if (OnObjectFound) FindMouseObject(CurPos);
}

// ---------------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------------

TCustomLines::TCustomLines(TComponent* AOwner) : TCustomPoints(AOwner), FDynaLine(std::make_unique<TPen>()) {
    TCustomLines::CreateGenerator();
    FDynaLine->SetMode(pmNotXor);
}

TCustomLines::~TCustomLines() = default;

void TCustomLines::CreateGenerator() {
    FGenerator = std::make_unique<TGenerator>();
    FGenerator->SetShape(stLine);
}

TCapClass TCustomLines::DefaultClass() {
    return &NewObjectOf<TLineObj>;
}

void TCustomLines::EnterGesture() {
    ToolState.Include(tsWorking);
    if (FOptions.Contains(toDontScroll)) return;
    ToolState.Include(tsCanScroll);
    if (FDrawForm) FDrawForm->SetClipping();
}

void TCustomLines::LeaveGesture() {
    ToolState.Exclude(tsWorking);
    ToolState.Exclude(tsCanScroll);
    ClipCursor(nullptr);
}

TvlObject* TCustomLines::SetNewObj(const TPoint& CurPos) {
    if (!ToolState.Contains(tsWorking)) {
        FPosP1 = CurPos;
        FPosP2 = FPosP1;
        DrawDynLin();
        DynaShapeStart();
        EnterGesture();
        return nullptr;
    }
    DrawDynLin();
    DynaShapeEnd();
    FPosP2 = CurPos;
    std::unique_ptr<TvlObject> made(CreateObject());
    made->SetPos(FPosP1);
    // The class must be a line; a host's class of another kind keeps only its first point.
    if (auto* line = dynamic_cast<TLineObj*>(made.get())) line->SetPos2(FPosP2);
    TvlObject* obj = RegisterNewObj(std::move(made));
    if (FPolyShape) {
        FPosP1 = FPosP2;
        DrawDynLin();
        DynaShapeStart();
    } else {
        LeaveGesture();
    }
    return obj;
}

void TCustomLines::LMouseDown(TShiftState Shift, const TPoint& CurPos) {
    TPoint p = CurPos;
    // The grid beats the ortho mode, and the first click of a gesture is never made ortho.
    if (ToolState.Contains(tsWorking) && !(FDrawForm && FDrawForm->Grid().Capture()) && FOrthoMode)
        OrthoCoords(p);
    TvlCreator::LMouseDown(Shift, p);
}

void TCustomLines::MouseMove(TShiftState Shift, const TPoint& CurPos) {
    if (!ToolState.Contains(tsWorking)) return;
    TPoint p = CurPos;
    SnapMove(p);
    MoveDynLin(Shift, p);
}

void TCustomLines::SnapMove(TPoint& CurPos) const {
    if (FDrawForm && FDrawForm->Grid().Capture())
        FDrawForm->Grid().MatchCoords(CurPos);
    else if (FOrthoMode)
        OrthoCoords(CurPos);
}

void TCustomLines::RMouseDown(TShiftState Shift, const TPoint& CurPos) {
    (void)Shift;
    (void)CurPos;
    if (ToolState.Contains(tsWorking))
        DrawDynLin();
    else
        SetDefaultTool();
    BreakPolyline();
}

void TCustomLines::BreakPolyline() {
    LeaveGesture();
    SetMouseFnd(nullptr);
}

void TCustomLines::OrthoCoords(TPoint& CurPos) const {
    const std::int64_t dx = std::llabs(std::int64_t(FPosP1.x) - CurPos.x);
    const std::int64_t dy = std::llabs(std::int64_t(FPosP1.y) - CurPos.y);
    if (dx >= dy)
        CurPos.y = FPosP1.y;
    else
        CurPos.x = FPosP1.x;
}

TCanvas* TCustomLines::PreviewCanvas() {
    if (!FDrawForm) return nullptr;
    TCanvas& canvas = FDrawForm->Canvas();
    canvas.SetPen(*FDynaLine);
    canvas.Brush().SetStyle(bsClear);
    // The preview is in the box's logical coordinates: a mark or paint drawn since the last step may
    // have left the window origin at an object's corner.
    SetWindowOrgEx(canvas.Handle(), 0, 0);
    return &canvas;
}

void TCustomLines::DrawDynLin() {
    if (PreviewCanvas()) DynShape();
}

void TCustomLines::MoveDynLin(TShiftState Shift, const TPoint& CurPos) {
    if (PreviewCanvas()) {
        DynShape();
        FPosP2 = CurPos;
        DynShape();
    } else {
        FPosP2 = CurPos;
    }
    if (OnDynaShapeMove) OnDynaShapeMove(this, Shift, FPosP2.x - FPosP1.x, FPosP2.y - FPosP1.y);
}

void TCustomLines::DynShape() {
    if (!FDrawForm) return;
    TCanvas& canvas = FDrawForm->Canvas();
    if (FGenerator->Shape() == stLine) {
        canvas.MoveTo(FPosP1.x, FPosP1.y);
        canvas.LineTo(FPosP2.x, FPosP2.y);
        return;
    }
    // The rectangle of the two points. The outline breaks one unit left of the last corner: the open
    // end of the line before would leave that pixel, and the inverting pen would touch it twice.
    canvas.MoveTo(FPosP1.x, FPosP1.y);
    canvas.LineTo(FPosP2.x, FPosP1.y);
    canvas.LineTo(FPosP2.x, FPosP2.y);
    canvas.MoveTo(FPosP2.x - 1, FPosP2.y);
    canvas.LineTo(FPosP1.x, FPosP2.y);
    canvas.LineTo(FPosP1.x, FPosP1.y);
}

void TCustomLines::DynaShapeStart() {
    if (OnDynaShapeStart) OnDynaShapeStart(this);
}

void TCustomLines::DynaShapeEnd() {
    if (OnDynaShapeEnd) OnDynaShapeEnd(this);
}

void TCustomLines::Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos) {
    TPoint p = CurPos;
    SnapMove(p);
    if (PreviewCanvas()) DynShape();
    if (ScrollProc) ScrollProc();
    // The uncovered area is painted here, and a click may end the gesture meanwhile.
    Application.ProcessMessages();
    if (!ToolState.Contains(tsCanScroll)) return;
    FPosP2 = p;
    if (PreviewCanvas()) DynShape();
    if (OnDynaShapeMove) OnDynaShapeMove(this, TShiftState{}, FPosP2.x - FPosP1.x, FPosP2.y - FPosP1.y);
}

TvlObject* TCustomLines::SetPolyObj(const TPoint* Points, std::int32_t NPnts) {
    // Reading before the start of the array is not repeated: no points, no chain.
    if (!Points || NPnts <= 0) return nullptr;
    const bool keep = FPolyShape;
    FPolyShape = true;
    TvlObject* last = nullptr;
    try {
        for (std::int32_t i = 0; i < NPnts; ++i) last = SetNewObj(Points[i]);
        RMouseDown(TShiftState{}, Points[NPnts - 1]);
    } catch (...) {
        FPolyShape = keep;
        throw;
    }
    FPolyShape = keep;
    return last;
}

// ---------------------------------------------------------------------------------------------------
// Connectors
// ---------------------------------------------------------------------------------------------------

void TCustomLineDepends::SetMasterObject(TCustomPoints* Value) {
    FPointTool = Value;
    if (Value) Value->FreeNotification(this);
}

void TCustomLineDepends::Notification(TComponent* AComponent, TOperation Operation) {
    TCustomLines::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FPointTool) FPointTool = nullptr;
}

void TCustomLineDepends::ObjectGone(TBoxObject* Gone) {
    if (!Gone || Gone == P1) P1 = nullptr;
    if (!Gone || Gone == P2) P2 = nullptr;
}

void TCustomLineDepends::Activate(TObject* Sender) {
    if (!OnObjectFound && !FPointTool) {
        ShowError(MasterUndefined);
        return;
    }
    TCustomLines::Activate(Sender);
}

bool TCustomLineDepends::ObjectFound(TvlObject* CurrentObject) {
    bool accept = false;
    if (OnObjectFound) {
        OnObjectFound(CurrentObject, accept);
    } else if (FPointTool && CurrentObject->Tool() == FPointTool) {
        accept = true;
        if (FDrawForm) FDrawForm->SetCursor(FPointTool->Cursor());
    }
    return accept;
}

void TCustomLineDepends::MouseMove(TShiftState Shift, const TPoint& CurPos) {
    TCustomLines::MouseMove(Shift, CurPos);
    FindMouseObject(CurPos);
}

void TCustomLineDepends::ForgetEnds() {
    P1 = nullptr;
    P2 = nullptr;
}

TvlObject* TCustomLineDepends::SetNewObj(const TPoint& CurPos) {
    if (!FPointTool && !OnObjectFound) {
        ShowError(MasterUndefined);
        return nullptr;
    }
    // The end object: the one under the mouse, unless it is the open gesture's own start, else a new
    // point there.
    TvlObject* found = MouseFnd();
    const bool working = ToolState.Contains(tsWorking);
    TvlObject* end = nullptr;
    TPoint pos = CurPos;
    if (found && !(working && found == P1)) {
        end = found;
        pos = found->GetPos();
    } else {
        if (!FPointTool) return nullptr;
        end = FPointTool->SetNewObj(CurPos);
        if (!end) return nullptr;
    }
    if (!working) {
        FPosP1 = pos;
        P1 = end;
        FPosP2 = pos;
        DrawDynLin();
        DynaShapeStart();
        EnterGesture();
        return nullptr;
    }
    DrawDynLin();
    DynaShapeEnd();
    FPosP2 = pos;
    P2 = end;
    std::unique_ptr<TvlObject> made(CreateObject());
    auto* line = dynamic_cast<TLineObj*>(made.get());
    if (!line) {
        // The gesture stays open, without a preview.
        ShowError(WrongClass);
        return nullptr;
    }
    // A start object that left the drawing during the gesture leaves the first end free where it was.
    if (P1)
        line->SetMaster(P1);
    else
        line->SetPos(FPosP1);
    line->SetMaster2(P2);
    RegisterNewObj(std::move(made));
    if (FPolyShape) {
        FPosP1 = FPosP2;
        P1 = P2;
        DrawDynLin();
        DynaShapeStart();
    } else {
        LeaveGesture();
        ForgetEnds();
    }
    return line;
}

TvlObject* TCustomLineDepends::LinkNewObj(const TPoint& CurPos) {
    TLimRec r = LimRec(CurPos.x, CurPos.y, CurPos.x + 1, CurPos.y + 1);
    TvlDataMod* dm = GetDataModule();
    SetMouseFnd(
        dm ? dm->LastObjectWith([this](TvlObject* Obj, void* Params) { return MouseFind(Obj, Params); }, &r)
           : nullptr);
    TvlObject* result = SetNewObj(CurPos);
    SetMouseFnd(nullptr);
    return result;
}

TvlObject* TCustomLineDepends::LinkNewObjTo(TvlObject* aObject) {
    if (!aObject) return nullptr;
    SetMouseFnd(aObject);
    TvlObject* result = SetNewObj(aObject->GetPos());
    SetMouseFnd(nullptr);
    return result;
}

} // namespace vl
