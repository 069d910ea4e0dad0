// Stand-ins of the paint and hit protocol tests: an object that outlines and fills its local
// rectangle and offers a handle at each corner, a creator for it, a data module with selection and
// marks that owns its objects and keeps move snapshots, and a fixture with a shown draw box whose
// logical units are pixels, so that logical positions are the box's client pixels.
#pragma once

#include "objects/Generators.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"
#include "tools/HostRoutines.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vl::test {

inline constexpr QRgb White = 0xFFFFFF;
inline constexpr QRgb Blue = 0x0000FF;
inline constexpr QRgb Red = 0xFF0000;
inline constexpr QRgb Black = 0x000000;
inline constexpr QRgb Grey = 0x808080;
inline constexpr QRgb Green = 0x008000;

// What the canvas held when an object drew its shape.
struct TShapeCall {
    std::string Obj;
    TPoint WindowOrg;
    TColor PenColor;
    TPenMode PenMode;
    TColor BrushColor;
    TBrushStyle BrushStyle;
};

class TPaintObj;

class TPaintCreator : public TvlCreator {
public:
    TPaintCreator(TComponent* AOwner, std::int16_t ID) : TvlCreator(AOwner), FID(ID) {}
    std::int16_t GetID() override { return FID; }
    TvlObject* CreateObject() override;

private:
    std::int16_t FID;
};

// A rectangle of `W` by `H` units that draws itself as the canvas's `Rectangle` over its local
// rectangle, logging each shape; a handle sits at each corner of the local rectangle.
class TPaintObj : public TvlObject {
public:
    explicit TPaintObj(TvlCreator* ATool) : TvlObject(ATool) {}

    std::int32_t GetWidth() override { return W; }
    std::int32_t GetHeight() override { return H; }
    void SetMaster(TvlObject* Value) override {
        State.Include(isSlave);
        Pos.ConObj = Value;
        Pos.SetRelPos(0);
    }
    void Shape() override {
        TCanvas& c = *ActScaleSet->Canvas();
        TPoint org{};
        GetWindowOrgEx(c.Handle(), &org);
        if (Log)
            Log->push_back(
                {Name, org, c.Pen().Color(), c.Pen().Mode(), c.Brush().Color(), c.Brush().Style()});
        c.Rectangle(GetLeft(), GetTop(), GetRight(), GetBottom());
    }
    bool CheckShape(const TLimRec& CurLims) override {
        (void)CurLims;
        ++ShapeChecks;
        return ShapeHit;
    }
    void AdjustToScale() override { ++Adjusted; }
    // Handles at the corners of the local rectangle, in the order x1y1, x2y2, x1y2, x2y1.
    TPoint Corner(TSizingHandle Handle) {
        switch (Handle) {
        case szX1Y1: return Point(GetLeft(), GetTop());
        case szX2Y2: return Point(GetRight(), GetBottom());
        case szX1Y2: return Point(GetLeft(), GetBottom());
        case szX2Y1: return Point(GetRight(), GetTop());
        default: return Point(0, 0);
        }
    }
    bool SizingHandles(TPoint Pt, TSizeMode Mode) override {
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
    void StartMove() override {
        if (ThrowOnMove) throw Exception(QStringLiteral("refused"));
        TvlObject::StartMove();
    }
    void SetID(std::uint16_t Value) { ObjID = Value; }
    using TvlObject::HandleRect;

    std::int32_t W = 20;
    std::int32_t H = 20;
    std::string Name;
    std::vector<TShapeCall>* Log = nullptr;
    bool ShapeHit = true;
    int ShapeChecks = 0;
    int Adjusted = 0;
    bool ThrowOnMove = false;
};

inline TvlObject* TPaintCreator::CreateObject() {
    return new TPaintObj(this);
}

// An undo manager that keeps one open snapshot and records what is asked of it.
class TRecordingUndo : public TUndoManager {
public:
    void InitBackup(TBackupMode Mode) override {
        Modes.push_back(Mode);
        Open = std::make_unique<TMemoryStream>();
        OpenMode = Mode;
    }
    void CloseBackup() override {
        if (Open) Closed.push_back(Open->Bytes());
        Open.reset();
    }
    TMemoryStream* CurrentBackup() override { return Open.get(); }
    TBackupMode CurrentBackupMode() const override { return OpenMode; }
    void Undo(TvlDataMod&) override {}
    void Redo(TvlDataMod&) override {}

    std::vector<TBackupMode> Modes;
    std::vector<QByteArray> Closed;
    std::unique_ptr<TMemoryStream> Open;
    TBackupMode OpenMode = bkEmpty;
};

// A data module that owns its objects in z-order; selection, marks, undo and the restore rect are
// the module base's own.
class TPaintDataMod : public TvlDataMod {
public:
    explicit TPaintDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}

