#include "support/InputHelpers.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace vl::test {

QPoint ClientInWindow(TWinControl& Control, int X, int Y) {
    const int b = Control.BorderWidth();
    return Control.Widget()->mapTo(Control.Widget()->window(), QPoint(X + b, Y + b));
}

void Click(QWindow* Window, QPoint At, Qt::MouseButton Button, Qt::KeyboardModifiers Modifiers) {
    QTest::mousePress(Window, Button, Modifiers, At);
    QTest::mouseRelease(Window, Button, Modifiers, At);
}

void Drag(QWindow* Window, QPoint From, QPoint To, Qt::MouseButton Button, Qt::KeyboardModifiers Modifiers) {
    QTest::mousePress(Window, Button, Modifiers, From);
    QTest::mouseMove(Window, To);
    QTest::mouseRelease(Window, Button, Modifiers, To);
}

void ActivateOtherWindow(QWidget& Other) {
    Other.resize(50, 50);
    Other.show();
    Other.activateWindow();
    QApplication::setActiveWindow(&Other);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
}

QByteArray HexBytes(const char* Hex) {
    return QByteArray::fromHex(QByteArray(Hex).replace(' ', ""));
}

std::unique_ptr<TMemoryStream> StreamOf(const QByteArray& Bytes) {
    return std::make_unique<TMemoryStream>(Bytes);
}

std::unique_ptr<TMemoryStream> HexStream(const char* Hex) {
    return StreamOf(HexBytes(Hex));
}

} // namespace vl::test
