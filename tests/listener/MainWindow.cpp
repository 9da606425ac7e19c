#include "tests/listener/MainWindow.h"

#include <cstring>

int PostedMessage::action() const {
    int action = -1;
    if (bytes.size() >= sizeof action) std::memcpy(&action, bytes.data(), sizeof action);
    return action;
}

std::string PostedMessage::payload() const {
    return bytes.size() >= 8 ? bytes.substr(8) : std::string();
}

std::vector<PostedMessage> MainWindow::awaitMessages(size_t wanted) const {
    for (size_t seen = 0;
         count() < wanted && eventually([&] { return count() > seen; }, kGenerously);)
        seen = count();
    return messages();
}
