// MonitorView: what the worker tells the window.
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

// Every function is called by the window's thread.
class MonitorView {
  public:
    virtual void showState(const ConnectionState& state) = 0;
    virtual void showRows(const ServerRows& rows) = 0;
    // What the worker is waiting for; empty: for something to do.
    virtual void showActivity(const std::wstring& what) = 0;
    virtual void addLog(const std::wstring& event, const std::wstring& content) = 0;
    // What is posted from here on comes from this listener.
    virtual void setListener(const std::shared_ptr<ListenerReference>& listener) = 0;

  protected:
    ~MonitorView() = default;
};

}  // namespace apps::monitor
