// The retained surface of a control: the pixels of its client area in device pixels, and what of them
// still needs work.
//
// Two regions are kept, in device pixels of the surface:
//  - *invalid*: what the window system's update region would hold. It needs the library's paint,
//    clipped to it; the part of it in *erase* is first filled with the control's colour.
//  - *blit*: pixels that changed without a paint (live drawing, scrolling) and only need to reach the
//    screen.
// Invariants: *erase* lies within *invalid*; all regions lie within the surface's rectangle.
#pragma once

#include <QImage>
#include <QRect>
#include <QRegion>

namespace vl {

class TRetainedSurface {
public:
    // The pixels (RGB32), the size of the client area in device pixels. A surface of zero size has a
    // null image.
    QImage& Image() { return FImage; }
    const QImage& Image() const { return FImage; }
    QRect Bounds() const { return QRect(0, 0, FImage.width(), FImage.height()); }

    // Changes the size. With `InvalidateAll` the whole surface becomes invalid with erase; otherwise
    // the pixels of the common part are kept and only the new parts become invalid. Pending
    // regions are cut to the new size.
    void Resize(int Width, int Height, bool InvalidateAll);

    const QRegion& Invalid() const { return FInvalid; }
    const QRegion& Erase() const { return FErase; }
    const QRegion& Blit() const { return FBlit; }

    void Invalidate(const QRegion& Area, bool EraseIt);
    void AddBlit(const QRegion& Area);
    void ClearBlit(const QRegion& Area) { FBlit -= Area; }
    // Hands out the invalid region and its erase part and forgets both.
    void TakeInvalid(QRegion& InvalidOut, QRegion& EraseOut);

    // Moves the pixels inside `ScrollRect` by (DX, DY), changing only pixels inside `ClipRect`. Answers
    // the area whose pixels changed (now in *blit*). The uncovered part becomes invalid with erase, and
    // pending invalid area inside the scroll rectangle moves with the pixels.
    QRegion Scroll(int DX, int DY, const QRect& ScrollRect, const QRect& ClipRect);

private:
    QImage FImage;
    QRegion FInvalid;
    QRegion FErase;
    QRegion FBlit;
};

} // namespace vl
