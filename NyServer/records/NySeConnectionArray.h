// NySeConnectionArray: the table of open connections, which gives them their ids.
#pragma once

#include "NyServer/records/NySeConnection.h"
#include "NyServer/records/QoArraySimple.h"

// Sorted by id. Ids count up from 0; those of closed connections are given again, smallest first.
// Connection strings are the same when they differ only in letter case. Finders lend what they
// find. Any number of threads may call the const operations of one table at a time, while nobody
// changes it or its connections.
class NYSERVER_API NySeConnectionArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeConnectionArray, NySeConnection)

  public:
    // Opens the connection once more, or gives it an id and enters it with a count of 1. Returns
    // its id. Throws, with nothing changed, when there is no memory.
    LONG openConnection(const CString& connection);

    // Closes the connection once. True when that was the last time: it is deleted and its id free
    // again. False when it is still open, or when no connection has that id. Throws, with nothing
    // changed, when there is no memory to keep the id in.
    bool closeConnection(LONG id);

    // The first connection of that string or id; null when there is none.
    NySeConnection* findByConnection(const CString& connection) const;
    NySeConnection* findById(LONG id) const;

    // Its index; -1 when there is none.
    INT_PTR lookForConnection(const CString& connection) const;
    INT_PTR lookForId(LONG id) const;

  private:
    LONG nextId() const;
    void takeId();
    void forgetIds();

    // Ascending. A table that was loaded may name an id twice. The class library's arrays copy
    // their elements, but are not copyable.
    struct FreeIds : NySe::QoArraySimple<LONG> {
        FreeIds() { setAllowDuplicates(1); }
        FreeIds(const FreeIds& other) : FreeIds() { Copy(other); }
        FreeIds& operator=(const FreeIds& other) {
            if (this != &other) Copy(other);
            return *this;
        }
    };

    LONG m_lastId = -1;  // the highest id given by counting
    FreeIds m_freeIds;
};
