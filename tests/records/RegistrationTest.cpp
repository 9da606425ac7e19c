#include <afx.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "NyServer/records/NySeUser.h"

namespace {

// The names on the list of classes, oldest first.
std::vector<std::string> registeredRecords() {
    std::vector<std::string> names;
    const CRuntimeClass* newest = CRuntimeClass::FromName("NySeSessionLockPtrArray");
    for (const CRuntimeClass* one = newest; one != nullptr; one = one->m_pNextClass) {
        const std::string name = one->m_lpszClassName;
        if (name.compare(0, 4, "NySe") == 0) names.push_back(name);
    }
    std::reverse(names.begin(), names.end());
    return names;
}

TEST(Registration, HappensInAFixedOrder) {
    EXPECT_EQ(
        (std::vector<std::string>{"NySeConnection", "NySeConnectionArray", "NySeLock",
                                  "NySeLockArray", "NySeMessage", "NySeUser", "NySeUserPtrArray",
                                  "NySeSessionLock", "NySeSessionLockPtrArray"}),
        registeredRecords());
}

TEST(Registration, KnowsWideNamesToo) {
    EXPECT_EQ(RUNTIME_CLASS(NySeUser), CRuntimeClass::FromName(_T("NySeUser")));
}

}  // namespace
