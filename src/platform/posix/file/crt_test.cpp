#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/file/dos_path.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

class CurrentFolder {
public:
    explicit CurrentFolder(const std::string& unix_folder) {
        char* cwd = getcwd(nullptr, 0);
        saved_ = cwd ? cwd : "/";
        std::free(cwd);
        EXPECT_EQ(chdir(unix_folder.c_str()), 0);
    }
    ~CurrentFolder() { EXPECT_EQ(chdir(saved_.c_str()), 0); }

private:
    std::string saved_;
};

TEST(GetDrive, IsCBelowTheDriveFolderAndZElsewhere) {
    {
        CurrentFolder here(DriveCRoot());
        EXPECT_EQ(_getdrive(), 3);
    }
    {
        CurrentFolder here(WindowsFolderUnix());
        EXPECT_EQ(_getdrive(), 3);
    }
    {
        CurrentFolder here("/");
        EXPECT_EQ(_getdrive(), 26);
    }
}

TEST(GetDiskFree, MatchesGetDiskFreeSpaceForTheCurrentDriveAndOthers) {
    CurrentFolder here(DriveCRoot());
    DWORD sectors = 0, bytes = 0, free_clusters = 0, total_clusters = 0;
    ASSERT_TRUE(GetDiskFreeSpaceA(nullptr, &sectors, &bytes, &free_clusters, &total_clusters));
    for (unsigned drive : {0u, 3u}) {
        _diskfree_t info;
        std::memset(&info, 0xCC, sizeof info);
        ASSERT_EQ(_getdiskfree(drive, &info), 0u) << drive;
        EXPECT_EQ(info.sectors_per_cluster, sectors);
        EXPECT_EQ(info.bytes_per_sector, bytes);
        EXPECT_EQ(info.bytes_per_sector, 512u);
        // Another process may write meanwhile: the totals stay, free may move.
        EXPECT_EQ(info.total_clusters, total_clusters);
        EXPECT_LE(info.avail_clusters, info.total_clusters);
    }
    ASSERT_TRUE(GetDiskFreeSpaceA("Z:\\", &sectors, &bytes, &free_clusters, &total_clusters));
    _diskfree_t root;
    ASSERT_EQ(_getdiskfree(26, &root), 0u);
    EXPECT_EQ(root.total_clusters, total_clusters);
}

TEST(GetDiskFree, FailsWithoutTouchingTheResult) {
    struct Case {
        unsigned drive;
        unsigned error;
        int errno_value;
    };
    for (const Case& c :
         {Case{17, ERROR_PATH_NOT_FOUND, ENOENT}, Case{27, ERROR_INVALID_PARAMETER, EINVAL},
          Case{0xFFFFFFFFu, ERROR_INVALID_PARAMETER, EINVAL}}) {
        _diskfree_t info;
        std::memset(&info, 0xCC, sizeof info);
        errno = 0;
        EXPECT_EQ(_getdiskfree(c.drive, &info), c.error) << c.drive;
        EXPECT_EQ(errno, c.errno_value) << c.drive;
        EXPECT_EQ(info.total_clusters, 0xCCCCCCCCu);
    }
    EXPECT_EQ(_getdiskfree(0, nullptr), static_cast<unsigned>(ERROR_INVALID_PARAMETER));
}

}  // namespace
}  // namespace zq::platform::internal
