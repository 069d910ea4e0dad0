// The draw box: the visual control on which a drawing lives, and the one entry of paint, mouse and
// key events into the system.
//
// Everything below it is passive: objects draw themselves in the mapping in force (`ActScaleSet`),
// the current tool turns logical positions into actions, the data module lists objects. The box owns
// its scale setting, grid, shadow settings, application identity and its two local (ruler) objects;
// it borrows its data module unless it made it itself (`bsOwnDataMod`), and it borrows its current
// tool (`FTool`). Borrowed references are cleared when the component goes. It sees its data module,
// its tool, the creators and the objects only through the faces of `surface/BoxLinks.h`.
//
// Every entry (paint, mouse, keys, `MoveObjects`, the end of `Loaded`) first makes the box's scale
// setting the one in force, so that two boxes on one form alternate correctly.
#pragma once

#include "geometry/Vltypes.h"
#include "surface/BoxLinks.h"
#include "surface/Scl12.h"

#include <functional>
#include <memory>

namespace vl {

class TScaleSetting;
class TShadows;
enum class TOrigin : std::uint8_t;
class TvlApplication;
class TvlGrid;

// The side of the drawing on which the draw box opens free room (`GetSpace`).
enum class TSpaceDir : std::uint8_t { dirLeft, dirTop, dirRight, dirBottom };
using enum TSpaceDir;

// A filter and an action over the tools of the box's owner; the action may set `Done` to end the walk.
using TCompFilter = std::function<bool(TComponent* AComponent)>;
using TComponentProc = std::function<void(TComponent* AComponent, bool& Done)>;

class TCustomDrawBox : public TScrollPaint {
public:
    explicit TCustomDrawBox(TComponent* AOwner);
    ~TCustomDrawBox() override;

    void Loaded() override;
    void Notification(TComponent* AComponent, TOperation Operation) override;

    // --- Properties -------------------------------------------------------------------------------
    TBoxTool* Tool() const { return FTool; }
    // Only a tool's `Activate` makes itself the current tool.
    void SetTool(TBoxTool* Value) { FTool = Value; }
    TScaleSetting& ScaleSetting() { return *FScaleSetting; }
    // The object under the mouse, shared by all tools of the box. The data module clears it when
    // that object leaves the drawing.
    TBoxObject* MouseFnd() const { return FMouseFnd; }
    void SetMouseFnd(TBoxObject* Value) { FMouseFnd = Value; }
    TCoordPnt AnchorPos() const { return FAnchor; }
    void SetAnchorPos(TCoordPnt Value) { FAnchor = Value; }
    bool ScrollAnchor() const { return FScrollAnchor; }
    void SetScrollAnchor(bool Value) { FScrollAnchor = Value; }
    TvlGrid& Grid() { return *FGrid; }
    TColor clMarkPen() const { return FclMarkPen; }
    void SetclMarkPen(TColor Value) { FclMarkPen = Value; }
    TShadows& Shadows() { return *FShadows; }
    TBoxStore* DataModule() const { return FDataModule; }
    void SetDataModule(TBoxStore* Value) { FDataModule = Value; }
    TvlApplication& App() { return *FApplication; }
    TBoxObject* ScaleHorz() const { return FScaleHorz.get(); }
    TBoxObject* ScaleVert() const { return FScaleVert.get(); }
    // The local objects are owned by the box; a new one replaces (and frees) the old.
    void SetScaleHorz(std::unique_ptr<TBoxObject> Value) { FScaleHorz = std::move(Value); }
    void SetScaleVert(std::unique_ptr<TBoxObject> Value) { FScaleVert = std::move(Value); }
    int ClipboardFmt() const { return FClipboardFmt; }

    TNotifyEvent OnScaleChange;
    TNotifyEvent BeforePaint;
    TNotifyEvent AfterPaint;
    TNotifyEvent OnPredefineObjects;

    // Set at the end of `Loaded`; the first paint consumes it.
    bool Initializing = false;

    // --- Operations -------------------------------------------------------------------------------
    virtual void DoInitialize();
    // Runs `OnPredefineObjects`, keeping the cursor, then the range check.
    void PredefineObjects();
    // Makes a data module of the box's own (owned by the box's owner, freed by the box).
    void InstallDataModule();
    // True when the data module is the host's.
    bool DefDataMod() const { return !State.Contains(bsOwnDataMod); }
    void LoadFromFile(const QString& FileName);
    void SaveToFile(const QString& FileName);
    bool CanClose() const;
    // A new object of the creator for `ToolID`; raises when there is no such creator.
    TBoxObject* CreateObject(std::int16_t ToolID);

    // The client rectangle in logical coordinates, not normalised.
    TRect GetClientRect_Log();
    TRect ClientRect_Log() { return GetClientRect_Log(); }
    // A logical point in screen coordinates.
    TPoint LogToScreen(TPoint LogPnt);

    virtual void AllLocalObjects(const TBoxObjectProc& Action, void* Params);
    virtual TBoxObject* FindLocalObject(const TBoxObjectFunc& Condition, void* Params);

