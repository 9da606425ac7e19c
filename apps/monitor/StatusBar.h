// StatusBar: the line at the bottom of the window.
#pragma once

#include <afxwin.h>

#include <array>
#include <string>

#include "apps/monitor/MonitorListener.h"

namespace apps::monitor {

// It belongs to the thread that creates its window.
class StatusBar {
  public:
    enum Part { connection, activity, posted, flow };

    // Returns false if the window cannot be created.
    bool create(CWnd& parent, int id);
    void setFont(HFONT font, int dpi);
    // To be called when the parent's size changes.
    void fit();
    // In pixels.
    int height() const;

    void show(Part part, const std::wstring& text);
    void show(const Backlog& backlog);

  private:
    CWnd m_bar;
    int m_dpi = USER_DEFAULT_SCREEN_DPI;
    std::array<std::wstring, 4> m_texts;
};

}  // namespace apps::monitor
