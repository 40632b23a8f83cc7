#include "installation.h"

#include <cstdio>
#include <vector>

#include "console.h"
#include "diagnostics/version_resource.h"
#include "platform/win32.h"
#include "settings/global_config.h"

namespace zq::app {

namespace {

constexpr DWORD kModeLocalMachine = 1;
constexpr WORD kCompanyName = 1;
constexpr WORD kProductName = 7;
constexpr WORD kProductVersion = 8;

// The user the library makes keys for: the login name, "SYSTEM" without one.
std::string UserName() {
    char name[260] = {};
    DWORD size = sizeof name;
    if (!GetUserNameA(name, &size) || name[0] == '\0') {
        return "SYSTEM";
    }
    return name;
}

}  // namespace

std::string PrefixFolder() {
    const DWORD needed = ZqGetPrefixA(nullptr, 0);
    std::vector<char> buffer(needed + 1, '\0');
    if (ZqGetPrefixA(buffer.data(), static_cast<DWORD>(buffer.size())) >= buffer.size()) {
        return {};
    }
    return buffer.data();
}

void PrepareInstallation() {
    CZqVersionResource version;
    if (version.ExtractVersionInfo()) {
        return;
    }
    // The block was read but no user exists: the standard values are there.
    const CString company = version.GetStandardValue(kCompanyName);
    const CString product = version.GetStandardValue(kProductName);
    const CString product_version = version.GetStandardValue(kProductVersion);
    if (company.IsEmpty() || product.IsEmpty() || product_version.IsEmpty()) {
        return;  // no usable version block: nothing an installer would make
    }
    const std::string users = std::string("Software\\") + static_cast<const char*>(company) + "\\" +
                              static_cast<const char*>(product) + "\\" +
                              static_cast<const char*>(product_version) + "\\Users";
    const std::string user_key = users + "\\" + UserName();
    CZqGlobalConfig config;
    const DWORD status = config.CreateKey(kModeLocalMachine, user_key.c_str());
    if (status != 0) {
        Fail("setup", "HKEY_LOCAL_MACHINE\\" + ToUtf8(user_key), LibraryStatus(status));
        return;
    }
    std::fprintf(stderr, "zq: new installation in %s: made HKEY_LOCAL_MACHINE\\%s\n",
                 PrefixFolder().c_str(), ToUtf8(user_key).c_str());
}

}  // namespace zq::app
