#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vl {
namespace {

using test::TSurface;

TPoint ToDev(HDC dc, int x, int y) {
    TPoint p{x, y};
    EXPECT_TRUE(LPtoDP(dc, &p, 1));
    return p;
}

TPoint ToLog(HDC dc, int x, int y) {
    TPoint p{x, y};
    EXPECT_TRUE(DPtoLP(dc, &p, 1));
    return p;
}

TEST(GdiMapping, TextModeAddsOriginsOneToOne) {
    TSurface s(10, 10);
    EXPECT_EQ(GetMapMode(s.Dc()), MM_TEXT);
    SetWindowOrgEx(s.Dc(), 2, 3);
    SetViewportOrgEx(s.Dc(), 10, 20);
    EXPECT_EQ(ToDev(s.Dc(), 5, 7), Point(13, 24));
    EXPECT_EQ(ToLog(s.Dc(), 13, 24), Point(5, 7));
}

TEST(GdiMapping, TextModeIgnoresExtentSetters) {
    TSurface s(10, 10);
    EXPECT_TRUE(SetWindowExtEx(s.Dc(), 10, 10));
    EXPECT_TRUE(SetViewportExtEx(s.Dc(), 3, 7));
    TSize ext;
    GetWindowExtEx(s.Dc(), &ext);
    EXPECT_EQ(ext, (TSize{1, 1}));
    GetViewportExtEx(s.Dc(), &ext);
    EXPECT_EQ(ext, (TSize{1, 1}));
    EXPECT_EQ(ToDev(s.Dc(), 4, 5), Point(4, 5));
}

TEST(GdiMapping, SetMapModeAnswersThePreviousMode) {
    TSurface s(10, 10);
    EXPECT_EQ(SetMapMode(s.Dc(), MM_ANISOTROPIC), MM_TEXT);
    EXPECT_EQ(SetMapMode(s.Dc(), MM_ANISOTROPIC), MM_ANISOTROPIC);
    EXPECT_EQ(SetMapMode(s.Dc(), 99), 0);
    EXPECT_EQ(GetMapMode(s.Dc()), MM_ANISOTROPIC);
}

struct TMapCase {
    int WndExt, VpExt, WndOrg, VpOrg, Logical, Device;
};

void PrintTo(const TMapCase& c, std::ostream* os) {
    *os << "logical " << c.Logical << ", extents " << c.WndExt << " to " << c.VpExt << ", origins "
        << c.WndOrg << " to " << c.VpOrg << ": device " << c.Device;
}

std::string Signed(int Value) {
    return Value < 0 ? "Minus" + std::to_string(-static_cast<long long>(Value)) : std::to_string(Value);
}

// "Logical3Ext4To2", with "Org10To100" when the origins are not zero.
std::string MapCaseName(const ::testing::TestParamInfo<TMapCase>& Info) {
    const TMapCase& c = Info.param;
    std::string name = "Logical" + Signed(c.Logical) + "Ext" + Signed(c.WndExt) + "To" + Signed(c.VpExt);
    if (c.WndOrg != 0 || c.VpOrg != 0) name += "Org" + Signed(c.WndOrg) + "To" + Signed(c.VpOrg);
    return name;
}

class GdiMappingRounding : public ::testing::TestWithParam<TMapCase> {};

// device = vpOrg + (logical - wndOrg) * vpExt / wndExt, rounded half away from zero.
TEST_P(GdiMappingRounding, RoundsHalfAwayFromZeroOnBothAxes) {
    const TMapCase c = GetParam();
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    ASSERT_TRUE(SetWindowExtEx(s.Dc(), c.WndExt, c.WndExt));
    ASSERT_TRUE(SetViewportExtEx(s.Dc(), c.VpExt, c.VpExt));
    SetWindowOrgEx(s.Dc(), c.WndOrg, c.WndOrg);
    SetViewportOrgEx(s.Dc(), c.VpOrg, c.VpOrg);
    EXPECT_EQ(ToDev(s.Dc(), c.Logical, c.Logical), Point(c.Device, c.Device));
}

INSTANTIATE_TEST_SUITE_P(Gdi, GdiMappingRounding,
                         ::testing::Values(TMapCase{3, 2, 0, 0, 1, 1},       // 0.667 -> 1
                                           TMapCase{3, 2, 0, 0, -1, -1},     // -0.667 -> -1
                                           TMapCase{4, 2, 0, 0, 3, 2},       // 1.5 -> 2
                                           TMapCase{4, 2, 0, 0, -3, -2},     // -1.5 -> -2
                                           TMapCase{4, 2, 0, 0, 1, 1},       // 0.5 -> 1
                                           TMapCase{4, 2, 0, 0, -1, -1},     // -0.5 -> -1
                                           TMapCase{10, 1, 0, 0, 4, 0},      // 0.4 -> 0
                                           TMapCase{2, -3, 0, 0, 1, -2},     // -1.5 -> -2
                                           TMapCase{4, 2, 10, 100, 13, 102}, // 100 + 1.5 -> 102
                                           TMapCase{4, 2, 10, 100, 7, 98},   // 100 - 1.5 -> 98
                                           TMapCase{4, 3, 0, 0, 2000000000, 1500000000}),
                         MapCaseName);

TEST(GdiMapping, DeviceToLogicalIsTheInverseWithTheSameRounding) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 2, 2);
    SetViewportExtEx(s.Dc(), 4, -4);
    SetViewportOrgEx(s.Dc(), 0, 100);
    // logical = wndOrg + (device - vpOrg) * wndExt / vpExt
    EXPECT_EQ(ToLog(s.Dc(), 3, 97), Point(2, 2)); // 1.5 -> 2, (-3 * 2 / -4) = 1.5 -> 2
    EXPECT_EQ(ToLog(s.Dc(), -3, 103), Point(-2, -2));
    EXPECT_EQ(ToLog(s.Dc(), 4, 96), Point(2, 2));
    EXPECT_EQ(ToDev(s.Dc(), 2, 2), Point(4, 96));
}

