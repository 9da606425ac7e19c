#include "apps/monitor/ListControl.h"

#include <numeric>
#include <utility>

#include "apps/monitor/Layout.h"

namespace apps::monitor {

namespace {

constexpr DWORD kViewStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA |
                             LVS_SINGLESEL | LVS_SHOWSELALWAYS;
constexpr DWORD kListStyle = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP;
constexpr UINT kChosen = LVIS_FOCUSED | LVIS_SELECTED;

}  // namespace

bool ListControl::create(CWnd& parent, int id, const std::wstring& title) {
    return createTitle(parent, title) && createList(parent, id);
}

bool ListControl::createTitle(CWnd& parent, const std::wstring& title) {
    return m_title.CreateEx(0, WC_STATICW, title.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0,
                            0, 0, parent.GetSafeHwnd(), nullptr);
}

bool ListControl::createList(CWnd& parent, int id) {
    if (!m_list.CreateEx(WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"", kViewStyle, 0, 0, 0, 0,
                         parent.GetSafeHwnd(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(id))))
        return false;
    ListView_SetExtendedListViewStyle(window(), kListStyle);
    for (int i = 0; i < static_cast<int>(m_columns.size()); ++i) {
        const Column& column = m_columns[static_cast<size_t>(i)];
        LVCOLUMNW made{};
        made.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        made.fmt = column.isNumber ? LVCFMT_RIGHT : LVCFMT_LEFT;
        made.cx = column.width;
        made.pszText = const_cast<wchar_t*>(column.title);
        ListView_InsertColumn(window(), i, &made);
    }
    return true;
}

void ListControl::setFont(HFONT font, int dpi) {
    m_dpi = dpi;
    ::SendMessageW(m_title.GetSafeHwnd(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    ::SendMessageW(window(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    fitColumns();
}

void ListControl::place(const RECT& title, const RECT& list) {
    placeWindow(m_title, title);
    placeWindow(m_list, list);
    fitColumns();
}

void ListControl::setTitle(const std::wstring& title) {
    ::SetWindowTextW(m_title.GetSafeHwnd(), title.c_str());
}

// The columns share the width in proportion to their own widths, which are the minimum. Space for a
// scroll bar is always reserved, so that they keep their widths, or those set by the user, when the
// rows change.
void ListControl::fitColumns() {
    RECT client{};
    ::GetClientRect(window(), &client);
    if ((::GetWindowLongPtrW(window(), GWL_STYLE) & WS_VSCROLL) == 0)
        client.right -= ::GetSystemMetricsForDpi(SM_CXVSCROLL, static_cast<UINT>(m_dpi));
    const int shares =
        std::accumulate(m_columns.begin(), m_columns.end(), 0,
                        [](int sum, const Column& column) { return sum + column.width; });
    const int width = std::max(static_cast<int>(client.right), scaled(shares, m_dpi));
    int left = 0;
    int share = 0;
    for (int i = 0; i < static_cast<int>(m_columns.size()); ++i) {
        share += m_columns[static_cast<size_t>(i)].width;
        const int right = ::MulDiv(width, share, shares);
        ListView_SetColumnWidth(window(), i, right - left);
        left = right;
    }
}

void ListControl::setCount(int count) {
    ListView_SetItemCountEx(window(), count, LVSICF_NOSCROLL);
    ::InvalidateRect(window(), nullptr, FALSE);
}

bool ListControl::isAtEnd() const {
    return ListView_GetTopIndex(window()) + ListView_GetCountPerPage(window()) >=
           ListView_GetItemCount(window());
}

void ListControl::scrollToEnd() {
    if (const int count = ListView_GetItemCount(window()); count > 0)
        ListView_EnsureVisible(window(), count - 1, FALSE);
}

int ListControl::focusedRow() const {
    return ListView_GetNextItem(window(), -1, LVNI_FOCUSED);
}

void ListControl::focusRow(int row) {
    constexpr int kAll = -1;
    if (row >= 0) {
        ListView_SetItemState(window(), row, kChosen, kChosen);
    } else {
        ListView_SetItemState(window(), kAll, 0, kChosen);
    }
}

void ListControl::showOrder(int column, bool isAscending) {
    const HWND header = ListView_GetHeader(window());
    for (int i = 0; i < static_cast<int>(m_columns.size()); ++i) {
        HDITEMW item{};
        item.mask = HDI_FORMAT;
        Header_GetItem(header, i, &item);
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (i == column) item.fmt |= isAscending ? HDF_SORTUP : HDF_SORTDOWN;
        Header_SetItem(header, i, &item);
    }
}

void ListControl::onNotify(NMHDR& header) const {
    if (header.code != LVN_GETDISPINFOW) return;
    LVITEMW& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
    if ((item.mask & LVIF_TEXT) == 0) return;
    item.pszText = const_cast<wchar_t*>(m_textOf(item.iItem, item.iSubItem).c_str());
}

}  // namespace apps::monitor
