#include "tests/online/System.h"

#include <gtest/gtest.h>

#include "tests/online/windows/InternetHandles.h"
#include "tests/support/MessageBoxWatch.h"

struct NoMessageBoxes::Watch : MessageBoxWatch {
    using MessageBoxWatch::MessageBoxWatch;
};

bool areAllPagesClosed() {
    return openInternetHandles().empty();
}

NoMessageBoxes::NoMessageBoxes() : m_watch(std::make_unique<Watch>(IDOK)) {}

NoMessageBoxes::~NoMessageBoxes() {
    EXPECT_EQ(0u, m_watch->boxes().size());
}
