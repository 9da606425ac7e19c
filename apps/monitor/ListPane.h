// ListPane: a table with its title, as the user sorts and filters it.
#pragma once

#include "apps/monitor/ListControl.h"

namespace apps::monitor {

// It belongs to the thread that makes its windows.
class ListPane {
  public:
    ListPane(const wchar_t* title, std::vector<Column> columns)
        : m_title(title), m_table(std::move(columns)) {}
    ListPane(const ListPane&) = delete;
    ListPane& operator=(const ListPane&) = delete;

    // False when the system makes no windows.
    bool create(CWnd& parent, int id);
    ListControl& control() { return m_list; }

    // The chosen row stays chosen while it is shown.
    void setRows(const std::vector<Row>& rows);
    void setFilter(const std::wstring& text);
    // Handles what the list tells its parent.
    void onNotify(NMHDR& notice);

    // All that are shown.
    const Table& table() const { return m_table; }
    // Null when none is chosen.
    const Row* chosen() const;

  private:
    const std::wstring& textOf(int row, int column) const {
        return m_table.at(row).cells[static_cast<size_t>(column)];
    }
    template <class Change>
    void change(Change change);

    const std::wstring m_title;
    Table m_table;
    ListControl m_list{m_table.columns(), std::bind_front(&ListPane::textOf, this)};
};

}  // namespace apps::monitor
