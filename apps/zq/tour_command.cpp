// zq tour: one screen that takes the library through its paces in the
// current prefix: the program's key layout, settings in the registry and in
// a profile file, the registry tree as REGEDIT4 text, the program's version
// block and a line through a translation table.
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "diagnostics/version_resource.h"
#include "frame/library_info.h"
#include "installation.h"
#include "settings/global_config.h"
#include "settings/ini_file.h"
#include "settings/regedit4.h"
#include "translate/gbl_translate.h"

namespace zq::app {

namespace {

constexpr DWORD kModeLocalMachine = 1;

void Heading(const char* text) {
    std::printf("\n== %s\n", text);
}

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

int Tour() {
    const std::string command = "tour";
    std::printf("zqgbl %s on %s, prefix %s\n", LibraryVersion(), BuildPlatform(),
                PrefixFolder().c_str());

    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return Fail(command, "key layout", "cannot be derived: no user below the Users key");
    }
    Heading("Version block of this program");
    std::printf("  %s %s (%s), %s\n", Text(version.GetStandardValue(7)).c_str(),
                Text(version.GetStandardValue(8)).c_str(),
                Text(version.GetStandardValue(4)).c_str(),
                Text(version.GetStandardValue(1)).c_str());
    std::printf("  user key  HKLM\\%s\n", Text(version.GetCurrentUserKey()).c_str());

    Heading("Registry: settings of this program's module key");
    CZqGlobalConfig config;
    const CString module_key = version.GetModuleRootKey();
    DWORD status = config.SetValue(kModeLocalMachine, module_key, "Retries", DWORD{3});
    if (status == 0) {
        status =
            config.SetValue(kModeLocalMachine, module_key, "Greeting", ToAnsi("Grüß Gott").c_str());
    }
    DWORD retries = 0;
    char greeting[64] = {};
    if (status == 0) {
        status = config.GetValue(kModeLocalMachine, module_key, "Retries", retries, 0);
    }
    if (status == 0) {
        status = config.GetValue(kModeLocalMachine, module_key, "Greeting", greeting,
                                 sizeof greeting, "");
    }
    if (status != 0) {
        return Fail(command, "HKLM\\" + Text(module_key), LibraryStatus(status));
    }
    std::printf("  wrote and read back Retries = %u, Greeting = \"%s\"\n", retries,
                ToUtf8(greeting).c_str());

    Heading("Profile file C:\\windows\\zqtour.ini");
    CZqIniFile ini;
    ini.SetFileName("zqtour.ini");
    ini.SetSection("Modem");
    int speed = 0;
    RECT window{0, 0, 640, 480}, read_window{};
    status = ini.DoInteger("Speed", FALSE, 57600, nullptr);
    if (status == 0)
        status = ini.ZqIniFileRectangle("Window", FALSE, &window, nullptr);
    if (status == 0)
        status = ini.DoInteger("Speed", TRUE, 0, &speed);
    if (status == 0)
        status = ini.ZqIniFileRectangle("Window", TRUE, &window, &read_window);
    if (status != 0) {
        return Fail(command, "zqtour.ini", LocalStatus("profile", status, "the entry failed"));
    }
    std::printf("  [Modem] Speed = %d, Window = %d %d %d %d\n", speed, read_window.left,
                read_window.top, read_window.right, read_window.bottom);

    Heading("Registry export (REGEDIT4)");
    std::string text;
    const zq::settings::Regedit4Result exported =
        zq::settings::ExportRegedit4("HKEY_LOCAL_MACHINE\\" + std::string(module_key), text);
    if (!exported.ok()) {
        return Fail(command, "export", zq::settings::Regedit4StatusText(exported.status));
    }
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find("\r\n", start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            std::printf("  %s\n", ToUtf8(text.substr(start, end - start)).c_str());
        start = end + 2;
    }

    Heading("Translation table (input: lower case to upper case)");
    CGblTranslate table;
    for (int c = 'a'; c <= 'z'; ++c) {
        table.SetInputValue(static_cast<BYTE>(c), static_cast<BYTE>(c - 'a' + 'A'));
    }
    table.EnableGet(TRUE);
    const std::string line = "atdt 0049 89 1234567";
    std::string translated;
    for (char c : line)
        translated += static_cast<char>(table.DoGet(static_cast<BYTE>(c)));
    std::printf("  \"%s\" -> \"%s\"\n", line.c_str(), translated.c_str());
    return kExitOk;
}

void AddTourCommand(CLI::App& app, Runner& run) {
    CLI::App* tour = app.add_subcommand("tour", "A one-screen tour of what the library does");
    SetExamples(tour, {"zq --prefix /tmp/zq-tour tour"});
    tour->callback([&run] { run = [] { return Tour(); }; });
}

}  // namespace

ZQ_COMMAND(AddTourCommand, 90);

}  // namespace zq::app
