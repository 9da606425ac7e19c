#include "NyServer/framing/NySeMemFile.h"

#include <array>
#include <cstdlib>
#include <memory>

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/records/NySeUser.h"

namespace {

constexpr UINT kGrowBytes = 1024;

struct FreeBlock {
    void operator()(BYTE* block) const { std::free(block); }
};

UINT versionable(UINT schema) {
    return schema | VERSIONABLE_SCHEMA;
}

}  // namespace

NySeMemFile::NySeMemFile() : CMemFile(kGrowBytes) {}

NySeMemFile::~NySeMemFile() noexcept {
    closeArchive();
}

// Closing a loading archive returns its unread bytes to the file, which throws if the file has
// changed meanwhile. Neither a destructor nor the end of reading may throw.
void NySeMemFile::closeArchive() {
    if (m_archive) NySe::dropArchiveErrors([this] { m_archive->Close(); });
    m_archive.reset();
}

void NySeMemFile::openForWriting(unsigned int headerBytes, NySe::SchemaType schema) {
    closeArchive();
    m_schemaType = schema;
    SetLength(headerBytes);
    Seek(headerBytes, begin);
    m_archive.emplace(this, CArchive::store);
    m_archive->SetObjectSchema(versionable(schema));
}

void NySeMemFile::startWrite(NySe::SchemaType schema) {
    m_actionMode = false;
    openForWriting(NySe::kLengthBytes, schema);
}

void NySeMemFile::startWriteAction(NySe::ActionType action, NySe::SchemaType schema) {
    m_actionType = action;
    m_actionMode = true;
    openForWriting(NySe::kActionHeaderBytes, schema);
}

void NySeMemFile::stopWriting() {
    if (!m_archive) return;
    closeArchive();
    if (!m_actionMode) {
        writeHeader(NySe::kLengthBytes);
    } else if (m_actionType != NySe::noAction) {
        writeHeader(NySe::kActionHeaderBytes);
    }
}

void NySeMemFile::writeHeader(unsigned int headerBytes) {
    const std::array<LONG, 2> header = {m_actionType, static_cast<LONG>(GetLength() - headerBytes)};
    SeekToBegin();
    Write(header.data() + (m_actionMode ? 0 : 1), headerBytes);
    SeekToBegin();
}

void NySeMemFile::writeAction(NySe::ActionType action, NySe::SchemaType schema) {
    startWriteAction(action, schema);
    stopWriting();
}

void NySeMemFile::startReading() {
    closeArchive();
    m_archive.emplace(this, CArchive::load);
}

void NySeMemFile::stopReading() {
    closeArchive();
}

void NySeMemFile::writeInteger(LONG value) {
    if (isWriting()) *m_archive << value;
}

void NySeMemFile::writeString(const CString& text) {
    if (isWriting()) *m_archive << text;
}

void NySeMemFile::writeObject(const CObject& object) {
    if (isWriting()) NySe::dropArchiveErrors([&] { m_archive->WriteObject(&object); });
}

void NySeMemFile::writeObject(const NySeUser& user) {
    if (!isWriting()) return;
    // A separate archive, so that the class description is always complete.
    CMemFile scratch(kGrowBytes);
    NySe::dropArchiveErrors([&] {
        CArchive archive(&scratch, CArchive::store);
        archive.SetObjectSchema(versionable(static_cast<UINT>(user.getSchema())));
        archive.WriteObject(&user);
    });
    const UINT length = static_cast<UINT>(scratch.GetLength());
    const std::unique_ptr<BYTE, FreeBlock> bytes(scratch.Detach());
    if (length > 0) m_archive->Write(bytes.get(), static_cast<int>(length));
}

bool NySeMemFile::writeMemfile(CMemFile& source) {
    const UINT length = static_cast<UINT>(source.GetLength());
    const std::unique_ptr<BYTE, FreeBlock> bytes(source.Detach());
    Write(bytes.get(), length);
    return true;
}

BYTE* NySeMemFile::getBuffer() {
    const UINT length = static_cast<UINT>(GetLength());
    BYTE* bytes = Detach();
    Attach(bytes, length);
    m_bAutoDelete = TRUE;
    return bytes;
}
