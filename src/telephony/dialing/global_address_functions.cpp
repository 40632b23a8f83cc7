#include "telephony/dialing/global_address_functions.h"

#include <cstring>
#include <string>
#include <utility>

#include "frame/resource_search.h"
#include "telephony/dialing/country_lookup.h"

namespace {

// What CString's trimming removes.
constexpr char kWhiteSpace[] = " \t\n\v\f\r";

// A code with its "-" behind it, or nothing when the code is empty.
void AppendWithDash(CString& csTo, const CString& csCode) {
    if (!csCode.IsEmpty()) {
        csTo += csCode;
        csTo += '-';
    }
}

// Whether csArea equals one of the ","-separated pieces of the trimmed list,
// byte for byte; the pieces themselves are not trimmed.
bool IsLocalAreaCode(const CString& csLocalAreaCodes, const CString& csArea) {
    CString codes(csLocalAreaCodes);
    codes.TrimLeft();
    codes.TrimRight();
    const char* p = codes;
    const char* end = p + codes.GetLength();
    const char* area = csArea;
    const int areaLength = csArea.GetLength();
    for (;;) {
        const char* comma = p;
        while (comma < end && *comma != ',') {
            ++comma;
        }
        if (comma - p == areaLength && std::char_traits<char>::compare(p, area, areaLength) == 0) {
            return true;
        }
        if (comma == end) {
            return false;
        }
        p = comma + 1;
    }
}

bool IsEmptyWithoutPlus(const CString& csCode) {
    const char* p = csCode;
    for (int i = 0; i < csCode.GetLength(); ++i) {
        if (p[i] != '+') {
            return false;
        }
    }
    return true;
}

// Byte equality of two codes with every "+" left out of both.
bool EqualsWithoutPlus(const CString& csA, const CString& csB) {
    const char* a = csA;
    const char* b = csB;
    const char* endA = a + csA.GetLength();
    const char* endB = b + csB.GetLength();
    for (;;) {
        while (a < endA && *a == '+') {
            ++a;
        }
        while (b < endB && *b == '+') {
            ++b;
        }
        if (a == endA || b == endB) {
            return a == endA && b == endB;
        }
        if (*a++ != *b++) {
            return false;
        }
    }
}

void AppendWithoutPlus(CString& csTo, const CString& csCode) {
    const char* p = csCode;
    for (int i = 0; i < csCode.GetLength(); ++i) {
        if (p[i] != '+') {
            csTo += p[i];
        }
    }
}

CString WithoutPlus(const CString& csCode) {
    CString code(csCode);
    code.Remove('+');
    return code;
}

// The first character of csText that trimming would keep, or chEmpty when
// trimming leaves nothing.
char FirstNonBlank(const CString& csText, char chEmpty) {
    const char* p = csText;
    for (int i = 0; i < csText.GetLength(); ++i) {
        if (p[i] == '\0' || std::strchr(kWhiteSpace, p[i]) == nullptr) {
            return p[i];
        }
    }
    return chEmpty;
}

}  // namespace

void CZqGlobalAddressFunctions::CleanDialable(CString& csText) {
    csText.TrimLeft();
    csText.TrimRight();
    const int length = csText.GetLength();
    if (length == 0) {
        return;
    }
    // Both walks write behind where they read, so they work in place.
    char* text = csText.GetBuffer(length);
    int n = 0;
    // Blanks go; a "-" behind a kept "-" goes, so a run becomes one.
    for (int i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == ' ' || (c == '-' && n > 0 && text[n - 1] == '-')) {
            continue;
        }
        text[n++] = c;
    }
    int first = 0;
    if (first < n && text[first] == '=') {
        ++first;
    }
    if (first < n && text[first] == '-') {
        ++first;
    }
    if (n > first && text[n - 1] == '-') {
        --n;
    }
    // A "-" stays only directly behind a digit of this walk's input.
    int m = 0;
    char before = '\0';
    for (int i = first; i < n; ++i) {
        const char c = text[i];
        if (c != '-' || (before >= '0' && before <= '9')) {
            text[m++] = c;
        }
        before = c;
    }
    csText.ReleaseBuffer(m);
}

