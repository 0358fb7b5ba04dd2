#ifndef ORVO_TESTS_TOOLS_REAL_SERVER_H
#define ORVO_TESTS_TOOLS_REAL_SERVER_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "sim_server.h"

/// Skips a test that needs the real simulation server where it is not
/// installed, and fails it in CI (CI=true), which always installs it.
#define ORVO_REQUIRE_REAL_SERVER()                                                                 \
    do {                                                                                           \
        if (!orvo::sim::SimServer::installed()) {                                                  \
            const char* ci = std::getenv("CI");                                                    \
            if (ci != nullptr && std::strcmp(ci, "true") == 0) {                                   \
                FAIL() << "the real simulation server (rcssserver3d) is not installed; in CI "     \
                          "scripts/install-deps.sh installs it";                                   \
            }                                                                                      \
            GTEST_SKIP() << "the real simulation server (rcssserver3d) is not installed: "         \
                            "scripts/install-deps.sh installs it from "                            \
                            "../shared/simserver/ or $ORVO_SIM_SERVER_DEB";                        \
        }                                                                                          \
    } while (false)

#endif
