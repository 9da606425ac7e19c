// LogPane: what has happened, the newest below.
#pragma once

#include "apps/monitor/ListControl.h"
#include "apps/monitor/Log.h"

namespace apps::monitor {

// It belongs to the thread that makes its windows.
class LogPane {
  public:
    // False when the system makes no windows.
    bool create(CWnd& parent, int id) { return m_list.create(parent, id, L"What happens"); }
    ListControl& control() { return m_list; }

    // Is shown at the next update.
    void add(LogLine line);
    void update();

  private:
    static std::vector<Column> columns();
    const std::wstring& textOf(int row, int column) const;

    Log m_log;
    bool m_isBehind = false;
    ListControl m_list{columns(), std::bind_front(&LogPane::textOf, this)};
};

}  // namespace apps::monitor
