// ListPane: a table with its title, sorted and filtered by the user.
#pragma once

#include "apps/monitor/ListControl.h"

namespace apps::monitor {

// It belongs to the thread that creates its windows.
class ListPane {
  public:
    ListPane(const wchar_t* title, std::vector<Column> columns)
        : m_title(title), m_table(std::move(columns)) {}
    ListPane(const ListPane&) = delete;
    ListPane& operator=(const ListPane&) = delete;

    // Returns false if the windows cannot be created.
    bool create(CWnd& parent, int id);
    ListControl& control() { return m_list; }

    // The selected row stays selected while it is shown.
    void setRows(const std::vector<Row>& rows);
    void setFilter(const std::wstring& text);
    // Handles the list's WM_NOTIFY messages.
    void onNotify(NMHDR& header);

    // The rows that are shown.
    const Table& table() const { return m_table; }
    // Returns null if no row is selected.
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
