// The framework's containers: `TList`, a growable array of borrowed object references, and
// `TStringList`, strings with one object reference each.
//
// Neither list owns the objects it refers to. Every index is checked: a bad one raises `EListError`
// with the framework's message. `TList` may hold null entries; `Pack` drops them keeping the order.
#pragma once

#include "platform/core/Classes.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

namespace vl {

class TStream;

enum class TListNotification : std::uint8_t { lnAdded, lnExtracted, lnDeleted };
using enum TListNotification;

class TList {
public:
    // The largest count and capacity.
    static constexpr int MaxListSize = 0x7FFFFFFF / 16;

    TList() = default;
    TList(const TList&) = default;
    TList& operator=(const TList&) = default;
    // Derived classes that react in `Notify` call `Clear` in their own destructor: here it would no
    // longer reach them.
    virtual ~TList();

    // Appends `Item` and answers its index.
    int Add(void* Item);
    // Inserts `Item` before `Index`; 0 to `Count` are allowed.
    void Insert(int Index, void* Item);
    void* Get(int Index) const;
    void Put(int Index, void* Item);
    void* operator[](int Index) const { return Get(Index); }
    // Removes the first entry equal to `Item` and answers the index it had, -1 when absent.
    int Remove(void* Item);
    // Removes the first entry equal to `Item` and answers it, nullptr when absent.
    void* Extract(void* Item);
    void Delete(int Index);
    int IndexOf(const void* Item) const;
    void Exchange(int Index1, int Index2);
    // Takes the item at `CurIndex` out and puts it in at `NewIndex`.
    void Move(int CurIndex, int NewIndex);
    // The first and last items; an empty list raises the index error.
    void* First() const { return Get(0); }
    void* Last() const { return Get(Count() - 1); }
    void Clear();
    // Removes all null entries, keeping the order of the others.
    void Pack();
    // Grows the capacity when the list is full; answers the list.
    TList& Expand();
    // Sorts by `Compare` (negative, zero, positive as for `a` before, equal to, after `b`).
    void Sort(const std::function<int(void*, void*)>& Compare);

    int Count() const { return FCount; }
    // Shrinking deletes the entries beyond `NewCount`; growing appends null entries. A negative count
    // or one above `MaxListSize` raises the count error.
    void SetCount(int NewCount);
    int Capacity() const { return static_cast<int>(FList.size()); }
    // A capacity below `Count` or above `MaxListSize` raises the capacity error.
    void SetCapacity(int NewCapacity);

    // The entries in use.
    void* const* List() const { return FList.data(); }

protected:
    // Told of every non-null item that enters or leaves the list.
    virtual void Notify(void* Ptr, TListNotification Action);
    // Enlarges the capacity by the framework's rule: by 4 while it is below 9, by 16 while it is below
    // 65, else by a quarter.
    virtual void Grow();

private:
    void CheckIndex(int Index) const;

    std::vector<void*> FList; // its size is the capacity
    int FCount = 0;
};

// How a sorted `TStringList` treats a string it holds already.
enum class TDuplicates : std::uint8_t { dupIgnore, dupAccept, dupError };
using enum TDuplicates;

class TStringList : public TPersistent {
public:
    TStringList() = default;
    TStringList(const TStringList& Other)
        : TPersistent(), FItems(Other.FItems), FSorted(Other.FSorted), FCaseSensitive(Other.FCaseSensitive),
          FDuplicates(Other.FDuplicates) {}
    TStringList& operator=(const TStringList& Other) {
        FItems = Other.FItems;
        FSorted = Other.FSorted;
        FCaseSensitive = Other.FCaseSensitive;
        FDuplicates = Other.FDuplicates;
        return *this;
    }

    // Copies the strings and objects of another `TStringList`.
    void Assign(TPersistent* Source) override;

    // Appends (or, when sorted, inserts in order) and answers the index. In a sorted list a string that
    // is there already is ignored (`dupIgnore`, answering the index it has), accepted (`dupAccept`) or
    // refused with `EListError` "String list does not allow duplicates" (`dupError`).
    int Add(const QString& S);
    int AddObject(const QString& S, void* AObject);
    void AddStrings(const TStringList& Strings);
    // Inserts before `Index` (0 to `Count`). Not allowed on a sorted list.
    void Insert(int Index, const QString& S);
    void InsertObject(int Index, const QString& S, void* AObject);
    void Delete(int Index);
    void Clear();
    void Exchange(int Index1, int Index2);
    void Move(int CurIndex, int NewIndex);

    int Count() const { return static_cast<int>(FItems.size()); }
    const QString& Strings(int Index) const;
    const QString& operator[](int Index) const { return Strings(Index); }
    // Not allowed on a sorted list.
    void SetString(int Index, const QString& S);
    void* Objects(int Index) const;
    void SetObject(int Index, void* AObject);

    // The index of the first entry equal to `S` (without regard to case unless `CaseSensitive`),
    // -1 when absent.
    int IndexOf(const QString& S) const;
    int IndexOfObject(const void* AObject) const;
    // Binary search of a sorted list: true when `S` is there; `Index` receives its index (the first of
    // equal entries with `dupAccept`) or the index where it would be inserted.
    bool Find(const QString& S, int& Index) const;
    void Sort();

    bool Sorted() const { return FSorted; }
    void SetSorted(bool Value);
    TDuplicates Duplicates() const { return FDuplicates; }
    void SetDuplicates(TDuplicates Value) { FDuplicates = Value; }
    bool CaseSensitive() const { return FCaseSensitive; }
    // Changing it re-sorts a sorted list.
    void SetCaseSensitive(bool Value);

    // Every string followed by CR LF.
    QString Text() const;
    // Replaces the content by the lines of `Value`; LF, CR and CR LF all end a line, and a line
    // break at the end adds no empty line.
    void SetText(const QString& Value);

    // Reads the text from the stream's position to its end: UTF-8, a leading byte order mark skipped,
    // bytes that are no valid UTF-8 read as code page 1252.
    void LoadFromStream(TStream& Stream);
    // Writes `Text` as UTF-8, without a byte order mark.
    void SaveToStream(TStream& Stream) const;
    void LoadFromFile(const QString& FileName);
    void SaveToFile(const QString& FileName) const;

    QStringList ToQStringList() const;

protected:
    // Compares two strings as this list does: by UTF-16 code units, with case folded unless
    // `CaseSensitive`.
    int CompareStrings(const QString& S1, const QString& S2) const;

private:
    struct TStringItem {
        QString FString;
        void* FObject = nullptr;
    };

    void CheckIndex(int Index) const;
    void InsertItem(int Index, const QString& S, void* AObject);
    [[noreturn]] static void SortedListError();

    std::vector<TStringItem> FItems;
    bool FSorted = false;
    bool FCaseSensitive = false;
    TDuplicates FDuplicates = dupIgnore;
};

} // namespace vl
