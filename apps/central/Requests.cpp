#include "apps/central/Requests.h"

namespace {

const requests::Row* findRow(LONG action) {
    using namespace requests;
    for (const auto* family : {&kSessionRequests, &kLockRequests, &kConnectionRequests,
                               &kUserRequests, &kServerRequests}) {
        for (const Row& row : *family)
            if (row.action == action) return &row;
    }
    return nullptr;
}

}  // namespace

void answerRequest(LONG action, const Request& request) {
    const requests::Row* const row = findRow(action);
    if (row == nullptr || row->handler(request)) return;
    request.server.events().add("session " + std::to_string(request.session) +
                                ": the payload of action " + std::to_string(action) +
                                " makes no sense");
    row->failure(request.reply);
}

std::string requests::restOf(CMemFile& payload) {
    std::string rest(static_cast<size_t>(payload.GetLength() - payload.GetPosition()), '\0');
    payload.Read(rest.data(), static_cast<UINT>(rest.size()));
    return rest;
}
