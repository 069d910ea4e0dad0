// The clip of a drawing in device pixels, kept as one span list per row of its box.

#include "platform/gdi/DeviceBackend.h"

#include <QRect>

namespace vl::gdi {

void TDeviceClip::Build(const TShapePtr& shape, const TRect& deviceBounds) {
    FRowStart.clear();
    FSpans.clear();
    if (!shape) {
        FBox = deviceBounds;
        FIsRect = true;
        return;
    }
    const TShapePtr clipped = TRegionShape::Combine(shape, TRegionShape::MakeRect(deviceBounds), RGN_AND);
    FBox = clipped->Bounds();
    FIsRect = clipped->Kind() == TRegionShape::TKind::Rect || clipped->IsEmpty();
    if (FIsRect) return;
    const std::size_t rows = std::size_t(FBox.Bottom - FBox.Top);
    FRowStart.reserve(rows + 1);
    std::vector<TSpan> row;
    for (std::int32_t y = FBox.Top; y < FBox.Bottom; ++y) {
        FRowStart.push_back(int(FSpans.size()));
        row.clear();
        clipped->RowSpans(y, FBox.Left, FBox.Right, row);
        FSpans.insert(FSpans.end(), row.begin(), row.end());
    }
    FRowStart.push_back(int(FSpans.size()));
}

bool TDeviceClip::Contains(std::int32_t x, std::int32_t y) const {
    if (x < FBox.Left || x >= FBox.Right || y < FBox.Top || y >= FBox.Bottom) return false;
    if (FIsRect) return true;
    const std::size_t row = std::size_t(y - FBox.Top);
    for (int i = FRowStart[row]; i < FRowStart[row + 1]; ++i) {
        const TSpan& s = FSpans[std::size_t(i)];
        if (x < s.x0) return false;
        if (x < s.x1) return true;
    }
    return false;
}

QRegion TDeviceClip::ToQRegion() const {
    if (IsEmpty()) return QRegion();
    if (FIsRect) return QRegion(FBox.Left, FBox.Top, FBox.Right - FBox.Left, FBox.Bottom - FBox.Top);
    std::vector<QRect> rects;
    rects.reserve(FSpans.size());
    for (std::size_t row = 0; row + 1 < FRowStart.size(); ++row)
        for (int i = FRowStart[row]; i < FRowStart[row + 1]; ++i) {
            const TSpan& s = FSpans[std::size_t(i)];
            rects.emplace_back(s.x0, FBox.Top + int(row), s.x1 - s.x0, 1);
        }
    QRegion region;
    region.setRects(rects.data(), int(rects.size()));
    return region;
}

} // namespace vl::gdi