int CZqGlobalAddressFunctions::MakeDialableAddress(_tagAddressInformation* pInfo,
                                                   int bDialAreaCodeLocally,
                                                   CZqTAPIInterface* /*pTAPI*/) {
    if (pInfo == nullptr) {
        return 0;
    }
    _tagAddressInformation& info = *pInfo;
    if (info.bTAPIDialing != 0) {
        // The telephony line interface cannot be made here: the call fails
        // before any output field is written.
        return 0;
    }

    // A number that begins with "=" (behind the area code, when there is
    // one) is dialed exactly as written. The first character is looked at
    // before anything is copied, since most numbers are not.
    if (FirstNonBlank(info.csAreaCode, FirstNonBlank(info.csNumber, '\0')) == '=') {
        CString area(info.csAreaCode);
        area.TrimLeft();
        area.TrimRight();
        CString number(info.csNumber);
        number.TrimLeft();
        number.TrimRight();
        CString entered(std::move(area));
        if (!entered.IsEmpty() && !number.IsEmpty()) {
            entered += '-';
        }
        entered += number;
        CleanDialable(entered);
        info.csDialable = std::move(entered);
        // Also when nothing is left after the cleaning, as it always was.
        info.bNoAddress = 0;
        zq::frame::LoadResourceString(kRuleAsEntered, info.csDialingRule);
        return 1;
    }

    // The pieces in dialing order are head + middle + number + suffix.
    CString head;
    AppendWithDash(head, info.csBlockCallerID);
    CString middle;
    int numberStart = 0;  // 1 when the number's first character is left out
    UINT rule = kRuleLocal;

    // Country codes count without their "+" signs.
    const bool domestic = IsEmptyWithoutPlus(info.csCountryCode) ||
                          EqualsWithoutPlus(info.csHomeCountryCode, info.csCountryCode);

    bool longDistance = false;  // international or long distance: area code and prefix follow
    bool done = false;          // the pieces are complete
    if (!domestic) {
        UINT prefix = 0;
        static const CString kNorthAmerica("1");
        if (EqualsWithoutPlus(info.csHomeCountryCode, kNorthAmerica) &&
            GetCountryPrefix(WithoutPlus(info.csCountryCode), prefix) && prefix > 0) {
            // A neighbour of the North American plan is dialed like a
            // long-distance call, its country code in the area code's place.
            if (info.bUseLongDistanceAccess == 1) {
                AppendWithDash(middle, info.csLongDistanceAccess);
            }
            AppendWithoutPlus(middle, info.csCountryCode);
            middle += '-';
            rule = kRuleLongDistance;
            head += info.csLongDistancePrefix;
            AppendWithDash(head, info.csDisableCallWaiting);
            done = true;
        } else {
            if (info.bUseInternationalAccess == 1) {
                AppendWithDash(middle, info.csInternationalAccess);
            }
            AppendWithoutPlus(middle, info.csCountryCode);
            middle += '-';
            rule = kRuleInternational;
            longDistance = true;
        }
    } else if (!info.csAreaCode.IsEmpty() &&
               !IsLocalAreaCode(info.csLocalAreaCodes, info.csAreaCode)) {
        if (info.bUseLongDistanceAccess == 1) {
            AppendWithDash(middle, info.csLongDistanceAccess);
        }
        rule = kRuleLongDistance;
        longDistance = true;
    }

    if (longDistance) {
        // The "-" also behind an empty area code; the cleaning drops the
        // doubled one.
        middle += info.csAreaCode;
        middle += '-';
        head += info.csLongDistancePrefix;
        AppendWithDash(head, info.csDisableCallWaiting);
    } else if (!done) {
        rule = kRuleLocal;
        if (info.bForceLongDistance == 1 || bDialAreaCodeLocally != 0) {
            if (info.bUseLongDistanceAccess == 1 && bDialAreaCodeLocally == 0) {
                AppendWithDash(middle, info.csLongDistanceAccess);
            }
            AppendWithDash(middle, info.csAreaCode);
            if (bDialAreaCodeLocally == 0) {
                rule = kRuleLocalAsLongDistance;
            }
        } else if (info.bDropFirstLocalDigit == 1 && !info.csNumber.IsEmpty()) {
            numberStart = 1;
        }
        // Any non-zero bForceLongDistance selects the long-distance outside
        // line, while area code and access code above need exactly 1: kept.
        if (info.bForceLongDistance != 0 || bDialAreaCodeLocally != 0) {
            head += info.csLongDistancePrefix;
        } else {
            head += info.csLocalPrefix;
        }
        AppendWithDash(head, info.csDisableCallWaiting);
    }

    CString dialable(std::move(head));
    // Room for all pieces at once (GetBuffer keeps the text).
    const int headLength = dialable.GetLength();
    dialable.GetBuffer(headLength + middle.GetLength() + info.csNumber.GetLength() +
                       info.csDialSuffix.GetLength() + 1);
    dialable.ReleaseBuffer(headLength);
    dialable += middle;
    if (numberStart == 0) {
        dialable += info.csNumber;
    } else {
        dialable += info.csNumber.Mid(numberStart);
    }
    if (!info.csDialSuffix.IsEmpty()) {
        dialable += '-';
        dialable += info.csDialSuffix;
    }
    CleanDialable(dialable);
    info.csDialable = dialable;
    info.csDisplayable = std::move(dialable);
    info.bNoAddress = info.csDialable.IsEmpty() ? 1 : 0;
    zq::frame::LoadResourceString(rule, info.csDialingRule);
    return 1;
}
