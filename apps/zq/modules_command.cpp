// zq modules list|install|enable|disable: the product modules installed
// for this program's user (CZqInstalledModules).
//
// A module is named by its type number (100 video, 200 telephony, 300 fax,
// 400 viewer, 500 data) or its type name (FAX32Mirkel ...).
#include <cctype>
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "diagnostics/version_resource.h"
#include "modules/installed_modules.h"
#include "settings/global_config.h"

namespace zq::app {

namespace {

constexpr int kTypes[] = {CZqInstalledModules::kVideoModule, CZqInstalledModules::kTelephonyModule,
                          CZqInstalledModules::kFaxModule, CZqInstalledModules::kViewerModule,
                          CZqInstalledModules::kDataModule};

struct ModuleOptions {
    std::string module;
    std::string template_file;
    DWORD access = 0;
    CLI::Option* access_option = nullptr;
    bool json = false;
};

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The type of a module as typed; 0 after a usage error.
int ParseType(const std::string& command, const std::string& typed, int& exit) {
    DWORD number = 0;
    for (int type : kTypes) {
        if ((ParseNumber(typed, number) && number == static_cast<DWORD>(type)) ||
            Lower(typed) == Lower(Text(CZqInstalledModules::GetTypeName(type)))) {
            return type;
        }
    }
    std::string names;
    for (int type : kTypes) {
        names += (names.empty() ? "" : ", ") + std::to_string(type) + " " +
                 Text(CZqInstalledModules::GetTypeName(type));
    }
    exit = UsageError(command, "unknown module '" + typed + "' (" + names + ")");
    return 0;
}

// The default rights of a type, as the library writes them when it
// switches a module on.
class DefaultRights : public CZqInstalledModules {
public:
    DefaultRights() : CZqInstalledModules(FALSE) {}
    DWORD Of(int type) { return GetDefaultAccessFlags(type); }
};

int NoVersionBlock(const std::string& command) {
    return Fail(command, "installed modules",
                "the program's version block cannot be read, so its key is unknown");
}

int List(const ModuleOptions& o) {
    CZqInstalledModules modules(FALSE);
    if (!modules.Load())
        return NoVersionBlock("modules list");
    nlohmann::json out = nlohmann::json::array();
    for (int i = 0; i < modules.GetSize(); ++i) {
        const tagINSTALLEDMODULESTRUCT* m = modules.GetAt(i);
        const bool usable = (m->m_dwAccess & CZqInstalledModules::kTemplateUsable) != 0;
        if (o.json) {
            out.push_back({{"name", Text(m->m_csModuleName)},
                           {"access", m->m_dwAccess},
                           {"usable", usable},
                           {"template", Text(m->m_csTemplateFileName)}});
        } else {
            std::printf("%-12s 0x%02X %-8s %s\n", Text(m->m_csModuleName).c_str(), m->m_dwAccess,
                        usable ? "usable" : "off", Text(m->m_csTemplateFileName).c_str());
        }
    }
    if (o.json)
        PrintJson(out);
    return kExitOk;
}

// What an installer writes for a module: its key with "Access" and
// "Template", below this program's installed-modules key.
int Install(const ModuleOptions& o) {
    const std::string command = "modules install";
    int exit = kExitOk;
    const int type = ParseType(command, o.module, exit);
    if (type == 0)
        return exit;
    if (o.template_file.empty())
        return UsageError(command, "a module needs --template");
    CZqVersionResource version;
    if (!version.ExtractVersionInfo())
        return NoVersionBlock(command);
    DWORD most = 0, least = 0;
    version.GetProductVersionMajorMinor(most, least);
    const CString key = version.GetInstalledModulesKey() + "\\" +
                        CZqInstalledModules::GetTypeName(type) + "\\" +
                        CZqInstalledModules::FormatProductVersion(most);
    DWORD access = o.access;
    if (o.access_option->count() == 0) {
        access = DefaultRights().Of(type);
    }
    CZqGlobalConfig config;
    DWORD status = config.SetValue(CZqInstalledModules::kAccessMode, key, "Template",
                                   ToAnsi(o.template_file).c_str());
    if (status == 0) {
        status = config.SetValue(CZqInstalledModules::kAccessMode, key, "Access", access);
    }
    return status == 0 ? kExitOk
                       : Fail(command, "HKEY_LOCAL_MACHINE\\" + Text(key), LibraryStatus(status));
}

int Switch(const ModuleOptions& o, bool on) {
    const std::string command = on ? "modules enable" : "modules disable";
    int exit = kExitOk;
    const int type = ParseType(command, o.module, exit);
    if (type == 0)
        return exit;
    CZqInstalledModules modules(FALSE);
    if (!modules.Load())
        return NoVersionBlock(command);
    if (!on && !modules.IsTemplateInstalled(type)) {
        return Fail(command, Text(CZqInstalledModules::GetTypeName(type)),
                    "the module is not installed, or is off already");
    }
    modules.SetTemplateInstalled(type, on ? TRUE : FALSE);
    CZqInstalledModules after(FALSE);
    after.Load();
    if ((after.IsTemplateInstalled(type) != FALSE) != on) {
        return Fail(command, Text(CZqInstalledModules::GetTypeName(type)),
                    on ? "the library switches on only modules listed as usable; install it again "
                         "(zq modules install)"
                       : "the module could not be switched off");
    }
    return kExitOk;
}

void AddModulesCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<ModuleOptions>();
    CLI::App* modules = app.add_subcommand("modules", "Product modules installed for this user");
    modules->require_subcommand(1);
    SetExamples(modules,
                {"zq modules install fax32mirkel --template ZQFAXTPL.DLL", "zq modules list"});
    const char* module_help = "Module: 100 ... 500 or its type name (FAX32Mirkel ...)";

    CLI::App* list = modules->add_subcommand("list", "List the installed modules");
    AddJsonFlag(list, o->json);
    SetExamples(list, {"zq modules list --json"});
    list->callback([&run, o] { run = [o] { return List(*o); }; });

    CLI::App* install = modules->add_subcommand(
        "install", "Record a module as an installer does (its template and access rights)");
    install->add_option("module", o->module, module_help)->required();
    install->add_option("--template", o->template_file, "The module's template file")->required();
    o->access_option =
        install->add_option("--access", o->access, "Access flags (default: the type's rights)");
    SetExamples(install, {"zq modules install 300 --template ZQFAXTPL.DLL"});
    install->callback([&run, o] { run = [o] { return Install(*o); }; });

    CLI::App* enable = modules->add_subcommand("enable", "Switch a usable module's template on");
    enable->add_option("module", o->module, module_help)->required();
    SetExamples(enable, {"zq modules enable FAX32Mirkel"});
    enable->callback([&run, o] { run = [o] { return Switch(*o, true); }; });

    CLI::App* disable = modules->add_subcommand("disable", "Switch a module's template off");
    disable->add_option("module", o->module, module_help)->required();
    SetExamples(disable, {"zq modules disable 300"});
    disable->callback([&run, o] { run = [o] { return Switch(*o, false); }; });
}

}  // namespace

ZQ_COMMAND(AddModulesCommand, 85);

}  // namespace zq::app
