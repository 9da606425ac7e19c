// NySeConnectionArray: the table of open connections, which assigns their ids.
#pragma once

#include "NyServer/records/NySeConnection.h"
#include "NyServer/records/QoArraySimple.h"

// Sorted by id. Ids count up from 0; those of closed connections are reused, smallest first.
// Connection strings are the same when they differ only in letter case. Finders return borrowed
// pointers. Any number of threads may call the const operations of one table at a time, while
// nobody changes it or its connections.
class NYSERVER_API NySeConnectionArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeConnectionArray, NySeConnection)

  public:
    // Increments the open count of the connection, or adds it with a new id and a count of 1.
    // Returns its id. Throws, with nothing changed, when out of memory.
    LONG openConnection(const CString& connection);

    // Decrements the open count. Returns true if that was the last open: the connection is deleted
    // and its id is free. Returns false if it is still open or no connection has that id. Throws,
    // with nothing changed, when out of memory.
    bool closeConnection(LONG id);

    // Return the first connection with that string or id; null if there is none.
    NySeConnection* findByConnection(const CString& connection) const;
    NySeConnection* findById(LONG id) const;

    // Return its index; -1 if there is none.
    INT_PTR lookForConnection(const CString& connection) const;
    INT_PTR lookForId(LONG id) const;

  private:
    LONG nextId() const;
    void takeId();
    void forgetIds();

    // Ascending. A loaded table may contain an id twice. Copied explicitly: the class library's
    // arrays have no copy constructor.
    struct FreeIds : NySe::QoArraySimple<LONG> {
        FreeIds() { setAllowDuplicates(1); }
        FreeIds(const FreeIds& other) : FreeIds() { Copy(other); }
        FreeIds& operator=(const FreeIds& other) {
            if (this != &other) Copy(other);
            return *this;
        }
    };

    LONG m_lastId = -1;  // the highest id assigned so far
    FreeIds m_freeIds;
};
