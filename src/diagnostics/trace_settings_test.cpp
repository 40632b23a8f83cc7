#include "diagnostics/trace_settings.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <string>

#include "diagnostics/trace.h"
#include "diagnostics/version_resource.h"
#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

constexpr DWORD kMachine = 1;

// Whether text has the shape of pattern: '#' stands for one digit, '*' for
// one or more digits, '?' for any character, everything else for itself.
bool HasShape(const std::string& text, const std::string& pattern) {
    size_t t = 0;
    for (char p : pattern) {
        const auto digit = [&] { return t < text.size() && text[t] >= '0' && text[t] <= '9'; };
        if (p == '#' || p == '*') {
            if (!digit())
                return false;
            ++t;
            while (p == '*' && digit())
                ++t;
        } else if (t < text.size() && (p == '?' || text[t] == p)) {
            ++t;
        } else {
            return false;
        }
    }
    return t == text.size();
}

class TraceSettings : public testing::Test {
protected:
    void SetUp() override {
        // The registry as an installation leaves it: a first user below
        // the suite's root, named from the program's version strings.
        version_.ExtractVersionInfo();
        const std::string root = std::string("Software\\") +
                                 static_cast<const char*>(version_.GetStandardValue(1)) + "\\" +
                                 static_cast<const char*>(version_.GetStandardValue(7)) + "\\" +
                                 static_cast<const char*>(version_.GetStandardValue(8));
        ASSERT_EQ(config_.CreateKey(kMachine, (root + "\\Users\\Installer").c_str()), 0u);
        ASSERT_TRUE(version_.ExtractVersionInfo());
        user_key_ = static_cast<const char*>(version_.GetCurrentUserKey());
    }
    void TearDown() override { config_.DeleteSection(kMachine, "Software\\Zq,Inc.", nullptr); }
    void Store(DWORD trace, DWORD disable) {
        ASSERT_EQ(config_.SetValue(kMachine, user_key_.c_str(), "FaxTrace", trace), 0u);
        ASSERT_EQ(config_.SetValue(kMachine, "Software\\Zq,Inc.\\Devices", "DisableTAPIAutoDetect",
                                   disable),
                  0u);
    }
    DWORD Stored(const char* key, const char* name) {
        DWORD value = 0xDEAD;
        EXPECT_EQ(config_.GetValue(kMachine, key, name, value, 0xDEAD), 0u) << name;
        return value;
    }

    CZqVersionResource version_;
    CZqGlobalConfig config_;
    std::string user_key_;
};

TEST(TraceSettingsUninstalled, NeitherReadsNorWrites) {
    CZqGlobalConfig().DeleteSection(kMachine, "Software\\Zq,Inc.", nullptr);
    CZqTraceSettings settings;
    settings.m_bTracing = TRUE;
    settings.m_dwLevel = 0;
    EXPECT_FALSE(settings.Write());
    EXPECT_EQ(settings.m_dwLevel, 0u);
    EXPECT_FALSE(settings.Read());
    CZqGlobalConfig config;
    BOOL exists = TRUE;
    config.DoesSubkeyExist(kMachine, "Software\\Zq,Inc.", "Devices", exists);
    EXPECT_FALSE(exists);
}

TEST_F(TraceSettings, NothingStoredKeepsTheDefaults) {
    CZqTraceSettings settings;
    ASSERT_TRUE(settings.Read());
    EXPECT_EQ(settings.m_dwLevel, 1u);
    EXPECT_FALSE(settings.m_bTracing);
    EXPECT_FALSE(settings.m_bDisableTAPIAutoDetect);
}

TEST_F(TraceSettings, StoredLevelSwitchesTracingOn) {
    struct Case {
        DWORD stored;
        DWORD level;
        BOOL tracing;
    };
    for (const Case& c : {Case{0, 1, FALSE}, Case{1, 1, TRUE}, Case{7, 7, TRUE},
                          Case{0xFFFFFFFF, 0xFFFFFFFF, TRUE}}) {
        Store(c.stored, c.stored & 1);
        CZqTraceSettings settings;
        ASSERT_TRUE(settings.Read());
        EXPECT_EQ(settings.m_dwLevel, c.level) << c.stored;
        EXPECT_EQ(settings.m_bTracing, c.tracing) << c.stored;
        EXPECT_EQ(settings.m_bDisableTAPIAutoDetect, static_cast<BOOL>(c.stored & 1)) << c.stored;
    }
}

TEST_F(TraceSettings, WriteStoresTheNormalisedLevel) {
    struct Case {
        BOOL tracing;
        DWORD level;
        DWORD stored;
    };
    for (const Case& c : {Case{TRUE, 0, 1}, Case{TRUE, 1, 1}, Case{TRUE, 12, 12},
                          Case{FALSE, 12, 0}, Case{FALSE, 0, 0}}) {
        CZqTraceSettings settings;
        settings.m_bTracing = c.tracing;
        settings.m_dwLevel = c.level;
        settings.m_bDisableTAPIAutoDetect = c.tracing;
        ASSERT_TRUE(settings.Write());
        EXPECT_EQ(settings.m_dwLevel, c.stored);
        EXPECT_EQ(Stored(user_key_.c_str(), "FaxTrace"), c.stored);
        EXPECT_EQ(Stored("Software\\Zq,Inc.\\Devices", "DisableTAPIAutoDetect"),
                  static_cast<DWORD>(c.tracing));
    }
}

TEST_F(TraceSettings, ListsTraceFilesWithTheirTimes) {
    CZqTrace trace;
    ASSERT_TRUE(trace.Open("SettingsListTest", FALSE));
    std::string path = static_cast<const char*>(trace.GetFileName());
    trace.Close();
    for (char& c : path)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));

    CStringArray entries;
    entries.Add("stale");
    CZqTraceSettings::ListTraceFiles(entries);
    const std::string shape = ".trc (##/##/## ##:##)";
    int found = 0;
    for (int i = 0; i < entries.GetSize(); ++i) {
        const std::string entry = static_cast<const char*>(entries[i]);
        EXPECT_TRUE(entry.size() > shape.size() &&
                    HasShape(entry.substr(entry.size() - shape.size()), shape))
            << entry;
        if (entry.rfind(path + " (", 0) == 0) {
            ++found;
            EXPECT_EQ(std::string(CZqTraceSettings::PathOfListEntry(entries[i])), path);
        }
    }
    EXPECT_EQ(found, 1);
    std::remove((zq::test::ExecutableFolder() + "/ZqSettingsListTest.TRC").c_str());
}

TEST(TraceSettingsEntry, PathIsTheTextBeforeTheBracket) {
    EXPECT_STREQ(CZqTraceSettings::PathOfListEntry("  z:\\a b\\zqx.trc (01/02/03 04:05)"),
                 "z:\\a b\\zqx.trc");
    EXPECT_STREQ(CZqTraceSettings::PathOfListEntry("z:\\plain.trc  "), "z:\\plain.trc");
    EXPECT_STREQ(CZqTraceSettings::PathOfListEntry("(x)"), "");
}

}  // namespace
