#include "platform/posix/locale/codepage.h"

#include <unicode/normalizer2.h>
#include <unicode/ucnv.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdio>
#include <map>
#include <mutex>

namespace zq::platform::internal {

namespace {

constexpr int16_t kUnmapped = -1;
constexpr int16_t kFallbackFlag = 0x100;  // mapped only as a best fit

struct IcuConverter {
    UConverter* handle = nullptr;
    explicit IcuConverter(const std::string& name) {
        UErrorCode status = U_ZERO_ERROR;
        handle = ucnv_open(name.c_str(), &status);
        if (U_FAILURE(status)) {
            handle = nullptr;
        }
    }
    ~IcuConverter() {
        if (handle) {
            ucnv_close(handle);
        }
    }
    IcuConverter(const IcuConverter&) = delete;
    IcuConverter& operator=(const IcuConverter&) = delete;
};

void StopOnError(UConverter* cnv) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(cnv, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(cnv, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
}

// ICU names of the supported Windows code pages.
std::string IcuNameFor(UINT id) {
    switch (id) {
        case CP_UTF8:
            return "UTF-8";
        case 28591:
            return "ISO-8859-1";
        case 437:
        case 737:
        case 775:
        case 850:
        case 852:
        case 855:
        case 857:
        case 860:
        case 861:
        case 862:
        case 863:
        case 864:
        case 865:
        case 866:
        case 869:
        case 874:
        case 932:
        case 936:
        case 949:
        case 950:
        case 1250:
        case 1251:
        case 1252:
        case 1253:
        case 1254:
        case 1255:
        case 1256:
        case 1257:
        case 1258:
        case 10000:
        case 20127:
        case 28592:
        case 28593:
        case 28594:
        case 28595:
        case 28596:
        case 28597:
        case 28598:
        case 28599:
        case 28603:
        case 28605: {
            char name[32];
            std::snprintf(name, sizeof name, "%s-%u", id >= 860 && id <= 865 ? "ibm" : "windows",
                          id);
            return name;
        }
        default:
            return {};
    }
}

}  // namespace

char16_t BestFitBase(char16_t unit) {
    // Letters with a stroke have no decomposition but an obvious base.
    static constexpr struct {
        char16_t from, to;
    } kStroked[] = {
        {u'\u0110', u'D'}, {u'\u0111', u'd'}, {u'\u0126', u'H'}, {u'\u0127', u'h'},
        {u'\u0131', u'i'}, {u'\u0141', u'L'}, {u'\u0142', u'l'}, {u'\u0166', u'T'},
        {u'\u0167', u't'}, {u'\u2010', u'-'}, {u'\u2011', u'-'}, {u'\u2212', u'-'},
    };
    for (const auto& pair : kStroked) {
        if (pair.from == unit) {
            return pair.to;
        }
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status)) {
        return 0;
    }
    icu::UnicodeString decomposition;
    if (!nfd->getDecomposition(unit, decomposition) || decomposition.length() == 0) {
        return 0;
    }
    char16_t base = decomposition.charAt(0);
    return base != unit ? base : 0;
}

CodePage::CodePage(UINT id, std::string icu_name) : id_(id), icu_name_(std::move(icu_name)) {}

CodePage::~CodePage() = default;

bool CodePage::Load() {
    if (id_ == CP_UTF8) {
        single_byte_ = false;
        return true;
    }
    IcuConverter cnv(icu_name_);
    if (!cnv.handle) {
        return false;
    }
    StopOnError(cnv.handle);
    single_byte_ = ucnv_getMaxCharSize(cnv.handle) == 1;
    if (!single_byte_) {
        UErrorCode status = U_ZERO_ERROR;
        UBool starters[256];
        ucnv_getStarters(cnv.handle, starters, &status);
        if (U_SUCCESS(status)) {
            for (int b = 0; b < 256; ++b) {
                lead_bytes_[b] = starters[b] && b >= 0x80;
            }
        }
        return true;
    }
    from_unicode_.assign(65536, kUnmapped);
    for (int b = 0; b < 256; ++b) {
        const char byte = static_cast<char>(b);
        UChar unit[4];
        UErrorCode status = U_ZERO_ERROR;
        ucnv_reset(cnv.handle);
        int32_t n = ucnv_toUChars(cnv.handle, unit, 4, &byte, 1, &status);
        char16_t decoded;
        if (U_SUCCESS(status) && n == 1) {
            decoded = unit[0];
        } else {
            // Bytes a page leaves undefined decode to the C1 control of the
            // same value, as Windows' tables do for 0x81 in Windows-1252.
            decoded = (b >= 0x80 && b < 0xA0) ? static_cast<char16_t>(b) : u'\uFFFD';
        }
        to_unicode_[b] = decoded;
        if (decoded != u'\uFFFD' && from_unicode_[decoded] == kUnmapped) {
            from_unicode_[decoded] = static_cast<int16_t>(b);
        }
    }
    // One-way mappings the converter knows (fullwidth forms and the like)
    // serve as best fits.
    UErrorCode status = U_ZERO_ERROR;
    USet* set = uset_openEmpty();
    ucnv_getUnicodeSet(cnv.handle, set, UCNV_ROUNDTRIP_AND_FALLBACK_SET, &status);
    if (U_SUCCESS(status)) {
        ucnv_setFallback(cnv.handle, true);
        const int32_t ranges = uset_getItemCount(set);
        for (int32_t i = 0; i < ranges; ++i) {
            UChar32 start, end;
            UErrorCode item_status = U_ZERO_ERROR;
            if (uset_getItem(set, i, &start, &end, nullptr, 0, &item_status) != 0) {
                continue;
            }
            for (UChar32 c = start; c <= end && c < 0x10000; ++c) {
                if (from_unicode_[c] != kUnmapped) {
                    continue;
                }
                const UChar unit = static_cast<UChar>(c);
                char byte[4];
                UErrorCode conv_status = U_ZERO_ERROR;
                ucnv_reset(cnv.handle);
                int32_t n = ucnv_fromUChars(cnv.handle, byte, 4, &unit, 1, &conv_status);
                if (U_SUCCESS(conv_status) && n == 1) {
                    from_unicode_[c] =
                        static_cast<int16_t>(static_cast<unsigned char>(byte[0]) | kFallbackFlag);
                }
            }
        }
    }
    uset_close(set);
    return true;
}

const CodePage* CodePage::Get(UINT code_page) {
    switch (code_page) {
        case CP_ACP:
        case CP_THREAD_ACP:
            code_page = GetACP();
            break;
        case CP_OEMCP:
            code_page = GetOEMCP();
            break;
        case CP_MACCP:
            code_page = 10000;
            break;
        default:
            break;
    }
    static std::mutex mutex;
    static auto* pages = new std::map<UINT, std::unique_ptr<CodePage>>;  // lives until exit
    std::lock_guard<std::mutex> lock(mutex);
    auto it = pages->find(code_page);
    if (it != pages->end()) {
        return it->second.get();
    }
    std::string name = IcuNameFor(code_page);
    std::unique_ptr<CodePage> page;
    if (!name.empty()) {
        page.reset(new CodePage(code_page, std::move(name)));
        if (!page->Load()) {
            page.reset();
        }
    }
    CodePage* result = page.get();
    (*pages)[code_page] = std::move(page);
    return result;
}

const CodePage& CodePage::Ansi() {
    const CodePage* page = Get(CP_ACP);
    return page ? *page : *Get(1252);
}

int CodePage::EncodeUnit(char16_t unit) const {
    if (!single_byte_) {
        return unit < 0x80 ? unit : -1;
    }
    int16_t v = from_unicode_[unit];
    return (v == kUnmapped || (v & kFallbackFlag)) ? -1 : v;
}

bool CodePage::Decode(std::string_view bytes, std::u16string& out, bool strict) const {
    out.clear();
    if (single_byte_) {
        out.reserve(bytes.size());
        for (unsigned char b : bytes) {
            out.push_back(to_unicode_[b]);
        }
        return true;
    }
    if (IsUtf8()) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t substitutions = 0;
        int32_t needed = 0;
        u_strFromUTF8WithSub(nullptr, 0, &needed, bytes.data(), static_cast<int32_t>(bytes.size()),
                             0xFFFD, &substitutions, &status);
        status = U_ZERO_ERROR;
        out.resize(static_cast<size_t>(needed));
        u_strFromUTF8WithSub(reinterpret_cast<UChar*>(out.data()), needed, &needed, bytes.data(),
                             static_cast<int32_t>(bytes.size()), 0xFFFD, &substitutions, &status);
        if (U_FAILURE(status) && status != U_STRING_NOT_TERMINATED_WARNING) {
            out.clear();
            return !strict;
        }
        return !(strict && substitutions > 0);
    }
    return DecodeMultiByte(bytes, out, strict);
}

