#include "platform/core/Lists.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

using namespace vl;

namespace {

// Distinct fake references; the lists never dereference their items.
void* P(std::uintptr_t n) {
    return reinterpret_cast<void*>(n * 16);
}

std::vector<void*> Items(const TList& l) {
    std::vector<void*> v;
    for (int i = 0; i < l.Count(); ++i) v.push_back(l.Get(i));
    return v;
}

std::vector<std::string> Strings(const TStringList& l) {
    std::vector<std::string> v;
    for (int i = 0; i < l.Count(); ++i) v.push_back(l.Strings(i).toStdString());
    return v;
}

template <typename F>
QString ListErrorMessage(F&& f) {
    try {
        f();
    } catch (const EListError& e) {
        return e.Message();
    }
    return QStringLiteral("no error");
}

} // namespace

// --- TList ---

TEST(List, AddAnswersTheIndex) {
    TList l;
    EXPECT_EQ(l.Add(P(1)), 0);
    EXPECT_EQ(l.Add(P(2)), 1);
    EXPECT_EQ(l.Add(nullptr), 2);
    EXPECT_EQ(l.Count(), 3);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(2), nullptr}));
}

TEST(List, GetAndPutCheckTheIndex) {
    TList l;
    l.Add(P(1));
    EXPECT_EQ(ListErrorMessage([&] { l.Get(1); }), QStringLiteral("List index out of bounds (1)"));
    EXPECT_EQ(ListErrorMessage([&] { l.Get(-1); }), QStringLiteral("List index out of bounds (-1)"));
    EXPECT_EQ(ListErrorMessage([&] { l.Put(1, P(2)); }), QStringLiteral("List index out of bounds (1)"));
    l.Put(0, P(3));
    EXPECT_EQ(l[0], P(3));
}

TEST(List, InsertAtCountAppends) {
    TList l;
    l.Add(P(1));
    l.Insert(1, P(2));
    l.Insert(0, P(0));
    EXPECT_EQ(Items(l), (std::vector<void*>{P(0), P(1), P(2)}));
}

TEST(List, InsertBeyondCountRaisesListIndexError) {
    TList l;
    l.Add(P(1));
    EXPECT_EQ(ListErrorMessage([&] { l.Insert(2, P(2)); }), QStringLiteral("List index out of bounds (2)"));
    EXPECT_THROW(l.Insert(-1, P(2)), EListError);
    EXPECT_EQ(l.Count(), 1);
}

TEST(List, RemoveAnswersTheFormerIndex) {
    TList l;
    l.Add(P(1));
    l.Add(P(2));
    l.Add(P(3));
    l.Add(P(2));
    EXPECT_EQ(l.Remove(P(2)), 1);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(3), P(2)}));
    EXPECT_EQ(l.Remove(P(9)), -1);
    EXPECT_EQ(l.Count(), 3);
}

TEST(List, IndexOfFindsTheFirst) {
    TList l;
    l.Add(P(5));
    l.Add(P(6));
    l.Add(P(5));
    EXPECT_EQ(l.IndexOf(P(5)), 0);
    EXPECT_EQ(l.IndexOf(P(6)), 1);
    EXPECT_EQ(l.IndexOf(P(7)), -1);
    EXPECT_EQ(l.IndexOf(nullptr), -1);
}

TEST(List, DeleteShiftsAndChecksTheIndex) {
    TList l;
    for (int i = 1; i <= 4; ++i) l.Add(P(i));
    l.Delete(1);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(3), P(4)}));
    EXPECT_EQ(ListErrorMessage([&] { l.Delete(3); }), QStringLiteral("List index out of bounds (3)"));
}

TEST(List, ExtractAnswersTheItemOrNull) {
    TList l;
    l.Add(P(1));
    l.Add(P(2));
    EXPECT_EQ(l.Extract(P(2)), P(2));
    EXPECT_EQ(l.Extract(P(2)), nullptr);
    EXPECT_EQ(Items(l), std::vector<void*>{P(1)});
}

