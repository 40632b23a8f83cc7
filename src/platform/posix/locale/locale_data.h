// Everything GetLocaleInfo and the date and time pictures need to know
// about one locale, gathered from ICU and the locale table once, on first
// use, and kept for the life of the process. Instances are immutable and
// shared between threads.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

#include "platform/posix/locale/locale_table.h"
#include "platform/win32.h"

namespace zq::platform::internal {

class LocaleData {
public:
    // The data of a locale (special LCIDs resolved as FindLocaleRecord
    // does); nullptr when the locale is not supported.
    static const LocaleData* For(LCID lcid);

    const LocaleRecord& Record() const { return record_; }

    // The value of an LCTYPE (flag bits removed), or nullptr when Windows
    // defines no such field.
    const std::u16string* Field(LCTYPE type) const;
    // True for the fields that hold a number (LOCALE_RETURN_NUMBER works).
    static bool IsNumericField(LCTYPE type);
    // True when the number of a numeric field is written in hexadecimal.
    static bool IsHexField(LCTYPE type);

    // Names for the pictures: day of week 0 = Sunday, month 1-12.
    const std::u16string& DayName(unsigned day_of_week, bool abbreviated) const;
    const std::u16string& MonthName(unsigned month, bool abbreviated, bool genitive) const;
    const std::u16string& Era() const { return era_; }
    const std::u16string& Am() const;
    const std::u16string& Pm() const;

private:
    explicit LocaleData(const LocaleRecord& record);
    void Load();

    LocaleRecord record_;
    std::map<LCTYPE, std::u16string> fields_;
    std::array<std::u16string, 12> genitive_months_;
    std::u16string era_;
};

// Turns an ICU date/time pattern into a Windows picture ("EEEE, MMMM d, y"
// -> "dddd, MMMM d, yyyy", "h:mm a" -> "h:mm tt"). Fields Windows has no
// picture for (time zones, fractions of a second) are left out.
std::u16string PictureFromIcuPattern(std::u16string_view pattern);

}  // namespace zq::platform::internal