bool CodePage::DecodeMultiByte(std::string_view bytes, std::u16string& out, bool strict) const {
    IcuConverter cnv(icu_name_);
    if (!cnv.handle) {
        return false;
    }
    StopOnError(cnv.handle);
    const char* source = bytes.data();
    const char* const limit = bytes.data() + bytes.size();
    UChar buffer[256];
    while (source < limit) {
        UChar* target = buffer;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(cnv.handle, &target, buffer + 256, &source, limit, nullptr, true, &status);
        out.append(reinterpret_cast<const char16_t*>(buffer), static_cast<size_t>(target - buffer));
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            continue;
        }
        if (U_FAILURE(status)) {
            if (strict) {
                return false;
            }
            // Skip the offending bytes and carry on.
            char bad[8];
            int8_t length = sizeof bad;
            UErrorCode ignored = U_ZERO_ERROR;
            ucnv_getInvalidChars(cnv.handle, bad, &length, &ignored);
            out.push_back(u'\uFFFD');
            ucnv_reset(cnv.handle);
            if (length == 0 && source < limit) {
                ++source;
            }
        }
    }
    return true;
}

bool CodePage::Encode(std::u16string_view text, std::string& out, const EncodeOptions& options,
                      bool* used_default) const {
    out.clear();
    if (used_default) {
        *used_default = false;
    }
    if (IsUtf8()) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t substitutions = 0;
        int32_t needed = 0;
        const auto* source = reinterpret_cast<const UChar*>(text.data());
        u_strToUTF8WithSub(nullptr, 0, &needed, source, static_cast<int32_t>(text.size()), 0xFFFD,
                           &substitutions, &status);
        status = U_ZERO_ERROR;
        out.resize(static_cast<size_t>(needed));
        u_strToUTF8WithSub(out.data(), needed, &needed, source, static_cast<int32_t>(text.size()),
                           0xFFFD, &substitutions, &status);
        return !(options.strict && substitutions > 0);
    }
    if (!single_byte_) {
        return EncodeMultiByte(text, out, options, used_default);
    }
    const char default_char = options.default_char ? options.default_char[0] : '?';
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        int16_t v = from_unicode_[unit];
        if (v != kUnmapped && (!(v & kFallbackFlag) || options.best_fit)) {
            out.push_back(static_cast<char>(v & 0xFF));
            continue;
        }
        if (options.best_fit) {
            char16_t base = BestFitBase(unit);
            int16_t b = base ? from_unicode_[base] : kUnmapped;
            if (b != kUnmapped) {
                out.push_back(static_cast<char>(b & 0xFF));
                continue;
            }
        }
        // A surrogate pair is one character and gets one default character.
        if (U16_IS_LEAD(unit) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1])) {
            ++i;
        }
        out.push_back(default_char);
        if (used_default) {
            *used_default = true;
        }
    }
    return true;
}

