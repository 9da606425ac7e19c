#include "apps/central/Notifications.h"

NotificationBytes makeNotification(Notification number, const CObject& object) {
    return makeNotification(number, archived(object));
}

NotificationBytes makeNotification(Notification number, const std::string& object) {
    NySeMemFile message;
    message.startWriteAction(static_cast<NySe::ActionType>(number), NySe::schema2015);
    message.getArchive()->Write(object.data(), static_cast<int>(object.size()));
    message.stopWriting();
    const size_t length = static_cast<size_t>(message.getLength());
    return std::make_shared<const std::string>(reinterpret_cast<char*>(message.getBuffer()),
                                               length);
}

std::string archived(const CObject& object) {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeObject(object);
    message.stopWriting();
    const size_t length = static_cast<size_t>(message.getLength()) - NySe::kLengthBytes;
    return std::string(reinterpret_cast<char*>(message.getBuffer()) + NySe::kLengthBytes, length);
}
