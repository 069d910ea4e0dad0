// The test object and the test creator that every test program shares.
//
// `TTestObject` is one object class whose behaviour the test chooses through its fields. Left at their
// defaults they keep the object base's behaviour, except that the object reports the size `W` by `H`,
// follows a master given to `SetMaster` and counts what is asked of it. Each option switches on one
// stand-in behaviour:
// - `Lims`: fixed limits that do not follow the position;
// - `IsBareRect`: the object is nothing but the rectangle `Lims` (no position, no creator needed), the
//   way the draw box sees objects: moving shifts the rectangle, its frame check is an overlap of the
//   rectangle and it shows by filling the rectangle with `Fill`;
// - `HitByLimits`: it is found where its limits overlap the searched rectangle, when visible;
// - `OutlinesRect` and `CornerHandles`: it draws the canvas's rectangle over its local rectangle and
//   offers a sizing handle at each corner;
// - `IsVisible`, `IsNosy`, `ShapeHit`, `ThrowOnMove`: fixed answers.
// `TTestCreator` makes `TTestObject`s, prepared by its `PrepareObject`, with an ID chosen by the test.
#pragma once

#include "objects/TvlObject.h"
#include "platform/graphics/Graphics.h"
#include "tools/CreatorBase.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vl::test {

// What the canvas held when an object drew its shape.
struct TShapeCall {
    std::string Obj;
    TPoint WindowOrg;
    TColor PenColor;
    TPenMode PenMode;
    TColor BrushColor;
    TBrushStyle BrushStyle;
};

class TTestObject : public TvlObject {
public:
    explicit TTestObject(TvlCreator* ATool = nullptr) : TvlObject(ATool) {}
    // A bare rectangle named `Name` over `Lims` that logs its paint and moves into `Log`.
    static std::unique_ptr<TTestObject> BareRect(std::string Name, TLimRec Lims,
                                                 std::vector<std::string>* Log = nullptr);

    // --- Size, place and masters ------------------------------------------------------------------
    std::int32_t GetWidth() override { return W; }
    std::int32_t GetHeight() override { return H; }
    TLimRec GetLimits() override { return Lims ? *Lims : TvlObject::GetLimits(); }
    // With `FollowsMaster`, a master makes the object its slave at a relative position of 0 and none
    // frees it where it stands, as the point and line classes do; without, nothing happens.
    void SetMaster(TvlObject* Value) override;
    // Makes the object's first end the slave of `Value`.
    void SetP1Master(TvlObject* Value);
    // Makes the object a slave of `Master` and records the link by class number and ID, as a load
    // would.
    void Follow(TvlObject* Master);
    void SetID(std::uint16_t Value) { ObjID = Value; }
    void SetRawPos(std::int32_t X, std::int32_t Y) {
        Pos.x = X;
        Pos.y = Y;
    }
    TPos& RawPos() { return Pos; }
    const TPos& RawPos() const { return Pos; }

    // --- Visibility, hits and handles -------------------------------------------------------------
    bool Visible() const override { return IsVisible ? *IsVisible : TvlObject::Visible(); }
    bool Nosy() const override { return IsNosy ? *IsNosy : TvlObject::Nosy(); }
    bool CheckFrame(const void* Params, TCheckFrame Mode) override;
    bool Found(const TLimRec& CurLims) override;
    bool CheckShape(const TLimRec& CurLims) override;
    // The corners of the local rectangle.
    TPoint Corner(TSizingHandle Handle);
    bool SizingHandles(TPoint Pt, TSizeMode Mode) override;
    using TvlObject::HandleRect;

    // --- Paint and moves --------------------------------------------------------------------------
    void Shape() override;
    void Show() override;
    void Invalidate() override;
    void MovePos(TPoint DeltaPos) override;
    void StartMove() override;
    void AdjustToScale() override { ++Adjusted; }
    void ObjectMessage(TObjMessage& Msg) override { Messages.push_back(Msg.Msg); }

    // The options.
    std::int32_t W = 0;
    std::int32_t H = 0;
    std::optional<TLimRec> Lims;
    bool IsBareRect = false;
    bool FollowsMaster = true;
    bool HitByLimits = false;
    bool OutlinesRect = false;
    bool CornerHandles = false;
    std::optional<bool> IsVisible;
    std::optional<bool> IsNosy;
    bool ShapeHit = true;
    bool ThrowOnMove = false;
    TColor Fill = clRed; // of a bare rectangle
    std::function<void()> OnShow;

    // What was asked of it. `Log` gets "<Name>.Show", ".Invalidate" and ".MovePos"; `HitLog` gets
    // "<Name>.Found"; `ShapeLog` gets the canvas at each shape of `OutlinesRect`.
    std::string Name;
    std::vector<std::string>* Log = nullptr;
    std::vector<std::string>* HitLog = nullptr;
    std::vector<TShapeCall>* ShapeLog = nullptr;
    int Invalidations = 0;
    int ShapeChecks = 0;
    int Adjusted = 0;
    std::vector<std::uint32_t> Messages;
    TScaleSetting* ShownWith = nullptr; // `ActScaleSet` at the last `Show`

private:
    void Note(std::vector<std::string>* To, const char* What) const {
        if (To) To->push_back(Name + "." + What);
    }
};

// A creator of `TTestObject`s whose ID is chosen by the test (else its index among the form's
// components). It counts the calls of the paint protocol and of `SetDefaultData`; with `PlacesOnClick`
// a click places one new object, whose position it remembers.
class TTestCreator : public TvlCreator {
public:
    explicit TTestCreator(TComponent* AOwner, std::optional<std::int16_t> ID = std::nullopt)
        : TvlCreator(AOwner), FID(ID) {}

    std::int16_t GetID() override { return FID ? *FID : TvlCreator::GetID(); }
    TCapClass DefaultClass() override { return &NewObjectOf<TTestObject>; }
    // The chosen class's new object, prepared by `PrepareObject` when it is a `TTestObject`.
    TvlObject* CreateObject() override;
    TvlObject* SetNewObj(const TPoint& CurPos) override;
    void SetDefaultData(TvlObject*) override { ++DefaultData; }
    void CheckScaling() override;
    void ReleaseResources() override;

    // A new object of this tool, numbered `ID`, visible, at (`X`, `Y`).
    TTestObject* Make(std::uint16_t ID, std::int32_t X = 0, std::int32_t Y = 0);

    std::function<void(TTestObject&)> PrepareObject;
    bool PlacesOnClick = false;
    std::vector<TPoint> Given;
    int DefaultData = 0;
    int Scalings = 0;
    int Releases = 0;

private:
    std::optional<std::int16_t> FID;
};

} // namespace vl::test
