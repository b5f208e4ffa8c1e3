// SPDX-License-Identifier: Apache-2.0
// Tests of Desk: a program that names what does not hold and fails.
#include <cstdio>

#include "DKDesk.h"
#include "DKTask.h"
#include "DeskLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSUserDefaults.h"
#include "PBPostLoader.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

using namespace desk;

namespace {

extern Library testLibrary;

// A service that always fails.
class DKFailingService : public NSObject {
    PELVOR_CLASS(DKFailingService, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<DKFailingService> init(Class* cls = classObject()) { return make<DKFailingService>(cls); }
    NSUInteger countInText(NSString*) { throw NSException(NSGenericException, "no ink"); }
};
PELVOR_DEFINE_CLASS(DKFailingService, testLibrary) {
    methods.creator<"init", &DKFailingService::init>();
    methods.instance<"countInText:", &DKFailingService::countInText>();
}
constexpr Library* kDependencies[] = {&deskLibrary};
constexpr Class* kClasses[] = {&DKFailingService::classRecord};
constinit Library testLibrary{"DeskTest", kDependencies, kClasses, {}};

int failures = 0;

void check(bool holds, const char* what) {
    if (!holds) std::printf("failed: %s\n", what), ++failures;
}

void testThatPlugInCounts() {
    AutoreleasePool pool;
    NSBundle* letters = NSBundle::bundleWithPath(NSString::ofUTF8(LETTERS_BUNDLE));
    check(letters->load(), "the plug-in is loaded");
    id motto = letters->objectForInfoDictionaryKey(u"LTMotto"_ns);
    check(motto && motto->isEqual(u"Count & be counted"_ns),
          "the information dictionary has what CMake gave it");
    auto desk = DKDesk::init();
    desk->examineText(u"A fish & 2 chips"_ns);
    desk->run();
    check(desk->report()->isEqual(u"Letters: 10\nVowels: 3"_ns), desk->report()->UTF8String());
    check(!desk->hasFailed(), "nothing fails");
}

void testThatFailureIsReported() {
    AutoreleasePool pool;
    auto* declaration =
        NSDictionary::of({{PBProfileClassKey, u"DKFailingService"_ns}, {PBProfileNameKey, u"Ink"_ns}});
    auto* profile = PBProfile::profileWithIdentifier_dictionary_bundle(u"test.ink"_ns, declaration, nullptr);
    auto task = DKTask::initWithProfile_text(profile, u"A fish"_ns);
    check(!task->isDone(), "a new task is not done");
    task->run();
    check(task->hasFailed(), "the task fails");
    check(task->result()->hasSuffix(u"no ink"_ns), "the result tells why");
}

}  // namespace

int main() {
    AutoreleasePool pool;
    NSUserDefaults::setStandardUserDefaults(NSUserDefaults::initVolatile().get());
    NSUserDefaults::standardUserDefaults()->setObject_forKey(NSArray::of({u"en"_ns}), u"PelvorLanguages"_ns);
    registerLibrary(testLibrary);
    PBPostLoader::processClasses();
    testThatPlugInCounts();
    testThatFailureIsReported();
    return failures;
}
