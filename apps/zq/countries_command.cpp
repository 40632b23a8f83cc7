// zq countries: the country list of the language module (id, phone code,
// dialing prefix value, name), in the list's own name order.
#include <cctype>
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "language_module.h"
#include "telephony/dialing/country_lookup.h"

namespace zq::app {

namespace {

int ShowCountries(std::string language, bool json) {
    const std::string command = "countries";
    if (!NormalizeLanguage(language)) {
        return UsageError(command, "a language is three letters, e.g. ENU or DEU");
    }
    LanguageModule module;
    const DWORD status = module.Load(language);
    if (status != 0) {
        return Fail(command, LanguageModule::FileName(language), Win32Status(status));
    }
    CZqCountryCodeList* list = GetGlobalCountryList();
    if (list == nullptr || list->GetSize() == 0) {
        // Load once more ourselves, for the status that says why.
        CZqCountryCodeList own;
        const DWORD load = own.LoadData();
        return Fail(command, "country table", LibraryStatus(load != 0 ? load : DWORD{0x24004451}));
    }
    nlohmann::json out = nlohmann::json::array();
    if (!json) {
        std::printf("%5s  %5s  %6s  %s\n", "id", "code", "prefix", "name");
    }
    for (INT_PTR i = 0; i < list->GetSize(); ++i) {
        const CZqCountryCode* country = list->GetAt(i);
        const std::string name = ToUtf8(static_cast<const char*>(country->GetName()));
        if (json) {
            out.push_back({{"id", country->GetCountryId()},
                           {"code", country->GetPhoneCode()},
                           {"prefix", country->GetPrefix()},
                           {"name", name}});
        } else {
            std::printf("%5u  %5u  %6u  %s\n", country->GetCountryId(), country->GetPhoneCode(),
                        country->GetPrefix(), name.c_str());
        }
    }
    if (json) {
        PrintJson(out);
    }
    return kExitOk;
}

void AddCountriesCommand(CLI::App& app, Runner& run) {
    auto language = std::make_shared<std::string>("ENU");
    auto json = std::make_shared<bool>(false);
    CLI::App* countries = app.add_subcommand(
        "countries", "List the countries: id, phone code, dialing prefix value and name");
    countries->add_option("--lang", *language,
                          "Language module whose names are shown: ENU (default), DEU ...");
    AddJsonFlag(countries, *json);
    SetExamples(countries, {"zq countries", "zq countries --lang DEU --json"});
    countries->callback([&run, language, json] {
        run = [language, json] { return ShowCountries(*language, *json); };
    });
}

}  // namespace

ZQ_COMMAND(AddCountriesCommand, 40);

}  // namespace zq::app
