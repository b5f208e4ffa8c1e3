// SPDX-License-Identifier: Apache-2.0
#include "PBUtil.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/LibraryTexts.h"
#include "Foundation/NSBundle.h"
#include "Foundation/PlatformVersion.h"
#include "Foundation/SystemVersion.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

bool hasSeededRandom = false;
bool isRunPoofs = false;
// This object is retained, and not released at the end of the process, where the order of destructors is
// unknown.
id sharedFeedbackController = nullptr;
NSString* toolboxIdentifier = nullptr;
NSBundle* toolboxBundle = nullptr;

// A bundle returns this string for a key that it lacks. The string is recognised by its address, since a
// table may contain an equal text.
constinit NSConstantString notFound{u"__PBLocalizedStringNotFound__"};

// The text of the bundle for the key; null if the bundle has no such text, and for a null bundle.
NSString* localizedIn(NSBundle* bundle, NSString* key) {
    if (!bundle) return nullptr;
    NSString* text = bundle->localizedStringForKey_value_table(key, &notFound, nullptr);
    return text == &notFound ? nullptr : text;
}

int seededRandom() {
    if (!std::exchange(hasSeededRandom, true)) srandom(static_cast<unsigned>(std::time(nullptr)));
    return static_cast<int>(random());
}

void defineDebugMenus(MethodTable<NSObject>& methods) {
    methods.instance<"PBAddDebugMenuItemWithTitle:action:", &PBAddDebugMenuItemWithTitle_action>();
}

}  // namespace

constinit const Category NSObject_PelvorDebugMenus_category =
    Category::of<NSObject, defineDebugMenus>("PelvorDebugMenus");

// MARK: Localisation

NSBundle* _PBDoToolboxBundle() {
    if (!toolboxBundle) {
        NSString* identifier =
            toolboxIdentifier ? toolboxIdentifier : NSBundle::mainBundle()->bundleIdentifier();
        toolboxBundle = Retained<NSBundle>::retaining(NSBundle::bundleWithIdentifier(identifier)).leak();
    }
    return toolboxBundle;
}

void PBSetToolboxBundleIdentifier(NSString* identifier) {
    NSString* previous = toolboxIdentifier;
    toolboxIdentifier = identifier ? identifier->copy().leak() : nullptr;
    if (previous) previous->release();
    if (toolboxBundle) std::exchange(toolboxBundle, nullptr)->release();
}

NSString* _PBDoLocalize(NSString* rawStr, id obj) {
    if (NSString* text = localizedIn(_PBDoToolboxBundle(), rawStr)) return text;
    NSString* text = nullptr;
    if (obj)
        text = localizedIn(NSBundle::bundleForClass(asClass(obj) ? asClass(obj) : obj->class_()), rawStr);
    if (!text) text = localizedLibraryText(rawStr);
    return text ? text : rawStr;
}

// MARK: Shared character sets

NSCharacterSet* _pbLettersCharacterSet = nullptr;
NSCharacterSet* _pbWhitespaceCharacterSet = nullptr;
NSCharacterSet* _pbDecimalDigitCharacterSet = nullptr;
NSCharacterSet* _pbMoneyCharacterSet = nullptr;
NSCharacterSet* _pbDoubleQuotesCharacterSet = nullptr;
NSCharacterSet* _pbSingleQuotesCharacterSet = nullptr;

// MARK: Method replacement

IMP PBRegisterInstanceMethodWithSelector(Class* aClass, SEL oldSelector, SEL newSelector) {
    requireArgument(aClass, "PBRegisterInstanceMethodWithSelector:", "the class");
    const Method* method = aClass->instanceMethod(oldSelector);
    if (!method) return {};
    IMP implementation = method->implementation;
    aClass->addMethods({"PBUtil", {{newSelector, implementation}}, nullptr});
    return implementation;
}

IMP PBReplaceMethodImplementation(Class* aClass, SEL oldSelector, IMP newImp) {
    requireArgument(aClass, "PBReplaceMethodImplementation:", "the class");
    return aClass->replaceImplementation(oldSelector, newImp);
}

namespace {

IMP replaceMethod(Class* destClass, SEL oldSelector, Class* sourceClass, SEL newSelector,
                  const char* operation) {
    requireArgument(destClass, operation, "the class");
    requireArgument(sourceClass, operation, "the class of the new method");
    const Method* method = sourceClass->instanceMethod(newSelector);
    if (!method)
        raiseBadArgument(operation, std::string("the class ") + sourceClass->name() + " has no method " +
                                        newSelector.name());
    return destClass->replaceImplementation(oldSelector, method->implementation);
}

}  // namespace

IMP PBReplaceMethodImplementationWithSelector(Class* aClass, SEL oldSelector, SEL newSelector) {
    return replaceMethod(aClass, oldSelector, aClass, newSelector,
                         "PBReplaceMethodImplementationWithSelector:");
}

IMP PBReplaceMethodImplementationWithSelectorOnClass(Class* destClass, SEL oldSelector, Class* sourceClass,
                                                     SEL newSelector) {
    return replaceMethod(destClass, oldSelector, sourceClass, newSelector,
                         "PBReplaceMethodImplementationWithSelectorOnClass:");
}

// MARK: The process and its system

bool PBIsRunPoofs() { return std::floor(platformVersion()) >= 743.0 && isRunPoofs; }

void PBSetIsRunPoofs(bool isEn) { isRunPoofs = isEn; }

int PBRandomInt() { return seededRandom(); }

float PBRandomFloat() { return static_cast<float>(seededRandom()) * 4.656612873e-10f; }

NSString* PBSystemVersion() {
    int code = systemVersionCode();
    return NSString::stringWithFormat(u"%x.%x.%x"_ns, code >> 8 & 0xFF, code >> 4 & 0xF, code & 0xF);
}

id PBSharedFeedbackController() { return sharedFeedbackController; }

void PBSetSharedFeedbackController(id fc) {
    if (fc == sharedFeedbackController) return;
    if (fc) fc->retain();
    id previous = std::exchange(sharedFeedbackController, fc);
    if (previous) previous->release();
}

void PBAddDebugMenuItem(id, NSString*, SEL) {}
void PBAddDebugMenuItemWithObjectAndTitleAndAction(id) {}
void PBAddDebugMenuItemWithTitle_action(id, NSString*, SEL) {}

void PBAbstractMethodWasCalled(id self, SEL _cmd) {
    requireArgument(self, "PBAbstractMethodWasCalled:", "the receiver");
    Class* cls = asClass(self);
    raiseException(PBAbstractMethodException, u"%@ must implement the abstract method %@"_ns,
                   cls ? cls : self->class_(),
                   NSString::stringWithFormat(u"%c%@"_ns, cls ? '+' : '-', NSString::ofUTF8(_cmd.name())));
}

}  // namespace pelvor
