#include "platform/core/Classes.h"
#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace vl;

namespace {

// A component that writes every notice it gets, and its own destruction, into a shared log as
// "<receiver>:<+|-><subject>" and "~<name>".
class TRecorder : public TComponent {
public:
    TRecorder(TComponent* AOwner, std::vector<std::string>* Log, const char* AName = nullptr)
        : TComponent(AOwner), FLog(Log) {
        if (AName != nullptr) SetName(QString::fromLatin1(AName));
    }
    ~TRecorder() override {
        if (FLog != nullptr) FLog->push_back("~" + Name().toStdString());
    }

    void Notification(TComponent* AComponent, TOperation Operation) override {
        if (FLog != nullptr && !Name().isEmpty() && AComponent != nullptr)
            FLog->push_back(Name().toStdString() + ":" + (Operation == opInsert ? "+" : "-") +
                            AComponent->Name().toStdString());
        if (Operation == opRemove && AComponent == FLink) FLink = nullptr;
        TComponent::Notification(AComponent, Operation);
    }

    void Loaded() override {
        TComponent::Loaded();
        if (FLog != nullptr) FLog->push_back("loaded " + Name().toStdString());
    }

    TComponent* FLink = nullptr; // borrowed; cleared by notification
    std::vector<std::string>* FLog;
};

std::vector<std::string> Names(const TComponent& Owner) {
    std::vector<std::string> names;
    for (int i = 0; i < Owner.ComponentCount(); ++i)
        names.push_back(Owner.Components(i)->Name().toStdString());
    return names;
}

} // namespace

TEST(Component, OwnedComponentsKeepTheOrderOfCreation) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    auto* b = new TComponent(&form);
    auto* c = new TComponent(&form);
    ASSERT_EQ(form.ComponentCount(), 3);
    EXPECT_EQ(form.Components(0), a);
    EXPECT_EQ(form.Components(1), b);
    EXPECT_EQ(form.Components(2), c);
    EXPECT_EQ(a->ComponentIndex(), 0);
    EXPECT_EQ(b->ComponentIndex(), 1);
    EXPECT_EQ(c->ComponentIndex(), 2);
    EXPECT_EQ(c->Owner(), &form);
    EXPECT_EQ(form.Owner(), nullptr);
    EXPECT_EQ(form.ComponentIndex(), -1);
}

TEST(Component, RenamingDoesNotReorder) {
    TComponent form(nullptr);
    auto* z = new TComponent(&form);
    z->SetName(QStringLiteral("Zeta"));
    auto* a = new TComponent(&form);
    a->SetName(QStringLiteral("Alpha"));
    z->SetName(QStringLiteral("Beta"));
    EXPECT_EQ(Names(form), (std::vector<std::string>{"Beta", "Alpha"}));
}

TEST(Component, BadComponentIndexRaisesListError) {
    TComponent form(nullptr);
    new TComponent(&form);
    EXPECT_THROW(form.Components(1), EListError);
    EXPECT_THROW(form.Components(-1), EListError);
    try {
        form.Components(5);
        FAIL();
    } catch (const EListError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("List index out of bounds (5)"));
    }
}

TEST(Component, DeletingAComponentShiftsLaterIndexesDown) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    auto* b = new TComponent(&form);
    auto* c = new TComponent(&form);
    auto* d = new TComponent(&form);
    delete b;
    ASSERT_EQ(form.ComponentCount(), 3);
    EXPECT_EQ(form.Components(0), a);
    EXPECT_EQ(form.Components(1), c);
    EXPECT_EQ(form.Components(2), d);
    EXPECT_EQ(c->ComponentIndex(), 1);
    EXPECT_EQ(d->ComponentIndex(), 2);
}

TEST(Component, RemoveComponentLeavesItOwnerlessAndShiftsIndexes) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    std::unique_ptr<TComponent> b(new TComponent(&form));
    auto* c = new TComponent(&form);
    form.RemoveComponent(b.get());
    EXPECT_EQ(b->Owner(), nullptr);
    EXPECT_EQ(b->ComponentIndex(), -1);
    ASSERT_EQ(form.ComponentCount(), 2);
    EXPECT_EQ(form.Components(0), a);
    EXPECT_EQ(form.Components(1), c);
    EXPECT_EQ(c->ComponentIndex(), 1);
}

