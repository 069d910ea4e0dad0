// The parts of the abstract object store that do not depend on how objects are held.

#include "store/DataModBase.h"

#include "platform/Exceptions.h"
#include "surface/Drawbox.h"

namespace vl {

TvlDataMod::TvlDataMod(TComponent* AOwner) : TEnvironment(AOwner) {
    InitRestoreRect();
}

bool TvlDataMod::CompareLimits(const TLimRec& Limits) {
    return GetLimits() == Limits;
}

void TvlDataMod::InitRestoreRect() {
    FRestoreRect = LimRec(0x7FFFFFFF, 0x7FFFFFFF, -2147483647, -2147483647);
}

void TvlDataMod::InvalidateRestoreRect() {
    if (FDrawForm) FDrawForm->InvalidateChanges();
    InitRestoreRect();
}

void TvlDataMod::Invalidate() {
    FRestoreRect = GetLimits();
    InvalidateRestoreRect();
}

TvlObject* TvlDataMod::FirstObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    TvlObject* found = nullptr;
    AllObjects(
        [&](TvlObject* Obj, void* P) {
            if (!found && Condition(Obj, P)) found = Obj;
        },
        Params);
    return found;
}

void TvlDataMod::Add(TvlObject*, std::int32_t) {
    throw Exception(QStringLiteral("This data module cannot hold objects"));
}

void TEmptyDataMod::LoadFromFile(const QString& FileName) {
    throw Exception(QStringLiteral("No data store is installed to load \"%1\"").arg(FileName));
}

void TEmptyDataMod::SaveToFile(const QString& FileName) {
    throw Exception(QStringLiteral("No data store is installed to save \"%1\"").arg(FileName));
}

} // namespace vl
