// The code of the README, compiled: its first block stands at namespace scope, its second in a
// function.
#include <iostream>

#include <gtest/gtest.h>

#include "readme_1.inc"

namespace {

TEST(Readme, ShowsCodeThatWorks) {
    testing::internal::CaptureStdout();
#include "readme_2.inc"
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "server.host: Address that the server listens on.\n"
              "server.port: Port that the server listens on.\n"
              "server.tags: Tags that every response carries.\n");
    EXPECT_EQ(port, 8080);
}

}  // namespace
