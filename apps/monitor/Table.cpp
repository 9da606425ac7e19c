#include "apps/monitor/Table.h"

#include <algorithm>
#include <cwchar>

#include "NyServer/base/WindowsPrelude.h"

namespace apps::monitor {

namespace {

std::wstring lowered(std::wstring text) {
    ::CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

// Returns a number below 0, 0 or above 0 if left is before, equal to or after right.
int compareNumbers(const std::wstring& left, const std::wstring& right) {
    const long a = std::wcstol(left.c_str(), nullptr, 10);
    const long b = std::wcstol(right.c_str(), nullptr, 10);
    return a < b ? -1 : static_cast<int>(a > b);
}

int compareTexts(const std::wstring& left, const std::wstring& right) {
    return left.compare(right);
}

}  // namespace

void Table::setRows(std::vector<Row> rows) {
    m_rows.clear();
    for (Row& row : rows) {
        Entry& entry = m_rows.emplace_back();
        entry.row = std::move(row);
        for (const std::wstring& cell : entry.row.cells) entry.lowered.push_back(lowered(cell));
    }
    arrange();
}

void Table::setFilter(const std::wstring& text) {
    m_filter = lowered(text);
    arrange();
}

void Table::sortBy(int column) {
    m_isAscending = column != m_sortColumn || !m_isAscending;
    m_sortColumn = column;
    arrange();
}

int Table::find(const std::wstring& key) const {
    for (int index = 0; index < count(); ++index)
        if (at(index).key == key) return index;
    return -1;
}

bool Table::isShown(const Entry& entry) const {
    return std::any_of(
        entry.lowered.begin(), entry.lowered.end(),
        [this](const std::wstring& cell) { return cell.find(m_filter) != std::wstring::npos; });
}

bool Table::isBefore(const Entry& left, const Entry& right) const {
    const auto column = static_cast<size_t>(m_sortColumn);
    const auto compare = m_columns[column].isNumber ? &compareNumbers : &compareTexts;
    const int order = compare(left.lowered[column], right.lowered[column]);
    if (order == 0) return left.row.key < right.row.key;
    return m_isAscending ? order < 0 : order > 0;
}

void Table::arrange() {
    m_shown.clear();
    for (size_t index = 0; index < m_rows.size(); ++index)
        if (isShown(m_rows[index])) m_shown.push_back(index);
    std::sort(m_shown.begin(), m_shown.end(),
              [this](size_t left, size_t right) { return isBefore(m_rows[left], m_rows[right]); });
}

}  // namespace apps::monitor
