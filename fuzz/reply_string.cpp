// The string reader: a text that writes and reads the same, or none.
#include "fuzz/Drip.h"
#include "fuzz/HeldMemory.h"
#include "fuzz/Require.h"
#include "NyServer/framing/NySeReply.h"
#include "tests/support/ArchiveBytes.h"

static bool readText(const Drip& drip, CString& text) {
    NySeMemFile reply;
    return NySe::receiveMessage(reply, drip) && NySe::readReplyString(reply, text);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    CString text = _T("before");
    const HeldMemory held;
    const bool read = readText(Drip(bytes, size), text);
    held.requireAtMost(8 * (size + NySe::kReceiveStep));
    require(read || text == CString("before"), "a text that does not come changes nothing");
    NySeMemFile again;
    again.startWrite(NySe::schema2015);
    again.writeString(text);
    again.stopWriting();
    again.Seek(NySe::kLengthBytes, CFile::begin);
    CString same;
    require(NySe::readReplyString(again, same) && same == text, "it writes and reads the same");
    return 0;
}