TEST(List, ExchangeAndMove) {
    TList l;
    for (int i = 0; i < 5; ++i) l.Add(P(i));
    l.Exchange(0, 4);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(4), P(1), P(2), P(3), P(0)}));
    l.Move(1, 3);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(4), P(2), P(3), P(1), P(0)}));
    l.Move(4, 0);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(0), P(4), P(2), P(3), P(1)}));
    EXPECT_THROW(l.Exchange(0, 5), EListError);
    EXPECT_THROW(l.Move(0, 5), EListError);
    EXPECT_THROW(l.Move(-1, 0), EListError);
}

TEST(List, FirstAndLastOfAnEmptyListRaise) {
    TList l;
    EXPECT_THROW(l.First(), EListError);
    EXPECT_THROW(l.Last(), EListError);
    l.Add(P(1));
    l.Add(P(2));
    EXPECT_EQ(l.First(), P(1));
    EXPECT_EQ(l.Last(), P(2));
}

TEST(List, PackDropsNullEntriesKeepingOrder) {
    TList l;
    l.Add(nullptr);
    l.Add(P(1));
    l.Add(nullptr);
    l.Add(nullptr);
    l.Add(P(2));
    l.Add(P(3));
    l.Add(nullptr);
    const int capacity = l.Capacity();
    l.Pack();
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(2), P(3)}));
    EXPECT_EQ(l.Capacity(), capacity);
    TList empty;
    empty.Pack();
    EXPECT_EQ(empty.Count(), 0);
}

TEST(List, ClearEmptiesAndReleasesCapacity) {
    TList l;
    for (int i = 0; i < 10; ++i) l.Add(P(i));
    l.Clear();
    EXPECT_EQ(l.Count(), 0);
    EXPECT_EQ(l.Capacity(), 0);
}

TEST(List, GrowsByTheFrameworkRule) {
    TList l;
    std::vector<int> capacities;
    for (int i = 0; i < 200; ++i) {
        l.Add(P(i));
        if (capacities.empty() || capacities.back() != l.Capacity()) capacities.push_back(l.Capacity());
    }
    // +4 below 9, +16 below 65, then a quarter.
    EXPECT_EQ(capacities, (std::vector<int>{4, 8, 12, 28, 44, 60, 76, 95, 118, 147, 183, 228}));
}

TEST(List, CapacityBelowCountRaisesCapacityError) {
    TList l;
    l.Add(P(1));
    l.Add(P(2));
    EXPECT_EQ(ListErrorMessage([&] { l.SetCapacity(1); }), QStringLiteral("List capacity out of bounds (1)"));
    EXPECT_THROW(l.SetCapacity(TList::MaxListSize + 1), EListError);
    l.SetCapacity(2);
    EXPECT_EQ(l.Capacity(), 2);
    l.SetCapacity(100);
    EXPECT_EQ(l.Capacity(), 100);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(2)}));
}

TEST(List, SetCountGrowsWithNullAndShrinks) {
    TList l;
    l.Add(P(1));
    l.SetCount(3);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), nullptr, nullptr}));
    EXPECT_GE(l.Capacity(), 3);
    l.SetCount(0);
    EXPECT_EQ(l.Count(), 0);
    // Growing again after shrinking shows no stale entries.
    l.Add(P(7));
    l.Add(P(8));
    l.SetCount(1);
    l.SetCount(2);
    EXPECT_EQ(Items(l), (std::vector<void*>{P(7), nullptr}));
}

TEST(List, NegativeCountRaisesCountError) {
    TList l;
    EXPECT_EQ(ListErrorMessage([&] { l.SetCount(-1); }), QStringLiteral("List count out of bounds (-1)"));
}

TEST(List, SortOrdersByTheComparison) {
    TList l;
    for (int i : {3, 1, 2}) l.Add(P(i));
    l.Sort([](void* a, void* b) {
        const auto x = reinterpret_cast<std::uintptr_t>(a), y = reinterpret_cast<std::uintptr_t>(b);
        return x < y ? -1 : (x > y ? 1 : 0);
    });
    EXPECT_EQ(Items(l), (std::vector<void*>{P(1), P(2), P(3)}));
}

namespace {
class TNotifyingList : public TList {
public:
    ~TNotifyingList() override { Clear(); }
    std::vector<std::pair<void*, TListNotification>> FSeen;

protected:
    void Notify(void* Ptr, TListNotification Action) override { FSeen.emplace_back(Ptr, Action); }
};
} // namespace

