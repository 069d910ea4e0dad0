// The window system's vocabulary as the controls speak it: message numbers, virtual-key codes, scroll
// codes and metrics, the message record, the shift state of input events, and the rectangle rules of
// the window system (`SubtractRect`, `IntersectRect` and their companions).
//
// Numbers are those of the platform, so that code written against the window system reads the same
// here. A message record carries the decoded input (position, shift state, key, scroll code) in typed
// fields next to the classic word parameters.
#pragma once

#include "platform/core/Sets.h"
#include "platform/core/Types.h"

#include <cstdint>
#include <initializer_list>

namespace vl {

class TDeviceContext;

// The keyboard and mouse state of an input event, at the framework's bit positions.
enum class TShiftStateFlag : std::uint8_t { ssShift, ssAlt, ssCtrl, ssLeft, ssRight, ssMiddle, ssDouble };
using enum TShiftStateFlag;
using TShiftState = TFlagSet<TShiftStateFlag>;

constexpr TShiftState operator|(TShiftStateFlag a, TShiftStateFlag b) {
    return TShiftState(a) | TShiftState(b);
}

enum class TMouseButton : std::uint8_t { mbLeft, mbRight, mbMiddle };
using enum TMouseButton;

// ---------------------------------------------------------------------------------------------
// Messages
// ---------------------------------------------------------------------------------------------

constexpr std::uint32_t WM_NULL = 0x0000;
constexpr std::uint32_t WM_SIZE = 0x0005;
constexpr std::uint32_t WM_SETFOCUS = 0x0007;
constexpr std::uint32_t WM_KILLFOCUS = 0x0008;
constexpr std::uint32_t WM_PAINT = 0x000F;
constexpr std::uint32_t WM_ERASEBKGND = 0x0014;
constexpr std::uint32_t WM_SETCURSOR = 0x0020;
constexpr std::uint32_t WM_KEYDOWN = 0x0100;
constexpr std::uint32_t WM_KEYUP = 0x0101;
constexpr std::uint32_t WM_CHAR = 0x0102;
constexpr std::uint32_t WM_SYSKEYDOWN = 0x0104;
constexpr std::uint32_t WM_SYSKEYUP = 0x0105;
constexpr std::uint32_t WM_HSCROLL = 0x0114;
constexpr std::uint32_t WM_VSCROLL = 0x0115;
constexpr std::uint32_t WM_MOUSEMOVE = 0x0200;
constexpr std::uint32_t WM_LBUTTONDOWN = 0x0201;
constexpr std::uint32_t WM_LBUTTONUP = 0x0202;
constexpr std::uint32_t WM_LBUTTONDBLCLK = 0x0203;
constexpr std::uint32_t WM_RBUTTONDOWN = 0x0204;
constexpr std::uint32_t WM_RBUTTONUP = 0x0205;
constexpr std::uint32_t WM_RBUTTONDBLCLK = 0x0206;
constexpr std::uint32_t WM_MBUTTONDOWN = 0x0207;
constexpr std::uint32_t WM_MBUTTONUP = 0x0208;
constexpr std::uint32_t WM_MBUTTONDBLCLK = 0x0209;
constexpr std::uint32_t WM_MOUSEWHEEL = 0x020A;
constexpr std::uint32_t WM_USER = 0x0400;

// The framework's own messages: component messages, and notifications reflected back to a control.
constexpr std::uint32_t CM_BASE = 0xB000;
constexpr std::uint32_t CM_MOUSEENTER = CM_BASE + 19;
constexpr std::uint32_t CM_MOUSELEAVE = CM_BASE + 20;
constexpr std::uint32_t CM_DRAG = CM_BASE + 47;
constexpr std::uint32_t CN_BASE = 0xBC00;
constexpr std::uint32_t CN_KEYDOWN = CN_BASE + WM_KEYDOWN;
constexpr std::uint32_t CN_KEYUP = CN_BASE + WM_KEYUP;
constexpr std::uint32_t CN_CHAR = CN_BASE + WM_CHAR;

// Sub-kinds of `CM_DRAG`.
enum class TDragMessage : std::uint8_t {
    dmDragEnter,
    dmDragLeave,
    dmDragMove,
    dmDragDrop,
    dmDragCancel,
    dmFindTarget
};
using enum TDragMessage;

// The flags of `PeekMessage`.
constexpr std::uint32_t PM_NOREMOVE = 0x0000;
constexpr std::uint32_t PM_REMOVE = 0x0001;

// Size kinds of `WM_SIZE`.
constexpr int SIZE_RESTORED = 0;

// A window message. `Msg`, `WParam`, `LParam` and `Result` are the classic record; the fields after
// them hold the decoded content of input, paint and scroll messages.
struct TMessage {
    std::uint32_t Msg = 0;
    std::intptr_t WParam = 0;
    std::intptr_t LParam = 0;
    std::intptr_t Result = 0;