    TPaintObj* Add(TvlCreator* Tool, TPoint P, std::int32_t W = 20, std::int32_t H = 20) {
        auto obj = std::make_unique<TPaintObj>(Tool);
        obj->SetPos(P);
        obj->W = W;
        obj->H = H;
        obj->SetVisible(true);
        obj->SetID(static_cast<std::uint16_t>(Objects.size() + 1));
        Objects.push_back(std::move(obj));
        return Objects.back().get();
    }

    TLimRec GetLimits() override {
        TLimRec l = EmptyLimRec;
        for (const auto& o : Objects) {
            const TLimRec r = o->GetLimits();
            l.Xmin = std::min(l.Xmin, r.Xmin);
            l.Ymin = std::min(l.Ymin, r.Ymin);
            l.Xmax = std::max(l.Xmax, r.Xmax);
            l.Ymax = std::max(l.Ymax, r.Ymax);
        }
        return l;
    }
    std::int32_t GetCount() override { return static_cast<std::int32_t>(Objects.size()); }
    void AllObjects(const TAllObjectsProc& Action, void* Params) override {
        for (std::size_t i = 0; i < Objects.size(); ++i) Action(Objects[i].get(), Params);
    }
    void CheckLinks(TInvolve Code) override {
        ++LinkChecks;
        AllObjects(&TvlDataMod::AnyLink, &Code);
    }
    void InitLimits() override {}
    bool Empty() override { return Objects.empty(); }
    void LoadFromFile(const QString&) override {}
    void SaveToFile(const QString&) override {}
    void CheckLimits(TvlObject* O, bool Done) override { LimitChecks.push_back({O, Done}); }
    std::vector<TvlObject*> MarkList() const {
        std::vector<TvlObject*> r;
        for (int i = 0; i < MarkCount(); ++i) r.push_back(Marked(i));
        return r;
    }

    std::vector<std::unique_ptr<TPaintObj>> Objects;
    std::vector<std::pair<TvlObject*, bool>> LimitChecks;
    int LinkChecks = 0;
};

// A form with one shown draw box at (10, 10), 300 by 200 pixels, white, logical units of one pixel
// with the origin at the top left, a paint data module and one creator (ID -3) with a black pen of
// width 1 and a solid blue brush.
class PaintFixture : public FormFixture {
protected:
    void SetUp() override {
        SavedScale = ActScaleSet;
        NewForm(Bounds(0, 0, 400, 300));
        Box = NewBox(Rect(10, 10, 310, 210));
        Box->SetColor(clWhite);
        Box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
        Box->AfterPaint = [this](TObject*) { ++Paints; };
        Store = new TPaintDataMod(Form.get());
        Store->SetName(QStringLiteral("Data1"));
        Store->FDrawForm = Box;
        Box->SetDataModule(Store);
        Tool = new TPaintCreator(Form.get(), -3);
        Tool->FDrawForm = Box;
        Gen().Pen().SetColor(clBlack);
        Gen().Pen().SetWidth(1);
        Gen().Brush().SetColor(clBlue);
        Gen().Brush().SetStyle(bsSolid);
        Form->BeginLoadingAll();
        Form->LoadedAll();
        Form->Activate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form->Widget()));
        Settle();
        ActScaleSet = &Box->ScaleSetting();
    }
    void TearDown() override {
        SizingHandle = szNone;
        Store->MarkCase().Clear();
        Store->Objects.clear();
        Form.reset();
        QApplication::processEvents();
        ActScaleSet = SavedScale;
        Screen.SetPixelsPerInch(0);
    }

    TCustomGenerator& Gen() { return *Tool->Generator(); }
    TCanvas& Canvas() { return *Box->ScaleSetting().Canvas(); }
    // Repaints the whole box now.
    void PaintAll() {
        Box->InvalidateBox();
        Box->Update();
        Settle();
    }
    TPaintObj* AddObj(TPoint P, const std::string& Name = "obj", std::int32_t W = 20, std::int32_t H = 20) {
        TPaintObj* o = Store->Add(Tool, P, W, H);
        o->Name = Name;
        o->Log = &Shapes;
        return o;
    }
    QRgb SurfacePixel(int X, int Y) const { return Box->Surface().Image().pixel(X, Y) & 0xFFFFFF; }
    QPoint InWindow(int X, int Y) const {
        const int b = Box->BorderWidth();
        return Box->Widget()->mapTo(Form->Widget(), QPoint(X + b, Y + b));
    }
    // The colour that reached the window at a client pixel of the box.
    QRgb ScreenPixel(int X, int Y) const {
        const QPoint p = InWindow(X, Y);
        const QImage shot =
            Form->Widget()->screen()->grabWindow(Form->Widget()->winId(), p.x(), p.y(), 1, 1).toImage();
        return shot.pixel(0, 0) & 0xFFFFFF;
    }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TCursorServiceDouble Cursor;
    TServiceScope<TCursorService> CursorScope{Cursor};
    TvlDrawbox* Box = nullptr;
    TPaintDataMod* Store = nullptr;
    TPaintCreator* Tool = nullptr;
    TScaleSetting* SavedScale = nullptr;
    std::vector<TShapeCall> Shapes;
    int Paints = 0;
};

} // namespace vl::test
