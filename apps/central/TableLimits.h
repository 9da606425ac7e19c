#pragma once

#include <cstddef>

// The clients of a server at most. Together with the limits below it bounds what the server keeps.
inline constexpr int kMostSessions = 1'000;

// What the server keeps for one client, and for all of them where it says so. A request beyond a
// limit is refused with its ordinary failure answer; docs/central-server.md says what each limit
// stops. Together they must stay within the queue of a listener (PushLimits), so that no listener
// that reads loses anything because one client leaves.
struct TableLimits {
    std::size_t portsPerSession = 16;
    std::size_t locksPerSession = 2'000;  // different ones
    std::size_t grantsPerSession = 16;    // of one lock
    std::size_t grantsPerLock = 1'000;    // to all sessions
    std::size_t opensPerSession = 500;    // that are not closed yet, of whichever connections
    std::size_t locksInAll = 100'000;     // different ones, of all sessions
    std::size_t longestText = 1'024;  // in characters of UTF-16, of a name or any text of a user

    // In bytes. Each is the most that one request of that kind hands to a listener.
    constexpr std::size_t longestConnectionNotification() const {
        return kFrameAndDescriptions + kBytesPerCharacter * longestText;
    }
    constexpr std::size_t longestLockNotification() const {
        return longestConnectionNotification() + kBytesPerGrant * grantsPerLock;
    }
    constexpr std::size_t longestUserNotification() const {
        return kFrameAndDescriptions + kTextsPerUser * kBytesPerCharacter * longestText;
    }

    // What a listener is told when one client leaves with all that it may have.
    constexpr std::size_t notificationsOfLeaving() const {
        return locksPerSession + opensPerSession + 1;
    }
    constexpr std::size_t bytesOfLeaving() const {
        return locksPerSession * longestLockNotification() +
               opensPerSession * longestConnectionNotification() + longestUserNotification();
    }

    // In bytes: the tables that a client may ask for, when kMostSessions clients have all that they
    // may.
    constexpr std::size_t bytesOfLocks() const {
        return locksInAll * longestConnectionNotification() +
               kMostSessions * locksPerSession * grantsPerSession * kBytesPerGrant;
    }
    constexpr std::size_t bytesOfConnections() const {
        return kMostSessions * opensPerSession * longestConnectionNotification();
    }
    constexpr std::size_t bytesOfUsers() const { return kMostSessions * longestUserNotification(); }

  private:
    static constexpr std::size_t kFrameAndDescriptions = 128;  // and the numbers beside the texts
    static constexpr std::size_t kBytesPerCharacter = 2;
    static constexpr std::size_t kBytesPerGrant = 2 + 4 + 4;  // tag, session, mode
    static constexpr std::size_t kTextsPerUser = 3;
};
