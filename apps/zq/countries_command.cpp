// zq countries: the country list of the language module (id, phone code,
// dialing prefix value, name), in the list's own name order.
#include <cctype>
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "frame/process_data.h"
#include "telephony/country_lookup.h"

namespace zq::app {

namespace {

// The language module ZQGBL<LANG>.DLL as the process's language module
// while the object lives, with the country list emptied so that it loads
// again in that language.
class LanguageModule {
public:
    LanguageModule() = default;
    ~LanguageModule() {
        if (block_ != nullptr) {
            block_->m_CountryList.FreeData();
            block_->m_hLanguageModule = previous_;
        }
        if (module_ != nullptr) {
            FreeLibrary(module_);
        }
    }
    LanguageModule(const LanguageModule&) = delete;
    LanguageModule& operator=(const LanguageModule&) = delete;

    // 0, or the platform's error for a module that is not there.
    DWORD Load(const std::string& language) {
        block_ = ZqGblGetProcessData();
        if (block_ == nullptr) {
            return ERROR_INVALID_FUNCTION;
        }
        const std::string file = "ZQGBL" + language + ".DLL";
        module_ = LoadLibraryA(file.c_str());
        if (module_ == nullptr) {
            const DWORD error = GetLastError();
            block_ = nullptr;
            return error != 0 ? error : DWORD{ERROR_MOD_NOT_FOUND};
        }
        previous_ = block_->m_hLanguageModule;
        block_->m_hLanguageModule = module_;
        block_->m_CountryList.FreeData();
        return 0;
    }

private:
    ZqGblProcessData* block_ = nullptr;
    HINSTANCE module_ = nullptr;
    HINSTANCE previous_ = nullptr;
};

int ShowCountries(std::string language, bool json) {
    const std::string command = "countries";
    for (char& c : language) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    if (language.size() != 3) {
        return UsageError(command, "a language is three letters, e.g. ENU or DEU");
    }
    LanguageModule module;
    const DWORD status = module.Load(language);
    if (status != 0) {
        return Fail(command, "ZQGBL" + language + ".DLL", Win32Status(status));
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
