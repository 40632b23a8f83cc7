// Test helper: one of the library's language modules as the process
// block's language module for the life of the object, with the process's
// country list emptied on the way in and out so it loads in that language.
#pragma once

#include <gtest/gtest.h>

#include "frame/process_data.h"
#include "platform/win32.h"

namespace zq::telephony::testing {

class ScopedLanguageModule {
public:
    // file: "ZQGBLENU.DLL", "ZQGBLDEU.DLL", or NULL for no language module.
    explicit ScopedLanguageModule(const char* file) {
        block_ = ZqGblGetProcessData();
        if (block_ == nullptr) {
            ADD_FAILURE() << "no process block on this thread";
            return;
        }
        if (file != nullptr) {
            module_ = LoadLibraryA(file);
            EXPECT_NE(module_, nullptr) << file << " not found";
        }
        previous_ = block_->m_hLanguageModule;
        block_->m_hLanguageModule = module_;
        block_->m_CountryList.FreeData();
    }
    ~ScopedLanguageModule() {
        if (block_ != nullptr) {
            block_->m_CountryList.FreeData();
            block_->m_hLanguageModule = previous_;
        }
        if (module_ != nullptr) {
            FreeLibrary(module_);
        }
    }
    ScopedLanguageModule(const ScopedLanguageModule&) = delete;
    ScopedLanguageModule& operator=(const ScopedLanguageModule&) = delete;

    HINSTANCE module() const { return module_; }

private:
    ZqGblProcessData* block_ = nullptr;
    HINSTANCE module_ = nullptr;
    HINSTANCE previous_ = nullptr;
};

}  // namespace zq::telephony::testing
