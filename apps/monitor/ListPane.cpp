#include "apps/monitor/ListPane.h"

#include "apps/monitor/Words.h"

namespace apps::monitor {

bool ListPane::create(CWnd& parent, int id) {
    if (!m_list.create(parent, id, m_title)) return false;
    m_list.showOrder(m_table.sortColumn(), m_table.isAscending());
    return true;
}

const Row* ListPane::chosen() const {
    const int row = m_list.focusedRow();
    return row >= 0 && row < m_table.count() ? &m_table.at(row) : nullptr;
}

template <class Change>
void ListPane::change(Change change) {
    const Row* const before = chosen();
    const bool isChosen = before != nullptr;
    const std::wstring key = isChosen ? before->key : std::wstring();
    change();
    m_list.setCount(m_table.count());
    m_list.focusRow(isChosen ? m_table.find(key) : -1);
    m_list.setTitle(words::counted(m_title, m_table.count(), m_table.total()));
}

void ListPane::setRows(const std::vector<Row>& rows) {
    change([&] { m_table.setRows(rows); });
}

void ListPane::setFilter(const std::wstring& text) {
    change([&] { m_table.setFilter(text); });
}

void ListPane::onNotify(NMHDR& header) {
    m_list.onNotify(header);
    if (header.code != LVN_COLUMNCLICK) return;
    const int column = reinterpret_cast<const NMLISTVIEW&>(header).iSubItem;
    change([&] { m_table.sortBy(column); });
    m_list.showOrder(m_table.sortColumn(), m_table.isAscending());
}

}  // namespace apps::monitor
