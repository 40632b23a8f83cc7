// The language module whose texts (country names, dialing rules) the
// library uses while a command runs.
//
// A program of the suite loads its language module once at start; zq picks
// one per command (--lang, English unless told otherwise). The module
// ZQGBL<LANG>.DLL becomes the process block's language module for the life
// of the object, and the country list is emptied on the way in and out so
// that it loads in that language.
#pragma once

#include <string>

#include "platform/win32.h"

struct ZqGblProcessData;

namespace zq::app {

class LanguageModule {
public:
    LanguageModule() = default;
    ~LanguageModule();
    LanguageModule(const LanguageModule&) = delete;
    LanguageModule& operator=(const LanguageModule&) = delete;

    // 0, or the platform's error for a module that is not there.
    // `language` is the three-letter abbreviation (ENU, DEU ...).
    DWORD Load(const std::string& language);

    // "ZQGBL<LANG>.DLL" for a language as typed (upper-cased).
    static std::string FileName(const std::string& language);

private:
    ZqGblProcessData* block_ = nullptr;
    HINSTANCE module_ = nullptr;
    HINSTANCE previous_ = nullptr;
};

// The three-letter language as typed, upper-cased; false when it is not
// three letters.
bool NormalizeLanguage(std::string& language);

}  // namespace zq::app
