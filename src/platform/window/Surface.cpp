// The retained surface's pixels and region bookkeeping.

#include "platform/window/Surface.h"

#include <QPainter>

#include <algorithm>
#include <cstring>

namespace vl {

void TRetainedSurface::Resize(int Width, int Height, bool InvalidateAll) {
    Width = std::max(0, Width);
    Height = std::max(0, Height);
    if (Width == FImage.width() && Height == FImage.height() && !FImage.isNull()) {
        if (InvalidateAll) Invalidate(Bounds(), true);
        return;
    }
    const QImage old = FImage;
    const QRegion oldArea = old.isNull() ? QRegion() : QRegion(QRect(0, 0, old.width(), old.height()));
    if (Width == 0 || Height == 0) {
        FImage = QImage();
    } else {
        FImage = QImage(Width, Height, QImage::Format_RGB32);
        FImage.fill(0xFFFFFFFFu);
        if (!old.isNull() && !InvalidateAll) {
            const int w = std::min(Width, old.width());
            const int h = std::min(Height, old.height());
            for (int y = 0; y < h; ++y) {
                std::memcpy(FImage.scanLine(y), old.constScanLine(y), static_cast<std::size_t>(w) * 4);
            }
        }
    }
    const QRegion bounds(Bounds());
    FInvalid &= bounds;
    FErase &= bounds;
    FBlit &= bounds;
    if (InvalidateAll)
        Invalidate(bounds, true);
    else
        Invalidate(bounds - oldArea, true);
}

void TRetainedSurface::Invalidate(const QRegion& Area, bool EraseIt) {
    const QRegion area = Area & Bounds();
    FInvalid += area;
    if (EraseIt) FErase += area;
}

void TRetainedSurface::AddBlit(const QRegion& Area) {
    FBlit += Area & Bounds();
}

void TRetainedSurface::TakeInvalid(QRegion& InvalidOut, QRegion& EraseOut) {
    InvalidOut = FInvalid;
    EraseOut = FErase;
    FInvalid = QRegion();
    FErase = QRegion();
}

QRegion TRetainedSurface::Scroll(int DX, int DY, const QRect& ScrollRect, const QRect& ClipRect) {
    const QRect source = ScrollRect & Bounds();
    const QRect clip = ClipRect & Bounds();
    if (source.isEmpty() || clip.isEmpty()) return QRegion();
    const QRect dest = source.translated(DX, DY) & clip;
    if (!dest.isEmpty()) {
        // Copy through a detached piece so that overlapping source and destination stay exact.
        const QImage piece = FImage.copy(dest.translated(-DX, -DY));
        QPainter painter(&FImage);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(dest.topLeft(), piece);
    }
    // Pending invalid area inside the scroll rectangle travels with its pixels; the destination is
    // otherwise valid now, as it holds valid pixels from the source.
    const QRegion movedInvalid = (FInvalid & source).translated(DX, DY) & dest;
    const QRegion movedErase = (FErase & source).translated(DX, DY) & dest;
    FInvalid = (FInvalid - dest) + movedInvalid;
    FErase = (FErase - dest) + movedErase;
    // What the scroll uncovered within the clip rectangle needs a paint.
    const QRegion uncovered = QRegion(source & clip) - dest;
    Invalidate(uncovered, true);
    AddBlit(dest);
    return QRegion(dest);
}

} // namespace vl
