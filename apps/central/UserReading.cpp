#include "apps/central/UserReading.h"

#include "NyServer/detail/ExceptionBoundary.h"

namespace {

constexpr UINT kWithoutSoftType = NySe::kRecordSchema - 1;

// As the writing side decides it.
bool hasSoftType(const NySeUser& user) {
    return (static_cast<UINT>(user.getSchema()) & ~VERSIONABLE_SCHEMA) >= NySe::kRecordSchema;
}

void read(CArchive& archive, NySeUser& user) {
    archive.ReadClass(RUNTIME_CLASS(NySeUser));
    archive.SetObjectSchema(kWithoutSoftType);
    user.Serialize(archive);
    if (!hasSoftType(user)) return;
    LONG softType = 0;
    archive >> softType;
    user.setSoftType(softType);
}

}  // namespace

std::unique_ptr<NySeUser> readUser(CMemFile& payload) {
    auto user = std::make_unique<NySeUser>();
    const bool isRead = NySe::succeeds([&] {
        CArchive archive(&payload, CArchive::load);
        read(archive, *user);
        archive.Close();
    });
    return isRead ? std::move(user) : nullptr;
}
