// zq tour: one screen that takes the library through its paces in the
// current prefix: the program's key layout, settings in the registry and in
// a profile file, the registry tree as REGEDIT4 text, the program's version
// block and a line through a translation table, and two dialing locations
// with a few numbers dialed from each.
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "diagnostics/version_resource.h"
#include "frame/library_info.h"
#include "installation.h"
#include "language_module.h"
#include "settings/global_config.h"
#include "settings/ini_file.h"
#include "settings/regedit4.h"
#include "telephony/dialing/global_address_functions.h"
#include "telephony/dialing/location_item_list.h"
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

struct TourLocation {
    const char* name;  // ANSI
    UINT country_id;
    const char* country_code;
    const char* areas;
    const char* international_access;
    const char* long_distance_access;
    const char* long_distance_prefix;
    const char* local_prefix;
    const char* call_waiting;
};

constexpr TourLocation kTourLocations[] = {
    {"M\xFCnchen B\xFCro", 49, "49", "89", "00", "0", "0,", "0,", ""},
    {"New York office", 1, "1", "212,718", "011", "1", "8,", "9,", "*70,"},
};

struct TourCall {
    int from;  // index in kTourLocations
    const char* what;
    const char* country;
    const char* area;
    const char* number;
};

constexpr TourCall kTourCalls[] = {
    {0, "London", "44", "171", "234 5678"},       {0, "Berlin", "49", "30", "1234567"},
    {0, "across town", "49", "89", "3456789"},    {1, "Munich", "49", "89", "1234567"},
    {1, "Nassau, Bahamas", "242", "", "3561234"}, {1, "Chicago", "1", "312", "5550123"},
    {1, "Brooklyn", "1", "718", "5550199"},
};

// Makes the tour's locations (once) and dials its numbers; false after
// reporting a failure.
bool TourDialing(const std::string& command) {
    CZqLocationItemList list;
    DWORD status = list.LoadAllItems();
    if (status != 0) {
        Fail(command, "locations", LibraryStatus(status));
        return false;
    }
    const CZqLocationItem* items[2] = {};
    for (int i = 0; i < 2; ++i) {
        const TourLocation& l = kTourLocations[i];
        CZqLocationItem* item = list.FindByName(l.name, FALSE);
        if (item == nullptr) {
            item = list.GetNewLocation();
            if (item == nullptr) {
                Fail(command, ToUtf8(l.name), LibraryStatus(0x24004000));
                return false;
            }
            item->m_csLocationName = l.name;
            item->m_nCountryIndex = l.country_id;
            item->m_nAddressCountryIndex = l.country_id;
            item->m_csCountryCode = l.country_code;
            item->m_csAreaCityCode = l.areas;
            item->m_csInternationalAccess = l.international_access;
            item->m_csLongDistanceAccess = l.long_distance_access;
            item->m_csLongDistancePrefix = l.long_distance_prefix;
            item->m_csLocalPrefix = l.local_prefix;
            item->m_csCallWaiting = l.call_waiting;
            status = item->SaveByIndex();
            if (status != 0) {
                Fail(command, ToUtf8(l.name), LibraryStatus(status));
                return false;
            }
        }
        items[i] = item;
        std::printf("  %s +%s, area %s; outside line: local %s long distance %s\n",
                    Pad(ToUtf8(l.name), 16).c_str(), l.country_code, l.areas, l.local_prefix,
                    l.long_distance_prefix);
    }
    list.SetCurrentIndex(items[0]->GetDataIndex());
    for (const TourCall& call : kTourCalls) {
        const CZqLocationItem& from = *items[call.from];
        _tagAddressInformation info;
        info.csHomeCountryCode = from.m_csCountryCode;
        info.csLocalAreaCodes = from.m_csAreaCityCode;
        info.csDisableCallWaiting = from.m_csCallWaiting;
        info.csInternationalAccess = from.m_csInternationalAccess;
        info.csLongDistanceAccess = from.m_csLongDistanceAccess;
        info.csLongDistancePrefix = from.m_csLongDistancePrefix;
        info.csLocalPrefix = from.m_csLocalPrefix;
        info.csCountryCode = call.country;
        info.csAreaCode = call.area;
        info.csNumber = call.number;
        info.bUseInternationalAccess = 1;
        info.bUseLongDistanceAccess = 1;
        if (!CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr)) {
            Fail(command, call.what, "no dial string could be made");
            return false;
        }
        std::printf("  %s -> %s %s %s\n", Pad(ToUtf8(kTourLocations[call.from].name), 16).c_str(),
                    Pad(call.what, 16).c_str(), Pad(Text(info.csDialable), 26).c_str(),
                    Text(info.csDialingRule).c_str());
    }
    return true;
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

    Heading("Dialing locations, and numbers dialed from them");
    LanguageModule language;
    const DWORD loaded = language.Load("ENU");
    if (loaded != 0) {
        return Fail(command, LanguageModule::FileName("ENU"), Win32Status(loaded));
    }
    if (!TourDialing(command)) {
        return kExitFailed;
    }

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
