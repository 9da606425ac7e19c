// Table: rows of text as a list shows them, sorted and filtered.
#pragma once

#include <string>
#include <vector>

namespace apps::monitor {

struct Column {
    const wchar_t* title;
    int width;  // at 96 dots per inch, in pixels; also its share of the room that is left over
    bool isNumber = false;
};

struct Row {
    std::wstring key;  // says which thing it is, also after the next change
    std::vector<std::wstring> cells;
};

// Shown are the rows that have the filter's text in one of their cells, whatever its letter case.
// They are ordered by one column: numbers by their value, texts without letter case, equal cells by
// their keys. One object may be used by one thread at a time.
class Table {
  public:
    // Ordered by the first column at first.
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

    // Takes the place of all rows. REQUIRES: a cell for each column.
    void setRows(std::vector<Row> rows);
    // Empty: all rows are shown.
    void setFilter(const std::wstring& text);
    // Orders by this column; the other way round when it was ordered by it.
    void sortBy(int column);

    const std::vector<Column>& columns() const { return m_columns; }
    int sortColumn() const { return m_sortColumn; }
    bool isAscending() const { return m_isAscending; }

    // All rows, and those shown.
    int total() const { return static_cast<int>(m_rows.size()); }
    int count() const { return static_cast<int>(m_shown.size()); }
    // A shown row. REQUIRES: 0 <= index < count().
    const Row& at(int index) const { return m_rows[m_shown[static_cast<size_t>(index)]].row; }
    // A row, shown or not, as they were given. REQUIRES: 0 <= index < total().
    const Row& any(int index) const { return m_rows[static_cast<size_t>(index)].row; }
    // Where the row with this key is shown; -1 when it is not.
    int find(const std::wstring& key) const;

  private:
    struct Entry {
        Row row;
        std::vector<std::wstring> lowered;  // its cells in lower case
    };

    bool isShown(const Entry& entry) const;
    bool isBefore(const Entry& left, const Entry& right) const;
    void arrange();

    std::vector<Column> m_columns;
    std::vector<Entry> m_rows;
    std::vector<size_t> m_shown;
    std::wstring m_filter;  // in lower case
    int m_sortColumn = 0;
    bool m_isAscending = true;
};

}  // namespace apps::monitor
