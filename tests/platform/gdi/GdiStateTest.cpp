#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::TSurface;

TEST(GdiState, RestoreDcBringsBackTheWholeState) {
    TSurface s(20, 20);
    HDC dc = s.Dc();
    HPEN pen = CreatePen(PS_DOT, 1, test::Red);
    HBRUSH brush = CreateSolidBrush(test::Blue);
    LOGFONTW lf;
    lf.lfHeight = -30;
    HFONT font = CreateFontIndirectW(&lf);
    MoveToEx(dc, 3, 4);
    EXPECT_EQ(SaveDC(dc), 1);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 3, 3);
    SetViewportExtEx(dc, 7, -7);
    SetWindowOrgEx(dc, 5, 6);
    SetViewportOrgEx(dc, 1, 2);
    SelectObject(dc, pen);
    SelectObject(dc, brush);
    SelectObject(dc, font);
    SetTextColor(dc, test::Red);
    SetBkColor(dc, test::Blue);
    SetBkMode(dc, TRANSPARENT);
    SetROP2(dc, R2_XORPEN);
    SetPolyFillMode(dc, WINDING);
    SetTextAlign(dc, TA_BASELINE);
    IntersectClipRect(dc, 0, 0, 1, 1);
    MoveToEx(dc, 9, 9);
    EXPECT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(GetMapMode(dc), MM_TEXT);
    TSize ext;
    GetViewportExtEx(dc, &ext);
    EXPECT_EQ(ext, (TSize{1, 1}));
    TPoint p;
    GetWindowOrgEx(dc, &p);
    EXPECT_EQ(p, Point(0, 0));
    GetViewportOrgEx(dc, &p);
    EXPECT_EQ(p, Point(0, 0));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(GetTextColor(dc), 0u);
    EXPECT_EQ(GetBkColor(dc), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(dc), OPAQUE);
    EXPECT_EQ(GetROP2(dc), R2_COPYPEN);
    EXPECT_EQ(GetPolyFillMode(dc), ALTERNATE);
    EXPECT_EQ(GetTextAlign(dc), TA_TOP | TA_LEFT);
    TRect box;
    GetClipBox(dc, &box);
    EXPECT_EQ(box, (TRect{0, 0, 20, 20}));
    GetCurrentPositionEx(dc, &p);
    EXPECT_EQ(p, Point(3, 4));
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_TRUE(DeleteObject(font));
}

TEST(GdiState, PositiveLevelRestoresThatLevelAndDropsTheOnesAbove) {
    TSurface s(4, 4);
    HDC dc = s.Dc();
    SetROP2(dc, R2_NOT);
    EXPECT_EQ(SaveDC(dc), 1);
    SetROP2(dc, R2_XORPEN);
    EXPECT_EQ(SaveDC(dc), 2);
    SetROP2(dc, R2_WHITE);
    EXPECT_EQ(SaveDC(dc), 3);
    SetROP2(dc, R2_BLACK);
    EXPECT_TRUE(RestoreDC(dc, 2));
    EXPECT_EQ(GetROP2(dc), R2_XORPEN);
    EXPECT_FALSE(RestoreDC(dc, 2)); // gone with the restore
    EXPECT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(GetROP2(dc), R2_NOT);
    EXPECT_FALSE(RestoreDC(dc, -1));
    EXPECT_FALSE(RestoreDC(dc, 0));
}

TEST(GdiState, RelativeRestoreCountsBackFromTheLatest) {
    TSurface s(4, 4);
    HDC dc = s.Dc();
    SetBkMode(dc, TRANSPARENT);
    SaveDC(dc);
    SetBkMode(dc, OPAQUE);
    SaveDC(dc);
    SaveDC(dc);
    EXPECT_FALSE(RestoreDC(dc, -4));
    EXPECT_TRUE(RestoreDC(dc, -3));
    EXPECT_EQ(GetBkMode(dc), TRANSPARENT);
}

TEST(GdiState, RestoredClipAndMappingDriveDrawing) {
    TSurface s(10, 10);
    HDC dc = s.Dc();
    SaveDC(dc);
    IntersectClipRect(dc, 0, 0, 2, 2);
    SaveDC(dc);
    SetViewportOrgEx(dc, 5, 5);
    RestoreDC(dc, -1);
    SetPixel(dc, 1, 1, test::Red);
    SetPixel(dc, 5, 5, test::Red);
    EXPECT_EQ(s.Pixel(1, 1), test::Red);
    EXPECT_EQ(s.Pixel(5, 5), test::Grey);
    RestoreDC(dc, -1);
    SetPixel(dc, 5, 5, test::Red);
    EXPECT_EQ(s.Pixel(5, 5), test::Red);
}

TEST(GdiState, SelectObjectAnswersThePreviousObjectOfItsKind) {
    TSurface s(4, 4);
    HPEN pen = CreatePen(PS_SOLID, 2, test::Red);
    EXPECT_EQ(SelectObject(s.Dc(), pen), GetStockObject(BLACK_PEN));
    EXPECT_EQ(SelectObject(s.Dc(), GetStockObject(WHITE_PEN)), pen);
    EXPECT_EQ(SelectObject(s.Dc(), nullptr), nullptr);
    EXPECT_EQ(SelectObject(nullptr, pen), nullptr);
    // A bitmap only goes into a memory context.
    HBITMAP bitmap = CreateCompatibleBitmap(s.Dc(), 2, 2);
    EXPECT_EQ(SelectObject(s.Dc(), bitmap), nullptr);
    DeleteObject(bitmap);
    DeleteObject(pen);
}