TEST(List, NotifiesNonNullItemsEnteringAndLeaving) {
    TNotifyingList l;
    l.Add(P(1));
    l.Add(nullptr);
    l.Insert(0, P(2));
    l.Put(0, P(3));
    l.Extract(P(1));
    l.Delete(0);
    const std::vector<std::pair<void*, TListNotification>> expected{{P(1), lnAdded},     {P(2), lnAdded},
                                                                    {P(2), lnDeleted},   {P(3), lnAdded},
                                                                    {P(1), lnExtracted}, {P(3), lnDeleted}};
    EXPECT_EQ(l.FSeen, expected);
}

// --- TStringList ---

TEST(StringList, AddInsertAndObjects) {
    TStringList l;
    int a = 0, b = 0;
    EXPECT_EQ(l.Add(QStringLiteral("one")), 0);
    EXPECT_EQ(l.AddObject(QStringLiteral("two"), &a), 1);
    l.Insert(0, QStringLiteral("zero"));
    l.InsertObject(3, QStringLiteral("three"), &b);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"zero", "one", "two", "three"}));
    EXPECT_EQ(l.Objects(0), nullptr);
    EXPECT_EQ(l.Objects(2), &a);
    EXPECT_EQ(l.Objects(3), &b);
    l.SetObject(0, &b);
    EXPECT_EQ(l.IndexOfObject(&b), 0);
    EXPECT_EQ(l.IndexOfObject(&a), 2);
    l.SetString(1, QStringLiteral("uno"));
    EXPECT_EQ(l[1], QStringLiteral("uno"));
    l.Delete(0);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"uno", "two", "three"}));
    l.Clear();
    EXPECT_EQ(l.Count(), 0);
}

TEST(StringList, BadIndexesRaiseListIndexError) {
    TStringList l;
    l.Add(QStringLiteral("a"));
    EXPECT_EQ(ListErrorMessage([&] { l.Strings(1); }), QStringLiteral("List index out of bounds (1)"));
    EXPECT_THROW(l.Strings(-1), EListError);
    EXPECT_THROW(l.SetString(1, QString()), EListError);
    EXPECT_THROW(l.Objects(1), EListError);
    EXPECT_THROW(l.SetObject(-1, nullptr), EListError);
    EXPECT_THROW(l.Delete(1), EListError);
    EXPECT_THROW(l.Insert(2, QString()), EListError);
    EXPECT_THROW(l.Exchange(0, 1), EListError);
    EXPECT_NO_THROW(l.Insert(1, QStringLiteral("b")));
}

TEST(StringList, IndexOfIgnoresCaseByDefault) {
    TStringList l;
    l.Add(QStringLiteral("Alpha"));
    l.Add(QStringLiteral("beta"));
    EXPECT_EQ(l.IndexOf(QStringLiteral("ALPHA")), 0);
    EXPECT_EQ(l.IndexOf(QStringLiteral("Beta")), 1);
    EXPECT_EQ(l.IndexOf(QStringLiteral("gamma")), -1);
    l.SetCaseSensitive(true);
    EXPECT_EQ(l.IndexOf(QStringLiteral("ALPHA")), -1);
    EXPECT_EQ(l.IndexOf(QStringLiteral("Alpha")), 0);
}

TEST(StringList, SortedListKeepsOrderAndFinds) {
    TStringList l;
    l.SetSorted(true);
    l.Add(QStringLiteral("pear"));
    l.Add(QStringLiteral("Apple"));
    l.Add(QStringLiteral("fig"));
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"Apple", "fig", "pear"}));
    int index = -1;
    EXPECT_TRUE(l.Find(QStringLiteral("FIG"), index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(l.Find(QStringLiteral("grape"), index));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(l.Find(QStringLiteral("zucchini"), index));
    EXPECT_EQ(index, 3);
    EXPECT_EQ(l.IndexOf(QStringLiteral("PEAR")), 2);
    EXPECT_EQ(l.IndexOf(QStringLiteral("plum")), -1);
}

TEST(StringList, SettingSortedSortsTheContent) {
    TStringList l;
    for (const char* s : {"c", "a", "b"}) l.Add(QString::fromLatin1(s));
    l.SetSorted(true);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(StringList, SortedListRefusesPositionalChanges) {
    TStringList l;
    l.SetSorted(true);
    l.Add(QStringLiteral("a"));
    EXPECT_THROW(l.Insert(0, QStringLiteral("b")), EListError);
    EXPECT_THROW(l.SetString(0, QStringLiteral("b")), EListError);
}

TEST(StringList, DuplicatesIgnoredByDefaultInASortedList) {
    TStringList l;
    l.SetSorted(true);
    l.Add(QStringLiteral("b"));
    l.Add(QStringLiteral("a"));
    EXPECT_EQ(l.Add(QStringLiteral("B")), 1);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"a", "b"}));
}

