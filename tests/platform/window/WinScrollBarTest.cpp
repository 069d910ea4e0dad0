// The window scroll bars: range, page and position, visibility, the client area, and the scroll
// messages of the user's actions.

#include "WinTestSupport.h"

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

#include <ostream>
#include <string>

namespace vl::test {
namespace {

using WinScrollBar = WindowFixture;

TScrollInfo Info(int Max, unsigned Page, int Pos, std::uint32_t Mask = SIF_ALL) {
    TScrollInfo info;
    info.fMask = Mask;
    info.nMin = 0;
    info.nMax = Max;
    info.nPage = Page;
    info.nPos = Pos;
    return info;
}

std::vector<std::pair<int, int>> ScrollCodes(const TRecordingControl& c, std::uint32_t Msg) {
    std::vector<std::pair<int, int>> codes;
    for (const TMessage& m : c.Of(Msg)) codes.emplace_back(m.ScrollCode, m.ScrollPos);
    return codes;
}

TEST_F(WinScrollBar, BarAppearsWhenTheRangeExceedsThePageAndTheClientAreaShrinks) {
    const int sb = GetSystemMetrics(SM_CXVSCROLL);
    EXPECT_EQ(Control->ScrollBarExtent(), sb);
    Control->Messages.clear();
    EXPECT_EQ(Control->SetScrollInfo(SB_VERT, Info(500, 151, 40), true), 40);
    EXPECT_TRUE(Control->ScrollBarVisible(SB_VERT));
    EXPECT_TRUE(Control->ScrollBarEnabled(SB_VERT));
    EXPECT_EQ(Control->ClientRect(), Rect(0, 0, 200 - sb, 150));
    EXPECT_EQ(Control->Surface().Image().size(), QSize(200 - sb, 150));
    // The change of the client area is a change of size.
    const auto sizes = Control->Of(WM_SIZE);
    ASSERT_EQ(sizes.size(), 1u);
    EXPECT_EQ(sizes[0].LParam & 0xFFFF, 200 - sb);
    QScrollBar* bar = Control->ScrollBarWidget(SB_VERT);
    Settle();
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->geometry(), QRect(200 - sb, 0, sb, 150));
    EXPECT_EQ(bar->minimum(), 0);
    EXPECT_EQ(bar->maximum(), 500 - 150);
    EXPECT_EQ(bar->pageStep(), 151);
    EXPECT_EQ(bar->value(), 40);
    // Setting values from code sends no scroll message.
    EXPECT_TRUE(Control->Of(WM_VSCROLL).empty());
}

TEST_F(WinScrollBar, MaximumZeroHidesTheBar) {
    Control->SetScrollInfo(SB_HORZ, Info(500, 201, 0), true);
    ASSERT_TRUE(Control->ScrollBarVisible(SB_HORZ));
    Control->SetScrollInfo(SB_HORZ, Info(0, 201, 0), true);
    EXPECT_FALSE(Control->ScrollBarVisible(SB_HORZ));
    EXPECT_EQ(Control->ClientRect(), Rect(0, 0, 200, 150));
    EXPECT_EQ(Control->GetScrollPos(SB_HORZ), 0);
}

TEST_F(WinScrollBar, MaximumZeroWithDisableNoScrollKeepsTheBarDisabled) {
    Control->SetScrollInfo(SB_HORZ, Info(500, 201, 0), true);
    Control->SetScrollInfo(SB_HORZ, Info(0, 201, 0, SIF_ALL | SIF_DISABLENOSCROLL), true);
    EXPECT_TRUE(Control->ScrollBarVisible(SB_HORZ));
    EXPECT_FALSE(Control->ScrollBarEnabled(SB_HORZ));
    EXPECT_FALSE(Control->ScrollBarWidget(SB_HORZ)->isEnabled());
}

TEST_F(WinScrollBar, PageCoveringTheWholeRangeHidesTheBar) {
    Control->SetScrollInfo(SB_VERT, Info(150, 151, 0), true);
    EXPECT_FALSE(Control->ScrollBarVisible(SB_VERT));
    Control->SetScrollInfo(SB_VERT, Info(150, 150, 0), true);
    EXPECT_TRUE(Control->ScrollBarVisible(SB_VERT));
}

TEST_F(WinScrollBar, PositionIsClampedToMaximumLessPage) {
    EXPECT_EQ(Control->SetScrollInfo(SB_VERT, Info(500, 151, 9999), true), 350);
    EXPECT_EQ(Control->GetScrollPos(SB_VERT), 350);
    EXPECT_EQ(Control->SetScrollPos(SB_VERT, -5, true), 350);
    EXPECT_EQ(Control->GetScrollPos(SB_VERT), 0);
    TScrollInfo read;
    read.fMask = SIF_ALL;
    ASSERT_TRUE(GetScrollInfo(Control->Handle(), SB_VERT, &read));
    EXPECT_EQ(read.nMax, 500);
    EXPECT_EQ(read.nPage, 151u);
    EXPECT_EQ(read.nPos, 0);
}

TEST_F(WinScrollBar, BothBarsLeaveACornerAndShrinkBothDimensions) {
    const int sb = Control->ScrollBarExtent();
    Control->SetScrollInfo(SB_VERT, Info(500, 100, 0), true);
    Control->SetScrollInfo(SB_HORZ, Info(500, 100, 0), true);
    EXPECT_EQ(Control->ClientRect(), Rect(0, 0, 200 - sb, 150 - sb));
    Settle();
    EXPECT_EQ(Control->ScrollBarWidget(SB_HORZ)->geometry(), QRect(0, 150 - sb, 200 - sb, sb));
    EXPECT_EQ(Control->ScrollBarWidget(SB_VERT)->geometry(), QRect(200 - sb, 0, sb, 150 - sb));
}

TEST_F(WinScrollBar, ShowScrollBarHidesAndShowsBoth) {
    Control->SetScrollInfo(SB_VERT, Info(500, 100, 0), true);
    Control->SetScrollInfo(SB_HORZ, Info(500, 100, 0), true);
    EXPECT_TRUE(ShowScrollBar(Control->Handle(), SB_BOTH, false));
    EXPECT_FALSE(Control->ScrollBarVisible(SB_VERT));
    EXPECT_FALSE(Control->ScrollBarVisible(SB_HORZ));
    EXPECT_EQ(Control->ClientRect(), Rect(0, 0, 200, 150));
    Control->ShowScrollBar(SB_VERT, true);
    EXPECT_TRUE(Control->ScrollBarVisible(SB_VERT));
}

struct ActionCase {
    QAbstractSlider::SliderAction Action;
    int Code;
};

void PrintTo(const ActionCase& c, std::ostream* os) {
    *os << "scroll code " << c.Code;
}

// The scroll code's name: "LineDown", "PageUp", "Top", ...
std::string ActionCaseName(const ::testing::TestParamInfo<ActionCase>& Info) {
    switch (Info.param.Code) {
    case SB_LINEUP: return "LineUp";
    case SB_LINEDOWN: return "LineDown";
    case SB_PAGEUP: return "PageUp";
    case SB_PAGEDOWN: return "PageDown";
    case SB_TOP: return "Top";
    case SB_BOTTOM: return "Bottom";
    default: return "Code" + std::to_string(Info.param.Code);
    }
}

class WinScrollBarActions : public WindowFixture, public ::testing::WithParamInterface<ActionCase> {};

TEST_P(WinScrollBarActions, UserActionSendsItsScrollCodeAndTheBarStaysUntilTheWindowMovesIt) {
    Control->SetScrollInfo(SB_VERT, Info(500, 151, 100), true);
    QScrollBar* bar = Control->ScrollBarWidget(SB_VERT);
    bar->triggerAction(GetParam().Action);
    EXPECT_EQ(ScrollCodes(*Control, WM_VSCROLL), (std::vector<std::pair<int, int>>{{GetParam().Code, 100}}));
    EXPECT_EQ(bar->value(), 100);
    EXPECT_EQ(Control->GetScrollPos(SB_VERT), 100);
    const TMessage m = Control->Of(WM_VSCROLL).at(0);
    EXPECT_EQ(m.LParam, 0);
    EXPECT_EQ(m.WParam & 0xFFFF, GetParam().Code);
}

INSTANTIATE_TEST_SUITE_P(WinScrollBar, WinScrollBarActions,
                         ::testing::Values(ActionCase{QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
                                           ActionCase{QAbstractSlider::SliderSingleStepSub, SB_LINEUP},
                                           ActionCase{QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
                                           ActionCase{QAbstractSlider::SliderPageStepSub, SB_PAGEUP},
                                           ActionCase{QAbstractSlider::SliderToMinimum, SB_TOP},
                                           ActionCase{QAbstractSlider::SliderToMaximum, SB_BOTTOM}),
                         ActionCaseName);

TEST_F(WinScrollBar, HandlerThatSetsThePositionMovesTheBar) {
    Control->SetScrollInfo(SB_HORZ, Info(500, 201, 100), true);
    Control->Intercept = [this](TMessage& m) {
        if (m.Msg == WM_HSCROLL && m.ScrollCode == SB_LINEDOWN) Control->SetScrollPos(SB_HORZ, 108, true);
    };
    Control->ScrollBarWidget(SB_HORZ)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(Control->ScrollBarWidget(SB_HORZ)->value(), 108);
    EXPECT_EQ(ScrollCodes(*Control, WM_HSCROLL).size(), 1u);
}

TEST_F(WinScrollBar, DraggingTheThumbTracksAndEndsWithThumbPosition) {
    Control->SetScrollInfo(SB_VERT, Info(500, 151, 0), true);
    QScrollBar* bar = Control->ScrollBarWidget(SB_VERT);
    bar->setSliderDown(true);
    bar->setSliderPosition(30);
    bar->setSliderPosition(70);
    bar->setSliderDown(false);
    EXPECT_EQ(ScrollCodes(*Control, WM_VSCROLL),
              (std::vector<std::pair<int, int>>{
                  {SB_THUMBTRACK, 30}, {SB_THUMBTRACK, 70}, {SB_THUMBPOSITION, 70}, {SB_ENDSCROLL, 0}}));
    // The window did not take the position: the thumb goes back.
    EXPECT_EQ(bar->sliderPosition(), 0);
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(WinScrollBar, ClickOnTheArrowSendsLineDownAndEndScroll) {
    Control->SetScrollInfo(SB_VERT, Info(500, 151, 0), true);
    Settle();
    QScrollBar* bar = Control->ScrollBarWidget(SB_VERT);
    QStyleOptionSlider option;
    option.initFrom(bar);
    option.orientation = Qt::Vertical;
    option.minimum = bar->minimum();
    option.maximum = bar->maximum();
    option.sliderPosition = bar->sliderPosition();
    option.sliderValue = bar->value();
    option.singleStep = bar->singleStep();
    option.pageStep = bar->pageStep();
    const QRect addLine =
        bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarAddLine, bar);
    ASSERT_FALSE(addLine.isEmpty());
    QTest::mouseClick(Window(), Qt::LeftButton, {}, bar->mapTo(Form->Widget(), addLine.center()));
    EXPECT_EQ(ScrollCodes(*Control, WM_VSCROLL),
              (std::vector<std::pair<int, int>>{{SB_LINEDOWN, 0}, {SB_ENDSCROLL, 0}}));
}

TEST_F(WinScrollBar, FunctionsOnTheWindowHandle) {
    TScrollInfo info = Info(300, 201, 50);
    EXPECT_EQ(SetScrollInfo(Control->Handle(), SB_HORZ, &info, true), 50);
    EXPECT_EQ(GetScrollPos(Control->Handle(), SB_HORZ), 50);
    EXPECT_EQ(SetScrollPos(Control->Handle(), SB_HORZ, 60, true), 50);
    EXPECT_EQ(GetScrollPos(Control->Handle(), SB_HORZ), 60);
    EXPECT_TRUE(Control->SetScrollRange(SB_HORZ, 0, 0, true));
    EXPECT_FALSE(Control->ScrollBarVisible(SB_HORZ));
}

} // namespace
} // namespace vl::test
