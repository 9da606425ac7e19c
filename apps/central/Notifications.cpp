#include "apps/central/Notifications.h"

namespace {

NotificationBytes bytesOf(NySeMemFile& message) {
    const size_t length = static_cast<size_t>(message.getLength());
    return std::make_shared<const std::string>(reinterpret_cast<char*>(message.getBuffer()),
                                               length);
}

}  // namespace

NotificationBytes makeNotification(Notification number, const CObject& object) {
    return makeNotification(number, archived(object));
}

NotificationBytes makeNotification(Notification number, const std::string& object) {
    NySeMemFile message;
    message.startWriteAction(number, NySe::schema2015);
    message.getArchive()->Write(object.data(), static_cast<int>(object.size()));
    message.stopWriting();
    return bytesOf(message);
}

NotificationBytes makeProbe() {
    NySeMemFile message;
    message.writeAction(NySe::actionIsAlive, NySe::schema2015);
    return bytesOf(message);
}

std::string archived(const CObject& object) {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeObject(object);
    message.stopWriting();
    const size_t length = static_cast<size_t>(message.getLength()) - NySe::kLengthBytes;
    return std::string(reinterpret_cast<char*>(message.getBuffer()) + NySe::kLengthBytes, length);
}

std::string notificationCount(size_t count) {
    return std::to_string(count) + (count == 1 ? " notification" : " notifications");
}
