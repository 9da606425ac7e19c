#include "NyServer/framing/NySeReply.h"

CObject* NySe::readReplyObject(CMemFile& reply, const CRuntimeClass* expected) {
    std::unique_ptr<CObject> object;
    const bool read = succeeds([&] {
        CArchive archive(&reply, CArchive::load);
        // Another class is refused before an object of it is made.
        object.reset(archive.ReadObject(expected));
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