TEST(GdiState, DeletingASelectedObjectWaitsUntilItIsDeselected) {
    TSurface s(4, 4);
    LOGFONTW lf;
    lf.lfHeight = -12;
    HFONT font = CreateFontIndirectW(&lf);
    SelectObject(s.Dc(), font);
    SaveDC(s.Dc());
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_EQ(GetObjectType(font), OBJ_FONT); // still selected, still alive
    SelectObject(s.Dc(), GetStockObject(ANSI_VAR_FONT));
    EXPECT_EQ(GetObjectType(font), OBJ_FONT); // the saved state holds it
    RestoreDC(s.Dc(), -1);
    EXPECT_EQ(GetCurrentObject(s.Dc(), OBJ_FONT), font);
    SelectObject(s.Dc(), GetStockObject(ANSI_VAR_FONT));
    EXPECT_EQ(GetObjectType(font), 0); // gone now
}

TEST(GdiState, StockObjectsAreSharedAndNeverDeleted) {
    HGDIOBJ brush = GetStockObject(NULL_BRUSH);
    EXPECT_EQ(brush, GetStockObject(HOLLOW_BRUSH));
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_EQ(GetObjectType(brush), OBJ_BRUSH);
    LOGBRUSH lb;
    EXPECT_TRUE(GetLogBrush(static_cast<HBRUSH>(brush), &lb));
    EXPECT_EQ(lb.lbStyle, BS_NULL);
    LOGFONTW lf;
    EXPECT_TRUE(GetLogFont(static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT)), &lf));
    EXPECT_EQ(std::u16string(lf.lfFaceName), u"MS Sans Serif");
    EXPECT_EQ(GetObjectType(GetStockObject(DEFAULT_GUI_FONT)), OBJ_FONT);
    EXPECT_EQ(GetObjectType(GetStockObject(NULL_PEN)), OBJ_PEN);
    EXPECT_EQ(GetStockObject(9), nullptr);
    EXPECT_EQ(GetStockObject(-1), nullptr);
}

TEST(GdiState, ObjectRecordsReadBack) {
    LOGPEN in{PS_DASH, {3, 0}, RGB(1, 2, 3)};
    HPEN pen = CreatePenIndirect(&in);
    LOGPEN out;
    ASSERT_TRUE(GetLogPen(pen, &out));
    EXPECT_EQ(out.lopnStyle, PS_DASH);
    EXPECT_EQ(out.lopnWidth.x, 3);
    EXPECT_EQ(out.lopnColor, RGB(1, 2, 3));
    LOGBRUSH lb{BS_HATCHED, RGB(4, 5, 6), HS_CROSS};
    HBRUSH brush = CreateBrushIndirect(&lb);
    LOGBRUSH lbOut;
    ASSERT_TRUE(GetLogBrush(brush, &lbOut));
    EXPECT_EQ(lbOut.lbStyle, BS_HATCHED);
    EXPECT_EQ(lbOut.lbHatch, std::uintptr_t(HS_CROSS));
    EXPECT_EQ(CreatePen(42, 1, 0), nullptr);
    EXPECT_EQ(CreateHatchBrush(17, 0), nullptr);
    LOGBRUSH bad{9, 0, 0};
    EXPECT_EQ(CreateBrushIndirect(&bad), nullptr);
    DeleteObject(pen);
    DeleteObject(brush);
}

TEST(GdiState, MemoryContextDrawsIntoItsSelectedBitmap) {
    TSurface screen(4, 4);
    HDC memory = CreateCompatibleDC(screen.Dc());
    HBITMAP bitmap = CreateCompatibleBitmap(screen.Dc(), 5, 3);
    TSize size;
    ASSERT_TRUE(GetBitmapSize(bitmap, &size));
    EXPECT_EQ(size, (TSize{5, 3}));
    HGDIOBJ old = SelectObject(memory, bitmap);
    EXPECT_NE(old, nullptr);
    EXPECT_EQ(GetDeviceCaps(memory, HORZRES), 5);
    MoveToEx(memory, 0, 1);
    LineTo(memory, 5, 1);
    const QImage* image = GetBitmapImage(bitmap);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixel(2, 1) & 0xFFFFFFu, 0u);
    EXPECT_EQ(image->pixel(2, 0) & 0xFFFFFFu, 0xFFFFFFu);
    SelectObject(memory, old);
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_TRUE(DeleteDC(memory));
}

} // namespace
} // namespace vl

namespace vl {
namespace {

TEST(GdiState, RestoreDcPutsBackTheBitmapOfAMemoryContext) {
    HDC memory = CreateCompatibleDC(nullptr);
    HBITMAP first = CreateCompatibleBitmap(memory, 3, 3);
    HBITMAP second = CreateCompatibleBitmap(memory, 5, 5);
    HGDIOBJ original = SelectObject(memory, first);
    SaveDC(memory);
    SelectObject(memory, second);
    EXPECT_EQ(GetDeviceCaps(memory, HORZRES), 5);
    // Deleting the selected bitmap waits for its deselection.
    EXPECT_TRUE(DeleteObject(second));
    EXPECT_EQ(GetObjectType(second), OBJ_BITMAP);
    RestoreDC(memory, -1);
    EXPECT_EQ(GetDeviceCaps(memory, HORZRES), 3);
    EXPECT_EQ(GetObjectType(second), 0);
    SetPixel(memory, 1, 1, test::Red);
    EXPECT_EQ(GetBitmapImage(first)->pixel(1, 1) & 0xFFFFFFu, 0xFF0000u);
    SelectObject(memory, original);
    DeleteObject(first);
    EXPECT_TRUE(DeleteDC(memory));
}

} // namespace
} // namespace vl