TEST(Component, InsertComponentAppendsAndTakesOwnership) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    new TRecorder(&form, &log, "A");
    auto* loose = new TRecorder(nullptr, &log, "Loose");
    log.clear();
    form.InsertComponent(loose);
    EXPECT_EQ(loose->Owner(), &form);
    EXPECT_EQ(loose->ComponentIndex(), 1);
    // The owner is told first, then its components, last to first; the newcomer is one of them.
    EXPECT_EQ(log, (std::vector<std::string>{"Form:+Loose", "Loose:+Loose", "A:+Loose"}));
}

TEST(Component, InsertComponentMovesItFromItsFormerOwner) {
    TComponent first(nullptr);
    TComponent second(nullptr);
    auto* c = new TComponent(&first);
    second.InsertComponent(c);
    EXPECT_EQ(first.ComponentCount(), 0);
    EXPECT_EQ(second.ComponentCount(), 1);
    EXPECT_EQ(c->Owner(), &second);
}

TEST(Component, InsertComponentWithATakenNameRaisesAndChangesNothing) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    a->SetName(QStringLiteral("Tool1"));
    TComponent other(nullptr);
    auto* b = new TComponent(&other);
    b->SetName(QStringLiteral("TOOL1"));
    EXPECT_THROW(form.InsertComponent(b), EComponentError);
    EXPECT_EQ(b->Owner(), &other);
    EXPECT_EQ(form.ComponentCount(), 1);
}

TEST(Component, CreationNotifiesOwnerAndItsComponents) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    new TRecorder(&form, &log, "A");
    new TRecorder(&form, &log, "B");
    log.clear();
    auto* c = new TRecorder(&form, &log);
    c->SetName(QStringLiteral("C")); // named after the notice: the notice names no one
    EXPECT_EQ(log, (std::vector<std::string>{"Form:+", "B:+", "A:+"}));
}

TEST(Component, RemovalIsBroadcastLastToFirstBeforeTheComponentLeaves) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    new TRecorder(&form, &log, "A");
    auto* b = new TRecorder(&form, &log, "B");
    new TRecorder(&form, &log, "C");
    log.clear();
    delete b;
    // B's own override is gone when its base takes it out of the owner; the others hear of it.
    EXPECT_EQ(log, (std::vector<std::string>{"~B", "Form:-B", "C:-B", "A:-B"}));
}

TEST(Component, NotificationReachesGrandchildren) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    auto* box = new TRecorder(&form, &log, "Box");
    new TRecorder(box, &log, "Grid");
    auto* tool = new TRecorder(&form, &log, "Tool");
    log.clear();
    delete tool;
    EXPECT_EQ(log, (std::vector<std::string>{"~Tool", "Form:-Tool", "Box:-Tool", "Grid:-Tool"}));
}

TEST(Component, BroadcastSurvivesComponentsDeletedDuringTheWalk) {
    // A component that frees its victim, and then itself, when it hears that its trigger has gone.
    struct TDependent : TComponent {
        TDependent(TComponent* AOwner, std::vector<std::string>* Log) : TComponent(AOwner), FLog(Log) {}
        void Notification(TComponent* AComponent, TOperation Operation) override {
            TComponent::Notification(AComponent, Operation);
            if (Operation == opRemove && AComponent == FTrigger) {
                FTrigger = nullptr;
                delete FVictim;
                FLog->push_back("dependent gone");
                delete this;
            }
        }
        TComponent* FTrigger = nullptr;
        TComponent* FVictim = nullptr;
        std::vector<std::string>* FLog;
    };
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    auto* a = new TRecorder(&form, &log, "A");
    auto* victim = new TRecorder(&form, &log, "Victim");
    auto* trigger = new TRecorder(&form, &log, "Trigger");
    auto* dependent = new TDependent(&form, &log);
    auto* z = new TRecorder(&form, &log, "Z");
    dependent->FTrigger = trigger;
    dependent->FVictim = victim;
    log.clear();
    delete trigger;
    EXPECT_EQ(form.ComponentCount(), 2);
    EXPECT_EQ(form.Components(0), a);
    EXPECT_EQ(form.Components(1), z);
    EXPECT_EQ(std::count(log.begin(), log.end(), "dependent gone"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "A:-Trigger"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "Z:-Trigger"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "Victim:-Trigger"), 0); // gone before its turn
}

