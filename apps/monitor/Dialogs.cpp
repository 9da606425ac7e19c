#include "apps/monitor/Dialogs.h"

#include <afxwin.h>

#include "apps/monitor/resource.h"
#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::monitor {

namespace {

// A dialog with one text that must not be empty; derived classes add more.
class Dialog {
  public:
    virtual ~Dialog() = default;

    // Returns true if the user has chosen OK; the fields have been read then.
    bool show(int id, HWND owner) {
        return ::DialogBoxParamW(AfxGetInstanceHandle(), MAKEINTRESOURCEW(id), owner, &onMessage,
                                 reinterpret_cast<LPARAM>(this)) == IDOK;
    }

  protected:
    virtual void fill() = 0;
    virtual void read() = 0;

    HWND item(int id) const { return ::GetDlgItem(m_dialog, id); }
    void setText(int id, const std::wstring& text) const {
        ::SetWindowTextW(item(id), text.c_str());
    }
    std::wstring text(int id) const {
        std::wstring text(static_cast<size_t>(::GetWindowTextLengthW(item(id))) + 1, L'\0');
        text.resize(static_cast<size_t>(
            ::GetWindowTextW(item(id), text.data(), static_cast<int>(text.size()))));
        return text;
    }

    HWND m_dialog = nullptr;

  private:
    static INT_PTR CALLBACK onMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
        INT_PTR result = FALSE;
        // No exception may pass through the dispatcher: the dialog is cancelled instead.
        if (!NySe::succeeds([&] { result = handle(dialog, message, wParam, lParam); }))
            ::EndDialog(dialog, IDCANCEL);
        return result;
    }

    static INT_PTR handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG) return start(dialog, lParam);
        if (message == WM_COMMAND)
            reinterpret_cast<Dialog*>(::GetWindowLongPtrW(dialog, DWLP_USER))
                ->onCommand(LOWORD(wParam), HIWORD(wParam));
        return FALSE;
    }

    static INT_PTR start(HWND window, LPARAM object) {
        ::SetWindowLongPtrW(window, DWLP_USER, object);
        auto& dialog = *reinterpret_cast<Dialog*>(object);
        dialog.m_dialog = window;
        dialog.fill();
        dialog.allowOk();
        return TRUE;  // the first control gets the keyboard
    }

    void onCommand(int id, int event) {
        if (id == IDC_TEXT && event == EN_CHANGE) allowOk();
        if (id != IDOK && id != IDCANCEL) return;
        if (id == IDOK) read();
        ::EndDialog(m_dialog, id);
    }

    void allowOk() const { ::EnableWindow(item(IDOK), ::GetWindowTextLengthW(item(IDC_TEXT)) > 0); }
};

class TextDialog : public Dialog {
  public:
    explicit TextDialog(TextInput input) : m_input(std::move(input)) {}
    const std::wstring& input() const { return m_input.text; }

  protected:
    void fill() override {
        ::SetWindowTextW(m_dialog, m_input.title);
        setText(IDC_LABEL, m_input.label);
        setText(IDC_TEXT, m_input.text);
    }
    void read() override { m_input.text = text(IDC_TEXT); }

  private:
    TextInput m_input;
};

struct ModeBox {
    int id;
    NySe::ShareMode bit;
};
constexpr ModeBox kModeBoxes[] = {{IDC_ACCESS1, NySe::access1},
                                  {IDC_ACCESS2, NySe::access2},
                                  {IDC_EXCLUDE1, NySe::exclude1},
                                  {IDC_EXCLUDE2, NySe::exclude2}};

class LockDialog : public Dialog {
  public:
    explicit LockDialog(LockInput input) : m_input(std::move(input)) {}
    const LockInput& input() const { return m_input; }

  protected:
    void fill() override {
        setText(IDC_TEXT, m_input.name);
        for (const ModeBox& box : kModeBoxes)
            ::CheckDlgButton(m_dialog, box.id,
                             (m_input.mode & box.bit) != 0 ? BST_CHECKED : BST_UNCHECKED);
    }
    void read() override {
        m_input = {text(IDC_TEXT), 0};
        for (const ModeBox& box : kModeBoxes)
            if (::IsDlgButtonChecked(m_dialog, box.id) == BST_CHECKED) m_input.mode |= box.bit;
    }

  private:
    LockInput m_input;
};

class MessageDialog : public Dialog {
  public:
    explicit MessageDialog(const std::vector<Receiver>& receivers) : m_receivers(receivers) {}
    const MessageInput& input() const { return m_input; }

  protected:
    void fill() override {
        for (const Receiver& receiver : m_receivers)
            ::SendMessageW(item(IDC_RECEIVER), CB_ADDSTRING, 0,
                           reinterpret_cast<LPARAM>(receiver.name.c_str()));
        ::SendMessageW(item(IDC_RECEIVER), CB_SETCURSEL, 0, 0);
    }
    void read() override {
        const LRESULT choice = ::SendMessageW(item(IDC_RECEIVER), CB_GETCURSEL, 0, 0);
        m_input = {text(IDC_TEXT), m_receivers.at(static_cast<size_t>(choice))};
    }

  private:
    const std::vector<Receiver>& m_receivers;
    MessageInput m_input;
};

}  // namespace

std::optional<LockInput> inputLock(HWND owner, const std::wstring& name) {
    using namespace NySe;
    LockDialog dialog({name, access1 | access2 | exclude1 | exclude2});
    if (!dialog.show(IDD_LOCK, owner)) return std::nullopt;
    return dialog.input();
}

std::optional<MessageInput> inputMessage(HWND owner, const std::vector<Receiver>& receivers) {
    MessageDialog dialog(receivers);
    if (!dialog.show(IDD_SEND, owner)) return std::nullopt;
    return dialog.input();
}

std::optional<std::wstring> inputText(HWND owner, const TextInput& initial) {
    TextDialog dialog(initial);
    if (!dialog.show(IDD_TEXT, owner)) return std::nullopt;
    return dialog.input();
}

}  // namespace apps::monitor
