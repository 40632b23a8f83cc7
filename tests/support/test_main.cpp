// Main of every test executable: a fresh prefix for the whole process,
// created before any test (and before the library first reads ZQ_PREFIX).
#include <gtest/gtest.h>

#include "support/test_support.h"

namespace zq::test {
void RemovePrefix();
}

int main(int argc, char** argv) {
    zq::test::TestPrefix();
    testing::InitGoogleTest(&argc, argv);
    int rc = RUN_ALL_TESTS();
    zq::test::RemovePrefix();
    return rc;
}
