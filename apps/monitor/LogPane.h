// LogPane: the list of events, newest last.
#pragma once

#include "apps/monitor/ListControl.h"
#include "apps/monitor/Log.h"

namespace apps::monitor {

// It belongs to the thread that creates its windows.
class LogPane {
  public:
    // Returns false if the windows cannot be created.
    bool create(CWnd& parent, int id) { return m_list.create(parent, id, L"Log"); }
    ListControl& control() { return m_list; }

    // Adds a line, which is shown at the next update.
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
