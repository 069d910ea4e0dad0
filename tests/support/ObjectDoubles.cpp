#include "support/ObjectDoubles.h"

#include "platform/core/Exceptions.h"
#include "platform/gdi/Gdi.h"
#include "surface/ScaleSetting.h"

namespace vl::test {

std::unique_ptr<TTestObject> TTestObject::BareRect(std::string Name, TLimRec Lims,
                                                   std::vector<std::string>* Log) {
    auto obj = std::make_unique<TTestObject>();
    obj->Name = std::move(Name);
    obj->Lims = Lims;
    obj->IsBareRect = true;
    obj->IsVisible = true;
    obj->Log = Log;
    return obj;
}

void TTestObject::SetMaster(TvlObject* Value) {
    if (!FollowsMaster) return;
    if (Value) {
        State.Include(isSlave);
        Pos.ConObj = Value;
        Pos.SetRelPos(0);
    } else {
        const TPoint p = GetPos();
        State.Exclude(isSlave);
        Pos.ConObj = nullptr;
        Pos.x = p.x;
        Pos.y = p.y;
    }
}

void TTestObject::SetP1Master(TvlObject* Value) {
    State.Include(isP1Slave);
    Pos.ConObj = Value;
    Pos.SetRelPos(0);
}

void TTestObject::Follow(TvlObject* Master) {
    State.Include(isSlave);
    Pos.SetConType(Master->ClassNr());
    Pos.SetConID(Master->ID());
    Pos.ConObj = Master;
    Pos.SetRelPos(0);
}

bool TTestObject::CheckFrame(const void* Params, TCheckFrame Mode) {
    if (!IsBareRect) return TvlObject::CheckFrame(Params, Mode);
    if (Mode != cfLimRec) return false;
    const auto& r = *static_cast<const TLimRec*>(Params);
    const TLimRec& l = *Lims;
    return l.Xmin <= r.Xmax && l.Xmax >= r.Xmin && l.Ymin <= r.Ymax && l.Ymax >= r.Ymin;
}

bool TTestObject::Found(const TLimRec& CurLims) {
    if (!HitByLimits) return TvlObject::Found(CurLims);
    Note(HitLog, "Found");
    const TLimRec l = GetLimits();
    const TLimRec& r = CurLims;
    return Visible() && r.Xmin < l.Xmax && r.Xmax > l.Xmin && r.Ymin < l.Ymax && r.Ymax > l.Ymin;
}

bool TTestObject::CheckShape(const TLimRec&) {
    ++ShapeChecks;
    return ShapeHit;
}

TPoint TTestObject::Corner(TSizingHandle Handle) {
    switch (Handle) {
    case szX1Y1: return Point(GetLeft(), GetTop());
    case szX2Y2: return Point(GetRight(), GetBottom());
    case szX1Y2: return Point(GetLeft(), GetBottom());
    case szX2Y1: return Point(GetRight(), GetTop());
    default: return Point(0, 0);
    }
}

bool TTestObject::SizingHandles(TPoint Pt, TSizeMode Mode) {
    if (!CornerHandles) return TvlObject::SizingHandles(Pt, Mode);
    // In the order x1y1, x2y2, x1y2, x2y1.
    static constexpr TSizingHandle Handles[] = {szX1Y1, szX2Y2, szX1Y2, szX2Y1};
    if (Mode == smShape) {
        for (TSizingHandle h : Handles) DrawHandle(Corner(h));
        return false;
    }
    for (TSizingHandle h : Handles)
        if (OnHandle(Pt, Corner(h))) {
            SizingHandle = h;
            return true;
        }
    SizingHandle = szNone;
    return false;
}

void TTestObject::Shape() {
    if (!OutlinesRect) return TvlObject::Shape();
    TCanvas& c = *ActScaleSet->Canvas();
    TPoint org{};
    GetWindowOrgEx(c.Handle(), &org);
    if (ShapeLog)
        ShapeLog->push_back(
            {Name, org, c.Pen().Color(), c.Pen().Mode(), c.Brush().Color(), c.Brush().Style()});
    c.Rectangle(GetLeft(), GetTop(), GetRight(), GetBottom());
}

void TTestObject::Show() {
    if (!IsBareRect) return TvlObject::Show();
    Note(Log, "Show");
    ShownWith = ActScaleSet;
    if (OnShow) OnShow();
    if (ActScaleSet && ActScaleSet->Canvas()) {
        TCanvas& c = *ActScaleSet->Canvas();
        c.Brush().SetColor(Fill);
        c.Brush().SetStyle(bsSolid);
        c.FillRect(Rect(Lims->Xmin, Lims->Ymin, Lims->Xmax, Lims->Ymax));
    }
}

void TTestObject::Invalidate() {
    ++Invalidations;
    Note(Log, "Invalidate");
    // A bare rectangle is not part of a drawing's restore rect: the draw box tests watch the calls.
    if (!IsBareRect) TvlObject::Invalidate();
}

void TTestObject::MovePos(TPoint DeltaPos) {
    if (!IsBareRect) return TvlObject::MovePos(DeltaPos);
    Note(Log, "MovePos");
    Lims->Xmin += DeltaPos.x;
    Lims->Xmax += DeltaPos.x;
    Lims->Ymin += DeltaPos.y;
    Lims->Ymax += DeltaPos.y;
}

void TTestObject::StartMove() {
    if (ThrowOnMove) throw Exception(QStringLiteral("refused"));
    TvlObject::StartMove();
}

TvlObject* TTestCreator::CreateObject() {
    TvlObject* obj = TvlCreator::CreateObject();
    if (auto* test = dynamic_cast<TTestObject*>(obj); test && PrepareObject) PrepareObject(*test);
    return obj;
}

TvlObject* TTestCreator::SetNewObj(const TPoint& CurPos) {
    if (!PlacesOnClick) return TvlCreator::SetNewObj(CurPos);
    Given.push_back(CurPos);
    return PlaceNewObject(CurPos);
}

void TTestCreator::CheckScaling() {
    ++Scalings;
    TvlCreator::CheckScaling();
}

void TTestCreator::ReleaseResources() {
    ++Releases;
    TvlCreator::ReleaseResources();
}

TTestObject* TTestCreator::Make(std::uint16_t ID, std::int32_t X, std::int32_t Y) {
    auto* obj = static_cast<TTestObject*>(CreateObject());
    obj->SetID(ID);
    obj->SetRawPos(X, Y);
    obj->State.Include(isVisible);
    return obj;
}

} // namespace vl::test
