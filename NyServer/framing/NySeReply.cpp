#include "NyServer/framing/NySeReply.h"

#include <afxcoll.h>

#include <memory>

#include "NyServer/detail/ExceptionBoundary.h"

namespace {

// Returns the class of the next object. Throws CArchiveException for the class library's own array
// of objects: it does not own its elements, which would leak.
const CRuntimeClass* nextClass(CMemFile& reply) {
    const ULONGLONG start = reply.GetPosition();
    CArchive archive(&reply, CArchive::load);
    const CRuntimeClass* next = archive.ReadClass();
    archive.Close();
    reply.Seek(static_cast<LONGLONG>(start), CFile::begin);
    if (next == RUNTIME_CLASS(CObArray)) AfxThrowArchiveException(CArchiveException::badClass);
    return next;
}

}  // namespace

CObject* NySe::readReplyObject(CMemFile& reply, const CRuntimeClass* expected) {
    std::unique_ptr<CObject> object;
    const bool read = succeeds([&] {
        const CRuntimeClass* const wanted = expected ? expected : nextClass(reply);
        CArchive archive(&reply, CArchive::load);
        // An object of another class is refused before it is created.
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
