// The object base: identity, positions, master and slave, attributes read through the tool, bounds,
// and the selection, move and invalidation steps of the protocol. Streaming is in ObjectPersist.cpp.
#include "objects/TvlObject.h"

#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Exceptions.h"
#include "platform/graphics/Graphics.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <algorithm>
#include <cstdlib>

namespace vl {

void AddPasteID(const TPasteIDRec& Rec) {
    // The record list holds raw bytes; the three fields are laid out little-endian, 2 bytes each.
    std::uint8_t bytes[PasteIDRecSize];
    const std::uint16_t fields[3] = {static_cast<std::uint16_t>(Rec.ClassNr), Rec.OldID, Rec.NewID};
    for (int i = 0; i < 3; ++i) {
        bytes[2 * i] = static_cast<std::uint8_t>(fields[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(fields[i] >> 8);
    }
    PasteIDList->Add(bytes);
}

TPasteIDRec PasteIDAt(std::int32_t Index) {
    const auto* bytes = static_cast<const std::uint8_t*>(PasteIDList->Get(Index));
    auto field = [bytes](int i) {
        return static_cast<std::uint16_t>(bytes[2 * i] | (static_cast<std::uint16_t>(bytes[2 * i + 1]) << 8));
    };
    return {static_cast<std::int16_t>(field(0)), field(1), field(2)};
}

// --- Life ---------------------------------------------------------------------------------------

TvlObject::TvlObject(TObjectCreator* ATool) : FTool(ATool) {
    if (TCustomGenerator* gen = Generator()) gen->IncInstance();
}

TvlObject::~TvlObject() {
    if (TCustomGenerator* gen = Generator()) gen->DecInstance();
}

TCustomGenerator* TvlObject::Generator() const {
    return FTool ? FTool->Generator() : nullptr;
}

TvlCreator* TvlObject::Tool() const {
    return FTool ? FTool->Creator() : nullptr;
}

TCustomDrawBox* TvlObject::DrawForm() const {
    return FTool ? FTool->Environment()->FDrawForm : nullptr;
}

TObjectStore* TvlObject::GetDataModule() const {
    TCustomDrawBox* box = DrawForm();
    // Every data module of a box is an object store; a box that holds another kind of store (a
    // host's own) has none for its objects.
    return box ? dynamic_cast<TObjectStore*>(box->DataModule()) : nullptr;
}

std::int16_t TvlObject::ClassNr() const {
    return FTool ? static_cast<std::int16_t>(FTool->GetID()) : 0;
}

void TvlObject::Count() {
    TObjectStore* dm = GetDataModule();
    TCustomGenerator* gen = Generator();
    if (dm && gen) ObjID = dm->IncCounter(gen->Counter());
}

TvlObject* TvlObject::FindObject(const TContype& Link) const {
    TObjectStore* dm = GetDataModule();
    return dm ? dm->FindObject(Link) : nullptr;
}

TvlObject* TvlObject::GetMaster() const {
    if (IsAnySlave()) return Pos.ConObj;
    return const_cast<TvlObject*>(this);
}

void TvlObject::Connect(TvlDataMod* DataMod) {
    (void)DataMod;
    Persist(nullptr, TPstMode::pstConnect);
}

TScaleSetting& TvlObject::Scale() {
    if (!ActScaleSet) throw Exception(QStringLiteral("No scale setting in force"));
    return *ActScaleSet;
}

TCanvas& TvlObject::ScaleCanvas() {
    TScaleSetting& scale = Scale();
    if (!scale.Canvas()) throw Exception(QStringLiteral("No canvas in the scale setting"));
    return *scale.Canvas();
}

// --- Virtual protocol: the plain base behaviours -------------------------------------------------

void TvlObject::SetMaster(TvlObject* Value) {
    (void)Value;
}

double TvlObject::GetX_World() {
    return Scale().LogToWorld(X_Log());
}
double TvlObject::GetY_World() {
    return Scale().LogToWorld(Y_Log());
}

QString TvlObject::GetText() {
    return {};
}
void TvlObject::SetText(const QString& Value) {
    (void)Value;
}

TFont* TvlObject::GetFont() {
    TCustomGenerator* gen = Generator();
    if (!gen) return nullptr;
    if (gen->Options().Contains(goMasterFont) && State.Contains(isSlave) && Pos.ConObj)
        return Pos.ConObj->Font();
    return &gen->Font();
}

void TvlObject::SetFont(TFont* Value) {
    (void)Value;
}

std::int32_t TvlObject::GetFontHeightBk() {
    TCustomGenerator* gen = Generator();
    if (!gen) return 0;
    if (gen->Options().Contains(goMasterFont) && State.Contains(isSlave) && Pos.ConObj)
        return Pos.ConObj->FontHeightBk();
    return gen->FontBackup;
}

void TvlObject::SetPicture(TPicture* Value) {
    (void)Value;
}

TPicture* TvlObject::GetPicture() {
    TCustomGenerator* gen = Generator();
    return gen ? &gen->Picture() : nullptr;
}

// --- Position -----------------------------------------------------------------------------------
//
// A slave whose master is missing (a link that found nothing) counts from the origin rather than
// following a null reference.

std::int32_t TvlObject::GetX() {
    if (!State.Contains(isSlave)) return Pos.x;
    if (FTool && FTool->OnCalcRefPoint) return GetXRef();
    const std::int32_t masterX = Pos.ConObj ? Pos.ConObj->X_Log() : 0;
    return WrapAdd(masterX, Pos.RelX());
}

std::int32_t TvlObject::GetY() {
    if (!State.Contains(isSlave)) return Pos.y;
    if (FTool && FTool->OnCalcRefPoint) return GetYRef();
    const std::int32_t masterY = Pos.ConObj ? Pos.ConObj->Y_Log() : 0;
    return WrapAdd(masterY, Pos.RelY());
}

std::int32_t TvlObject::GetXRef() {
    TPoint ref{0, 0};
    FTool->OnCalcRefPoint(this, ref);
    return WrapAdd(ref.x, Pos.RelX());
}

std::int32_t TvlObject::GetYRef() {
    TPoint ref{0, 0};
    FTool->OnCalcRefPoint(this, ref);
    return WrapAdd(ref.y, Pos.RelY());
}

void TvlObject::SetXRef(std::int32_t Value) {
    TPoint ref{0, 0};
    FTool->OnCalcRefPoint(this, ref);
    Pos.SetRelX(WrapSub(Value, ref.x));
}

void TvlObject::SetYRef(std::int32_t Value) {
    TPoint ref{0, 0};
    FTool->OnCalcRefPoint(this, ref);
    Pos.SetRelY(WrapSub(Value, ref.y));
}

void TvlObject::SetX(std::int32_t Value) {
    if (State.Contains(isP1Slave)) return;
    if (!State.Contains(isSlave)) {
        Pos.x = Value;
    } else if (FTool && FTool->OnCalcRefPoint) {
        SetXRef(Value);
    } else {
        Pos.SetRelX(WrapSub(Value, Pos.ConObj ? Pos.ConObj->X_Log() : 0));
    }
}

void TvlObject::SetY(std::int32_t Value) {
    if (State.Contains(isP1Slave)) return;
    if (!State.Contains(isSlave)) {
        Pos.y = Value;
    } else if (FTool && FTool->OnCalcRefPoint) {
        SetYRef(Value);
    } else {
        Pos.SetRelY(WrapSub(Value, Pos.ConObj ? Pos.ConObj->Y_Log() : 0));
    }
}

void TvlObject::SetPos(TPoint Pt) {
    if (State.Contains(isP1Slave)) return;
    if (State.Contains(isSlave)) {
        Pos.SetRelX(WrapSub(Pt.x, Pos.ConObj ? Pos.ConObj->X_Log() : 0));
        Pos.SetRelY(WrapSub(Pt.y, Pos.ConObj ? Pos.ConObj->Y_Log() : 0));
    } else {
        Pos.x = Pt.x;
        Pos.y = Pt.y;
    }
}

void TvlObject::SetX_World(double Value) {
    if (State.Contains(isP1Slave)) return;
    const std::int32_t v = Scale().WorldToLog(Value);
    if (State.Contains(isSlave))
        Pos.SetRelX(WrapSub(v, Pos.ConObj ? Pos.ConObj->X_Log() : 0));
    else
        Pos.x = v;
}

void TvlObject::SetY_World(double Value) {
    if (State.Contains(isP1Slave)) return;
    const std::int32_t v = Scale().WorldToLog(Value);
    if (State.Contains(isSlave))
        Pos.SetRelY(WrapSub(v, Pos.ConObj ? Pos.ConObj->Y_Log() : 0));
    else
        Pos.y = v;
}

// --- Bounds -------------------------------------------------------------------------------------

std::int32_t TvlObject::GetMaxX() {
    return WrapAdd(GetMinX(), GetWidth());
}
std::int32_t TvlObject::GetMinX() {
    return GetX();
}
std::int32_t TvlObject::GetMaxY() {
    return WrapAdd(GetMinY(), GetHeight());
}
std::int32_t TvlObject::GetMinY() {
    return GetY();
}

TLimRec TvlObject::GetLimits() {
    return LimRec(GetMinX(), GetMinY(), GetMaxX(), GetMaxY());
}

std::int32_t TvlObject::GetHeight() {
    return 0;
}
std::int32_t TvlObject::GetWidth() {
    return 0;
}
void TvlObject::SetWidth(std::int32_t Value) {
    (void)Value;
}

TSize TvlObject::GetExtent() {
    const TLimRec l = GetLimits();
    return {std::abs(WrapSub(l.Xmax, l.Xmin)), std::abs(WrapSub(l.Ymax, l.Ymin))};
}

TPoint TvlObject::GetHotSpot() const {
    TCustomGenerator* gen = Generator();
    return gen ? TPoint{gen->HotspotX(), gen->HotspotY()} : TPoint{0, 0};
}

std::int32_t TvlObject::GetDRoundRect() const {
    if (FTool && FTool->Environment()->Tag() > 0)
        return static_cast<std::int32_t>(FTool->Environment()->Tag());
    return RoundRectX3;
}

std::int32_t TvlObject::GetLeft() {
    return Scale().RightOrigin() ? GetWidth() : 0;
}
std::int32_t TvlObject::GetRight() {
    return Scale().RightOrigin() ? 0 : GetWidth();
}
std::int32_t TvlObject::GetTop() {
    return Scale().BottomOrigin() ? GetHeight() : 0;
}
std::int32_t TvlObject::GetBottom() {
    return Scale().BottomOrigin() ? 0 : GetHeight();
}

TRect TvlObject::GetRect_Lcl() {
    return Rect(GetLeft(), GetTop(), GetRight(), GetBottom());
}

TRect TvlObject::GetRect() {
    const TRect r = GetRect_Lcl();
    const TLimRec l = OffsetLimits(LimRec(r.Left, r.Top, r.Right, r.Bottom), GetMinX(), GetMinY());
    return Rect(l.Xmin, l.Ymin, l.Xmax, l.Ymax);
}

TLimRec TvlObject::GetMaxLimits() {
    std::int32_t mx = 0;
    std::int32_t my = 0;
    TCustomGenerator* gen = Generator();
    TCustomDrawBox* box = DrawForm();
    if (gen && gen->Options().Contains(goShadows) && box) {
        mx = box->Shadows().dX();
        my = box->Shadows().dY();
    }
    if (State.Contains(isSizing)) {
        const std::int32_t frame = Scale().GetTempFrame();
        mx = std::max(mx, frame);
        my = std::max(my, frame);
    }
    if (gen) {
        mx += 3 * gen->Pen().Width();
        my += 3 * gen->Pen().Width();
    }
    TLimRec l = GetLimits();
    l.Xmin = WrapSub(l.Xmin, mx);
    l.Xmax = WrapAdd(l.Xmax, mx);
    l.Ymin = WrapSub(l.Ymin, my);
    l.Ymax = WrapAdd(l.Ymax, my);
    return l;
}

bool TvlObject::SizingHandles(TPoint Pt, TSizeMode Mode) {
    (void)Pt;
    (void)Mode;
    return false;
}

// --- Master, selection and deletion ---------------------------------------------------------------

void TvlObject::AssignPos(TvlObject* MirrorObj) {
    if (!MirrorObj) return;
    if (IsAnySlave())
        Pos.SetRelPos(MirrorObj->Pos.RelPos());
    else
        Pos = MirrorObj->Pos;
}

std::int32_t TvlObject::Involved(TInvolve Code) {
    const bool slave = State.Contains(isSlave);
    const bool masterSelected = slave && Pos.ConObj && Pos.ConObj->Selected();
    switch (Code) {
    case invMove:
        if (Visible() && masterSelected) {
            Select(smSelect);
            State.Include(isCantMove);
        }
        break;
    case invDelete:
        if (masterSelected) Select(smSelect);
        break;
    case invCopy:
        if (slave) {
            if (Selected() && !masterSelected)
                Select(smUnselect);
            else if (!Selected() && masterSelected)
                Select(smSelect);
        }
        break;
    }
    return 0;
}

void TvlObject::CanDelete() {
    if (State.Contains(isSlave) && !(Pos.ConObj && Pos.ConObj->Selected())) {
        Select(smUnselect);
        return;
    }
    State.Include(isDeleted);
    Invalidate();
}

void TvlObject::SelectComplete(TSelectMode Mode) {
    Select(Mode);
}

void TvlObject::Select(TSelectMode Mode) {
    TObjectStore* dm = GetDataModule();
    if (!dm) return;
    if (Mode == smSelect)
        dm->Select(this);
    else
        dm->UnSelect(this);
}

void TvlObject::RemoveSelectFlag() {
    State.Exclude(isSelected);
    if (State.Contains(isMarked)) {
        Invalidate();
        State.Exclude(isMarked);
        State.Exclude(isSizing);
    }
}

void TvlObject::SetSizing(bool Value) {
    TCustomGenerator* gen = Generator();
    if (gen && gen->Options().Contains(goNoSizing)) return;
    if (Value == State.Contains(isSizing)) return;
    if (Value) {
        State.Include(isSizing);
    } else {
        Invalidate();
        State.Exclude(isSizing);
        SizingHandle = szNone;
    }
}

bool TvlObject::Visible() const {
    if (!State.Contains(isVisible)) return false;
    TCustomGenerator* gen = Generator();
    return !(gen && gen->RtOptions().Contains(roHidden));
}

void TvlObject::SetVisible(bool Value) {
    if (Value)
        State.Include(isVisible);
    else
        State.Exclude(isVisible);
}

bool TvlObject::Nosy() const {
    TCustomGenerator* gen = Generator();
    return gen && gen->RtOptions().Contains(roNosy);
}

bool TvlObject::CheckFrame(const void* Koord, TCheckFrame Code) {
    const TLimRec l = GetMaxLimits();
    switch (Code) {
    case cfPoint: {
        const auto& p = *static_cast<const TPoint*>(Koord);
        return l.Xmin <= p.x && p.x <= l.Xmax && l.Ymin <= p.y && p.y <= l.Ymax;
    }
    case cfRect: {
        const auto& r = *static_cast<const TRect*>(Koord);
        TScaleSetting& sc = Scale();
        const bool horz = sc.RightOrigin() ? (r.Left >= l.Xmax && r.Right <= l.Xmin)
                                           : (r.Left <= l.Xmax && r.Right >= l.Xmin);
        const bool vert = sc.BottomOrigin() ? (r.Top >= l.Ymax && r.Bottom <= l.Ymin)
                                            : (r.Top <= l.Ymax && r.Bottom >= l.Ymin);
        return horz && vert;
    }
    case cfLimRec: {
        const auto& r = *static_cast<const TLimRec*>(Koord);
        return r.Xmin <= l.Xmax && r.Xmax >= l.Xmin && r.Ymin <= l.Ymax && r.Ymax >= l.Ymin;
    }
    }
    return false;
}

// --- Moving and invalidation ----------------------------------------------------------------------

bool TvlObject::Found(const TLimRec& CurLims) {
    if (ActScaleSet && ActScaleSet->State.Contains(scChanged)) AdjustToScale();
    if (!Visible()) return false;
    if (!CheckFrame(&CurLims, cfLimRec)) return false;
    return CheckShape(CurLims);
}

bool TvlObject::CheckShape(const TLimRec& CurLims) {
    (void)CurLims;
    return true;
}

void TvlObject::StartMove() {
    Scale().State.Include(scMovingObjects);
    if (TObjectStore* dm = GetDataModule()) dm->CheckLimits(this, false);
    Invalidate();
}

void TvlObject::MovePos(TPoint DeltaPos) {
    if (State.Contains(isCantMove)) return;
    TCustomGenerator* gen = Generator();
    const bool noHorz = gen && gen->Options().Contains(goNoHorzMove);
    const bool noVert = gen && gen->Options().Contains(goNoVertMove);
    if (State.Contains(isSlave)) {
        if (!noHorz) Pos.SetRelX(Pos.RelX() + DeltaPos.x);
        if (!noVert) Pos.SetRelY(Pos.RelY() + DeltaPos.y);
    } else {
        if (!noHorz) Pos.x = WrapAdd(Pos.x, DeltaPos.x);
        if (!noVert) Pos.y = WrapAdd(Pos.y, DeltaPos.y);
    }
}

void TvlObject::EndMove() {
    State.Exclude(isCantMove);
    Invalidate();
    Scale().State.Exclude(scMovingObjects);
    if (TObjectStore* dm = GetDataModule()) dm->CheckLimits(this, true);
}

void TvlObject::Rotate(TPoint Origin, double Delta) {
    (void)Origin;
    (void)Delta;
}

void TvlObject::Invalidate() {
    if (ActScaleSet && ActScaleSet->State.Contains(scChanged)) AdjustToScale();
    const TLimRec l = GetMaxLimits();
    TObjectStore* dm = GetDataModule();
    if (!dm) return;
    TLimRec& r = dm->FRestoreRect;
    r.Xmin = std::min(r.Xmin, l.Xmin);
    r.Ymin = std::min(r.Ymin, l.Ymin);
    r.Xmax = std::max(r.Xmax, l.Xmax);
    r.Ymax = std::max(r.Ymax, l.Ymax);
}

void TvlObject::Update() {
    if (TCustomDrawBox* box = DrawForm()) box->UpdateRect(GetMaxLimits());
}

void TvlObject::AdjustToScale() {}
void TvlObject::AdjustToFontHeight() {}
void TvlObject::Shape() {}
void TvlObject::ShapeMark() {
    Shape();
}
void TvlObject::HideShadow() {
    DrawShadow();
}
void TvlObject::ObjectMessage(TObjMessage& aMessage) {
    (void)aMessage;
}

} // namespace vl
