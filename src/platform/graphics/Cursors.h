// Cursor numbers and cursor resources.
//
// A control's `Cursor` is an integer: zero and the negative numbers are the framework's built-in
// cursors, mapped to Qt's shapes; positive numbers are cursors that the program puts into
// `Screen.Cursors`. The library's own cursors ("SMALL_CROSS", "ROTATE", "DIMLINEH", "DIMLINEV",
// "DIMLINEP") are images shipped as PNG resources with their hot spot in the PNG text key "HotSpot"
// ("x,y"); `LoadCursorByName` loads them once and keeps them for the life of the program.
#pragma once

#include <QCursor>
#include <QImage>
#include <QPoint>
#include <QString>

namespace vl {

using TCursor = int;

constexpr TCursor crDefault = 0;
constexpr TCursor crNone = -1;
constexpr TCursor crArrow = -2;
constexpr TCursor crCross = -3;
constexpr TCursor crIBeam = -4;
constexpr TCursor crSizeNESW = -6;
constexpr TCursor crSizeNS = -7;
constexpr TCursor crSizeNWSE = -8;
constexpr TCursor crSizeWE = -9;
constexpr TCursor crUpArrow = -10;
constexpr TCursor crHourGlass = -11;
constexpr TCursor crDrag = -12;
constexpr TCursor crNoDrop = -13;
constexpr TCursor crHSplit = -14;
constexpr TCursor crVSplit = -15;
constexpr TCursor crMultiDrag = -16;
constexpr TCursor crSQLWait = -17;
constexpr TCursor crNo = -18;
constexpr TCursor crAppStart = -19;
constexpr TCursor crHelp = -20;
constexpr TCursor crHandPoint = -21;
constexpr TCursor crSizeAll = -22;
constexpr TCursor crSize = -22;

// The numbers under which the library enters its own cursors into the screen's table.
constexpr TCursor CursorRotate = 12;
constexpr TCursor CursorSmallCross = 13;

// The Qt shape of a built-in cursor number; false for a number that is not built in.
bool BuiltinCursorShape(TCursor Number, Qt::CursorShape& Shape);

// An image cursor: the picture (ARGB32) and its hot spot.
struct TCursorImage {
    QImage Image;
    QPoint HotSpot;
};

// Draws one of the library's cursors in code ("SMALL_CROSS", "ROTATE", "DIMLINEH", "DIMLINEV",
// "DIMLINEP", compared without regard to case). The shipped PNGs were made by it. A null image for an
// unknown name.
TCursorImage RenderCursorImage(const QString& Name);

// The shipped resource of a cursor name, read with its hot spot; a null image when there is none.
TCursorImage ReadCursorResource(const QString& Name);

// The cursor of a resource name, loaded once and then kept (shared, never freed): the shipped PNG, or
// the picture drawn in code when the resource is missing. Null for an unknown name.
const QCursor* LoadCursorByName(const QString& Name);

} // namespace vl
