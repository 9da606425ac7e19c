// ListControl: a list with columns under a title, which asks its owner for each text it shows.
#pragma once

#include <afxwin.h>

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
// After the Windows headers.
#include <commctrl.h>

#include "apps/monitor/Table.h"

namespace apps::monitor {

// It belongs to the thread that makes its windows.
class ListControl {
  public:
    // The text of a row's column; it stays as it is until the next change of the list.
    using TextOf = std::function<const std::wstring&(int row, int column)>;

    ListControl(std::vector<Column> columns, TextOf textOf)
        : m_columns(std::move(columns)), m_textOf(std::move(textOf)) {}

    // REQUIRES: no windows yet. False when the system makes none.
    bool create(CWnd& parent, int id, const std::wstring& title);

    HWND window() const { return m_list.GetSafeHwnd(); }
    void setFont(HFONT font, int dpi);
    void place(const RECT& title, const RECT& list);
    void setTitle(const std::wstring& title);

    // So many rows are shown, and none is as it was.
    void setCount(int count);
    // The last row is in view, or there is none.
    bool isAtEnd() const;
    void scrollToEnd();
    // The row that the keyboard is at; -1 when there is none.
    int focusedRow() const;
    void focusRow(int row);
    // Marks the column by which the rows are ordered.
    void showOrder(int column, bool isAscending);

    // Handles what the list tells its parent, but for clicks.
    void onNotify(NMHDR& notice) const;

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
