// What a person does with keyboard and mouse; the window in front gets it.
#pragma once

#include <string>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"

namespace keys {

inline INPUT keyEvent(WORD key, DWORD flags) {
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki.wVk = key;
    event.ki.dwFlags = flags;
    return event;
}

inline void send(std::vector<INPUT> events) {
    ::SendInput(static_cast<UINT>(events.size()), events.data(), sizeof(INPUT));
}

inline void press(WORD key) {
    send({keyEvent(key, 0), keyEvent(key, KEYEVENTF_KEYUP)});
}

inline void pressWithControl(WORD key) {
    send({keyEvent(VK_CONTROL, 0), keyEvent(key, 0), keyEvent(key, KEYEVENTF_KEYUP),
          keyEvent(VK_CONTROL, KEYEVENTF_KEYUP)});
}

// Letters and digits.
inline void type(const std::string& text) {
    for (const char character : text)
        press(static_cast<WORD>(character >= 'a' ? character - 'a' + 'A' : character));
}

inline void click(POINT place) {
    ::SetCursorPos(place.x, place.y);
    INPUT down{};
    down.type = INPUT_MOUSE;
    down.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    INPUT up = down;
    up.mi.dwFlags = MOUSEEVENTF_LEFTUP;
    send({down, up});
}

}  // namespace keys
