// Translation of Qt's input vocabulary into the window system's: shift states and virtual-key codes.

#include "platform/window/Controls.h"

namespace vl {

TShiftState ShiftStateOf(Qt::KeyboardModifiers Modifiers, Qt::MouseButtons Buttons) {
    TShiftState s;
    if (Modifiers & Qt::ShiftModifier) s.Include(ssShift);
    if (Modifiers & Qt::AltModifier) s.Include(ssAlt);
    if (Modifiers & Qt::ControlModifier) s.Include(ssCtrl);
    if (Buttons & Qt::LeftButton) s.Include(ssLeft);
    if (Buttons & Qt::RightButton) s.Include(ssRight);
    if (Buttons & Qt::MiddleButton) s.Include(ssMiddle);
    return s;
}

std::uint16_t VirtualKeyOf(int QtKey, bool Keypad) {
    if (QtKey >= Qt::Key_A && QtKey <= Qt::Key_Z) return static_cast<std::uint16_t>(QtKey);
    if (QtKey >= Qt::Key_0 && QtKey <= Qt::Key_9) {
        if (Keypad) return static_cast<std::uint16_t>(VK_NUMPAD0 + (QtKey - Qt::Key_0));
        return static_cast<std::uint16_t>(QtKey);
    }
    if (QtKey >= Qt::Key_F1 && QtKey <= Qt::Key_F24)
        return static_cast<std::uint16_t>(VK_F1 + (QtKey - Qt::Key_F1));
    switch (QtKey) {
    case Qt::Key_Backspace: return VK_BACK;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return VK_TAB;
    case Qt::Key_Clear: return VK_CLEAR;
    case Qt::Key_Return:
    case Qt::Key_Enter: return VK_RETURN;
    case Qt::Key_Shift: return VK_SHIFT;
    case Qt::Key_Control: return VK_CONTROL;
    case Qt::Key_Alt: return VK_MENU;
    case Qt::Key_Pause: return VK_PAUSE;
    case Qt::Key_CapsLock: return VK_CAPITAL;
    case Qt::Key_Escape: return VK_ESCAPE;
    case Qt::Key_Space: return VK_SPACE;
    case Qt::Key_PageUp: return VK_PRIOR;
    case Qt::Key_PageDown: return VK_NEXT;
    case Qt::Key_End: return VK_END;
    case Qt::Key_Home: return VK_HOME;
    case Qt::Key_Left: return VK_LEFT;
    case Qt::Key_Up: return VK_UP;
    case Qt::Key_Right: return VK_RIGHT;
    case Qt::Key_Down: return VK_DOWN;
    case Qt::Key_Select: return VK_SELECT;
    case Qt::Key_Print: return VK_SNAPSHOT;
    case Qt::Key_Insert: return VK_INSERT;
    case Qt::Key_Delete: return VK_DELETE;
    case Qt::Key_Help: return VK_HELP;
    case Qt::Key_Meta: return VK_LWIN;
    case Qt::Key_Menu: return VK_APPS;
    case Qt::Key_NumLock: return VK_NUMLOCK;
    case Qt::Key_ScrollLock: return VK_SCROLL;
    case Qt::Key_Asterisk: return Keypad ? VK_MULTIPLY : static_cast<std::uint16_t>('8');
    case Qt::Key_Plus: return Keypad ? VK_ADD : VK_OEM_PLUS;
    case Qt::Key_Minus: return Keypad ? VK_SUBTRACT : VK_OEM_MINUS;
    case Qt::Key_Period: return Keypad ? VK_DECIMAL : VK_OEM_PERIOD;
    case Qt::Key_Slash: return Keypad ? VK_DIVIDE : VK_OEM_2;
    case Qt::Key_Equal: return VK_OEM_PLUS;
    case Qt::Key_Comma: return VK_OEM_COMMA;
    case Qt::Key_Semicolon:
    case Qt::Key_Colon: return VK_OEM_1;
    case Qt::Key_QuoteLeft:
    case Qt::Key_AsciiTilde: return VK_OEM_3;
    case Qt::Key_BracketLeft:
    case Qt::Key_BraceLeft: return VK_OEM_4;
    case Qt::Key_Backslash:
    case Qt::Key_Bar: return VK_OEM_5;
    case Qt::Key_BracketRight:
    case Qt::Key_BraceRight: return VK_OEM_6;
    case Qt::Key_Apostrophe:
    case Qt::Key_QuoteDbl: return VK_OEM_7;
    default: return 0;
    }
}

} // namespace vl
