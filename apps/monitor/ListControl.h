// ListControl: a list with columns that asks its owner for each text it shows.
#pragma once

#include <afxwin.h>

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
// After the Windows headers.
#include <commctrl.h>

#include "apps/monitor/Table.h"

// It belongs to the thread that makes its window.
class ListControl {
  public:
    // The text of a row's column; it stays as it is until the next change of the list.
    using TextOf = std::function<const std::wstring&(int row, int column)>;

    // REQUIRES: no window yet. False when the system makes none.
    bool create(CWnd& parent, int id, const std::vector<Column>& columns, TextOf textOf);

    HWND window() const { return m_list.GetSafeHwnd(); }
    void setFont(HFONT font, int dpi);
    void place(const RECT& area);

    // So many rows are shown, and none is as it was.
    void setCount(int count);
    void scrollToEnd();
    // The row that the keyboard is at; -1 when there is none.
    int focusedRow() const;
    void focusRow(int row);
    // Marks the column by which the rows are ordered.
    void showOrder(int column, bool isAscending);

    // Gives the list a text that it asks for.
    void answer(NMLVDISPINFOW& question) const;

  private:
    void fitColumns();

    CWnd m_list;
    std::vector<Column> m_columns;
    TextOf m_textOf;
    int m_dpi = USER_DEFAULT_SCREEN_DPI;
};