    void WithToolsDo(const TCompFilter& Filter, const TComponentProc& Action);
    // An object leaves the drawing (null: all of them): it stops being the object under the mouse,
    // and every tool of the box forgets it.
    void ForgetObject(TBoxObject* Gone);
    static bool Creators(TComponent* AComponent);
    void InitTools();
    void SetDefaultTool();
    // Confines the cursor to the client area.
    void SetClipping();
    // Moves the marked objects by a distance (snapped when the grid captures), without backup.
    void MoveObjects(TPoint DeltaPos);
    // Invalidates a logical rectangle with erase and paints it before returning.
    void UpdateRect(const TLimRec& LimRec);
    // Invalidates the data module's restore rect with erase.
    void InvalidateChanges();
    void InvalidateRestoreRect();
    void InvalidateBox();

    // The handler of the scale setting's `OnScaleChange`.
    void ScaleChanged(TObject* Sender);
    // Recomputes ranges and positions of the bars from the data module's limits, the blank zone,
    // the window and the anchor; only with `AutoScroll`, a data module that holds objects, and not
    // while the bars are being written. Always consumes `bsNewRange`.
    void CheckScrollRange() override;

    // --- Scrolling --------------------------------------------------------------------------------
    // A new scale; 0 or less hides the bars and fits the whole drawing into the window. The marks
    // are removed and the whole box is repainted.
    void SetScale(double Value);
    // Both bars without range or position, and not shown.
    void HideScrollBars();
    // Opens `ASpace` pixels of free room beside the drawing, on the side `Direction`.
    void GetSpace(int ASpace, TSpaceDir Direction);
    // One step of the bar's `Increment`, showing more of the left (top, right, bottom). The range
    // grows when the window stands at its end; a hidden bar moves the viewport only.
    void LeftScroll();
    void RightScroll();
    void TopScroll();
    void BottomScroll();
    // Whether a client device point lies in the edge zone of that side.
    bool LeftCondition(TPoint CurPos) const;
    bool RightCondition(TPoint CurPos) const;
    bool TopCondition(TPoint CurPos) const;
    bool BottomCondition(TPoint CurPos) const;
    // The autoscroll loop of a tool's gesture at an edge: holds the thread while the cursor stays in
    // the zone first found for `CurPos` (client device coordinates) and the tool keeps `tsCanScroll`,
    // and hands the tool one scroll step every `AutoScrollTime` milliseconds.
    void doToolScroll(TPoint CurPos);
    // Scrolls so that the client device point `NewPos` comes to the reference point `Origin` of the
    // client area, in one step per axis.
    void ScrollTo(TPoint NewPos, TOrigin Origin);
    // The same for a logical point.
    void ScrollTo_Log(TPoint NewPos, TOrigin Origin);

    // A device context outside a paint, in the box's logical mapping.
    HDC GetDeviceContext() override;

protected:
    void Paint() override;
    void WMPaint(TMessage& Message) override;
    void WMHScroll(TMessage& Message) override;
    void WMVScroll(TMessage& Message) override;
    void Resize() override;
    // The box maps the device position to logical units, fires the host's event with them and hands
    // them to the current tool.
    void MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) override;
    void MouseMove(TShiftState Shift, int XDev, int YDev) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int XDev, int YDev) override;
    void KeyDown(std::uint16_t& Key, TShiftState Shift) override;
    void KeyUp(std::uint16_t& Key, TShiftState Shift) override;
    void DragOver(QObject* Source, int XDev, int YDev, TDragState State, bool& Accept) override;
    void DragDrop(QObject* Source, int XDev, int YDev) override;

    void DoBeforePaint();
    void DoAfterPaint();
    // Shows one object if it is visible and meets the limits at `Params`; tells a nosy one first.
    static void PaintObjects(TBoxObject* AnyObject, void* Params);
    // A device point in logical coordinates, mapped on the box's canvas.
    TPoint DevToLog(int XDev, int YDev);

private:
    // The step of `LeftScroll` (`TopScroll`) and of `RightScroll` (`BottomScroll`) along one axis.
    void StepToLowEnd(TScrollBarKind Kind);
    void StepToHighEnd(TScrollBarKind Kind);

    TBoxTool* FTool = nullptr; // borrowed: the current tool
    std::unique_ptr<TScaleSetting> FScaleSetting;
    TBoxObject* FMouseFnd = nullptr; // borrowed: the object under the mouse
    TCoordPnt FAnchor;
    bool FScrollAnchor = false;
    std::unique_ptr<TvlGrid> FGrid;
    TColor FclMarkPen = 255;
    std::unique_ptr<TShadows> FShadows;
    TBoxStore* FDataModule = nullptr; // borrowed, or the box's own with `bsOwnDataMod`
    std::unique_ptr<TvlApplication> FApplication;
    std::unique_ptr<TBoxObject> FScaleHorz;
    std::unique_ptr<TBoxObject> FScaleVert;
    int FClipboardFmt = 0;
};

// The published draw box. Presses take the focus first; a press that cannot take it is dropped.
class TvlDrawbox : public TCustomDrawBox {
public:
    explicit TvlDrawbox(TComponent* AOwner);

    void WndProc(TMessage& Message) override;

protected:
    // Keys are not taken for dialog navigation: they all reach `KeyDown`, `KeyUp`.
    void CNKeyDown(TMessage& Message) override;
    void CNKeyUp(TMessage& Message) override;
};

} // namespace vl
