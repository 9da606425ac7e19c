// What the server tells the users' listeners, and how it travels:
//
//   offset  bytes  content
//   0       4      notification number, signed
//   4       4      body length N, signed
//   8       N      one object in class-tagged form
//
// All integers are little-endian. docs/central-server.md says who gets which and when.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/framing/NySeMemFile.h"

// The number of one, notifyLockGranted and so on.
using Notification = NySe::ActionType;
using enum NySe::ActionType;

// One notification's bytes, which all its receivers share.
using NotificationBytes = std::shared_ptr<const std::string>;

NotificationBytes makeNotification(Notification number, const CObject& object);
// The same from the bytes of an object.
NotificationBytes makeNotification(Notification number, const std::string& object);

// What asks a listener for a sign of life: action 1 without a body. It answers with the four bytes
// of NySe::kAliveAnswer.
NotificationBytes makeProbe();

// The object in class-tagged form. Readers take the schema from the object's own description, so
// that it is always written under the current one.
std::string archived(const CObject& object);

// The number with its noun, for people.
std::string notificationCount(size_t count);

// Where notifications go. No call waits for a listener, so that each may be made under a lock.
class Notifier {
  public:
    virtual ~Notifier() = default;

    // From now on the session's notifications go to `address`. What is queued for another address
    // is dropped; a listener that was given up gets a new chance.
    virtual void listen(LONG session, const sockaddr_in& address) = 0;
    // The session's listener is not wanted any more; there may be none.
    virtual void forget(LONG session) = 0;
    // Sessions without a listener are passed over.
    virtual void notify(const std::vector<LONG>& sessions, NotificationBytes notification) = 0;
};
