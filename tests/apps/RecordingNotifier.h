// Keeps what the tables tell, taken apart.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <new>

#include "apps/central/Notifications.h"
#include "NyServer/framing/NySeReply.h"

class RecordingNotifier : public Notifier {
  public:
    struct Told {
        LONG number;
        std::vector<LONG> sessions;
        std::string body;

        template <class Record>
        std::shared_ptr<Record> object() const {
            CMemFile file(reinterpret_cast<BYTE*>(const_cast<char*>(body.data())),
                          static_cast<UINT>(body.size()));
            return std::shared_ptr<Record>(
                static_cast<Record*>(NySe::readReplyObject(file, RUNTIME_CLASS(Record))));
        }
    };

    void listen(LONG session, const sockaddr_in& address) override { listeners[session] = address; }
    void forget(LONG session) override { listeners.erase(session); }
    void notify(const std::vector<LONG>& sessions, NotificationBytes notification) override {
        if (isFailing) throw std::bad_alloc();
        const std::string& bytes = *notification;
        LONG header[2] = {-1, -1};
        ASSERT_LE(sizeof header, bytes.size());
        std::memcpy(header, bytes.data(), sizeof header);
        ASSERT_EQ(static_cast<LONG>(bytes.size() - sizeof header), header[1]);
        told.push_back({header[0], sessions, bytes.substr(sizeof header)});
    }

    std::vector<LONG> numbers() const {
        std::vector<LONG> all;
        for (const Told& one : told) all.push_back(one.number);
        return all;
    }

    std::map<LONG, sockaddr_in> listeners;
    std::vector<Told> told;
    bool isFailing = false;  // as when out of memory
};
