// A failed soft assert says where and recovers; a holding one costs nothing and says nothing.
#include "base/SoftAssert.h"

#include <gtest/gtest.h>

namespace {

int rowOrLast(int row, int rows) {
    VELTARN_SOFT_ASSERT(row < rows, row = rows - 1);
    return row;
}

TEST(SoftAssert, AFailureIsLoggedWithFileAndLineAndTheRecoveryRuns) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(rowOrLast(2, 5), 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(rowOrLast(9, 5), 4);
    const std::string logged = testing::internal::GetCapturedStderr();
    EXPECT_NE(logged.find("soft assert \"row < rows\" failed at "), std::string::npos) << logged;
    EXPECT_NE(logged.find("SoftAssertTest.cpp:9"), std::string::npos) << logged;
}

}  // namespace
