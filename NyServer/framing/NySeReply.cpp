#include "NyServer/framing/NySeReply.h"

#include "QoArraySerial2.h"

namespace {

// The class of the record or table that comes next. The class library's own arrays can be archived
// too, but do not own what they hold: nobody would delete it.
const CRuntimeClass* nextRecordClass(CMemFile& reply) {
    const ULONGLONG start = reply.GetPosition();
    CArchive archive(&reply, CArchive::load);
    const CRuntimeClass* next = archive.ReadClass();
    archive.Close();
    reply.Seek(static_cast<LONGLONG>(start), CFile::begin);
    const bool isRecord = next->IsDerivedFrom(RUNTIME_CLASS(QoObject2)) ||
                          next->IsDerivedFrom(RUNTIME_CLASS(QoArraySerial2));
    if (!isRecord) AfxThrowArchiveException(CArchiveException::badClass);
    return next;
}

}  // namespace

CObject* NySe::readReplyObject(CMemFile& reply, const CRuntimeClass* expected) {
    std::unique_ptr<CObject> object;
    const bool read = succeeds([&] {
        const CRuntimeClass* const wanted = expected ? expected : nextRecordClass(reply);
        CArchive archive(&reply, CArchive::load);
        // Another class is refused before an object of it is made.
        object.reset(archive.ReadObject(wanted));
        archive.Close();
    });
    return read ? object.release() : nullptr;
}

bool NySe::readReplyString(NySeMemFile& reply, CString& text) {
    const bool read = succeeds([&] {
        reply.startReading();
        *reply.getArchive() >> text;
    });
    reply.stopReading();
    return read;
}