TEST(Component, NotificationClearsBorrowedReference) {
    TComponent form(nullptr);
    auto* holder = new TRecorder(&form, nullptr);
    auto* target = new TComponent(&form);
    holder->FLink = target;
    delete target;
    EXPECT_EQ(holder->FLink, nullptr);
}

TEST(Component, OwnerDestroysComponentsLastToFirstEachRemovalNotified) {
    std::vector<std::string> log;
    {
        TRecorder form(nullptr, &log, "Form");
        new TRecorder(&form, &log, "A");
        new TRecorder(&form, &log, "B");
        new TRecorder(&form, &log, "C");
        log.clear();
    }
    // The form's own override is gone by the time its components go: each removal is passed on by
    // the base to the remaining components, including the one leaving, which is then destroyed.
    const std::vector<std::string> expected{"~Form", "C:-C", "B:-C", "A:-C", "~C",
                                            "B:-B",  "A:-B", "~B",   "A:-A", "~A"};
    EXPECT_EQ(log, expected);
}

TEST(Component, IndexesShiftWhileTheOwnerDestroysItsComponents) {
    // Each component records, when it is told of its own removal, its index and the owner's count.
    struct TIndexProbe : TComponent {
        TIndexProbe(TComponent* AOwner, std::vector<std::pair<int, int>>* Seen)
            : TComponent(AOwner), FSeen(Seen) {}
        void Notification(TComponent* AComponent, TOperation Operation) override {
            if (AComponent == this && Operation == opRemove)
                FSeen->emplace_back(ComponentIndex(), Owner()->ComponentCount());
            TComponent::Notification(AComponent, Operation);
        }
        std::vector<std::pair<int, int>>* FSeen;
    };
    std::vector<std::pair<int, int>> seen;
    {
        TComponent form(nullptr);
        for (int i = 0; i < 4; ++i) new TIndexProbe(&form, &seen);
    }
    const std::vector<std::pair<int, int>> expected{{3, 4}, {2, 3}, {1, 2}, {0, 1}};
    EXPECT_EQ(seen, expected);
}

TEST(Component, DestructionMarksOwnedComponentsAsDestroying) {
    struct TStateProbe : TComponent {
        TStateProbe(TComponent* AOwner, std::vector<bool>* Seen) : TComponent(AOwner), FSeen(Seen) {}
        ~TStateProbe() override { FSeen->push_back(ComponentState().Contains(csDestroying)); }
        void Notification(TComponent* AComponent, TOperation Operation) override {
            // When the first sibling goes, every sibling is already destroying.
            if (Operation == opRemove) FSeen->push_back(ComponentState().Contains(csDestroying));
            TComponent::Notification(AComponent, Operation);
        }
        std::vector<bool>* FSeen;
    };
    std::vector<bool> seen;
    {
        TComponent form(nullptr);
        auto* box = new TStateProbe(&form, &seen);
        new TStateProbe(box, &seen);
        new TStateProbe(&form, &seen);
        EXPECT_FALSE(box->ComponentState().Contains(csDestroying));
    }
    ASSERT_FALSE(seen.empty());
    for (bool destroying : seen) EXPECT_TRUE(destroying);
}

TEST(Component, DestroyComponentsEmptiesTheOwner) {
    TComponent form(nullptr);
    new TComponent(&form);
    new TComponent(&form);
    form.DestroyComponents();
    EXPECT_EQ(form.ComponentCount(), 0);
    EXPECT_FALSE(form.ComponentState().Contains(csDestroying));
}

TEST(Component, NamesAreUniquePerOwnerWithoutRegardToCase) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    auto* b = new TComponent(&form);
    a->SetName(QStringLiteral("Drawbox1"));
    try {
        b->SetName(QStringLiteral("DRAWBOX1"));
        FAIL() << "duplicate name accepted";
    } catch (const EComponentError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("A component named DRAWBOX1 already exists"));
    }
    EXPECT_EQ(b->Name(), QString());
}

TEST(Component, SameNameUnderAnotherOwnerIsAllowed) {
    TComponent form1(nullptr);
    TComponent form2(nullptr);
    auto* a = new TComponent(&form1);
    auto* b = new TComponent(&form2);
    a->SetName(QStringLiteral("Tool"));
    EXPECT_NO_THROW(b->SetName(QStringLiteral("Tool")));
}

