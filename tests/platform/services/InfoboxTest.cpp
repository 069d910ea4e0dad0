// The info box: the module routines, the messages, the progress bar and the library's dialog.
#include "platform/services/Infobox.h"

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <variant>
#include <vector>

namespace vl::test {
namespace {

// A label that counts its updates and remembers the caption it showed at each.
class TLabelDouble : public TInfoLabel {
public:
    void Update() override { Shown.push_back(Caption()); }
    std::vector<QString> Shown;
};

class InfoboxTest : public ::testing::Test {
protected:
    void SetUp() override {
        InfoClose();
        Userbreak = false;
    }
    void TearDown() override {
        InfoClose();
        InfoboxFactory = nullptr;
        Userbreak = false;
    }
    TLabelDouble Label;
    TProgressBar Bar;
};

TEST_F(InfoboxTest, NoBoxIsOpenAtFirst) {
    EXPECT_EQ(Infobox, nullptr);
}

TEST_F(InfoboxTest, RoutinesDoNothingWithoutABox) {
    InfoCount(5);
    InfoMessage(10, QStringLiteral("x"));
    InfoClose();
    EXPECT_EQ(Infobox, nullptr);
}

TEST_F(InfoboxTest, WithoutABoxUserbreakKeepsItsValue) {
    Userbreak = true;
    InfoCount(0);
    InfoMessage(220, QStringLiteral("L"));
    InfoClose();
    EXPECT_TRUE(Userbreak);
}

TEST_F(InfoboxTest, OpenStoresTheBoxWithItsControls) {
    InfoOpen(&Label, &Bar);
    ASSERT_NE(Infobox, nullptr);
    EXPECT_EQ(Infobox->Label(), &Label);
    EXPECT_EQ(Infobox->Progbar(), &Bar);
}

TEST_F(InfoboxTest, SecondOpenIsIgnoredAlsoWithOtherControls) {
    InfoOpen(&Label, &Bar);
    TInfobox* first = Infobox;
    TLabelDouble otherLabel;
    TProgressBar otherBar;
    InfoOpen(&otherLabel, &otherBar);
    EXPECT_EQ(Infobox, first);
    EXPECT_EQ(Infobox->Label(), &Label);
    EXPECT_EQ(Infobox->Progbar(), &Bar);
    InfoOpenDialog();
    EXPECT_EQ(Infobox, first);
}

TEST_F(InfoboxTest, CountZeroStepsTheBarAndFiveSetsIt) {
    InfoOpen(&Label, &Bar);
    InfoCount(0);
    EXPECT_EQ(Bar.Position(), 10);
    InfoCount(-3);
    EXPECT_EQ(Bar.Position(), 20);
    InfoCount(5);
    EXPECT_EQ(Bar.Position(), 5);
}

TEST_F(InfoboxTest, CountWithoutBarDoesNothing) {
    InfoOpen(&Label, nullptr);
    InfoCount(5);
    InfoCount(0);
    EXPECT_TRUE(Label.Shown.empty());
}

TEST_F(InfoboxTest, SavingANamedLayerShowsSavingAndTheName) {
    InfoOpen(&Label, &Bar);
    InfoMessage(220, QStringLiteral("Walls"));
    EXPECT_EQ(Label.Caption(), QStringLiteral("Saving Walls"));
}

TEST_F(InfoboxTest, CloseClearsUserbreakAndTheBox) {
    InfoOpen(&Label, &Bar);
    Userbreak = true;
    InfoClose();
    EXPECT_FALSE(Userbreak);
    EXPECT_EQ(Infobox, nullptr);
}

TEST_F(InfoboxTest, CloseSendsTheEndMessageFirst) {
    InfoOpen(&Label, &Bar);
    InfoMessage(10, QStringLiteral("busy"));
    InfoCount(7);
    InfoClose();
    EXPECT_EQ(Label.Caption(), QString());
    EXPECT_EQ(Bar.Position(), 0);
}

TEST_F(InfoboxTest, UserbreakStaysSetWhileTheBoxIsOpen) {
    InfoOpen(&Label, &Bar);
    Userbreak = true;
    InfoMessage(200);
    InfoCount(3);
    EXPECT_TRUE(Userbreak);
}

struct TMessageCase {
    const char* Name;
    std::int32_t Msg;
    TInfoParam Param;
    QString Caption;  // after the message; "-" for untouched
    std::int32_t Max; // of the bar after it (starting at 100)
};

// "message 100 (5000)": the number and what it carries.
void PrintTo(const TMessageCase& c, std::ostream* os) {
    *os << "message " << c.Msg;
    if (const auto* number = std::get_if<std::int32_t>(&c.Param)) *os << " (" << *number << ")";
    if (const auto* text = std::get_if<QString>(&c.Param)) *os << " (\"" << text->toStdString() << "\")";
}

class InfoboxMessageTest : public InfoboxTest, public ::testing::WithParamInterface<TMessageCase> {};

TEST_P(InfoboxMessageTest, MessageSetsLabelAndBar) {
    const TMessageCase& c = GetParam();
    InfoOpen(&Label, &Bar);
    Label.SetCaption(QStringLiteral("-"));
    Bar.SetPosition(30);
    InfoMessage(c.Msg, c.Param);
    EXPECT_EQ(Label.Caption(), c.Caption);
    EXPECT_EQ(Bar.Max(), c.Max);
    if (c.Caption != QStringLiteral("-")) {
        ASSERT_EQ(Label.Shown.size(), 1u);
        EXPECT_EQ(Label.Shown[0], c.Caption);
    } else {
        EXPECT_TRUE(Label.Shown.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Infobox, InfoboxMessageTest,
    ::testing::Values(TMessageCase{"EndEmpties", 0, noParam, QString(), 100},
                      TMessageCase{"Text", 10, QStringLiteral("Hello"), QStringLiteral("Hello"), 100},
                      TMessageCase{"Loading", 100, std::int32_t(5000), QStringLiteral("Loading..."), 5000},
                      TMessageCase{"Saving", 200, QStringLiteral("a.vl"), QStringLiteral("Saving..."), 100},
                      TMessageCase{"LayerCount", 210, std::int32_t(42), QStringLiteral("-"), 42},
                      TMessageCase{"NamedLayer", 220, QStringLiteral("L1"), QStringLiteral("Saving L1"), 100},
                      TMessageCase{"Printing", 300, std::int32_t(3), QStringLiteral("Printing..."), 3},
                      TMessageCase{"Unknown", 150, std::int32_t(3), QStringLiteral("-"), 100},
                      TMessageCase{"TextOfWrongKind", 10, std::int32_t(3), QStringLiteral("-"), 100}),
    [](const ::testing::TestParamInfo<TMessageCase>& Info) { return std::string(Info.param.Name); });

TEST_F(InfoboxTest, EndMessageResetsTheBar) {
    InfoOpen(&Label, &Bar);
    Bar.SetPosition(30);
    InfoMessage(0, noParam);
    EXPECT_EQ(Bar.Position(), 0);
}

TEST_F(InfoboxTest, EndMessageLeavesABarWithoutLabelAsItIs) {
    InfoOpen(nullptr, &Bar);
    Bar.SetPosition(30);
    InfoMessage(0, noParam);
    EXPECT_EQ(Bar.Position(), 30);
}

TEST_F(InfoboxTest, MessagesWithoutControlsAreSafe) {
    InfoOpen(nullptr, nullptr);
    for (std::int32_t msg : {0, 10, 100, 200, 210, 220, 300}) InfoMessage(msg, std::int32_t(1));
    InfoCount(4);
    SUCCEED();
}

TEST_F(InfoboxTest, MaxMessagesWithoutBarStillSetTheLabel) {
    InfoOpen(&Label, nullptr);
    InfoMessage(100, std::int32_t(10));
    EXPECT_EQ(Label.Caption(), QStringLiteral("Loading..."));
}

TEST_F(InfoboxTest, FactoryInstallsAnotherBox) {
    struct TCountingBox : TInfobox {
        explicit TCountingBox(int& N) : TInfobox(nullptr, nullptr), Counted(N) {}
        void Count(std::int32_t) override { ++Counted; }
        int& Counted;
    };
    int counted = 0;
    TInfoLabel* gotLabel = nullptr;
    InfoboxFactory = [&](TInfoLabel* L, TProgressBar*) {
        gotLabel = L;
        return new TCountingBox(counted);
    };
    InfoOpen(&Label, &Bar);
    InfoCount(1);
    InfoCount(2);
    EXPECT_EQ(counted, 2);
    EXPECT_EQ(gotLabel, &Label);
}

TEST_F(InfoboxTest, FreeingTheBoxDirectlyClearsTheGlobal) {
    InfoOpen(&Label, &Bar);
    Userbreak = true;
    delete Infobox;
    EXPECT_EQ(Infobox, nullptr);
    EXPECT_FALSE(Userbreak);
}

// --- progress bar ------------------------------------------------------------------------------------

TEST(InfoboxProgressBar, StartsAtZeroOfAHundredWithStepTen) {
    TProgressBar bar;
    EXPECT_EQ(bar.Min(), 0);
    EXPECT_EQ(bar.Max(), 100);
    EXPECT_EQ(bar.Position(), 0);
    EXPECT_EQ(bar.Step(), 10);
}

TEST(InfoboxProgressBar, PositionIsClampedToTheRange) {
    TProgressBar bar;
    bar.SetPosition(150);
    EXPECT_EQ(bar.Position(), 100);
    bar.SetPosition(-4);
    EXPECT_EQ(bar.Position(), 0);
    bar.SetPosition(80);
    bar.SetMax(50);
    EXPECT_EQ(bar.Position(), 50);
}

TEST(InfoboxProgressBar, StepPastTheMaximumStartsOver) {
    TProgressBar bar;
    bar.SetMax(25);
    bar.StepIt();
    bar.StepIt();
    EXPECT_EQ(bar.Position(), 20);
    bar.StepIt();
    EXPECT_EQ(bar.Position(), 5);
}

TEST(InfoboxProgressBar, StepNearTheIntegerLimitDoesNotOverflow) {
    TProgressBar bar;
    bar.SetMax(0x7FFFFFFF);
    bar.SetPosition(0x7FFFFFFF - 1);
    bar.SetStep(0x7FFFFFFF);
    bar.StepIt();
    EXPECT_GE(bar.Position(), 0);
    EXPECT_LE(bar.Position(), 0x7FFFFFFF);
}

// --- the library's dialog -----------------------------------------------------------------------------

TEST_F(InfoboxTest, DialogShowsMessagesAndProgress) {
    InfoOpenDialog(QStringLiteral("Work"));
    auto* box = dynamic_cast<TInfoDialog*>(Infobox);
    ASSERT_NE(box, nullptr);
    QProgressDialog* dialog = box->Dialog();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Work"));
    InfoMessage(100, std::int32_t(400));
    EXPECT_EQ(dialog->labelText(), QStringLiteral("Loading..."));
    EXPECT_EQ(dialog->maximum(), 400);
    InfoCount(120);
    EXPECT_EQ(dialog->value(), 120);
    InfoCount(0);
    EXPECT_EQ(dialog->value(), 130);
    InfoCount(400);
    EXPECT_EQ(dialog->value(), 400);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(InfoboxTest, DialogCancelSetsUserbreakAndCloseClearsIt) {
    InfoOpenDialog();
    auto* box = dynamic_cast<TInfoDialog*>(Infobox);
    ASSERT_NE(box, nullptr);
    QPushButton* cancel = box->Dialog()->findChild<QPushButton*>();
    ASSERT_NE(cancel, nullptr);
    cancel->click();
    EXPECT_TRUE(Userbreak);
    InfoClose();
    EXPECT_FALSE(Userbreak);
    EXPECT_EQ(Infobox, nullptr);
}

} // namespace
} // namespace vl::test
