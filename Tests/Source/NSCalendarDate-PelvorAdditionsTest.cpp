// SPDX-License-Identifier: Apache-2.0
// Tests of the user's date and time formats.
#include "NSCalendarDate-PelvorAdditions.h"

#include "Foundation/NSUserDefaults.h"
#include "Prelude.h"

namespace {

using Additions = NSCalendarDate_PelvorAdditions;

// Program settings in memory, which go with the scope.
struct SettingsScope {
    SettingsScope() { NSUserDefaults::setStandardUserDefaults(settings); }
    ~SettingsScope() { NSUserDefaults::setStandardUserDefaults(nullptr); }
    Retained<NSUserDefaults> settings = NSUserDefaults::initVolatile();
};

TEST(NSCalendarDatePelvorAdditions, ReturnTheSettingsAsTheyAreNow) {
    SettingsScope scope;
    const std::pair<NSString* (*)(), NSString*> rows[] = {
        {Additions::systemDefinedTimeDateFormatString, NSTimeDateFormatString},
        {Additions::systemDefinedDateFormatString, NSDateFormatString},
        {Additions::systemDefinedShortDateFormatString, NSShortDateFormatString},
        {Additions::systemDefinedTimeFormatString, NSTimeFormatString}};
    for (auto [operation, key] : rows) {
        EXPECT_FALSE(operation());
        scope.settings->setObject_forKey(key, key);
        EXPECT_EQ(shown(operation()), shown(key));
        scope.settings->setObject_forKey(NSArray::of({key}), key);
        EXPECT_FALSE(operation()) << "it is no text";
    }
}

// The locale is made once in a process, so each case has a process of its own.
[[noreturn]] void makeLocale(std::initializer_list<NSString*> keys) {
    auto settings = NSUserDefaults::initVolatile();
    NSUserDefaults::setStandardUserDefaults(settings);
    for (NSString* key : keys) settings->setObject_forKey(key, key);
    NSDictionary* locale = Additions::systemDefinedLocale();
    settings->setObject_forKey(u"later"_ns, NSTimeDateFormatString);
    const bool stays = Additions::systemDefinedLocale() == locale &&
                       !u"later"_ns->isEqual(locale->objectForKey(NSTimeDateFormatString));
    std::fprintf(stderr, "%u %s", locale->count(), stays ? "stays" : "changes");
    std::_Exit(0);
}

TEST(NSCalendarDatePelvorAdditions, EndTheLocaleAtTheFirstSettingThatIsMissing) {
    const auto expect = [](std::initializer_list<NSString*> keys, const char* result) {
        EXPECT_EXIT(makeLocale(keys), ::testing::ExitedWithCode(0), result);
    };
    expect({}, "^0 stays$");
    expect({NSAMPMDesignation, NSMonthNameArray}, "^0 stays$");
    expect({NSTimeDateFormatString, NSMonthNameArray, NSDateFormatString}, "^1 stays$");
    expect({NSTimeDateFormatString, NSAMPMDesignation, NSMonthNameArray, NSShortMonthNameArray,
            NSWeekDayNameArray, NSShortWeekDayNameArray, NSDateFormatString},
           "^6 stays$");
}

}  // namespace