TEST(GdiMapping, ZeroExtentsAreRefusedAndKeepTheOldValue) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 5, 6);
    SetViewportExtEx(s.Dc(), 7, 8);
    EXPECT_FALSE(SetWindowExtEx(s.Dc(), 0, 3));
    EXPECT_FALSE(SetViewportExtEx(s.Dc(), 3, 0));
    TSize ext;
    GetWindowExtEx(s.Dc(), &ext);
    EXPECT_EQ(ext, (TSize{5, 6}));
    GetViewportExtEx(s.Dc(), &ext);
    EXPECT_EQ(ext, (TSize{7, 8}));
}

TEST(GdiMapping, ExtentSettersAnswerThePreviousValues) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 5, 6);
    TSize previous;
    SetWindowExtEx(s.Dc(), 9, 9, &previous);
    EXPECT_EQ(previous, (TSize{5, 6}));
    TPoint org;
    SetWindowOrgEx(s.Dc(), 3, 4);
    SetWindowOrgEx(s.Dc(), 0, 0, &org);
    EXPECT_EQ(org, Point(3, 4));
    GetWindowOrgEx(s.Dc(), &org);
    EXPECT_EQ(org, Point(0, 0));
}

TEST(GdiMapping, SignedExtentsFlipAnAxis) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), -1, 1);
    SetViewportOrgEx(s.Dc(), 50, 0);
    EXPECT_EQ(ToDev(s.Dc(), 10, 10), Point(40, 10));
}

TEST(GdiMapping, ResultsBeyondThirtyTwoBitsAreClamped) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 1000, 1000);
    EXPECT_EQ(ToDev(s.Dc(), 2000000000, -2000000000), Point(INT32_MAX, INT32_MIN));
}

TEST(GdiMapping, IsotropicKeepsOneScale) {
    TSurface s(4, 4);
    SetMapMode(s.Dc(), MM_ISOTROPIC);
    SetWindowExtEx(s.Dc(), 100, 100);
    SetViewportExtEx(s.Dc(), 50, -200);
    TSize vp;
    GetViewportExtEx(s.Dc(), &vp);
    EXPECT_EQ(vp, (TSize{50, -50}));
}

TEST(GdiMapping, MetricModeMapsTenthsOfMillimetresUpwards) {
    TSurface s(96, 96); // one inch at 96 dpi: 25 millimetres after rounding
    SetMapMode(s.Dc(), MM_LOMETRIC);
    TSize w, v;
    GetWindowExtEx(s.Dc(), &w);
    GetViewportExtEx(s.Dc(), &v);
    EXPECT_EQ(w, (TSize{250, 250}));
    EXPECT_EQ(v, (TSize{96, -96}));
}

TEST(GdiMapping, DeviceCapsOfAnImageAt96Dpi) {
    TSurface s(200, 100);
    EXPECT_EQ(GetDeviceCaps(s.Dc(), HORZRES), 200);
    EXPECT_EQ(GetDeviceCaps(s.Dc(), VERTRES), 100);
    EXPECT_EQ(GetDeviceCaps(s.Dc(), LOGPIXELSX), 96);
    EXPECT_EQ(GetDeviceCaps(s.Dc(), LOGPIXELSY), 96);
    EXPECT_EQ(GetDeviceCaps(s.Dc(), HORZSIZE), 53); // 200 * 25.4 / 96 = 52.9
    EXPECT_EQ(GetDeviceCaps(s.Dc(), VERTSIZE), 26); // 26.46
    EXPECT_TRUE(GetDeviceCaps(s.Dc(), RASTERCAPS) & RC_BITBLT);
    EXPECT_TRUE(GetDeviceCaps(s.Dc(), RASTERCAPS) & RC_STRETCHDIB);
}

TEST(GdiMapping, DeviceCapsFollowTheImageResolution) {
    QImage image(300, 300, QImage::Format_RGB32);
    image.setDotsPerMeterX(11811); // 300 dpi
    image.setDotsPerMeterY(5906);  // 150 dpi
    HDC dc = CreateImageDC(&image);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 300);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 150);
    EXPECT_EQ(GetDeviceCaps(dc, HORZSIZE), 25);
    EXPECT_EQ(GetDeviceCaps(dc, VERTSIZE), 51);
    EXPECT_TRUE(SetDeviceResolution(dc, 600, 600));
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 600);
    DeleteDC(dc);
}

TEST(GdiMapping, NullContextsFailQuietly) {
    TPoint p{1, 1};
    EXPECT_FALSE(LPtoDP(nullptr, &p, 1));
    EXPECT_EQ(SetMapMode(nullptr, MM_TEXT), 0);
    EXPECT_EQ(GetDeviceCaps(nullptr, HORZRES), 0);
    EXPECT_FALSE(DeleteDC(nullptr));
}

} // namespace
} // namespace vl
