// The single-layer data module: one layer holds every object of the drawing.
//
// It is also the store that a draw box makes for itself when the host gives it none. Every operation
// of the abstract store forwards to the layer; the one piece of substance is `LoadFromStream`, which
// reads the body into a fresh layer and keeps the former layer and counters until the new ones are
// complete, so that a failed load leaves the drawing as it was and raises nothing.
//
// Body form: the number of counters (2 bytes), each counter (2 bytes), then the layer's stream form.
// Files older than 0x3040 carry no count: six counters follow directly.
#pragma once

#include "store/DataModBase.h"
#include "store/Layer.h"

#include <cstdint>
#include <memory>

namespace vl {

class TvlDataModule : public TvlDataMod {
public:
    explicit TvlDataModule(TComponent* AOwner);
    ~TvlDataModule() override;

    // From another single-layer module also the capacity; objects are not copied.
    void Assign(TPersistent* Source) override;

    TvlLayer* Objects() const { return FObjCase.get(); }
    // Replaces (and frees) the layer.
    void SetObjects(std::unique_ptr<TvlLayer> Value);
    std::uint32_t Capacity() const { return FCapacity; }
    void SetCapacity(std::uint32_t Value) { FCapacity = Value; }

    std::int32_t GetMaxX() override;
    std::int32_t GetMinX() override;
    std::int32_t GetMaxY() override;
    std::int32_t GetMinY() override;
    TLimRec GetLimits() override;
    // Hidden objects count too.
    std::int32_t GetCount() override;
    // Counters to 0, the drawing freed and its area repainted.
    void Clear() override;
    void CheckLinks(TInvolve Code) override;
    void CheckLimits(TvlObject* AnyObj, bool noBorder) override;
    // Null when `Index` is not below the count; a negative `Index` raises the list error.
    TvlObject* ObjectAt(std::int32_t Index, std::int32_t LayerNr) override;
    TObjIndex IndexOf(TvlObject* AObject) override;
    void AllObjects(const TAllObjectsProc& Action, void* Params) override;
    void AllObjectsBack(const TAllObjectsProc& Action, void* Params) override;
    TvlObject* FirstObjectWith(const TFirstObjectFunc& Condition, void* Params) override;
    TvlObject* LastObjectWith(const TFirstObjectFunc& Condition, void* Params) override;
    // These write only `Index` of the result; its `LayerNr` comes from `StartIndex` as it was.
    TObjIndex FirstIndexWith(const TFirstObjectFunc& Condition, void* Params) override;
    TObjIndex LastIndexWith(const TFirstObjectFunc& Condition, void* Params) override;
    void InitLimits() override;
    void RecalcLimits() override;
    std::int32_t BringToFront(TObject* Item, bool ZOrder) override;
    std::int32_t SendToBack(TObject* Item, bool ZOrder) override;
    // `LayNr` is ignored: everything goes to the one layer.
    void Add(TvlObject* AObject, std::int32_t LayNr) override;
    void Remove(TvlObject* Item) override;
    void DeleteObjects() override;
    bool Empty() override;
    void SaveToStream(TStream& Stream) override;
    void LoadFromStream(TStream& Stream) override;

    // The rearmost object whose `Found` accepts the unit square at (`x`, `y`). The layer must not be
    // empty: on an empty one the list raises its index error.
    TvlObject* FindAt(std::int32_t Layer, std::int32_t x, std::int32_t y);

private:
    // Reads counters and layer into new ones and swaps them in; raises on any failure, leaving the
    // former ones in place.
    void LoadBody(TStream& Stream);

    std::unique_ptr<TvlLayer> FObjCase;
    std::uint32_t FCapacity = 100;
};

} // namespace vl