    // Mouse messages and `CM_DRAG`: the position in client device pixels.
    TPoint Pos;
    // Mouse and key messages: the state of the modifier keys and mouse buttons.
    TShiftState Shift;
    // Key messages: the virtual-key code; `WM_CHAR`: the character (a UTF-16 code unit).
    std::uint16_t CharCode = 0;
    // `WM_HSCROLL`, `WM_VSCROLL`: the scroll code (SB_*) and, for the thumb codes, the position.
    int ScrollCode = 0;
    int ScrollPos = 0;
    // `WM_PAINT`: the paint context, clipped to the area to repaint. `WM_ERASEBKGND`: the context.
    TDeviceContext* DC = nullptr;
    // `CM_DRAG`: the kind of drag message, and the source object of the drag (borrowed).
    TDragMessage DragMessage = dmDragMove;
    void* DragSource = nullptr;
    // `CM_DRAG` with `dmDragMove`: set by the handler when the drop would be accepted.
    bool Accepted = false;
};

// ---------------------------------------------------------------------------------------------
// Virtual-key codes
// ---------------------------------------------------------------------------------------------

constexpr std::uint16_t VK_LBUTTON = 0x01;
constexpr std::uint16_t VK_RBUTTON = 0x02;
constexpr std::uint16_t VK_CANCEL = 0x03;
constexpr std::uint16_t VK_MBUTTON = 0x04;
constexpr std::uint16_t VK_BACK = 0x08;
constexpr std::uint16_t VK_TAB = 0x09;
constexpr std::uint16_t VK_CLEAR = 0x0C;
constexpr std::uint16_t VK_RETURN = 0x0D;
constexpr std::uint16_t VK_SHIFT = 0x10;
constexpr std::uint16_t VK_CONTROL = 0x11;
constexpr std::uint16_t VK_MENU = 0x12;
constexpr std::uint16_t VK_PAUSE = 0x13;
constexpr std::uint16_t VK_CAPITAL = 0x14;
constexpr std::uint16_t VK_ESCAPE = 0x1B;
constexpr std::uint16_t VK_SPACE = 0x20;
constexpr std::uint16_t VK_PRIOR = 0x21;
constexpr std::uint16_t VK_NEXT = 0x22;
constexpr std::uint16_t VK_END = 0x23;
constexpr std::uint16_t VK_HOME = 0x24;
constexpr std::uint16_t VK_LEFT = 0x25;
constexpr std::uint16_t VK_UP = 0x26;
constexpr std::uint16_t VK_RIGHT = 0x27;
constexpr std::uint16_t VK_DOWN = 0x28;
constexpr std::uint16_t VK_SELECT = 0x29;
constexpr std::uint16_t VK_PRINT = 0x2A;
constexpr std::uint16_t VK_SNAPSHOT = 0x2C;
constexpr std::uint16_t VK_INSERT = 0x2D;
constexpr std::uint16_t VK_DELETE = 0x2E;
constexpr std::uint16_t VK_HELP = 0x2F;
// '0'..'9' are 0x30..0x39, 'A'..'Z' are 0x41..0x5A.
constexpr std::uint16_t VK_LWIN = 0x5B;
constexpr std::uint16_t VK_RWIN = 0x5C;
constexpr std::uint16_t VK_APPS = 0x5D;
constexpr std::uint16_t VK_NUMPAD0 = 0x60;
constexpr std::uint16_t VK_MULTIPLY = 0x6A;
constexpr std::uint16_t VK_ADD = 0x6B;
constexpr std::uint16_t VK_SEPARATOR = 0x6C;
constexpr std::uint16_t VK_SUBTRACT = 0x6D;
constexpr std::uint16_t VK_DECIMAL = 0x6E;
constexpr std::uint16_t VK_DIVIDE = 0x6F;
constexpr std::uint16_t VK_F1 = 0x70; // to VK_F24 = 0x87
constexpr std::uint16_t VK_NUMLOCK = 0x90;
constexpr std::uint16_t VK_SCROLL = 0x91;
constexpr std::uint16_t VK_OEM_1 = 0xBA;      // ';:'
constexpr std::uint16_t VK_OEM_PLUS = 0xBB;   // '=+'
constexpr std::uint16_t VK_OEM_COMMA = 0xBC;  // ',<'
constexpr std::uint16_t VK_OEM_MINUS = 0xBD;  // '-_'
constexpr std::uint16_t VK_OEM_PERIOD = 0xBE; // '.>'
constexpr std::uint16_t VK_OEM_2 = 0xBF;      // '/?'
constexpr std::uint16_t VK_OEM_3 = 0xC0;      // '`~'
constexpr std::uint16_t VK_OEM_4 = 0xDB;      // '[{'
constexpr std::uint16_t VK_OEM_5 = 0xDC;      // '\|'
constexpr std::uint16_t VK_OEM_6 = 0xDD;      // ']}'
constexpr std::uint16_t VK_OEM_7 = 0xDE;      // quote

// ---------------------------------------------------------------------------------------------
// Scroll bars
// ---------------------------------------------------------------------------------------------

constexpr int SB_HORZ = 0;
constexpr int SB_VERT = 1;
constexpr int SB_CTL = 2;
constexpr int SB_BOTH = 3;

constexpr int SB_LINEUP = 0;
constexpr int SB_LINELEFT = 0;
constexpr int SB_LINEDOWN = 1;
constexpr int SB_LINERIGHT = 1;
constexpr int SB_PAGEUP = 2;
constexpr int SB_PAGELEFT = 2;
constexpr int SB_PAGEDOWN = 3;
constexpr int SB_PAGERIGHT = 3;
constexpr int SB_THUMBPOSITION = 4;
constexpr int SB_THUMBTRACK = 5;
constexpr int SB_TOP = 6;
constexpr int SB_LEFT = 6;
constexpr int SB_BOTTOM = 7;
constexpr int SB_RIGHT = 7;
constexpr int SB_ENDSCROLL = 8;

constexpr std::uint32_t SIF_RANGE = 0x0001;
constexpr std::uint32_t SIF_PAGE = 0x0002;
constexpr std::uint32_t SIF_POS = 0x0004;
constexpr std::uint32_t SIF_DISABLENOSCROLL = 0x0008;
constexpr std::uint32_t SIF_TRACKPOS = 0x0010;
constexpr std::uint32_t SIF_ALL = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_TRACKPOS;

struct TScrollInfo {
    std::uint32_t cbSize = 28;
    std::uint32_t fMask = 0;
    int nMin = 0;
    int nMax = 0;
    std::uint32_t nPage = 0;
    int nPos = 0;
    int nTrackPos = 0;
};
using SCROLLINFO = TScrollInfo;

// System metrics answered by `GetSystemMetrics`.
constexpr int SM_CXSCREEN = 0;
constexpr int SM_CYSCREEN = 1;
constexpr int SM_CXVSCROLL = 2;
constexpr int SM_CYHSCROLL = 3;
constexpr int SM_CXBORDER = 5;
constexpr int SM_CYBORDER = 6;
constexpr int SM_CXDOUBLECLK = 36;
constexpr int SM_CYDOUBLECLK = 37;
constexpr int SM_CXEDGE = 45;
constexpr int SM_CYEDGE = 46;

// The metric in device pixels of the primary screen: the scroll bar extents from the Qt style, the
// screen size, the border widths. Unknown indexes answer 0.
int GetSystemMetrics(int Index);

// ---------------------------------------------------------------------------------------------
// Rectangles, with the window system's rules. A rectangle is empty when its right edge is not right
// of its left edge or its bottom not below its top.
// ---------------------------------------------------------------------------------------------

bool IsRectEmpty(const TRect& R);
bool EqualRect(const TRect& A, const TRect& B);
void SetRectEmpty(TRect& R);
// The common part of `Src1` and `Src2`; an empty result is (0, 0, 0, 0) and answers false.
bool IntersectRect(TRect& Dst, const TRect& Src1, const TRect& Src2);
// The smallest rectangle around both; an empty operand is left out. False when both are empty.
bool UnionRect(TRect& Dst, const TRect& Src1, const TRect& Src2);
// `Src1` less `Src2`, but only where the result is a rectangle: `Src2` is cut off when it covers a
// whole side of `Src1` (full height at the left or right, full width at the top or bottom). Otherwise
// the result is `Src1` unchanged: no hole is made. False when the result is empty.
bool SubtractRect(TRect& Dst, const TRect& Src1, const TRect& Src2);
bool OffsetRect(TRect& R, int dx, int dy);
bool InflateRect(TRect& R, int dx, int dy);
// True when `P` lies in `R`, right and bottom edges excluded.
bool PtInRect(const TRect& R, const TPoint& P);

// Overloads taking pointers, as code written against the window system calls them.
inline bool IntersectRect(TRect* Dst, const TRect* Src1, const TRect* Src2) {
    return IntersectRect(*Dst, *Src1, *Src2);
}
inline bool SubtractRect(TRect* Dst, const TRect* Src1, const TRect* Src2) {
    return SubtractRect(*Dst, *Src1, *Src2);
}
inline bool UnionRect(TRect* Dst, const TRect* Src1, const TRect* Src2) {
    return UnionRect(*Dst, *Src1, *Src2);
}

} // namespace vl
