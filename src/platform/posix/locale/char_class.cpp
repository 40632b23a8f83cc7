#include "platform/posix/locale/char_class.h"

#include <unicode/uchar.h>

#include <map>
#include <memory>
#include <mutex>

#include "platform/posix/locale/codepage.h"
#include "platform/win32.h"

namespace zq::platform::internal {

CharClass::CharClass(unsigned code_page) {
    const CodePage* page = CodePage::Get(code_page);
    for (int b = 0; b < 256; ++b) {
        const auto byte = static_cast<unsigned char>(b);
        upper_[b] = lower_[b] = byte;
        if (!page || (!page->IsSingleByte() && b >= 0x80)) {
            flags_[b] = page && page->IsLeadByte(byte) ? kLead : 0;
            if (b >= 0x80) {
                continue;
            }
        }
        const char16_t unit = page && page->IsSingleByte() ? page->DecodeByte(byte) : char16_t(b);
        uint8_t flags = flags_[b];
        if (u_isalpha(unit))
            flags |= kAlpha;
        if (u_isdigit(unit))
            flags |= kDigit;
        if (u_isupper(unit))
            flags |= kUpper;
        if (u_islower(unit))
            flags |= kLower;
        flags_[b] = flags;
        auto map_to = [&](UChar32 mapped) -> unsigned char {
            if (mapped == unit || mapped > 0xFFFF) {
                return byte;
            }
            const int encoded = page && page->IsSingleByte()
                                    ? page->EncodeUnit(static_cast<char16_t>(mapped))
                                    : (mapped < 0x80 ? mapped : -1);
            return encoded < 0 ? byte : static_cast<unsigned char>(encoded);
        };
        upper_[b] = map_to(u_toupper(unit));
        lower_[b] = map_to(u_tolower(unit));
    }
}

const CharClass& CharClass::Ansi() {
    // Tables are never freed, so each thread may keep the last one it used.
    thread_local unsigned cached_code_page = 0;
    thread_local const CharClass* cached = nullptr;
    const unsigned code_page = GetACP();
    if (cached && cached_code_page == code_page) {
        return *cached;
    }
    static std::mutex mutex;
    static auto* tables = new std::map<unsigned, std::unique_ptr<CharClass>>;  // lives until exit
    std::lock_guard<std::mutex> lock(mutex);
    auto& slot = (*tables)[code_page];
    if (!slot) {
        slot.reset(new CharClass(code_page));
    }
    cached_code_page = code_page;
    cached = slot.get();
    return *slot;
}

}  // namespace zq::platform::internal
