// The dialogs for the input of a request.
#pragma once

#include <optional>
#include <vector>

#include "apps/monitor/Tasks.h"

namespace apps::monitor {

// Each shows a dialog over `owner` and waits until it is closed. Returns nothing if the user
// cancels. Empty names and texts are not accepted.

struct LockInput {
    std::wstring name;
    unsigned mode = 0;
};
std::optional<LockInput> inputLock(HWND owner, const std::wstring& name);

struct MessageInput {
    std::wstring text;
    Receiver receiver;
};
// REQUIRES: at least one receiver.
std::optional<MessageInput> inputMessage(HWND owner, const std::vector<Receiver>& receivers);

// One text, initially `text`.
struct TextInput {
    const wchar_t* title;
    const wchar_t* label;
    std::wstring text;
};
std::optional<std::wstring> inputText(HWND owner, const TextInput& initial);

}  // namespace apps::monitor
