// The scrolling window of the draw box: a control with two scroll bars and a canvas.
//
// It is built like an ordinary scroll box with three differences that a drawing needs: the range of
// a bar is set from outside (not fixed by child controls), the viewport state is kept by the owner,
// and strips of the client area can be left out of scrolling (`NonScrollH`, `NonScrollV`: the strip
// of a vertical ruler stays put while the window scrolls horizontally, and the other way round).
//
// From the bottom: `TScrollWinControl` (bars, ranges, `ScrollBy`, `SyncScrollbars`), `TScrollBx`
// (border, published events), `TScrollPaint` (the canvas and `Paint`), then the draw box.
// `TvlScrollBar` describes one bar; the control owns both.
//
// Invariants: a bar's `FCalcRange` is its largest valid position (0 for an invisible bar), written
// by `Update`; `FPosition` lies in 0 .. `FCalcRange` unless `SyncScrollbars` or the reading of a
// stream put it there. All numbers of a bar are device pixels.
#pragma once

// QWidget comes first: the control header keeps a guarded pointer to it.
#include <QWidget>

#include "platform/core/WinApi.h"
#include "platform/window/Controls.h"

#include <cstdint>
#include <memory>

namespace vl {

class TScrollWinControl;

// The flags of the draw box's state, in their bit order.
enum class TBoxStateFlag : std::uint8_t {
    bsPrepared,         // declared, unused
    bsModified,         // declared, unused
    bsNewRange,         // scroll ranges must be computed again
    bsNeedsNewRange,    // declared, unused
    bsOwnDataMod,       // the box made its data module and frees it
    bsHScrolling,       // the paint to come was caused by a horizontal scroll
    bsVScrolling,       // ... by a vertical scroll
    bsUpdateScrollbars, // the scroll bars are being written
    bsToolScroll        // an autoscroll loop runs
};
using enum TBoxStateFlag;
using TBoxState = TFlagSet<TBoxStateFlag>;

enum class TScrollBarKind : std::uint8_t { sbHorizontal, sbVertical };
using enum TScrollBarKind;

// Pixels of a line step.
using TScrollBarInc = std::uint16_t;

// One scroll bar of a `TScrollWinControl`.
class TvlScrollBar : public TPersistent {
public:
    TvlScrollBar(TScrollWinControl* AControl, TScrollBarKind AKind);

    // From another bar: visible, range, position, increment.
    void Assign(TPersistent* Source) override;

    TScrollBarKind Kind() const { return FKind; }
    TScrollBarInc Increment() const { return FIncrement; }
    void SetIncrement(TScrollBarInc Value) { FIncrement = Value; }
    std::int16_t Margin() const { return FMargin; }
    void SetMargin(std::int16_t Value);
    bool Tracking() const { return FTracking; }
    void SetTracking(bool Value) { FTracking = Value; }
    bool Visible() const { return FVisible; }
    void SetVisible(bool Value);

    int Position() const { return FPosition; }
    // Clamps to 0 .. `FCalcRange` and scrolls the window by the change (a stream's value is stored
    // as it is); at position 0 the range set last by `DoSetRange` comes back.
    void SetPosition(int Value);
    int Range() const { return FRange; }
    // The host's range: auto range off, then `DoSetRange`.
    void SetRange(int Value);
    // The range as the owner sets it; remembered in `FDataRange`.
    void DoSetRange(int Value);
    // Range and position 0, without scrolling.
    void NoRange();

    int DataRange() const { return FDataRange; }
    int CalcRange() const { return FCalcRange; }
    bool Scaled() const { return FScaled; }
    // `FPosition` if visible, else 0.
    int ScrollPos() const { return FVisible ? FPosition : 0; }

    // The client extent along the bar; unless `ControlSB`, corrected for the other bar: as if it were
    // shown (`AssumeSB`) or as if it were not.
    int ControlSize(bool ControlSB, bool AssumeSB) const;
    bool NeedsScrollBarVisible() const;
    // Writes range, page and position to the window's bar and computes `FCalcRange`.
    void Update(bool ControlSB, bool AssumeSB);
    // A scroll message of this bar: the new position by its scroll code.
    void ScrollMessage(const TMessage& Msg);
    // The range that the child controls need, when the auto range is on.
    void CalcAutoRange();

private:
    friend class TScrollWinControl;

    int BarCode() const { return FKind == sbHorizontal ? SB_HORZ : SB_VERT; }