TEST(Component, RenamingToADifferentCaseOfTheOwnNameIsAllowed) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    a->SetName(QStringLiteral("points1"));
    EXPECT_NO_THROW(a->SetName(QStringLiteral("Points1")));
    EXPECT_EQ(a->Name(), QStringLiteral("Points1"));
}

TEST(Component, EmptyNamesMayRepeat) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    auto* b = new TComponent(&form);
    a->SetName(QStringLiteral("X"));
    a->SetName(QString());
    EXPECT_NO_THROW(b->SetName(QString()));
    EXPECT_EQ(form.FindComponent(QString()), nullptr);
}

TEST(Component, FreedNameCanBeTakenAgain) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    a->SetName(QStringLiteral("Marker"));
    delete a;
    auto* b = new TComponent(&form);
    EXPECT_NO_THROW(b->SetName(QStringLiteral("marker")));
}

// A component name to try, in UTF-8.
struct TNameCase {
    const char* Utf8;
};

// The name as the text it stands for, in quotes.
static void PrintTo(const TNameCase& c, std::ostream* os) {
    *os << '"' << c.Utf8 << '"';
}

// A test name for a component name: letters, digits and '_' stay, the others are spelled out
// ("Tool 1" is "ToolSpace1"), and bytes beyond ASCII are written in hex ("Zähler" is "Zxc3xa4hler").
// A name of digits only gets the prefix "Digits", since CTest would take it for a parameter index.
static std::string SpelledOut(const ::testing::TestParamInfo<TNameCase>& Info) {
    std::string name;
    for (const char* p = Info.param.Utf8; *p; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        if ((c < 0x80 && std::isalnum(c)) || c == '_') {
            name += static_cast<char>(c);
        } else if (c == ' ') {
            name += "Space";
        } else if (c == '-') {
            name += "Dash";
        } else if (c == '.') {
            name += "Dot";
        } else if (c == '$') {
            name += "Dollar";
        } else {
            static const char* const digits = "0123456789abcdef";
            name += 'x';
            name += digits[c >> 4];
            name += digits[c & 15];
        }
    }
    if (name.empty()) return "Empty";
    if (std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return "Digits" + name;
    return name;
}

class InvalidComponentName : public ::testing::TestWithParam<TNameCase> {};

TEST_P(InvalidComponentName, RaisesComponentError) {
    TComponent c(nullptr);
    const QString name = QString::fromUtf8(GetParam().Utf8);
    try {
        c.SetName(name);
        FAIL() << "accepted " << GetParam().Utf8;
    } catch (const EComponentError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("'%1' is not a valid component name").arg(name));
    }
    EXPECT_EQ(c.Name(), QString());
}

INSTANTIATE_TEST_SUITE_P(Component, InvalidComponentName,
                         ::testing::Values(TNameCase{"1Tool"}, TNameCase{"Tool 1"}, TNameCase{"Tool-1"},
                                           TNameCase{"Tool.1"}, TNameCase{" "}, TNameCase{"a$"},
                                           TNameCase{"9"}),
                         SpelledOut);

class ValidComponentName : public ::testing::TestWithParam<TNameCase> {};

TEST_P(ValidComponentName, IsAccepted) {
    TComponent c(nullptr);
    const QString name = QString::fromUtf8(GetParam().Utf8);
    EXPECT_NO_THROW(c.SetName(name));
    EXPECT_EQ(c.Name(), name);
}

INSTANTIATE_TEST_SUITE_P(Component, ValidComponentName,
                         ::testing::Values(TNameCase{"a"}, TNameCase{"_"}, TNameCase{"_1"},
                                           TNameCase{"Tool1"}, TNameCase{"vlDrawbox_2"}, TNameCase{"Zähler"}),
                         SpelledOut);

TEST(Component, FindComponentIgnoresCase) {
    TComponent form(nullptr);
    auto* a = new TComponent(&form);
    auto* b = new TComponent(&form);
    a->SetName(QStringLiteral("Points"));
    b->SetName(QStringLiteral("Lines"));
    EXPECT_EQ(form.FindComponent(QStringLiteral("LINES")), b);
    EXPECT_EQ(form.FindComponent(QStringLiteral("points")), a);
    EXPECT_EQ(form.FindComponent(QStringLiteral("Text")), nullptr);
}

