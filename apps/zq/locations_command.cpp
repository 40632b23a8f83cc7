// zq locations list|show|add|set|delete|current and zq dial: the user's
// dialing locations (CZqLocationItemList, CZqLocationItem) and the dial
// string the library builds from the current or a named location
// (CZqGlobalAddressFunctions::MakeDialableAddress).
//
// A location's country is given by the country's id in the country list
// (zq countries shows them); its telephone country code follows from it
// unless given as well.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "language_module.h"
#include "telephony/dialing/country_lookup.h"
#include "telephony/dialing/global_address_functions.h"
#include "telephony/dialing/location_item_list.h"

namespace zq::app {

namespace {

constexpr DWORD kNoCurrent = 0xFFFFFFFFu;

// A text field of a location and the option that sets it.
struct TextField {
    const char* option;
    const char* json_name;
    const char* help;
    CString CZqLocationItem::*member;
};

constexpr TextField kTextFields[] = {
    {"--area", "area_codes", "Local area code(s), several separated by ','",
     &CZqLocationItem::m_csAreaCityCode},
    {"--international-access", "international_access", "Dialed before a foreign country code",
     &CZqLocationItem::m_csInternationalAccess},
    {"--long-distance-access", "long_distance_access", "Dialed before a non-local area code",
     &CZqLocationItem::m_csLongDistanceAccess},
    {"--long-distance-prefix", "long_distance_prefix",
     "Outside line for international and long-distance calls (e.g. \"0,\")",
     &CZqLocationItem::m_csLongDistancePrefix},
    {"--local-prefix", "local_prefix", "Outside line for local calls (e.g. \"9,\")",
     &CZqLocationItem::m_csLocalPrefix},
    {"--suffix", "dial_suffix", "Dialed after the number", &CZqLocationItem::m_csDialSuffix},
    {"--caller-id", "caller_id", "Dialed first, to hide the caller's number",
     &CZqLocationItem::m_csCallerID},
    {"--call-waiting", "call_waiting", "Dialed after the outside line, to stop call waiting",
     &CZqLocationItem::m_csCallWaiting},
    {"--user", "user_name", "The user's name at this location", &CZqLocationItem::m_csUserName},
    {"--company", "company", "Company", &CZqLocationItem::m_csCompany},
    {"--city", "city", "City", &CZqLocationItem::m_csCity},
    {"--email", "email", "E-mail address", &CZqLocationItem::m_csEMail},
};
constexpr size_t kTextFieldCount = sizeof kTextFields / sizeof kTextFields[0];

struct LocationOptions {
    std::string name;
    std::string language = "ENU";
    DWORD country = 0;
    std::string country_code;
    std::string tapi;
    std::string text[kTextFieldCount];
    CLI::Option* country_option = nullptr;
    CLI::Option* country_code_option = nullptr;
    CLI::Option* text_options[kTextFieldCount] = {};
    bool json = false;
    // zq dial
    std::string location;
    std::string dest_country, dest_area, dest_number;
    bool force_long_distance = false, area_code_locally = false, drop_first_digit = false;
};

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

// The language module for country names and rule texts; false after
// reporting why it cannot be used.
bool LoadLanguage(const std::string& command, LanguageModule& module, std::string language,
                  int& exit) {
    if (!NormalizeLanguage(language)) {
        exit = UsageError(command, "a language is three letters, e.g. ENU or DEU");
        return false;
    }
    const DWORD status = module.Load(language);
    if (status != 0) {
        exit = Fail(command, LanguageModule::FileName(language), Win32Status(status));
        return false;
    }
    return true;
}

// Loads every location; false after reporting the failure.
bool LoadLocations(const std::string& command, CZqLocationItemList& list, int& exit) {
    const DWORD status = list.LoadAllItems();
    if (status != 0) {
        exit = Fail(command, "locations", LibraryStatus(status));
        return false;
    }
    return true;
}

// The location of exactly that name (without regard to case), or NULL
// after reporting that there is none.
CZqLocationItem* FindExact(const std::string& command, CZqLocationItemList& list,
                           const std::string& name) {
    CZqLocationItem* item = list.FindByName(ToAnsi(name).c_str(), FALSE);
    if (item == nullptr) {
        Fail(command, name, "no location has this name");
    }
    return item;
}

std::string CountryName(UINT id) {
    CString name;
    return GetCountryNameFromCode(id, name) ? Text(name) : std::string();
}

nlohmann::json LocationJson(const CZqLocationItem& item, DWORD current) {
    nlohmann::json out = {{"index", item.GetDataIndex()},
                          {"name", Text(item.m_csLocationName)},
                          {"current", item.GetDataIndex() == current},
                          {"country_id", item.m_nCountryIndex},
                          {"country", CountryName(item.m_nCountryIndex)},
                          {"country_code", Text(item.m_csCountryCode)},
                          {"tapi_dialing", item.m_bTAPIDialing != 0}};
    for (const TextField& field : kTextFields) {
        out[field.json_name] = Text(item.*field.member);
    }
    return out;
}

int List(const LocationOptions& o) {
    const std::string command = "locations list";
    LanguageModule module;
    int exit = kExitOk;
    if (!LoadLanguage(command, module, o.language, exit))
        return exit;
    CZqLocationItemList list;
    if (!LoadLocations(command, list, exit))
        return exit;
    const DWORD current = list.GetCurrentIndex();
    nlohmann::json out = nlohmann::json::array();
    for (INT_PTR i = 0; i < list.GetSize(); ++i) {
        const CZqLocationItem* item = list.GetAt(i);
        if (item == nullptr)
            continue;
        if (o.json) {
            out.push_back(LocationJson(*item, current));
            continue;
        }
        std::printf("%c %-3u %s +%-4s %-10s %s\n", item->GetDataIndex() == current ? '*' : ' ',
                    item->GetDataIndex(), Pad(Text(item->m_csLocationName), 24).c_str(),
                    Text(item->m_csCountryCode).c_str(), Text(item->m_csAreaCityCode).c_str(),
                    CountryName(item->m_nCountryIndex).c_str());
    }
    if (o.json)
        PrintJson(out);
    return kExitOk;
}

int Show(const LocationOptions& o) {
    const std::string command = "locations show";
    LanguageModule module;
    int exit = kExitOk;
    if (!LoadLanguage(command, module, o.language, exit))
        return exit;
    CZqLocationItemList list;
    if (!LoadLocations(command, list, exit))
        return exit;
    const CZqLocationItem* item = FindExact(command, list, o.name);
    if (item == nullptr)
        return kExitFailed;
    const nlohmann::json out = LocationJson(*item, list.GetCurrentIndex());
    if (o.json) {
        PrintJson(out);
        return kExitOk;
    }
    std::printf("%s%s (slot %u)\n", Text(item->m_csLocationName).c_str(),
                out["current"].get<bool>() ? ", the current location" : "", item->GetDataIndex());
    std::printf("  %-22s %s (id %u), +%s\n", "country", CountryName(item->m_nCountryIndex).c_str(),
                item->m_nCountryIndex, Text(item->m_csCountryCode).c_str());
    std::printf("  %-22s %s\n", "tapi dialing", item->m_bTAPIDialing ? "on" : "off");
    for (const TextField& field : kTextFields) {
        const std::string value = Text(item->*field.member);
        if (!value.empty())
            std::printf("  %-22s %s\n", field.option + 2, value.c_str());
    }
    return kExitOk;
}

// Applies the options given on the command line to an item.
int Change(const std::string& command, const LocationOptions& o, CZqLocationItem& item) {
    if (o.country_option->count() > 0) {
        CString code;
        if (!GetCountryPhoneCode(static_cast<WORD>(o.country), code) || o.country > 0xFFFF) {
            return Fail(command, std::to_string(o.country),
                        "no country has this id (see zq countries)");
        }
        item.m_nCountryIndex = o.country;
        item.m_nAddressCountryIndex = o.country;
        item.m_csCountryCode = code;
    }
    if (o.country_code_option->count() > 0) {
        item.m_csCountryCode = ToAnsi(o.country_code).c_str();
    }
    if (!o.tapi.empty()) {
        if (o.tapi != "on" && o.tapi != "off")
            return UsageError(command, "--tapi takes on or off");
        item.m_bTAPIDialing = o.tapi == "on" ? 1 : 0;
    }
    for (size_t i = 0; i < kTextFieldCount; ++i) {
        if (o.text_options[i]->count() > 0) {
            item.*kTextFields[i].member = ToAnsi(o.text[i]).c_str();
        }
    }
    return kExitOk;
}

int Add(const LocationOptions& o) {
    const std::string command = "locations add";
    LanguageModule module;
    int exit = kExitOk;
    if (!LoadLanguage(command, module, o.language, exit))
        return exit;
    if (o.country_option->count() == 0) {
        return UsageError(command, "a new location needs --country");
    }
    CZqLocationItemList list;
    if (!LoadLocations(command, list, exit))
        return exit;
    const std::string name = ToAnsi(o.name);
    if (list.FindByName(name.c_str(), FALSE) != nullptr) {
        return Fail(command, o.name, LibraryStatus(0x24004407));
    }
    CZqLocationItem* item = list.GetNewLocation();
    if (item == nullptr)
        return Fail(command, o.name, LibraryStatus(0x24004000));
    item->m_csLocationName = name.c_str();
    if ((exit = Change(command, o, *item)) != kExitOk)
        return exit;
    const DWORD status = item->SaveByIndex();
    if (status != 0)
        return Fail(command, o.name, LibraryStatus(status));
    // The first location becomes the current one.
    if (list.GetCurrentIndex() == kNoCurrent) {
        list.SetCurrentIndex(item->GetDataIndex());
    }
    return kExitOk;
}

int Set(const LocationOptions& o) {
    const std::string command = "locations set";
    LanguageModule module;
    int exit = kExitOk;
    if (!LoadLanguage(command, module, o.language, exit))
        return exit;
    CZqLocationItemList list;
    if (!LoadLocations(command, list, exit))
        return exit;
    CZqLocationItem* item = FindExact(command, list, o.name);
    if (item == nullptr)
        return kExitFailed;
    if ((exit = Change(command, o, *item)) != kExitOk)
        return exit;
    const DWORD status = item->SaveByIndex();
    return status == 0 ? kExitOk : Fail(command, o.name, LibraryStatus(status));
}

int Delete(const LocationOptions& o) {
    const std::string command = "locations delete";
    CZqLocationItemList list;
    int exit = kExitOk;
    if (!LoadLocations(command, list, exit))
        return exit;
    const CZqLocationItem* item = FindExact(command, list, o.name);
    if (item == nullptr)
        return kExitFailed;
    // The list removes the first location whose name begins with the name
    // given; make sure that is the one asked for.
    const std::string name = ToAnsi(o.name);
    if (list.FindByName(name.c_str(), TRUE) != item) {
        return Fail(command, o.name,
                    "another location's name begins with this name and comes first; rename that "
                    "one first");
    }
    return list.DeleteByName(name.c_str()) ? kExitOk
                                           : Fail(command, o.name, "no location has this name");
}

int Current(const LocationOptions& o) {
    const std::string command = "locations current";
    CZqLocationItemList list;
    int exit = kExitOk;
    if (!LoadLocations(command, list, exit))
        return exit;
    if (!o.name.empty()) {
        const CZqLocationItem* item = FindExact(command, list, o.name);
        if (item == nullptr)
            return kExitFailed;
        list.SetCurrentIndex(item->GetDataIndex());
        if (list.GetCurrentIndex() != item->GetDataIndex()) {
            return Fail(command, o.name, "the current location could not be stored");
        }
        return kExitOk;
    }
    const DWORD current = list.GetCurrentIndex();
    const CZqLocationItem* item = current == kNoCurrent ? nullptr : list.FindByIndex(current);
    if (item == nullptr) {
        return Fail(command, "", "no current location is set (zq locations current NAME)");
    }
    if (o.json) {
        PrintJson({{"index", current}, {"name", Text(item->m_csLocationName)}});
    } else {
        std::printf("%s\n", Text(item->m_csLocationName).c_str());
    }
    return kExitOk;
}

int Dial(const LocationOptions& o) {
    const std::string command = "dial";
    LanguageModule module;
    int exit = kExitOk;
    if (!LoadLanguage(command, module, o.language, exit))
        return exit;
    CZqLocationItemList list;
    if (!LoadLocations(command, list, exit))
        return exit;
    const CZqLocationItem* from = nullptr;
    if (!o.location.empty()) {
        from = FindExact(command, list, o.location);
        if (from == nullptr)
            return kExitFailed;
    } else {
        const DWORD current = list.GetCurrentIndex();
        from = current == kNoCurrent ? nullptr : list.FindByIndex(current);
        if (from == nullptr) {
            return Fail(command, "", "no current location is set; name one with --location");
        }
    }
    _tagAddressInformation info;
    info.csHomeCountryCode = from->m_csCountryCode;
    info.csLocalAreaCodes = from->m_csAreaCityCode;
    info.csBlockCallerID = from->m_csCallerID;
    info.csDisableCallWaiting = from->m_csCallWaiting;
    info.csDialSuffix = from->m_csDialSuffix;
    info.csInternationalAccess = from->m_csInternationalAccess;
    info.csLongDistanceAccess = from->m_csLongDistanceAccess;
    info.csLongDistancePrefix = from->m_csLongDistancePrefix;
    info.csLocalPrefix = from->m_csLocalPrefix;
    info.csCountryCode = ToAnsi(o.dest_country).c_str();
    info.csAreaCode = ToAnsi(o.dest_area).c_str();
    info.csNumber = ToAnsi(o.dest_number).c_str();
    info.bForceLongDistance = o.force_long_distance ? 1 : 0;
    info.bUseInternationalAccess = 1;
    info.bUseLongDistanceAccess = 1;
    info.bDropFirstLocalDigit = o.drop_first_digit ? 1 : 0;
    info.bTAPIDialing = from->m_bTAPIDialing ? 1 : 0;
    if (!CZqGlobalAddressFunctions::MakeDialableAddress(&info, o.area_code_locally ? 1 : 0,
                                                        nullptr)) {
        return Fail(command, Text(from->m_csLocationName),
                    "the location leaves dialing to the telephony service, whose line "
                    "interface is not available (zq locations set NAME --tapi off)");
    }
    if (info.bNoAddress) {
        return Fail(command, o.dest_number, "there is nothing to dial");
    }
    if (o.json) {
        PrintJson({{"location", Text(from->m_csLocationName)},
                   {"rule", Text(info.csDialingRule)},
                   {"dialable", Text(info.csDialable)},
                   {"displayable", Text(info.csDisplayable)}});
    } else {
        std::printf("%s: %s\n", Text(info.csDialingRule).c_str(), Text(info.csDialable).c_str());
    }
    return kExitOk;
}

void AddFieldOptions(CLI::App* command, LocationOptions& o) {
    o.country_option =
        command->add_option("--country", o.country, "The location's country by id (zq countries)");
    o.country_code_option = command->add_option(
        "--country-code", o.country_code, "Telephone country code, when not the country's own");
    command->add_option("--tapi", o.tapi, "Leave dialing to the telephony service: on or off");
    for (size_t i = 0; i < kTextFieldCount; ++i) {
        o.text_options[i] =
            command->add_option(kTextFields[i].option, o.text[i], kTextFields[i].help);
    }
}

void AddLangOption(CLI::App* command, LocationOptions& o) {
    command->add_option("--lang", o.language,
                        "Language module for country names and rule texts (default ENU)");
}

void AddLocationsCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<LocationOptions>();
    CLI::App* locations = app.add_subcommand("locations", "The user's dialing locations");
    locations->require_subcommand(1);
    SetExamples(locations,
                {"zq locations add Office --country 49 --area 89 --international-access 00 "
                 "--long-distance-access 0 --local-prefix 0, --long-distance-prefix 0,",
                 "zq locations list"});
    const char* name_help = "Location name";