TEST(StringList, DuplicatesAccepted) {
    TStringList l;
    l.SetSorted(true);
    l.SetDuplicates(dupAccept);
    l.Add(QStringLiteral("b"));
    l.Add(QStringLiteral("a"));
    l.Add(QStringLiteral("b"));
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"a", "b", "b"}));
    int index = -1;
    EXPECT_TRUE(l.Find(QStringLiteral("b"), index));
    EXPECT_EQ(index, 1);
}

TEST(StringList, DuplicateErrorRaisesListError) {
    TStringList l;
    l.SetSorted(true);
    l.SetDuplicates(dupError);
    l.Add(QStringLiteral("x"));
    EXPECT_EQ(ListErrorMessage([&] { l.Add(QStringLiteral("X")); }),
              QStringLiteral("String list does not allow duplicates"));
    EXPECT_EQ(l.Count(), 1);
}

TEST(StringList, DuplicatesAreAlwaysAllowedInAnUnsortedList) {
    TStringList l;
    l.SetDuplicates(dupError);
    l.Add(QStringLiteral("x"));
    EXPECT_NO_THROW(l.Add(QStringLiteral("x")));
    EXPECT_EQ(l.Count(), 2);
}

TEST(StringList, CaseSensitiveSortedList) {
    TStringList l;
    l.SetCaseSensitive(true);
    l.SetSorted(true);
    l.Add(QStringLiteral("b"));
    l.Add(QStringLiteral("B"));
    l.Add(QStringLiteral("a"));
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"B", "a", "b"}));
    EXPECT_EQ(l.IndexOf(QStringLiteral("b")), 2);
}

TEST(StringList, ExchangeSwapsStringsWithTheirObjects) {
    TStringList l;
    int a = 0, b = 0;
    l.AddObject(QStringLiteral("a"), &a);
    l.AddObject(QStringLiteral("b"), &b);
    l.Exchange(0, 1);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(l.Objects(0), &b);
    EXPECT_EQ(l.Objects(1), &a);
}

TEST(StringList, TextEndsEveryLineWithCrLf) {
    TStringList l;
    EXPECT_EQ(l.Text(), QString());
    l.Add(QStringLiteral("one"));
    l.Add(QString());
    l.Add(QStringLiteral("three"));
    EXPECT_EQ(l.Text(), QStringLiteral("one\r\n\r\nthree\r\n"));
}

struct SetTextCase {
    const char* text;
    std::vector<std::string> lines;
};

// The text with its line breaks escaped: "a\r\nb".
static void PrintTo(const SetTextCase& c, std::ostream* os) {
    *os << ::testing::PrintToString(std::string(c.text));
}

// The text with each CR as "Cr" and each LF as "Lf" ("aCrLfb"); "Empty" for no text.
static std::string SetTextCaseName(const ::testing::TestParamInfo<SetTextCase>& Info) {
    std::string name;
    for (const char* p = Info.param.text; *p; ++p) {
        if (*p == '\r')
            name += "Cr";
        else if (*p == '\n')
            name += "Lf";
        else
            name += *p;
    }
    return name.empty() ? std::string("Empty") : name;
}

class StringListSetText : public ::testing::TestWithParam<SetTextCase> {};