TEST(Component, TagHoldsAPointerSizedSignedValue) {
    TComponent c(nullptr);
    EXPECT_EQ(c.Tag(), 0);
    c.SetTag(-5);
    EXPECT_EQ(c.Tag(), -5);
    static_assert(sizeof(c.Tag()) == sizeof(void*));
    int x = 0;
    c.SetTag(reinterpret_cast<std::intptr_t>(&x));
    EXPECT_EQ(reinterpret_cast<int*>(c.Tag()), &x);
}

TEST(Component, StateFlagsHaveFixedBitPositions) {
    EXPECT_EQ(TComponentState(csLoading).Bits(), 0x01);
    EXPECT_EQ(TComponentState(csReading).Bits(), 0x02);
    EXPECT_EQ(TComponentState(csWriting).Bits(), 0x04);
    EXPECT_EQ(TComponentState(csDestroying).Bits(), 0x08);
    EXPECT_EQ(TComponentState(csDesigning).Bits(), 0x10);
    EXPECT_EQ((csLoading | csReading).Bits(), 0x03);
    TComponentState s = csLoading | csDesigning;
    s -= csLoading;
    EXPECT_EQ(s, TComponentState(csDesigning));
    EXPECT_TRUE(TComponentState().Empty());
}

TEST(Component, SetDesigningReachesOwnedComponents) {
    TComponent form(nullptr);
    auto* box = new TComponent(&form);
    auto* grid = new TComponent(box);
    form.SetDesigning(true);
    EXPECT_TRUE(form.ComponentState().Contains(csDesigning));
    EXPECT_TRUE(grid->ComponentState().Contains(csDesigning));
    form.SetDesigning(false, false);
    EXPECT_FALSE(form.ComponentState().Contains(csDesigning));
    EXPECT_TRUE(box->ComponentState().Contains(csDesigning));
}

TEST(Component, LoadingStateAndLoaded) {
    std::vector<std::string> log;
    TRecorder c(nullptr, &log, "C");
    c.BeginLoading();
    EXPECT_EQ(c.ComponentState(), csLoading | csReading);
    c.EndReading();
    EXPECT_EQ(c.ComponentState(), TComponentState(csLoading));
    c.Loaded();
    EXPECT_TRUE(c.ComponentState().Empty());
    EXPECT_EQ(log, std::vector<std::string>{"loaded C"});
}

TEST(Component, LoadedAllCallsTheHostFirstThenComponentsInCreationOrder) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    auto* box = new TRecorder(&form, &log, "Box");
    new TRecorder(&form, &log, "Tool1");
    new TRecorder(&form, &log, "Tool2");
    form.BeginLoadingAll();
    EXPECT_TRUE(box->ComponentState().Contains(csReading));
    auto* late = new TRecorder(&form, &log, "Late"); // not in the loading state: not told
    log.clear();
    form.LoadedAll();
    EXPECT_EQ(log, (std::vector<std::string>{"loaded Form", "loaded Box", "loaded Tool1", "loaded Tool2"}));
    EXPECT_TRUE(box->ComponentState().Empty());
    EXPECT_TRUE(late->ComponentState().Empty());
}

TEST(Component, FreeNotificationTellsAComponentOfAnotherOwner) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    auto* box = new TRecorder(&form, &log, "Box");
    auto* grid = new TRecorder(box, &log, "Grid");
    TRecorder other(nullptr, &log, "Other");
    auto* tool = new TRecorder(&other, &log, "Tool");
    tool->FLink = grid;
    tool->FreeNotification(grid);
    EXPECT_TRUE(tool->ComponentState().Contains(csFreeNotification));
    EXPECT_TRUE(grid->ComponentState().Contains(csFreeNotification));
    log.clear();
    delete grid;
    EXPECT_EQ(tool->FLink, nullptr);
    EXPECT_EQ(std::count(log.begin(), log.end(), "Tool:-Grid"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "Other:-Grid"), 0);
    EXPECT_FALSE(tool->ComponentState().Contains(csFreeNotification));
}

TEST(Component, FreeNotificationWorksInBothDirectionsOnce) {
    std::vector<std::string> log;
    auto a = std::make_unique<TRecorder>(nullptr, &log, "A");
    auto b = std::make_unique<TRecorder>(nullptr, &log, "B");
    a->FreeNotification(b.get());
    a->FreeNotification(b.get()); // a second request adds nothing
    log.clear();
    a.reset();
    EXPECT_EQ(log, (std::vector<std::string>{"~A", "B:-A"}));
    log.clear();
    b.reset(); // B no longer refers to A
    EXPECT_EQ(log, (std::vector<std::string>{"~B"}));
}

