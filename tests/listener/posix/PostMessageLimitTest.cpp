#include "tests/listener/ListenerTest.h"

namespace {

TEST(PostMessageLimit, IsThatOf3600) {
    ProbeListener listener;
    EXPECT_EQ(listener.postMessageLimit(), 3240);
}

}  // namespace
