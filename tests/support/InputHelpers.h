// Input and byte helpers of the tests: mouse gestures replayed as Qt events on a window, the mapping of
// a control's client point into its window, another window that takes the activation, and byte
// strings written as hex.
#pragma once

#include "platform/core/Streams.h"
#include "platform/window/Controls.h"

#include <QByteArray>
#include <QPoint>
#include <QWidget>
#include <QWindow>

#include <memory>

namespace vl::test {

// A client point of `Control` (inside its border) in the coordinates of its top-level window.
QPoint ClientInWindow(TWinControl& Control, int X, int Y);

// A press and a release of `Button` at `At`.
void Click(QWindow* Window, QPoint At, Qt::MouseButton Button = Qt::LeftButton,
           Qt::KeyboardModifiers Modifiers = {});
// A press of `Button` at `From`, a move to `To` and the release there, all with `Modifiers`.
void Drag(QWindow* Window, QPoint From, QPoint To, Qt::MouseButton Button = Qt::LeftButton,
          Qt::KeyboardModifiers Modifiers = {});

// Shows `Other` and makes it the active window, so that the form's controls cannot take the focus.
// Fails the test when the activation does not arrive.
void ActivateOtherWindow(QWidget& Other);

// The bytes written as hex in `Hex`; spaces are ignored.
QByteArray HexBytes(const char* Hex);
// A memory stream holding `Bytes`, at position 0.
std::unique_ptr<TMemoryStream> StreamOf(const QByteArray& Bytes);
// A memory stream holding the bytes written as hex in `Hex`, at position 0.
std::unique_ptr<TMemoryStream> HexStream(const char* Hex);

} // namespace vl::test