TEST(Component, FreeNotificationAmongSiblingsRegistersNothing) {
    std::vector<std::string> log;
    TRecorder form(nullptr, &log, "Form");
    auto* a = new TRecorder(&form, &log, "A");
    auto* b = new TRecorder(&form, &log, "B");
    a->FreeNotification(b);
    log.clear();
    delete b;
    // Told once, by the owner's broadcast.
    EXPECT_EQ(std::count(log.begin(), log.end(), "A:-B"), 1);
}

TEST(Component, RemoveFreeNotificationEndsThePartnership) {
    std::vector<std::string> log;
    auto a = std::make_unique<TRecorder>(nullptr, &log, "A");
    auto b = std::make_unique<TRecorder>(nullptr, &log, "B");
    a->FreeNotification(b.get());
    b->RemoveFreeNotification(a.get());
    log.clear();
    b.reset();
    EXPECT_EQ(log, std::vector<std::string>{"~B"});
}

TEST(Component, FreeNotificationPartnersDestroyedByTheirOwnersAreCleared) {
    std::vector<std::string> log;
    auto other = std::make_unique<TRecorder>(nullptr, &log, "Other");
    auto* tool = new TRecorder(other.get(), &log, "Tool");
    {
        TRecorder form(nullptr, &log, "Form");
        auto* box = new TRecorder(&form, &log, "Box");
        tool->FLink = box;
        tool->FreeNotification(box);
    }
    EXPECT_EQ(tool->FLink, nullptr);
    log.clear();
    other.reset(); // would touch freed memory if the box were still a partner
    EXPECT_EQ(log, (std::vector<std::string>{"~Other", "Tool:-Tool", "~Tool"}));
}

// --- Assign ---

namespace {
class TShape : public TPersistent {
public:
    int FValue = 0;
    void Assign(TPersistent* Source) override {
        if (auto* shape = dynamic_cast<TShape*>(Source)) {
            FValue = shape->FValue;
            return;
        }
        TPersistent::Assign(Source);
    }
};

class TPen : public TPersistent {};

// A source that knows how to fill a `TShape`, which itself doesn't know it.
class TShapeSource : public TPersistent {
protected:
    void AssignTo(TPersistent* Dest) override {
        if (auto* shape = dynamic_cast<TShape*>(Dest)) {
            shape->FValue = 42;
            return;
        }
        TPersistent::AssignTo(Dest);
    }
};
} // namespace

TEST(Persistent, AssignFromNullRaisesConvertErrorNamingNil) {
    TShape shape;
    try {
        shape.Assign(nullptr);
        FAIL();
    } catch (const EConvertError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Cannot assign a nil to a TShape"));
    }
}

TEST(Persistent, AssignFromUnsupportedSourceRaisesConvertError) {
    TShape shape;
    TPen pen;
    try {
        shape.Assign(&pen);
        FAIL();
    } catch (const EConvertError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Cannot assign a TPen to a TShape"));
    }
}

TEST(Persistent, ComponentAssignRaisesConvertError) {
    TComponent a(nullptr);
    TComponent b(nullptr);
    try {
        a.Assign(&b);
        FAIL();
    } catch (const EConvertError& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Cannot assign a TComponent to a TComponent"));
    }
}

TEST(Persistent, AssignHandlesKnownSourceItself) {
    TShape a;
    TShape b;
    b.FValue = 7;
    a.Assign(&b);
    EXPECT_EQ(a.FValue, 7);
}

TEST(Persistent, AssignAsksTheSourceWhenItCannotHandleIt) {
    TShape shape;
    TShapeSource source;
    shape.Assign(&source);
    EXPECT_EQ(shape.FValue, 42);
    TPen pen;
    EXPECT_THROW(pen.Assign(&source), EConvertError);
}

TEST(Persistent, ClassNameIsTheBareClassName) {
    TComponent c(nullptr);
    EXPECT_EQ(c.ClassName(), QStringLiteral("TComponent"));
    TPen pen;
    EXPECT_EQ(pen.ClassName(), QStringLiteral("TPen"));
}
