#include "language_module.h"

#include <cctype>

#include "frame/process_data.h"

namespace zq::app {

LanguageModule::~LanguageModule() {
    if (block_ != nullptr) {
        block_->m_CountryList.FreeData();
        block_->m_hLanguageModule = previous_;
    }
    if (module_ != nullptr) {
        FreeLibrary(module_);
    }
}

std::string LanguageModule::FileName(const std::string& language) {
    return "ZQGBL" + language + ".DLL";
}

DWORD LanguageModule::Load(const std::string& language) {
    ZqGblProcessData* block = ZqGblGetProcessData();
    if (block == nullptr) {
        return ERROR_INVALID_FUNCTION;
    }
    module_ = LoadLibraryA(FileName(language).c_str());
    if (module_ == nullptr) {
        const DWORD error = GetLastError();
        return error != 0 ? error : DWORD{ERROR_MOD_NOT_FOUND};
    }
    block_ = block;
    previous_ = block_->m_hLanguageModule;
    block_->m_hLanguageModule = module_;
    block_->m_CountryList.FreeData();
    return 0;
}

bool NormalizeLanguage(std::string& language) {
    if (language.size() != 3) {
        return false;
    }
    for (char& c : language) {
        if (!std::isalpha(static_cast<unsigned char>(c))) {
            return false;
        }
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return true;
}

}  // namespace zq::app
