// The layer: owned objects, incrementally kept limits, deferred deletion and the stream form.
#include "store/Layer.h"

#include "geometry/FileHeader.h"
#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Codepage.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"
#include "platform/services/Infobox.h"
#include "platform/window/Menus.h"
#include "store/DataModBase.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace vl {

namespace {

// A limit value that means "no limit on this side": it never reaches a layer.
constexpr std::int32_t NoMaxLimit = 0x7FFFFFFF;
constexpr std::int32_t LowestMinLimit = -2147483646;

bool SavesObject(const TvlObject* Item) {
    const TCustomGenerator* gen = Item->Generator();
    return !(gen && gen->RtOptions().Contains(roDontSave));
}

// The name up to its first NUL character.
QString UpToNul(const QString& Value) {
    const qsizetype nul = Value.indexOf(QChar(u'\0'));
    return nul < 0 ? Value : Value.left(nul);
}

// Reads a class number, 2 bytes wide from version 0x2090 on and 4 bytes (the low 2 counting) before.
// A stream that ends here ends between two objects: the silent abort.
std::uint16_t ReadClassNr(TStream& Stream) {
    if (vlFileVersionSince(0x2090)) {
        if (Stream.Remaining() < 2) Abort();
        return Stream.ReadUInt16();
    }
    if (Stream.Remaining() < 4) Abort();
    return static_cast<std::uint16_t>(Stream.ReadUInt32() & 0xFFFF);
}

// Reads the name field: a length, then that many characters and a terminator, UTF-16 from tool chain
// 0x09000000 on and single-byte before. The length is checked against what the stream still holds
// before anything is allocated.
QString ReadLayerName(TStream& Stream) {
    if (Stream.Remaining() < 4) Abort();
    const std::int32_t length = Stream.ReadInt32();
    if (length <= 0) return QString();
    const bool singleByte = bdsFileVersionBefore(0x09000000);
    const std::int64_t chars = static_cast<std::int64_t>(length) + 1;
    const std::int64_t bytes = singleByte ? chars : chars * 2;
    if (Stream.Remaining() < bytes) Abort();
    if (singleByte) {
        QByteArray raw(static_cast<qsizetype>(chars), '\0');
        Stream.ReadBuffer(raw.data(), chars);
        return UpToNul(DecodeWindows1252(raw.constData(), raw.size()));
    }
    QString text(static_cast<qsizetype>(chars), QChar(u'\0'));
    for (qsizetype i = 0; i < chars; ++i) text[i] = QChar(static_cast<char16_t>(Stream.ReadUInt16()));
    return UpToNul(text);
}

} // namespace

TvlLayer::TvlLayer(const QString& aName, int aCapacity) : FName(UpToNul(aName)) {
    SetCapacity(aCapacity);
    State.Include(lsZOrder);
}

TvlLayer::~TvlLayer() {
    FreeAll();
    Clear();
}

void TvlLayer::FreeAll() {
    for (int i = 0; i < Count(); ++i) {
        TvlObject* item = Items(i);
        if (!item) continue;
        // The entry is cleared before the object goes, so that no walk can meet the freed address.
        Put(i, nullptr);
        delete item;
    }
}

int TvlLayer::Add(TvlObject* Item) {
    const int index = TCapList::Add(Item);
    if (index >= 0) CheckLimits(Item);
    return index;
}

int TvlLayer::BringToFront(TvlObject* Item, bool ZOrder) {
    if (Remove(Item) < 0) return -1;
    int index = 0;
    if (ZOrder) {
        index = TCapList::Add(Item);
    } else {
        State.Exclude(lsZOrder);
        index = TCapList::Add(Item);
        State.Include(lsZOrder);
    }
    Item->Invalidate();
    return index;
}

int TvlLayer::SendToBack(TvlObject* Item, bool ZOrder) {
    if (Remove(Item) < 0) return -1;
    int target = 0;
    if (ZOrder) {
        const std::int32_t z = ZValueOf(Item);
        for (int k = Count() - 1; k >= 0; --k) {
            const TvlObject* other = Items(k);
            if (other && ZValueOf(other) > z) {
                target = k + 1;
                break;
            }
        }
    }
    Insert(target, Item);
    Item->Invalidate();
    return target;
}

void TvlLayer::DeleteObjects() {
    for (int i = 0; i < Count(); ++i) {
        TvlObject* item = Items(i);
        if (!item) continue;
        if (item->State.Contains(isDeleted)) {
            Put(i, nullptr);
            delete item;
        } else {
            CheckLimits(item);
        }
    }
    Pack();
}

void TvlLayer::InitLimits() {
    State.Include(lsNewLimits);
    FminX = EmptyLimMin;
    FminY = EmptyLimMin;
    FmaxX = EmptyLimMax;
    FmaxY = EmptyLimMax;
}

void TvlLayer::RecalcLimits() {
    InitLimits();
    const int count = Count();
    for (int i = 0; i < count; ++i)
        if (TvlObject* item = Items(i)) CheckLimits(item);
    State.Exclude(lsNewLimits);
}

