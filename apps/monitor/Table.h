// Table: rows of text for a list, sorted and filtered.
#pragma once

#include <string>
#include <vector>

namespace apps::monitor {

struct Column {
    const wchar_t* title;
    int width;  // at 96 dots per inch, in pixels; also its share of the remaining width
    bool isNumber = false;
};

struct Row {
    std::wstring key;  // identifies the object, also after the next change
    std::vector<std::wstring> cells;
};

// Shows the rows that have the filter's text in one of their cells, without letter case. They are
// ordered by one column: numbers by their value, texts without letter case, equal cells by their
// keys. One object may be used by one thread at a time.
class Table {
  public:
    // Initially ordered by the first column.
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

    // Replaces all rows. REQUIRES: a cell for each column.
    void setRows(std::vector<Row> rows);
    // Shows the rows that contain `text` in a cell; all rows if it is empty.
    void setFilter(const std::wstring& text);
    // Orders by this column; reverses the order if it already is.
    void sortBy(int column);

    const std::vector<Column>& columns() const { return m_columns; }
    int sortColumn() const { return m_sortColumn; }
    bool isAscending() const { return m_isAscending; }

    // Return the number of all rows, and of those shown.
    int total() const { return static_cast<int>(m_rows.size()); }
    int count() const { return static_cast<int>(m_shown.size()); }
    // Returns a shown row. REQUIRES: 0 <= index < count().
    const Row& at(int index) const { return m_rows[m_shown[static_cast<size_t>(index)]].row; }
    // Returns a row, shown or not, in the order of setRows. REQUIRES: 0 <= index < total().
    const Row& any(int index) const { return m_rows[static_cast<size_t>(index)].row; }
    // Returns the index of the shown row with this key; -1 if there is none.
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
