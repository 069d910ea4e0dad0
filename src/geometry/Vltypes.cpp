#include "geometry/Vltypes.h"

#include "platform/core/Exceptions.h"

#include <utility>

namespace vl {

void ExChange(std::int32_t& A, std::int32_t& B) {
    std::swap(A, B);
}

void RectDirection(TRect& R) {
    if (R.Left > R.Right) ExChange(R.Left, R.Right);
    if (R.Top > R.Bottom) ExChange(R.Top, R.Bottom);
}

void LimRecDirection(TLimRec& L) {
    if (L.Xmin > L.Xmax) ExChange(L.Xmin, L.Xmax);
    if (L.Ymin > L.Ymax) ExChange(L.Ymin, L.Ymax);
}

void Nothing() {}

pPointArray NewPoly(std::int32_t Count) {
    if (Count < 0 || Count > MaxPolyPoints) throw EListError(msg::ListCountError(Count));
    return new TPoint[static_cast<std::size_t>(Count)]();
}

void DeletePoly(pPointArray Points) {
    delete[] Points;
}

} // namespace vl
