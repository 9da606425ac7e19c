// LogPane: what has happened, the newest below.
#pragma once

#include "apps/monitor/ListControl.h"
#include "apps/monitor/Log.h"

// It belongs to the thread that makes its windows.
class LogPane {
  public:
    // False when the system makes no windows.
    bool create(CWnd& parent, int id);
    void setFont(HFONT font, int dpi);
    void place(const RECT& title, const RECT& list);
    HWND listWindow() const { return m_list.window(); }

    // Is shown at the next update.
    void add(LogLine line);
    void update();
    // Handles what the list tells its parent.
    void onNotify(NMHDR& notice);

  private:
    Log m_log;
    bool m_isBehind = false;
    CWnd m_label;
    ListControl m_list;
};
