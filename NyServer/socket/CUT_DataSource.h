#pragma once

#include "NyServer/NyServerApi.h"

// How a data source is opened. Hosts pass the numbers: do not change them. The underlying type is
// given so that other numbers can be refused.
enum OpenMsgType : int {
    OM_READ = 0,    // an existing store, for reading
    OM_WRITE = 1,   // created or emptied, for reading and writing
    OM_APPEND = 2,  // opened or created, for reading and writing; each write appends
};

// A store of bytes that socket transfers read from and write to, and that can be searched. The
// library has one implementation, CUT_FileDataSource; hosts may derive their own.
//
// Threads: one thread at a time may use an object; nothing in it is locked. Ownership: the caller
// owns the source. A transfer opens it, uses it during the call only, and closes it.
//
// The order of the virtual functions is part of the binary interface: do not change it.
class NYSERVER_API CUT_DataSource {
  public:
    virtual ~CUT_DataSource();

    // Returns a new data source of the same class on the same store, which the caller deletes; null
    // on failure.
    virtual CUT_DataSource* Clone() = 0;

    // Returns 0, or -1 on failure.
    virtual int Open(OpenMsgType type) = 0;

    // Always returns 0.
    virtual int Close() = 0;

    // Stores the next line, with its line end and a terminator, in `line`, which has `maxLen`
    // bytes. Returns the length of the stored text; 0 at the end of the store; -1 if `line` is
    // null.
    virtual int ReadLine(char* line, unsigned int maxLen) = 0;

    // Writes the text and, unless it ends with one, a line end. Returns the number of bytes of the
    // text written, or -1 if `line` is null.
    virtual int WriteLine(const char* line) = 0;

    // Returns the number of bytes read (0 at the end of the store), or -1 on failure.
    virtual int Read(char* buffer, unsigned int count) = 0;

    // Returns the number of bytes written, or -1 on failure.
    virtual int Write(const char* buffer, unsigned int count) = 0;

    // Moves to `offset` bytes from `origin`: FILE_BEGIN (0), FILE_CURRENT (1) or FILE_END (2).
    // Returns the new position from the beginning, or -1 on failure.
    virtual long Seek(long offset, int origin) = 0;

    // Returns the position of the first occurrence of `text` at or after `start`. Returns -1 if
    // there is none, `text` is null, empty or longer than 4095 bytes, or a seek or read fails.
    // `caseSensitive` 0 ignores case. With `maxSearch` above 0 the search ends once it is more than
    // that many bytes past `start`, and a `maxSearch` shorter than `text` finds nothing. The
    // position afterwards is unspecified. REQUIRES: the source is open.
    virtual long Find(const char* text, long start, int caseSensitive, long maxSearch);
};
