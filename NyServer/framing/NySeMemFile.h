// NySeMemFile: the format of every message but the two bare requests.
//
//   offset  bytes  content
//   0       4      action, signed        only when the message was started with an action
//   4 (0)   4      payload length N      signed
//   8 (4)   N      payload: an archive
//
// All integers are little-endian. The schema number is not among the bytes: both sides agree on it
// beforehand, and the records find it as their archive's object schema.
#pragma once

#include <afx.h>

#include <optional>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/NyServerApi.h"

class NySeUser;

// Owns its archive; at most one is open at a time. One object may be used by one thread at a time.
class NYSERVER_API NySeMemFile : public CMemFile {
  public:
    NySeMemFile();
    // Closes the open archive, which flushes a storing one.
    ~NySeMemFile() noexcept override;

    // Start a message without or with an action: discard what was written before and open a storing
    // archive after the header, under `schema`.
    void startWrite(NySe::SchemaType schema);
    void startWriteAction(NySe::ActionType action, NySe::SchemaType schema);
    // Closes the archive, fills in the header and seeks to the start. For a message started with
    // noAction, leaves the header unwritten and the position at the end. Does nothing if no archive
    // is open.
    void stopWriting();
    // Writes a complete message without a payload.
    void writeAction(NySe::ActionType action, NySe::SchemaType schema);

    // Opens a loading archive at the current position.
    void startReading();
    void stopReading();

    // Write to the open archive; do nothing if none is open or it is loading.
    void writeInteger(LONG value);
    void writeString(const CString& text);
    // Writes the object in class-tagged form. An object that cannot be archived is omitted or
    // truncated.
    void writeObject(const CObject& object);
    // Writes the user in class-tagged form under the user's own schema, with a complete class
    // description even if the message already has one.
    void writeObject(const NySeUser& user);
    // Moves the contents of `source` into this file, bypassing the archive; `source` is empty
    // afterwards. Always returns true. REQUIRES: the block of `source` was allocated by malloc, as
    // CMemFile does; the archive has nothing unflushed, as right after startWriteAction.
    bool writeMemfile(CMemFile& source);

    // Returns the getLength() bytes, which this file owns and which are valid until it is detached,
    // attached or destroyed; null if it never held any. Afterwards the position is 0 and the file
    // cannot grow: writing beyond its capacity throws CMemoryException. REQUIRES: no archive is
    // open.
    BYTE* getBuffer();
    // Returns the length in bytes.
    NYSERVER_INLINE ULONGLONG getLength() const { return GetLength(); }
    NYSERVER_INLINE CMemFile& getMemFile() { return *this; }
    // Returns the open archive, or null.
    NYSERVER_INLINE CArchive* getArchive() { return m_archive ? &*m_archive : nullptr; }

    NYSERVER_INLINE const NySe::ActionType& getActionType() const { return m_actionType; }
    NYSERVER_INLINE const NySe::SchemaType& getSchemaType() const { return m_schemaType; }
    // These two do not touch the bytes or an open archive.
    NYSERVER_INLINE void setActionType(const NySe::ActionType& action) { m_actionType = action; }
    NYSERVER_INLINE void setSchemaType(const NySe::SchemaType& schema) { m_schemaType = schema; }

  private:
    void openForWriting(unsigned int headerBytes, NySe::SchemaType schema);
    void closeArchive();
    bool isWriting() const { return m_archive && m_archive->IsStoring(); }
    void writeHeader(unsigned int headerBytes);

    NySe::ActionType m_actionType = NySe::noAction;
    NySe::SchemaType m_schemaType = NySe::noSchema;
    std::optional<CArchive> m_archive;  // in place: opening a message allocates nothing
    bool m_actionMode = false;
};
