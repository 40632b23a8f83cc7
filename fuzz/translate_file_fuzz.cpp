// Translation-table files of any content: the validity check and the load
// agree, nothing is read past the file or a field, and a loaded table saves
// to 608 bytes that load back to the same translator.
#include <cstring>

#include "fuzz_support.h"
#include "translate/gbl_translate.h"

namespace {

std::filesystem::path g_folder;

bool SameTranslator(const CGblTranslate& a, const CGblTranslate& b) {
    for (int i = 0; i < 256; ++i) {
        BYTE c = static_cast<BYTE>(i);
        if (a.GetInputValue(c) != b.GetInputValue(c) ||
            a.GetOutputValue(c) != b.GetOutputValue(c)) {
            return false;
        }
    }
    return a.IsGetEnabled() == b.IsGetEnabled() && a.IsPutEnabled() == b.IsPutEnabled() &&
           a.IsGetDBCSEnabled() == b.IsGetDBCSEnabled() &&
           a.IsPutDBCSEnabled() == b.IsPutDBCSEnabled() && a.GetLastInput() == b.GetLastInput() &&
           a.GetLastOutput() == b.GetLastOutput() && a.GetLastModeI() == b.GetLastModeI() &&
           a.GetLastModeO() == b.GetLastModeO() && a.GetDescription() == b.GetDescription();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    g_folder = zq::fuzz::MakeFuzzFolder("translate");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using zq::fuzz::Require;
    const std::string input = (g_folder / "input.xlt").string();
    const std::string output = (g_folder / "output.xlt").string();
    zq::fuzz::WriteBytes(input, data, size);

    DWORD valid = CGblTranslate::IsValidFile(input.c_str());
    CGblTranslate translator;
    DWORD loaded = translator.Load(input.c_str());
    Require(loaded == valid);
    if (loaded != 0) {
        Require(size != GBLXLT_FILE_SIZE || loaded >= GBLXLT_ERROR_TRAILER_SIZE);
        return 0;
    }
    Require(size == GBLXLT_FILE_SIZE);
    for (int i = 0; i < 256; ++i) {
        BYTE c = static_cast<BYTE>(i);
        Require(translator.GetInputValue(c) == data[i]);
        Require(translator.GetOutputValue(c) == data[256 + i]);
        Require(translator.DoGet(c) == (translator.IsGetEnabled() ? data[i] : c));
        Require(translator.DoPut(c) == (translator.IsPutEnabled() ? data[256 + i] : c));
    }
    Require(translator.GetDescription().GetLength() <= 63);
    Require(translator.GetFilePath() == input.c_str());

    Require(translator.Save(output.c_str()) == 0);
    std::string saved = zq::fuzz::ReadBytes(output);
    Require(saved.size() == GBLXLT_FILE_SIZE);
    Require(std::memcmp(saved.data(), data, 512) == 0);  // both tables as read
    CGblTranslate reloaded;
    Require(reloaded.Load(output.c_str()) == 0);
    Require(SameTranslator(translator, reloaded));
    Require(reloaded.Save(output.c_str()) == 0);
    Require(zq::fuzz::ReadBytes(output) == saved);  // a second round changes nothing
    return 0;
}