    CLI::App* list =
        locations->add_subcommand("list", "List the locations (* marks the current one)");
    AddJsonFlag(list, o->json);
    AddLangOption(list, *o);
    SetExamples(list, {"zq locations list", "zq locations list --json"});
    list->callback([&run, o] { run = [o] { return List(*o); }; });

    CLI::App* show = locations->add_subcommand("show", "Show every setting of one location");
    show->add_option("name", o->name, name_help)->required();
    AddJsonFlag(show, o->json);
    AddLangOption(show, *o);
    SetExamples(show, {"zq locations show Office"});
    show->callback([&run, o] { run = [o] { return Show(*o); }; });

    auto add_o = std::make_shared<LocationOptions>();
    CLI::App* add = locations->add_subcommand(
        "add", "Add a location (the first one added becomes the current one)");
    add->add_option("name", add_o->name, name_help)->required();
    AddFieldOptions(add, *add_o);
    AddLangOption(add, *add_o);
    SetExamples(add, {"zq locations add \"New York\" --country 1 --area 212,718 "
                      "--international-access 011 --long-distance-access 1 --local-prefix 9,"});
    add->callback([&run, add_o] { run = [add_o] { return Add(*add_o); }; });

    // add and set keep their own options: each asks which were given.
    auto set_o = std::make_shared<LocationOptions>();
    CLI::App* set = locations->add_subcommand("set", "Change settings of a location");
    set->add_option("name", set_o->name, name_help)->required();
    AddFieldOptions(set, *set_o);
    AddLangOption(set, *set_o);
    SetExamples(set, {"zq locations set Office --call-waiting \"*43,\""});
    set->callback([&run, set_o] { run = [set_o] { return Set(*set_o); }; });