TEST_P(StringListSetText, SplitsAtEveryKindOfLineBreak) {
    TStringList l;
    l.Add(QStringLiteral("old"));
    l.SetText(QString::fromLatin1(GetParam().text));
    EXPECT_EQ(Strings(l), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    StringList, StringListSetText,
    ::testing::Values(SetTextCase{"", {}}, SetTextCase{"a", {"a"}}, SetTextCase{"a\r\nb\r\n", {"a", "b"}},
                      SetTextCase{"a\nb", {"a", "b"}}, SetTextCase{"a\rb\r", {"a", "b"}},
                      SetTextCase{"a\r\n\r\nb", {"a", "", "b"}}, SetTextCase{"\n\n", {"", ""}},
                      SetTextCase{"a\n\rb", {"a", "", "b"}}, SetTextCase{"a\r\r\nb", {"a", "", "b"}}),
    SetTextCaseName);

TEST(StringList, SaveToStreamWritesUtf8WithoutByteOrderMark) {
    TStringList l;
    l.Add(QStringLiteral("Maß"));
    l.Add(QStringLiteral("x"));
    TMemoryStream s;
    l.SaveToStream(s);
    EXPECT_EQ(s.Bytes(), QByteArray("Ma\xC3\x9F\r\nx\r\n"));
}

TEST(StringList, LoadFromStreamReadsUtf8AndSkipsByteOrderMark) {
    TMemoryStream s(QByteArray("\xEF\xBB\xBF\xC3\xA4rger\nline 2"));
    TStringList l;
    l.LoadFromStream(s);
    ASSERT_EQ(l.Count(), 2);
    EXPECT_EQ(l.Strings(0), QStringLiteral("\u00E4rger"));
    EXPECT_EQ(l.Strings(1), QStringLiteral("line 2"));
}

TEST(StringList, LoadFromStreamDecodesInvalidUtf8AsCodePage1252) {
    // 0xE4 is "ä" and 0x80 is the euro sign in code page 1252; neither is valid UTF-8 here.
    TMemoryStream s(QByteArray("\xE4rger \x80\r\n"));
    TStringList l;
    l.LoadFromStream(s);
    ASSERT_EQ(l.Count(), 1);
    EXPECT_EQ(l.Strings(0), QStringLiteral("\u00E4rger \u20AC"));
}

TEST(StringList, LoadFromStreamStartsAtThePosition) {
    TMemoryStream s(QByteArray("skip\nkeep\n"));
    s.SetPosition(5);
    TStringList l;
    l.LoadFromStream(s);
    EXPECT_EQ(Strings(l), std::vector<std::string>{"keep"});
}

TEST(StringList, FileRoundTrip) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString name = dir.filePath(QStringLiteral("lines.map"));
    TStringList l;
    l.Add(QStringLiteral("From: 1"));
    l.Add(QStringLiteral("Größe"));
    l.SaveToFile(name);
    TStringList back;
    back.LoadFromFile(name);
    EXPECT_EQ(back.Text(), l.Text());
    QFile f(name);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("From: 1\r\nGr\xC3\xB6\xC3\x9F"
                                      "e\r\n"));
}

TEST(StringList, LoadFromMissingFileRaisesFileOpenError) {
    QTemporaryDir dir;
    TStringList l;
    EXPECT_THROW(l.LoadFromFile(dir.filePath(QStringLiteral("absent.txt"))), EFOpenError);
}

TEST(StringList, AssignCopiesStringsAndObjects) {
    TStringList a;
    int x = 0;
    a.AddObject(QStringLiteral("b"), &x);
    a.Add(QStringLiteral("a"));
    TStringList b;
    b.Add(QStringLiteral("old"));
    b.Assign(&a);
    EXPECT_EQ(Strings(b), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(b.Objects(0), &x);
    TComponent c(nullptr);
    EXPECT_THROW(b.Assign(&c), EConvertError);
    EXPECT_THROW(b.Assign(nullptr), EConvertError);
}

TEST(StringList, MoveKeepsTheObject) {
    TStringList l;
    int x = 0;
    l.AddObject(QStringLiteral("a"), &x);
    l.Add(QStringLiteral("b"));
    l.Add(QStringLiteral("c"));
    l.Move(0, 2);
    EXPECT_EQ(Strings(l), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(l.Objects(2), &x);
}

TEST(StringList, CopiesAreIndependent) {
    TStringList a;
    a.SetSorted(true);
    a.Add(QStringLiteral("m"));
    TStringList b(a);
    b.Add(QStringLiteral("a"));
    EXPECT_TRUE(b.Sorted());
    EXPECT_EQ(Strings(b), (std::vector<std::string>{"a", "m"}));
    EXPECT_EQ(Strings(a), std::vector<std::string>{"m"});
    TStringList c;
    c = b;
    EXPECT_EQ(c.Count(), 2);
}
