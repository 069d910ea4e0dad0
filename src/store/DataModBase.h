// The abstract object store as the draw box sees it.
//
// A draw box has exactly one data module: the host's, or one it makes itself
// (`InstallDataModule`, through `DataModuleFactory`). The module holds the restore rect, which
// collects in logical coordinates what changed since the last flush; `InvalidateRestoreRect` hands it
// to the box's `InvalidateChanges` and marks it empty again.
#pragma once

#include "geometry/Vltypes.h"
#include "objects/ObjectBase.h"
#include "platform/WinApi.h"
#include "tools/MouseToolBase.h"

#include <cstdint>
#include <functional>

namespace vl {

enum class TDataModStateFlag : std::uint8_t { dmNeedAll, dmLoading, dmSaving, dmIgnoreZ, dmMovingObjects };
using enum TDataModStateFlag;
using TDataModState = TFlagSet<TDataModStateFlag>;

class TvlDataMod : public TEnvironment {
public:
    explicit TvlDataMod(TComponent* AOwner);

    virtual TLimRec GetLimits() = 0;
    virtual void AllObjects(const TAllObjectsProc& Action, void* Params) = 0;
    virtual void InitLimits() = 0;
    virtual bool Empty() = 0;
    virtual void LoadFromFile(const QString& FileName) = 0;
    virtual void SaveToFile(const QString& FileName) = 0;
    // The marked objects, in index order.
    virtual int MarkCount() const = 0;
    virtual TvlObject* Marked(int Index) const = 0;
    // Takes `AObject` (every object for null) out of the marks.
    virtual void UnSelect(TvlObject* AObject) = 0;

    // True when all four limit values equal those given.
    bool CompareLimits(const TLimRec& Limits);
    void InitRestoreRect();
    // The box's `InvalidateChanges`, then an empty restore rect.
    void InvalidateRestoreRect();
    // The restore rect becomes all of the limits and is flushed.
    void Invalidate();

    TLimRec FRestoreRect;
    TDataModState State;
};

// Makes the data module that a draw box without one installs, with the box's owner as owner. The
// store registers its single-layer module here; without one, an empty module that holds nothing is
// made.
using TDataModuleFactory = std::function<TvlDataMod*(TComponent* AOwner)>;
inline TDataModuleFactory DataModuleFactory;

// The module installed while the store registers none: always empty.
class TEmptyDataMod : public TvlDataMod {
public:
    explicit TEmptyDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}
    TLimRec GetLimits() override { return EmptyLimRec; }
    void AllObjects(const TAllObjectsProc&, void*) override {}
    void InitLimits() override {}
    bool Empty() override { return true; }
    void LoadFromFile(const QString& FileName) override;
    void SaveToFile(const QString& FileName) override;
    int MarkCount() const override { return 0; }
    TvlObject* Marked(int) const override { return nullptr; }
    void UnSelect(TvlObject*) override {}
};

} // namespace vl
