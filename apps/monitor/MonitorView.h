// MonitorView: what the worker reports to the window.
#pragma once

#include <memory>

#include "apps/monitor/Log.h"
#include "apps/monitor/ServerRows.h"

namespace apps::monitor {

class ListenerReference;

struct ConnectionState {
    bool isConnected = false;
    std::wstring text;
    LONG session = 0;  // this user's, when connected
};

// All functions are called on the thread of the window.
class MonitorView {
  public:
    virtual void showState(const ConnectionState& state) = 0;
    virtual void showRows(const ServerRows& rows) = 0;
    // The activity that the worker waits for; empty if it is idle.
    virtual void showActivity(const std::wstring& what) = 0;
    virtual void addLog(const std::wstring& event, const std::wstring& content) = 0;
    // Notifications that are posted from now on come from this listener.
    virtual void setListener(const std::shared_ptr<ListenerReference>& listener) = 0;

  protected:
    ~MonitorView() = default;
};

}  // namespace apps::monitor