    TScrollWinControl* FControl; // borrowed: the owner of the bar
    TScrollBarInc FIncrement = 8;
    int FPosition = 0;
    int FRange = 0;
    int FDataRange = 0;
    int FCalcRange = 0;
    TScrollBarKind FKind;
    std::int16_t FMargin = 0;
    bool FVisible = true;
    bool FTracking = false;
    bool FScaled = false;
};

// A windowed control with two scroll bars whose ranges are set from outside.
class TScrollWinControl : public TWinControl {
public:
    explicit TScrollWinControl(TComponent* AOwner);
    ~TScrollWinControl() override;

    TvlScrollBar& HorzScrollBar() { return *FHorzScrollBar; }
    TvlScrollBar& VertScrollBar() { return *FVertScrollBar; }
    const TvlScrollBar& HorzScrollBar() const { return *FHorzScrollBar; }
    const TvlScrollBar& VertScrollBar() const { return *FVertScrollBar; }

    // Whether the bars' ranges follow the child controls (true after construction).
    bool AutoRange() const { return FAutoScroll; }
    void SetAutoRange(bool Value);

    // Moves the pixels of the client area, less the non-scrolling strip of the axis, by the
    // distance; does nothing on a hidden window.
    void ScrollBy(int DeltaX, int DeltaY);
    // Puts the owner's ranges and positions in force as they are: no scrolling, no clamping.
    void SyncScrollbars(TSize Range, TPoint Position);
    virtual void CheckScrollRange();
    void UpdateScrollBars();
    void CalcAutoRange();
    void DisableAutoRange();
    void EnableAutoRange();
    void AutoScrollInView(TControl* AControl);
    // Scrolls as little as puts the child inside the client area, widened by each bar's margin.
    void ScrollInView(TControl* AControl);
    // For a change of font size: positions to 0, ranges scaled when the auto range is off.
    void ScaleScrollBars(int M, int D);
    virtual void ChangeScale(int M, int D);

    // The strips left out of scrolling, in device coordinates; null when there is none.
    const TRect* NonScrollH() const { return FNonScrollH.get(); }
    const TRect* NonScrollV() const { return FNonScrollV.get(); }
    void SetNonScrollH(const TRect* R);
    void SetNonScrollV(const TRect* R);

    TBoxState State;

protected:
    void WMSize(TMessage& Message) override;
    void WMHScroll(TMessage& Message) override;
    void WMVScroll(TMessage& Message) override;

    int AutoRangeCount() const { return FAutoRangeCount; }

    std::unique_ptr<TRect> FNonScrollH;
    std::unique_ptr<TRect> FNonScrollV;

private:
    friend class TvlScrollBar;

    std::unique_ptr<TvlScrollBar> FHorzScrollBar;
    std::unique_ptr<TvlScrollBar> FVertScrollBar;
    bool FAutoScroll = true;
    int FAutoRangeCount = 0;
};

// The scroll box with a border and the host's events.
class TScrollBx : public TScrollWinControl {
public:
    explicit TScrollBx(TComponent* AOwner);

    // Whether the draw box scrolls for tools and computes its ranges (false after construction).
    bool AutoScroll() const { return FAutoScrl; }
    void SetAutoScroll(bool Value) { FAutoScrl = Value; }

protected:
    bool FAutoScrl = false;
};

// The scroll box with its own canvas and a `Paint` to override.
class TScrollPaint : public TScrollBx {
public:
    explicit TScrollPaint(TComponent* AOwner);
    ~TScrollPaint() override;

    TCanvas& Canvas() { return *FCanvas; }

    // The non-scrolling strips in logical coordinates of the canvas's mapping.
    TRect NonScrollH_Log();
    void SetNonScrollH_Log(const TRect& Value);
    TRect NonScrollV_Log();
    void SetNonScrollV_Log(const TRect& Value);

protected:
    virtual void Paint() {}
    void PaintWindow(HDC DC) override;
    void WMPaint(TMessage& Message) override;
    // Refuses the combination Shift+Alt+Ctrl with the right button with an error dialog, then the
    // inherited handling.
    void MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) override;
    // Shift, Alt and Ctrl with the right button: an error message, and the press goes on.
    void RefuseKeyCombination(TShiftState Shift);

private:
    TRect StripToLog(const TRect* Strip);
    TRect StripToDev(const TRect& Log);

    std::unique_ptr<TControlCanvas> FCanvas;
};

} // namespace vl
