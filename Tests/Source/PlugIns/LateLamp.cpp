// SPDX-License-Identifier: Apache-2.0
// A plug-in of the tests, whose hooks say in the test program's journal that they run.
#include <string>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "PBRegistry.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

extern Library lampLibrary;

void noteInJournal(NSString* line) { send(classNamed("HookJournal"), "note:"_sel, line); }

class LateLamp : public NSObject {
    PELVOR_CLASS(LateLamp, NSObject);

  public:
    static void initialize(Class*) { noteInJournal(u"LateLamp initialize"_ns); }
    static void performPosing() { noteInJournal(u"LateLamp performPosing"_ns); }
    static void activateToolkit() { noteInJournal(u"LateLamp activateToolkit"_ns); }
    static void becomingMultiThreaded() { noteInJournal(u"LateLamp becomingMultiThreaded"_ns); }
    static void didLoad() {
        bool hasProfile = PBRegistry::sharedRegistry()->profileWithIdentifier(u"late lamp"_ns);
        noteInJournal(hasProfile ? u"LateLamp didLoad with its profile"_ns : u"LateLamp didLoad"_ns);
    }

  protected:
    LateLamp() = default;
    ~LateLamp() = default;
};

PELVOR_DEFINE_CLASS(LateLamp, lampLibrary) {
    methods.classLevel<"initialize", &LateLamp::initialize>();
    methods.classLevel<"performPosing", &LateLamp::performPosing>();
    methods.classLevel<"didLoad", &LateLamp::didLoad>();
    methods.classLevel<"activateToolkit", &LateLamp::activateToolkit>();
    methods.classLevel<"becomingMultiThreaded", &LateLamp::becomingMultiThreaded>();
}

// A category for a class of the platform, whose own phases are over.
void stringDidLoad() { noteInJournal(u"NSString didLoad"_ns); }
void defineStringHooks(MethodTable<NSString>& methods) { methods.classLevelAs<"didLoad", &stringDidLoad>(); }
constinit const Category stringHooks = Category::of<NSString, defineStringHooks>("LateLamp");

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&LateLamp::classRecord};
constexpr const Category* kCategories[] = {&stringHooks};
constinit Library lampLibrary{"LateLamp", kDependencies, kClasses, kCategories};

}  // namespace
}  // namespace pelvor

PELVOR_PLUGIN(pelvor::lampLibrary)
