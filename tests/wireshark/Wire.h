// Bytes as they go over a connection.
#pragma once

#include <afx.h>

#include "NyServer/framing/NySeActions.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Golden.h"

template <class Value>
Bytes wireOf(Value value) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
    return Bytes(bytes, bytes + sizeof value);
}

inline Bytes message(const Bytes& payload) {
    return wireOf(static_cast<LONG>(payload.size())) + payload;
}

inline Bytes request(LONG action, const Bytes& payload = {}) {
    return wireOf(action) + message(payload);
}

inline Bytes goldenRequest(const std::string& call) {
    return golden("request-" + call).bytes;
}

// An object in class-tagged form.
inline Bytes objectBytes(const CObject& object) {
    return stored([&object](CArchive& ar) { ar.WriteObject(&object); });
}

inline const Bytes kAlive = wireOf<LONG>(NySe::kAliveAnswer);

// What a client says first.
inline Bytes hello() {
    return goldenRequest("initializeSchema");
}
