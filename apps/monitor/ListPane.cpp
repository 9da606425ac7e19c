#include "apps/monitor/ListPane.h"

#include "apps/monitor/Words.h"

bool ListPane::create(CWnd& parent, int id) {
    if (!m_label.CreateEx(0, WC_STATICW, m_title.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0,
                          0, 0, parent.GetSafeHwnd(), nullptr))
        return false;
    const auto textOf = [this](int row, int column) -> const std::wstring& {
        return m_table.at(row).cells[static_cast<size_t>(column)];
    };
    if (!m_list.create(parent, id, m_table.columns(), textOf)) return false;
    m_list.showOrder(m_table.sortColumn(), m_table.isAscending());
    return true;
}

void ListPane::setFont(HFONT font, int dpi) {
    ::SendMessageW(m_label.GetSafeHwnd(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    m_list.setFont(font, dpi);
}

void ListPane::place(const RECT& title, const RECT& list) {
    ::MoveWindow(m_label.GetSafeHwnd(), title.left, title.top, title.right - title.left,
                 title.bottom - title.top, TRUE);
    m_list.place(list);
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
    const std::wstring title = words::counted(m_title, m_table.count(), m_table.total());
    ::SetWindowTextW(m_label.GetSafeHwnd(), title.c_str());
}

void ListPane::setRows(const std::vector<Row>& rows) {
    change([&] { m_table.setRows(rows); });
}

void ListPane::setFilter(const std::wstring& text) {
    change([&] { m_table.setFilter(text); });
}

void ListPane::onNotify(NMHDR& notice) {
    if (notice.code == LVN_GETDISPINFOW) m_list.answer(reinterpret_cast<NMLVDISPINFOW&>(notice));
    if (notice.code != LVN_COLUMNCLICK) return;
    const int column = reinterpret_cast<const NMLISTVIEW&>(notice).iSubItem;
    change([&] { m_table.sortBy(column); });
    m_list.showOrder(m_table.sortColumn(), m_table.isAscending());
}
