#include "NyServer/socket/windows/HostLookUps.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

namespace {

const HANDLE kRequest = reinterpret_cast<HANDLE>(INT_PTR{0x1234});

TEST(HostLookUps, ArePendingFromTheirStartToTheirAnnouncement) {
    HostLookUps lookUps;
    EXPECT_FALSE(lookUps.arePending());
    EXPECT_TRUE(lookUps.start([] { return kRequest; }));
    EXPECT_TRUE(lookUps.arePending());
    lookUps.finish(nullptr);
    EXPECT_TRUE(lookUps.arePending()) << "another request";
    lookUps.finish(kRequest);
    EXPECT_FALSE(lookUps.arePending());
}

TEST(HostLookUps, AreNotPendingWhenTheSystemRefusesThem) {
    HostLookUps lookUps;
    EXPECT_FALSE(lookUps.start([]() -> HANDLE { return nullptr; }));
    EXPECT_FALSE(lookUps.arePending());
}

// As when a window of another thread gets the announcement while the request is being returned.
TEST(HostLookUps, MayBeAnnouncedBeforeTheirRequestIsReturned) {
    HostLookUps lookUps;
    std::thread announcing;
    lookUps.start([&] {
        std::promise<void> finished;
        auto isFinished = finished.get_future();
        announcing = std::thread([&lookUps, finished = std::move(finished)]() mutable {
            lookUps.finish(kRequest);
            finished.set_value();
        });
        EXPECT_EQ(isFinished.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout)
            << "the announcement waits until the request is known";
        return kRequest;
    });
    announcing.join();
    EXPECT_FALSE(lookUps.arePending());
}

}  // namespace
