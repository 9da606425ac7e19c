// ListControl: a list with columns under a title, which gets each text that it shows from its
// owner.
#pragma once

#include <afxwin.h>

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
// After the Windows headers.
#include <commctrl.h>

#include "apps/monitor/Table.h"

namespace apps::monitor {

// It belongs to the thread that creates its windows.
class ListControl {
  public:
    // Returns the text of a row's column, which is unchanged until the next change of the list.
    using TextOf = std::function<const std::wstring&(int row, int column)>;

    ListControl(std::vector<Column> columns, TextOf textOf)
        : m_columns(std::move(columns)), m_textOf(std::move(textOf)) {}

    // Returns false if the windows cannot be created. REQUIRES: not created yet.
    bool create(CWnd& parent, int id, const std::wstring& title);

    HWND window() const { return m_list.GetSafeHwnd(); }
    void setFont(HFONT font, int dpi);
    void place(const RECT& title, const RECT& list);
    void setTitle(const std::wstring& title);

    // Sets the number of rows and redraws all of them.
    void setCount(int count);
    // Returns whether the last row is visible, or there is none.
    bool isAtEnd() const;
    void scrollToEnd();
    // Returns the row with the focus; -1 if there is none.
    int focusedRow() const;
    void focusRow(int row);
    // Marks the column by which the rows are ordered.
    void showOrder(int column, bool isAscending);

    // Handles the list's WM_NOTIFY messages except clicks.
    void onNotify(NMHDR& header) const;

  private:
    bool createTitle(CWnd& parent, const std::wstring& title);
    bool createList(CWnd& parent, int id);
    void fitColumns();

    const std::vector<Column> m_columns;
    const TextOf m_textOf;
    CWnd m_title;
    CWnd m_list;
    int m_dpi = USER_DEFAULT_SCREEN_DPI;
};

}  // namespace apps::monitor
