// CZqGlobalAddressFunctions: turns a stored telephone number into the
// string to dial from the current location.
//
// The caller fills the input fields of an _tagAddressInformation from the
// current location (CZqLocationItem) and the destination, and calls
// MakeDialableAddress. With bTAPIDialing set, the telephony service's own
// address translation is asked; otherwise the library's own rules build the
// string: caller-ID code, outside-line prefix, call-waiting code, access
// code, country code (international) or area code, number, suffix. Pieces
// are joined with "-", which the cleaning keeps only behind a digit.
//
// csDialingRule receives the text of the rule applied, a string resource of
// the language module (found through the frame's resource search):
//   15964 dialed as entered (the number begins with "=")
//   16027 international call
//   16028 long-distance call
//   16029 local call dialed as long distance
//   16030 local call
// It is emptied when no module holds the text.
//
// Nothing is kept between calls; safe on any thread for distinct records
// (country look-ups happen on the thread that loaded the library only, see
// country_lookup.h).
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqTAPIInterface;

// In/out record of MakeDialableAddress. Flags hold 0 or 1; where a flag is
// tested for non-zero rather than for 1, the builder says so.
struct _tagAddressInformation {
    CString csHomeCountryCode;      // in: location's CountryCode ("+" ignored)
    CString csLocalAreaCodes;       // in: location's AreaCityCode, codes split at ","
    CString csBlockCallerID;        // in: dialed before everything else
    CString csDisableCallWaiting;   // in: dialed after the outside-line prefix
    CString csDialSuffix;           // in: dialed after the number
    CString csInternationalAccess;  // in: before a foreign country code
    CString csLongDistanceAccess;   // in: before a non-local area code
    CString csLongDistancePrefix;   // in: outside line, international and long distance
    CString csLocalPrefix;          // in: outside line, local calls
    CString csCountryCode;          // in: destination country code
    CString csAreaCode;             // in: destination area code, may be empty
    CString csNumber;               // in: destination number as entered
    int bForceLongDistance = 0;     // in: dial a local number as long distance
    int bUseInternationalAccess = 0;
    int bUseLongDistanceAccess = 0;
    int bDropFirstLocalDigit = 0;  // in: local call without the number's first character
    CString csDialingRule;         // out: text of the rule applied
    CString csDialable;            // out: the string to dial
    CString csDisplayable;         // out: the string to show (= csDialable)
    int bTAPIDialing = 0;          // in: the telephony service translates
    int bNoAddress = 0;            // out: 1 when there is nothing to dial
};

class CZqGlobalAddressFunctions {
public:
    static constexpr UINT kRuleAsEntered = 15964;
    static constexpr UINT kRuleInternational = 16027;
    static constexpr UINT kRuleLongDistance = 16028;
    static constexpr UINT kRuleLocalAsLongDistance = 16029;
    static constexpr UINT kRuleLocal = 16030;

    virtual ~CZqGlobalAddressFunctions() = default;

    // Fills csDialingRule, csDialable, csDisplayable and bNoAddress from the
    // input fields. 1 when the output was set, also for an empty result
    // (bNoAddress 1 then). A number that begins with "=" is dialed as
    // written minus blanks and the "=" (csDisplayable then keeps its old
    // text). bDialAreaCodeLocally non-zero dials a local number with its
    // area code and the long-distance outside-line prefix, without access
    // code, under the local rule.
    //
    // With bTAPIDialing set, the telephony line interface cannot be made
    // yet: 0, and no output field is written. pTAPI is not used otherwise.
    // A NULL pInfo gives 0.
    static int MakeDialableAddress(_tagAddressInformation* pInfo, int bDialAreaCodeLocally,
                                   CZqTAPIInterface* pTAPI);

    // The cleaning of a dialable string, in place: trims white space, drops
    // blanks, collapses runs of "-", drops one leading "=", then one leading
    // and one trailing "-", and finally every "-" that does not follow a
    // digit.
    static void CleanDialable(CString& csText);
};
