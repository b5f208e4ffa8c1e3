// SPDX-License-Identifier: Apache-2.0
// A plug-in of the tests that has a string table, and whose hooks say in the test program's journal that they
// run.
#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "PBRegistry.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

extern Library lampLibrary;

template <FixedString Line>
void note() {
    send(classNamed("HookJournal"), "note:"_sel, NSString::ofUTF8(Line.view()));
}

class LateLamp : public NSObject {
    PELVOR_CLASS(LateLamp, NSObject);

  public:
    static void didLoad() {
        if (PBRegistry::sharedRegistry()->profileWithIdentifier(u"late lamp"_ns)) note<"too late">();
        note<"LateLamp didLoad">();
    }
};

PELVOR_DEFINE_CLASS(LateLamp, lampLibrary) {
    methods.classLevelAs<"initialize", &note<"LateLamp initialize">>();
    methods.classLevelAs<"performPosing", &note<"LateLamp performPosing">>();
    methods.classLevel<"didLoad", &LateLamp::didLoad>();
    methods.classLevelAs<"activateToolkit", &note<"LateLamp activateToolkit">>();
    methods.classLevelAs<"becomingMultiThreaded", &note<"LateLamp becomingMultiThreaded">>();
}

// A category for a class of the platform, whose own phases are over.
void defineStringHooks(MethodTable<NSString>& methods) {
    methods.classLevelAs<"didLoad", &note<"NSString didLoad">>();
}
constinit const Category stringHooks = Category::of<NSString, defineStringHooks>("LateLamp");

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&LateLamp::classRecord};
constexpr const Category* kCategories[] = {&stringHooks};
constinit Library lampLibrary{"LateLamp", kDependencies, kClasses, kCategories};

}  // namespace
}  // namespace pelvor

PELVOR_PLUGIN(pelvor::lampLibrary)
