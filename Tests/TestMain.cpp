// SPDX-License-Identifier: Apache-2.0
// The main function of every test program.
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
