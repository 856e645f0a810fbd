// main() of the suites that need a private world with all of its pieces.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PrivateWorld.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    return EnterPrivateWorld({}) ? RUN_ALL_TESTS() : EXIT_FAILURE;
}
