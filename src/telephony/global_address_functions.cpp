#include "telephony/global_address_functions.h"

#include <string>
#include <utility>

#include "frame/resource_search.h"
#include "telephony/country_lookup.h"

namespace {

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

}  // namespace

void CZqGlobalAddressFunctions::CleanDialable(CString& csText) {
    csText.TrimLeft();
    csText.TrimRight();
    const int length = csText.GetLength();
    if (length == 0) {
        return;
    }
    const char* in = csText;
    CString kept;
    char* out = kept.GetBuffer(length);
    int n = 0;
    // Blanks go; a "-" behind a kept "-" goes, so a run becomes one.
    for (int i = 0; i < length; ++i) {
        const char c = in[i];
        if (c == ' ' || (c == '-' && n > 0 && out[n - 1] == '-')) {
            continue;
        }
        out[n++] = c;
    }
    int first = 0;
    if (first < n && out[first] == '=') {
        ++first;
    }
    if (first < n && out[first] == '-') {
        ++first;
    }
    if (n > first && out[n - 1] == '-') {
        --n;
    }
    // A "-" stays only directly behind a digit of this pass's input.
    int m = 0;
    for (int i = first; i < n; ++i) {
        const char c = out[i];
        if (c == '-' && !(i > first && out[i - 1] >= '0' && out[i - 1] <= '9')) {
            continue;
        }
        out[m++] = c;
    }
    kept.ReleaseBuffer(m);
    csText = std::move(kept);
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
    // one) is dialed exactly as written.
    {
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
        if (!entered.IsEmpty() && entered[0] == '=') {
            CleanDialable(entered);
            info.csDialable = std::move(entered);
            // Also when nothing is left after the cleaning, as it always was.
            info.bNoAddress = 0;
            zq::frame::LoadResourceString(kRuleAsEntered, info.csDialingRule);
            return 1;
        }
    }

    CString head;
    AppendWithDash(head, info.csBlockCallerID);
    CString middle;
    CString number(info.csNumber);
    CString tail;
    if (!info.csDialSuffix.IsEmpty()) {
        tail += '-';
        tail += info.csDialSuffix;
    }
    UINT rule = kRuleLocal;

    CString home(info.csHomeCountryCode);
    home.Remove('+');
    CString dest(info.csCountryCode);
    dest.Remove('+');
    const bool domestic = dest.IsEmpty() || home == dest;

    bool longDistance = false;  // international or long distance: area code and prefix follow
    bool done = false;          // the pieces are complete
    if (!domestic) {
        UINT prefix = 0;
        if (home == "1" && GetCountryPrefix(dest, prefix) && prefix > 0) {
            // A neighbour of the North American plan is dialed like a
            // long-distance call, its country code in the area code's place.
            if (info.bUseLongDistanceAccess == 1) {
                AppendWithDash(middle, info.csLongDistanceAccess);
            }
            middle += dest;
            middle += '-';
            rule = kRuleLongDistance;
            head += info.csLongDistancePrefix;
            AppendWithDash(head, info.csDisableCallWaiting);
            done = true;
        } else {
            if (info.bUseInternationalAccess == 1) {
                AppendWithDash(middle, info.csInternationalAccess);
            }
            middle += dest;
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
            number = info.csNumber.Mid(1);
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
    dialable += middle;
    dialable += number;
    dialable += tail;
    CleanDialable(dialable);
    info.csDialable = dialable;
    info.csDisplayable = std::move(dialable);
    info.bNoAddress = info.csDialable.IsEmpty() ? 1 : 0;
    zq::frame::LoadResourceString(rule, info.csDialingRule);
    return 1;
}