void TvlLayer::CheckLimits(TvlObject* Item) {
    // A slave read from a stream but not yet connected has no position to speak of.
    if (Item->State.Contains(isConnect)) return;
    const TLimRec l = Item->GetMaxLimits();
    bool stored = false;
    if (!Item->State.Contains(isNoHorzLimit)) {
        if (FmaxX < l.Xmax && l.Xmax != NoMaxLimit) {
            FmaxX = l.Xmax;
            stored = true;
        }
        if (FminX > l.Xmin && l.Xmin >= LowestMinLimit) {
            FminX = l.Xmin;
            stored = true;
        }
    }
    if (!Item->State.Contains(isNoVertLimit)) {
        if (FmaxY < l.Ymax && l.Ymax != NoMaxLimit) {
            FmaxY = l.Ymax;
            stored = true;
        }
        if (FminY > l.Ymin && l.Ymin >= LowestMinLimit) {
            FminY = l.Ymin;
            stored = true;
        }
    }
    // That is how the draw box learns that its range has changed.
    if (stored && ActScaleSet) ActScaleSet->State.Include(scNewLimits);
}

bool TvlLayer::IsOutsideLimits(TvlObject* Item, bool inclBorder) {
    const TLimRec l = Item->GetMaxLimits();
    if (inclBorder) return FmaxX < l.Xmax || FminX > l.Xmin || FmaxY < l.Ymax || FminY > l.Ymin;
    return FmaxX <= l.Xmax || FminX >= l.Xmin || FmaxY <= l.Ymax || FminY >= l.Ymin;
}

void TvlLayer::AllObjects(const TAllObjectsProc& Action, void* Params) {
    if (!State.Contains(lsNewLimits)) {
        TCapList::AllObjects(Action, Params);
        return;
    }
    // The first walk after `InitLimits` rebuilds the limits on the way.
    const int count = Count();
    for (int i = 0; i < count; ++i) {
        TvlObject* item = Items(i);
        if (!item) continue;
        Action(item, Params);
        // The action may have deleted the object and cleared its entry.
        if (TvlObject* still = Items(i)) CheckLimits(still);
    }
    Pack();
    State.Exclude(lsNewLimits);
}

void TvlLayer::AllObjectsBack(const TAllObjectsProc& Action, void* Params) {
    if (!State.Contains(lsNewLimits)) {
        TCapList::AllObjectsBack(Action, Params);
        return;
    }
    for (int i = Count() - 1; i >= 0; --i) {
        TvlObject* item = Items(i);
        if (!item) continue;
        Action(item, Params);
        if (i < Count())
            if (TvlObject* still = Items(i)) CheckLimits(still);
    }
    State.Exclude(lsNewLimits);
}

void TvlLayer::Invalidate() {
    if (Count() == 0) return;
    TvlObject* first = Items(0);
    TObjectStore* dataMod = first ? first->GetDataModule() : nullptr;
    if (!dataMod) return;
    dataMod->FRestoreRect = Limits();
    dataMod->InvalidateRestoreRect();
}

void TvlLayer::SetVisible(bool Value) {
    if (Value)
        State.Exclude(lsHidden);
    else
        State.Include(lsHidden);
    Pack();
    Invalidate();
}

void TvlLayer::Switch(TObject* Sender) {
    SetVisible(!Visible());
    if (auto* item = dynamic_cast<TMenuItem*>(Sender)) item->SetChecked(Visible());
}

void TvlLayer::SetName(const QString& Value) {
    FName = UpToNul(Value);
}

void TvlLayer::SaveToStream(TStream& Stream) {
    const std::int32_t length = static_cast<std::int32_t>(FName.size());
    Stream.WriteInt32(length);
    if (length > 0) {
        for (const QChar c : FName) Stream.WriteUInt16(c.unicode());
        Stream.WriteUInt16(0);
    }
    InfoMessage(220, FName);
    Pack();
    InfoMessage(210, Count());
    for (int i = 0; i < Count() && !Userbreak; ++i) {
        TvlObject* item = Items(i);
        if (SavesObject(item)) item->Persist(&Stream, TPstMode::pstSave);
        InfoCount(i + 1);
    }
    // Also after a break: the file stays readable and is merely shorter.
    Stream.WriteUInt16(LayerEndMark);
}

void TvlLayer::LoadFromStream(TStream& Stream, TComponent* AOwner) {
    // Everything is read aside; the layer changes only when the end mark has been reached.
    QString name;
    if (vlFileVersionSince(0x2004)) name = ReadLayerName(Stream);

    std::vector<std::unique_ptr<TvlObject>> loaded;
    std::uint16_t classNr = ReadClassNr(Stream);
    while (classNr != LayerEndMark) {
        if (Stream.Position() >= Stream.Size()) Abort();
        auto* tool =
            dynamic_cast<TObjectCreator*>(FindCreatorByID(AOwner, static_cast<std::int16_t>(classNr)));
        if (!tool) Abort();
        std::unique_ptr<TvlObject> object(tool->CreateObject());
        object->Persist(&Stream, TPstMode::pstLoad);
        loaded.push_back(std::move(object));
        InfoCount(static_cast<std::int32_t>(
            std::min<std::int64_t>(Stream.Position(), std::numeric_limits<std::int32_t>::max())));
        classNr = ReadClassNr(Stream);
    }

    const std::int64_t needed = static_cast<std::int64_t>(Count()) + static_cast<std::int64_t>(loaded.size());
    // Room for all of them first: a list that can't hold them raises its capacity error before any
    // object is taken in.
    if (needed > Capacity())
        SetCapacity(
            static_cast<int>(std::min<std::int64_t>(needed, std::numeric_limits<std::int32_t>::max())));
    // A layer is loaded right after its creation; a name it already has is kept.
    if (FName.isEmpty()) FName = name;
    // The file order is the list order: no z ordering and no limits here.
    for (auto& object : loaded) Insert(Count(), object.release());
}

} // namespace vl
