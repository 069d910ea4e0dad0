// The rectangle rules and system metrics of the window system.

#include "platform/core/WinApi.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace vl {

bool IsRectEmpty(const TRect& R) {
    return R.Right <= R.Left || R.Bottom <= R.Top;
}

bool EqualRect(const TRect& A, const TRect& B) {
    return A == B;
}

void SetRectEmpty(TRect& R) {
    R = TRect{};
}

bool IntersectRect(TRect& Dst, const TRect& Src1, const TRect& Src2) {
    if (IsRectEmpty(Src1) || IsRectEmpty(Src2) || Src1.Left >= Src2.Right || Src2.Left >= Src1.Right ||
        Src1.Top >= Src2.Bottom || Src2.Top >= Src1.Bottom) {
        SetRectEmpty(Dst);
        return false;
    }
    Dst = TRect{std::max(Src1.Left, Src2.Left), std::max(Src1.Top, Src2.Top),
                std::min(Src1.Right, Src2.Right), std::min(Src1.Bottom, Src2.Bottom)};
    return true;
}

bool UnionRect(TRect& Dst, const TRect& Src1, const TRect& Src2) {
    const bool empty1 = IsRectEmpty(Src1);
    const bool empty2 = IsRectEmpty(Src2);
    if (empty1 && empty2) {
        SetRectEmpty(Dst);
        return false;
    }
    if (empty1) {
        Dst = Src2;
    } else if (empty2) {
        Dst = Src1;
    } else {
        Dst = TRect{std::min(Src1.Left, Src2.Left), std::min(Src1.Top, Src2.Top),
                    std::max(Src1.Right, Src2.Right), std::max(Src1.Bottom, Src2.Bottom)};
    }
    return true;
}

bool SubtractRect(TRect& Dst, const TRect& Src1, const TRect& Src2) {
    if (IsRectEmpty(Src1)) {
        SetRectEmpty(Dst);
        return false;
    }
    TRect result = Src1;
    TRect common;
    if (IntersectRect(common, Src1, Src2)) {
        if (common == result) {
            SetRectEmpty(Dst);
            return false;
        }
        if (common.Top == result.Top && common.Bottom == result.Bottom) {
            // The subtracted rectangle spans the full height: cut a side off if it touches one.
            if (common.Left == result.Left)
                result.Left = common.Right;
            else if (common.Right == result.Right)
                result.Right = common.Left;
        } else if (common.Left == result.Left && common.Right == result.Right) {
            if (common.Top == result.Top)
                result.Top = common.Bottom;
            else if (common.Bottom == result.Bottom)
                result.Bottom = common.Top;
        }
    }
    Dst = result;
    return true;
}

bool OffsetRect(TRect& R, int dx, int dy) {
    R.Left += dx;
    R.Right += dx;
    R.Top += dy;
    R.Bottom += dy;
    return true;
}

bool InflateRect(TRect& R, int dx, int dy) {
    R.Left -= dx;
    R.Right += dx;
    R.Top -= dy;
    R.Bottom += dy;
    return true;
}

bool PtInRect(const TRect& R, const TPoint& P) {
    return P.x >= R.Left && P.x < R.Right && P.y >= R.Top && P.y < R.Bottom;
}

int GetSystemMetrics(int Index) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double ratio = screen ? screen->devicePixelRatio() : 1.0;
    auto dev = [ratio](int logical) { return static_cast<int>(std::lround(logical * ratio)); };
    switch (Index) {
    case SM_CXSCREEN: return screen ? dev(screen->geometry().width()) : 0;
    case SM_CYSCREEN: return screen ? dev(screen->geometry().height()) : 0;
    case SM_CXVSCROLL:
    case SM_CYHSCROLL: {
        const QStyle* style = QApplication::style();
        return style ? dev(style->pixelMetric(QStyle::PM_ScrollBarExtent)) : 0;
    }
    case SM_CXBORDER:
    case SM_CYBORDER: return dev(1);
    case SM_CXEDGE:
    case SM_CYEDGE: return dev(2);
    case SM_CXDOUBLECLK:
    case SM_CYDOUBLECLK: return dev(4);
    default: return 0;
    }
}

} // namespace vl
