#include "apps/central/Reply.h"

#include "NyServer/framing/NySeMemFile.h"

void Reply::text(const CString& text) {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeString(text);
    message.stopWriting();
    m_bytes.append(reinterpret_cast<const char*>(message.getBuffer()),
                   static_cast<size_t>(message.getLength()));
}
