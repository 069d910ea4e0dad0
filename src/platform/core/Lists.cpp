#include "platform/core/Lists.h"

#include "platform/core/Codepage.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <QStringDecoder>

#include <algorithm>
#include <utility>

namespace vl {

// --- TList ---

TList::~TList() = default;

void TList::CheckIndex(int Index) const {
    if (Index < 0 || Index >= FCount) throw EListError(msg::ListIndexError(Index));
}

void TList::Notify(void*, TListNotification) {}

void TList::Grow() {
    const int capacity = Capacity();
    int delta;
    if (capacity > 64)
        delta = capacity / 4;
    else if (capacity > 8)
        delta = 16;
    else
        delta = 4;
    // Past the largest size this raises the capacity error, before anything is written.
    SetCapacity(capacity + delta);
}

TList& TList::Expand() {
    if (FCount == Capacity()) Grow();
    return *this;
}

int TList::Add(void* Item) {
    const int index = FCount;
    if (index == Capacity()) Grow();
    FList[static_cast<std::size_t>(index)] = Item;
    ++FCount;
    if (Item != nullptr) Notify(Item, lnAdded);
    return index;
}

void TList::Insert(int Index, void* Item) {
    if (Index < 0 || Index > FCount) throw EListError(msg::ListIndexError(Index));
    if (FCount == Capacity()) Grow();
    const auto at = FList.begin() + Index;
    std::move_backward(at, FList.begin() + FCount, FList.begin() + FCount + 1);
    *at = Item;
    ++FCount;
    if (Item != nullptr) Notify(Item, lnAdded);
}

void* TList::Get(int Index) const {
    CheckIndex(Index);
    return FList[static_cast<std::size_t>(Index)];
}

void TList::Put(int Index, void* Item) {
    CheckIndex(Index);
    void* old = FList[static_cast<std::size_t>(Index)];
    if (old == Item) return;
    FList[static_cast<std::size_t>(Index)] = Item;
    if (old != nullptr) Notify(old, lnDeleted);
    if (Item != nullptr) Notify(Item, lnAdded);
}

int TList::IndexOf(const void* Item) const {
    for (int i = 0; i < FCount; ++i)
        if (FList[static_cast<std::size_t>(i)] == Item) return i;
    return -1;
}

int TList::Remove(void* Item) {
    const int index = IndexOf(Item);
    if (index >= 0) Delete(index);
    return index;
}

void* TList::Extract(void* Item) {
    const int index = IndexOf(Item);
    if (index < 0) return nullptr;
    void* item = FList[static_cast<std::size_t>(index)];
    std::move(FList.begin() + index + 1, FList.begin() + FCount, FList.begin() + index);
    --FCount;
    FList[static_cast<std::size_t>(FCount)] = nullptr;
    if (item != nullptr) Notify(item, lnExtracted);
    return item;
}

void TList::Delete(int Index) {
    CheckIndex(Index);
    void* item = FList[static_cast<std::size_t>(Index)];
    std::move(FList.begin() + Index + 1, FList.begin() + FCount, FList.begin() + Index);
    --FCount;
    FList[static_cast<std::size_t>(FCount)] = nullptr;
    if (item != nullptr) Notify(item, lnDeleted);
}

void TList::Exchange(int Index1, int Index2) {
    CheckIndex(Index1);
    CheckIndex(Index2);
    std::swap(FList[static_cast<std::size_t>(Index1)], FList[static_cast<std::size_t>(Index2)]);
}

void TList::Move(int CurIndex, int NewIndex) {
    if (CurIndex == NewIndex) return;
    CheckIndex(CurIndex);
    CheckIndex(NewIndex);
    // A rotation of the range between the two indexes; no notification, the item stays in the list.
    const auto cur = FList.begin() + CurIndex;
    const auto dest = FList.begin() + NewIndex;
    if (CurIndex < NewIndex)
        std::rotate(cur, cur + 1, dest + 1);
    else
        std::rotate(dest, cur, cur + 1);
}

void TList::Clear() {
    SetCount(0);
    SetCapacity(0);
}

void TList::Pack() {
    const auto end = std::remove(FList.begin(), FList.begin() + FCount, nullptr);
    const int newCount = static_cast<int>(end - FList.begin());
    std::fill(end, FList.begin() + FCount, nullptr);
    FCount = newCount;
}

void TList::Sort(const std::function<int(void*, void*)>& Compare) {
    std::stable_sort(FList.begin(), FList.begin() + FCount,
                     [&Compare](void* a, void* b) { return Compare(a, b) < 0; });
}

void TList::SetCount(int NewCount) {
    if (NewCount < 0 || NewCount > MaxListSize) throw EListError(msg::ListCountError(NewCount));
    if (NewCount > Capacity()) SetCapacity(NewCount);
    if (NewCount > FCount) {
        std::fill(FList.begin() + FCount, FList.begin() + NewCount, nullptr);
        FCount = NewCount;
    } else {
        for (int i = FCount - 1; i >= NewCount; --i) Delete(i);
    }
}

void TList::SetCapacity(int NewCapacity) {
    if (NewCapacity < FCount || NewCapacity > MaxListSize)
        throw EListError(msg::ListCapacityError(NewCapacity));
    if (NewCapacity == Capacity()) return;
    FList.resize(static_cast<std::size_t>(NewCapacity), nullptr);
    if (NewCapacity == 0) FList.shrink_to_fit();
}

// --- TStringList ---

namespace {
const QString DuplicateStringText = QStringLiteral("String list does not allow duplicates");
} // namespace

void TStringList::SortedListError() {
    throw EListError(QStringLiteral("Operation not allowed on sorted list"));
}

void TStringList::CheckIndex(int Index) const {
    if (Index < 0 || Index >= Count()) throw EListError(msg::ListIndexError(Index));
}

int TStringList::CompareStrings(const QString& S1, const QString& S2) const {
    return QString::compare(S1, S2, FCaseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
}

void TStringList::Assign(TPersistent* Source) {
    if (auto* source = dynamic_cast<TStringList*>(Source)) {
        if (source == this) return;
        const std::vector<TStringItem> items = source->FItems;
        Clear();
        for (const auto& item : items) AddObject(item.FString, item.FObject);
        return;
    }
    TPersistent::Assign(Source);
}

int TStringList::Add(const QString& S) {
    return AddObject(S, nullptr);
}

int TStringList::AddObject(const QString& S, void* AObject) {
    int index = Count();
    if (FSorted) {
        if (Find(S, index)) {
            switch (FDuplicates) {
            case dupIgnore: return index;
            case dupError: throw EListError(DuplicateStringText);
            case dupAccept: break;
            }
        }
    }
    InsertItem(index, S, AObject);
    return index;
}

void TStringList::AddStrings(const TStringList& Strings) {
    const std::vector<TStringItem> items = Strings.FItems; // `Strings` may be this list
    for (const auto& item : items) AddObject(item.FString, item.FObject);
}

void TStringList::Insert(int Index, const QString& S) {
    InsertObject(Index, S, nullptr);
}

void TStringList::InsertObject(int Index, const QString& S, void* AObject) {
    if (FSorted) SortedListError();
    if (Index < 0 || Index > Count()) throw EListError(msg::ListIndexError(Index));
    InsertItem(Index, S, AObject);
}

void TStringList::InsertItem(int Index, const QString& S, void* AObject) {
    FItems.insert(FItems.begin() + Index, TStringItem{S, AObject});
}

void TStringList::Delete(int Index) {
    CheckIndex(Index);
    FItems.erase(FItems.begin() + Index);
}

void TStringList::Clear() {
    FItems.clear();
}

void TStringList::Exchange(int Index1, int Index2) {
    CheckIndex(Index1);
    CheckIndex(Index2);
    std::swap(FItems[static_cast<std::size_t>(Index1)], FItems[static_cast<std::size_t>(Index2)]);
}

void TStringList::Move(int CurIndex, int NewIndex) {
    if (CurIndex == NewIndex) return;
    if (FSorted) SortedListError();
    CheckIndex(CurIndex);
    CheckIndex(NewIndex);
    const auto cur = FItems.begin() + CurIndex;
    const auto dest = FItems.begin() + NewIndex;
    if (CurIndex < NewIndex)
        std::rotate(cur, cur + 1, dest + 1);
    else
        std::rotate(dest, cur, cur + 1);
}

const QString& TStringList::Strings(int Index) const {
    CheckIndex(Index);
    return FItems[static_cast<std::size_t>(Index)].FString;
}

void TStringList::SetString(int Index, const QString& S) {
    if (FSorted) SortedListError();
    CheckIndex(Index);
    FItems[static_cast<std::size_t>(Index)].FString = S;
}

void* TStringList::Objects(int Index) const {
    CheckIndex(Index);
    return FItems[static_cast<std::size_t>(Index)].FObject;
}

void TStringList::SetObject(int Index, void* AObject) {
    CheckIndex(Index);
    FItems[static_cast<std::size_t>(Index)].FObject = AObject;
}

int TStringList::IndexOf(const QString& S) const {
    if (FSorted) {
        int index = 0;
        return Find(S, index) ? index : -1;
    }
    for (int i = 0; i < Count(); ++i)
        if (CompareStrings(FItems[static_cast<std::size_t>(i)].FString, S) == 0) return i;
    return -1;
}

int TStringList::IndexOfObject(const void* AObject) const {
    for (int i = 0; i < Count(); ++i)
        if (FItems[static_cast<std::size_t>(i)].FObject == AObject) return i;
    return -1;
}

bool TStringList::Find(const QString& S, int& Index) const {
    // Binary search for the first entry not below `S`.
    bool found = false;
    int low = 0;
    int high = Count() - 1;
    while (low <= high) {
        const int mid = low + (high - low) / 2;
        const int c = CompareStrings(FItems[static_cast<std::size_t>(mid)].FString, S);
        if (c < 0) {
            low = mid + 1;
        } else {
            high = mid - 1;
            if (c == 0) found = true;
        }
    }
    Index = low;
    return found;
}

void TStringList::Sort() {
    std::stable_sort(FItems.begin(), FItems.end(), [this](const TStringItem& a, const TStringItem& b) {
        return CompareStrings(a.FString, b.FString) < 0;
    });
}

void TStringList::SetSorted(bool Value) {
    if (FSorted == Value) return;
    if (Value) Sort();
    FSorted = Value;
}

void TStringList::SetCaseSensitive(bool Value) {
    if (FCaseSensitive == Value) return;
    FCaseSensitive = Value;
    if (FSorted) Sort();
}

QString TStringList::Text() const {
    QString text;
    for (const auto& item : FItems) {
        text += item.FString;
        text += QLatin1String("\r\n");
    }
    return text;
}

void TStringList::SetText(const QString& Value) {
    Clear();
    const qsizetype length = Value.size();
    qsizetype pos = 0;
    while (pos < length) {
        qsizetype end = pos;
        while (end < length && Value[end] != QLatin1Char('\n') && Value[end] != QLatin1Char('\r')) ++end;
        Add(Value.mid(pos, end - pos));
        pos = end;
        if (pos < length && Value[pos] == QLatin1Char('\r')) ++pos;
        if (pos < length && Value[pos] == QLatin1Char('\n')) ++pos;
    }
}

void TStringList::LoadFromStream(TStream& Stream) {
    const std::int64_t size = Stream.Remaining();
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    if (size > 0) Stream.ReadBuffer(bytes.data(), size);
    if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) text = DecodeWindows1252(bytes.constData(), bytes.size());
    SetText(text);
}

void TStringList::SaveToStream(TStream& Stream) const {
    const QByteArray bytes = Text().toUtf8();
    if (!bytes.isEmpty()) Stream.WriteBuffer(bytes.constData(), bytes.size());
}

void TStringList::LoadFromFile(const QString& FileName) {
    TFileStream file(FileName, fmOpenRead);
    LoadFromStream(file);
}

void TStringList::SaveToFile(const QString& FileName) const {
    TFileStream file(FileName, fmCreate);
    SaveToStream(file);
}

QStringList TStringList::ToQStringList() const {
    QStringList list;
    list.reserve(Count());
    for (const auto& item : FItems) list.append(item.FString);
    return list;
}

} // namespace vl
