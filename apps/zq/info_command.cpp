// zq info: what the library knows about itself, the system it reports and
// the key layout it derives for the running program.
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "diagnostics/operating_system.h"
#include "diagnostics/version_resource.h"
#include "frame/library_info.h"
#include "installation.h"

namespace zq::app {

namespace {

const char* SystemName(DWORD type) {
    switch (type) {
        case CZqGlobalOperatingSystem::kTypeWin32s:
            return "Win32s";
        case CZqGlobalOperatingSystem::kTypeWindowsNT:
            return "Windows NT";
        case CZqGlobalOperatingSystem::kTypeWindows95:
            return "Windows 95";
        default:
            return "unknown";
    }
}

struct LayoutKey {
    const char* label;
    const char* json_name;
    CString& (CZqVersionResource::*get)();
};

constexpr LayoutKey kLayoutKeys[] = {
    {"Mirkels root", "mirkels_root", &CZqVersionResource::GetMirkelsRootKey},
    {"users", "users", &CZqVersionResource::GetUsersKey},
    {"current user", "current_user", &CZqVersionResource::GetCurrentUserKey},
    {"installed modules", "installed_modules", &CZqVersionResource::GetInstalledModulesKey},
    {"module root", "module_root", &CZqVersionResource::GetModuleRootKey},
    {"phone lists", "phone_lists", &CZqVersionResource::GetPhoneListsKey},
    {"speed-dial lists", "speed_dial_lists", &CZqVersionResource::GetSpeedDialListsKey},
    {"fax-on-demand lists", "fax_on_demand_lists", &CZqVersionResource::GetFaxOnDemandListsKey},
};

int ShowInfo(bool json) {
    const DWORD type = CZqGlobalOperatingSystem::GetType();
    const std::string system = std::string(SystemName(type)) + " " +
                               std::to_string(CZqGlobalOperatingSystem::GetMajorVersion()) + "." +
                               std::to_string(CZqGlobalOperatingSystem::GetMinorVersion());
    const std::string user =
        ToUtf8(static_cast<const char*>(CZqGlobalOperatingSystem::GetUserName()));
    CZqVersionResource version;
    const bool layout = version.ExtractVersionInfo() != FALSE;
    const std::string program = ToUtf8(static_cast<const char*>(version.GetModuleFile()));

    if (json) {
        nlohmann::json out = {{"library_version", LibraryVersion()},
                              {"platform", BuildPlatform()},
                              {"prefix", PrefixFolder()},
                              {"system", {{"type", type}, {"name", system}}},
                              {"user", user},
                              {"program", program}};
        nlohmann::json keys = nlohmann::json::object();
        if (layout) {
            for (const LayoutKey& key : kLayoutKeys) {
                keys[key.json_name] =
                    "HKEY_LOCAL_MACHINE\\" + ToUtf8(static_cast<const char*>((version.*key.get)()));
            }
        }
        out["key_layout"] = layout ? keys : nlohmann::json(nullptr);
        PrintJson(out);
    } else {
        std::printf("zqgbl %s on %s\n", LibraryVersion(), BuildPlatform());
        std::printf("  %-20s %s\n", "prefix", PrefixFolder().c_str());
        std::printf("  %-20s %s (type %u)\n", "system", system.c_str(), type);
        std::printf("  %-20s %s\n", "user", user.c_str());
        std::printf("  %-20s %s\n", "program", program.c_str());
        if (layout) {
            std::printf("Key layout (HKEY_LOCAL_MACHINE):\n");
            for (const LayoutKey& key : kLayoutKeys) {
                std::printf("  %-20s %s\n", key.label,
                            ToUtf8(static_cast<const char*>((version.*key.get)())).c_str());
            }
        }
    }
    if (!layout) {
        return Fail("info", "key layout",
                    "cannot be derived: the program has no version block or no user exists "
                    "below its Users key");
    }
    return kExitOk;
}

void AddInfoCommand(CLI::App& app, Runner& run) {
    auto json = std::make_shared<bool>(false);
    CLI::App* info = app.add_subcommand(
        "info",
        "Show the library version, the platform, the prefix, the system and user the "
        "library sees, and the key layout of this program");
    AddJsonFlag(info, *json);
    SetExamples(info, {"zq info", "zq --prefix /tmp/zq info --json"});
    info->callback([&run, json] { run = [json] { return ShowInfo(*json); }; });
}

}  // namespace

ZQ_COMMAND(AddInfoCommand, 10);

}  // namespace zq::app
