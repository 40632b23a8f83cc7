// CZqGlobalAddressFunctions::MakeDialableAddress on the library's own path:
// the four numbers of the Munich office example (international, long
// distance, local, as entered), one after the other, the rule texts loaded
// from the English language module; and a North-American neighbour call,
// which also looks the country up in the country list.
#include <benchmark/benchmark.h>

#include "frame/process_data.h"
#include "platform/win32.h"
#include "telephony/dialing/country_lookup.h"
#include "telephony/dialing/global_address_functions.h"

namespace {

// The English language module as the process's language module.
class EnglishModule {
public:
    EnglishModule() {
        block_ = ZqGblGetProcessData();
        module_ = LoadLibraryA("ZQGBLENU.DLL");
        if (block_ != nullptr) {
            previous_ = block_->m_hLanguageModule;
            block_->m_hLanguageModule = module_;
            block_->m_CountryList.FreeData();
        }
    }
    ~EnglishModule() {
        if (block_ != nullptr) {
            block_->m_CountryList.FreeData();
            block_->m_hLanguageModule = previous_;
        }
        if (module_ != nullptr) {
            FreeLibrary(module_);
        }
    }
    bool ok() const { return block_ != nullptr && module_ != nullptr; }

private:
    ZqGblProcessData* block_ = nullptr;
    HINSTANCE module_ = nullptr;
    HINSTANCE previous_ = nullptr;
};

_tagAddressInformation MunichOffice() {
    _tagAddressInformation info;
    info.csHomeCountryCode = "49";
    info.csLocalAreaCodes = "89";
    info.csInternationalAccess = "00";
    info.csLongDistanceAccess = "0";
    info.csLongDistancePrefix = "0,";
    info.csLocalPrefix = "0,";
    info.bUseInternationalAccess = 1;
    info.bUseLongDistanceAccess = 1;
    return info;
}

struct Destination {
    const char* country;
    const char* area;
    const char* number;
};

constexpr Destination kWorkedTable[] = {
    {"44", "171", "555 1234"},
    {"49", "30", "1234567"},
    {"49", "89", "1234567"},
    {"49", "", "=0049 89 1234"},
};

void BM_MakeDialableAddressWorkedTable(benchmark::State& state) {
    EnglishModule english;
    if (!english.ok()) {
        state.SkipWithError("no language module");
        return;
    }
    _tagAddressInformation records[4];
    for (int i = 0; i < 4; ++i) {
        records[i] = MunichOffice();
        records[i].csCountryCode = kWorkedTable[i].country;
        records[i].csAreaCode = kWorkedTable[i].area;
        records[i].csNumber = kWorkedTable[i].number;
    }
    int64_t calls = 0;
    for (auto _ : state) {
        for (_tagAddressInformation& info : records) {
            benchmark::DoNotOptimize(
                CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr));
        }
        calls += 4;
    }
    state.SetItemsProcessed(calls);
}
BENCHMARK(BM_MakeDialableAddressWorkedTable);

void BM_MakeDialableAddressNorthAmericanNeighbour(benchmark::State& state) {
    EnglishModule english;
    if (!english.ok() || GetGlobalCountryList() == nullptr) {
        state.SkipWithError("no language module");
        return;
    }
    _tagAddressInformation info;
    info.csHomeCountryCode = "1";
    info.csLocalAreaCodes = "212,646,718";
    info.csBlockCallerID = "*67";
    info.csDisableCallWaiting = "*70";
    info.csInternationalAccess = "011";
    info.csLongDistanceAccess = "1";
    info.csLongDistancePrefix = "8,";
    info.csLocalPrefix = "9,";
    info.bUseInternationalAccess = 1;
    info.bUseLongDistanceAccess = 1;
    info.csCountryCode = "264";
    info.csNumber = "497 1234";
    for (auto _ : state) {
        benchmark::DoNotOptimize(CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_MakeDialableAddressNorthAmericanNeighbour);

}  // namespace
