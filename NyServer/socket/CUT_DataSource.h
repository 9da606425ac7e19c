#pragma once

#include "NyServer/NyServerApi.h"

// How a data source is opened. Hosts pass the numbers: do not change them. Any int is a value, so
// that other numbers can be refused.
enum OpenMsgType : int {
    OM_READ = 0,    // an existing store, for reading
    OM_WRITE = 1,   // created or emptied, for reading and writing
    OM_APPEND = 2,  // opened or created, for reading and writing; every write goes to the end
};

// A store of bytes that socket transfers read from or write to, and that can be searched. The
// library has one implementation, CUT_FileDataSource; hosts may derive their own.
//
// One thread at a time uses an object: nothing in it is locked. A transfer borrows the source for
// the length of the call, opens it and closes it; the caller keeps owning it.
//
// The order of the virtual functions is part of the binary interface.
class NYSERVER_API CUT_DataSource {
  public:
    virtual ~CUT_DataSource();

    // A new data source of the same kind on the same store, which the caller deletes; null if it
    // cannot be made.
    virtual CUT_DataSource* Clone() = 0;

    // 0 on success, -1 on failure.
    virtual int Open(OpenMsgType type) = 0;

    // Always 0.
    virtual int Close() = 0;

    // Stores the next line with its end and a terminator in `line`, which has room for `maxLen`
    // bytes. The length of the text stored: 0 at the end of the store, -1 for a null `line`.
    virtual int ReadLine(char* line, unsigned int maxLen) = 0;

    // Writes the text and, unless it has one, a line end. The bytes of the text written, or -1 for
    // a null `line`.
    virtual int WriteLine(const char* line) = 0;

    // The bytes read (0 at the end of the store), or -1 on failure.
    virtual int Read(char* buffer, unsigned int count) = 0;

    // The bytes written, or -1 on failure.
    virtual int Write(const char* buffer, unsigned int count) = 0;

    // Moves to `offset` bytes from `origin`: FILE_BEGIN (0), FILE_CURRENT (1) or FILE_END (2). The
    // new position from the beginning, or -1 on failure.
    virtual long Seek(long offset, int origin) = 0;

    // The position of the first occurrence of `text` at or behind `start`, or -1: not found, `text`
    // null, empty or 4096 bytes or longer, or a failed seek or read. `caseSensitive` 0 compares
    // without regard to case. A `maxSearch` above 0 ends the search once it has gone further than
    // that many bytes from `start`; one that is above 0 and shorter than `text` fails. The source
    // must be open; its position afterwards is unspecified.
    virtual long Find(const char* text, long start, int caseSensitive, long maxSearch);
};
