// Test helper: the suite installed for the running test program, so that
// its version block yields a current-user key, and removed again.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "diagnostics/version_resource.h"
#include "settings/global_config.h"

namespace zq::telephony::testing {

class ScopedInstallation {
public:
    // The suite's root as every test program's version block gives it.
    static constexpr char kUsers[] = "Software\\Zq,Inc.\\Zq Communication Suite\\1.0\\Users";

    // Writes the first user's tree and forms the locations key of the
    // running program (which copies that tree to the current user).
    ScopedInstallation() {
        Remove();
        EXPECT_EQ(config_.SetValue(1, (std::string(kUsers) + "\\Setup").c_str(), "Language", "ENU"),
                  0u);
        CZqVersionResource version;
        EXPECT_TRUE(version.ExtractVersionInfo());
        locations_key_ =
            std::string(static_cast<const char*>(version.GetCurrentUserKey())) + "\\Location";
    }
    ~ScopedInstallation() { Remove(); }
    ScopedInstallation(const ScopedInstallation&) = delete;
    ScopedInstallation& operator=(const ScopedInstallation&) = delete;

    // "<current user key>\Location", below the local machine root.
    const std::string& LocationsKey() const { return locations_key_; }
    std::string SlotKey(const char* slot) const { return locations_key_ + "\\" + slot; }

private:
    void Remove() { config_.DeleteSection(1, "Software\\Zq,Inc.", nullptr); }

    CZqGlobalConfig config_;
    std::string locations_key_;
};

}  // namespace zq::telephony::testing
