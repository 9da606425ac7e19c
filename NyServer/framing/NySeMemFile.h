// NySeMemFile: the message in which every exchange travels.
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

// Owns its archive, of which at most one is open at a time. One object may be used by one thread at
// a time.
class NYSERVER_API NySeMemFile : public CMemFile {
  public:
    NySeMemFile();
    // Deletes the open archive, which flushes a storing one.
    ~NySeMemFile() noexcept override;

    // Begin a message without or with an action: what was written before is dropped, and a storing
    // archive is opened behind the header, under `schema`.
    void startWrite(NySe::SchemaType schema);
    void startWriteAction(NySe::ActionType action, NySe::SchemaType schema);
    // Closes the archive, fills the header in and goes to the start. A message started with
    // noAction keeps its header unwritten and its position at the end. Nothing happens when no
    // archive is open.
    void stopWriting();
    // A whole message without payload.
    void writeAction(NySe::ActionType action, NySe::SchemaType schema);

    // Opens a loading archive at the current position.
    void startReading();
    void stopReading();

    // Write into the open archive; nothing happens when none is open or it is loading.
    void writeInteger(LONG value);
    void writeString(const CString& text);
    // The object in class-tagged form. When it cannot be archived, the message simply lacks or
    // truncates it.
    void writeObject(const CObject& object);
    // The user in class-tagged form under the user's own schema, with a class description of its
    // own whatever the message holds already.
    void writeObject(const NySeUser& user);
    // Moves the content of `source` into this file, not through the archive; `source` is empty
    // then. Always true. REQUIRES: the block of `source` comes from malloc, as its own does; the
    // archive holds nothing unflushed, as right after startWriteAction.
    bool writeMemfile(CMemFile& source);

    // The bytes, getLength() of them, which stay this file's and live as long as it does or until
    // it is detached or attached; null when it never held any. The file then stands at its start
    // and cannot grow any more: writing past its capacity throws CMemoryException.
    // REQUIRES: no archive is open.
    BYTE* getBuffer();
    // In bytes.
    NYSERVER_INLINE ULONGLONG getLength() const { return GetLength(); }
    NYSERVER_INLINE CMemFile& getMemFile() { return *this; }
    // The open archive, or null.
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
    std::optional<CArchive> m_archive;  // in place: opening a message asks for no memory
    bool m_actionMode = false;
};