std::string CodePage::EncodeOneMultiByte(char32_t c) const {
    IcuConverter cnv(icu_name_);
    if (!cnv.handle) {
        return {};
    }
    StopOnError(cnv.handle);
    UChar units[2];
    int32_t length = 0;
    U16_APPEND_UNSAFE(units, length, c);
    char bytes[8];
    UErrorCode status = U_ZERO_ERROR;
    int32_t n = ucnv_fromUChars(cnv.handle, bytes, sizeof bytes, units, length, &status);
    return U_SUCCESS(status) ? std::string(bytes, static_cast<size_t>(n)) : std::string();
}

bool CodePage::EncodeMultiByte(std::u16string_view text, std::string& out,
                               const EncodeOptions& options, bool* used_default) const {
    IcuConverter cnv(icu_name_);
    if (!cnv.handle) {
        return false;
    }
    StopOnError(cnv.handle);
    ucnv_setFallback(cnv.handle, options.best_fit);
    const std::string default_char = options.default_char ? options.default_char : "?";
    size_t i = 0;
    while (i < text.size()) {
        UChar32 c;
        U16_NEXT(text.data(), i, text.size(), c);
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        UChar units[2];
        int32_t length = 0;
        U16_APPEND_UNSAFE(units, length, c);
        char bytes[8];
        UErrorCode status = U_ZERO_ERROR;
        ucnv_reset(cnv.handle);
        int32_t n = ucnv_fromUChars(cnv.handle, bytes, sizeof bytes, units, length, &status);
        if (U_SUCCESS(status) && n > 0) {
            out.append(bytes, static_cast<size_t>(n));
            continue;
        }
        if (options.best_fit && c < 0x10000) {
            char16_t base = BestFitBase(static_cast<char16_t>(c));
            if (base) {
                std::string mapped = base < 0x80 ? std::string(1, static_cast<char>(base))
                                                 : EncodeOneMultiByte(base);
                if (!mapped.empty()) {
                    out += mapped;
                    continue;
                }
            }
        }
        // A lead byte takes its trail byte along.
        const size_t width =
            default_char.size() >= 2 && IsLeadByte(static_cast<unsigned char>(default_char[0])) ? 2
                                                                                                : 1;
        out += default_char.substr(0, width);
        if (used_default) {
            *used_default = true;
        }
    }
    return true;
}

}  // namespace zq::platform::internal