    CLI::App* del = locations->add_subcommand("delete", "Delete a location");
    del->add_option("name", o->name, name_help)->required();
    SetExamples(del, {"zq locations delete Office"});
    del->callback([&run, o] { run = [o] { return Delete(*o); }; });

    CLI::App* current =
        locations->add_subcommand("current", "Show the current location, or choose one");
    current->add_option("name", o->name, "Location to make the current one");
    AddJsonFlag(current, o->json);
    SetExamples(current, {"zq locations current", "zq locations current \"New York\""});
    current->callback([&run, o] { run = [o] { return Current(*o); }; });

    CLI::App* dial = app.add_subcommand(
        "dial", "Print the dialing rule and the dial string for a number, from a location");
    dial->add_option("country", o->dest_country, "Destination country code (e.g. 44)")->required();
    dial->add_option("area", o->dest_area, "Destination area code (\"\" for none)")->required();
    dial->add_option("number", o->dest_number,
                     "Number as entered; one beginning with = is dialed as written")
        ->required();
    dial->add_option("--location", o->location, "Dial from this location, not the current one");
    dial->add_flag("--force-long-distance", o->force_long_distance,
                   "Dial a local number as long distance");
    dial->add_flag("--area-code-locally", o->area_code_locally,
                   "Dial a local number with its area code, under the local rule");
    dial->add_flag("--drop-first-digit", o->drop_first_digit,
                   "Dial a local number without its first digit");
    AddJsonFlag(dial, o->json);
    AddLangOption(dial, *o);
    SetExamples(dial,
                {"zq dial 44 171 \"234 5678\"", "zq dial --location \"New York\" 1 212 5551234"});
    dial->callback([&run, o] { run = [o] { return Dial(*o); }; });
}

}  // namespace

ZQ_COMMAND(AddLocationsCommand, 45);

}  // namespace zq::app
