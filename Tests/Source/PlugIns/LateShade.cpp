// SPDX-License-Identifier: Apache-2.0
// A plug-in of the tests whose hooks say in the test program's journal that they run, as those of LateLamp
// do.
#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

extern Library shadeLibrary;

class LateShade : public NSObject {
    PELVOR_CLASS(LateShade, NSObject);

  public:
    static void performPosing() {
        send(classNamed("HookJournal"), "note:"_sel, u"LateShade performPosing"_ns);
    }
    static void didLoad() { send(classNamed("HookJournal"), "note:"_sel, u"LateShade didLoad"_ns); }

  protected:
    LateShade() = default;
    ~LateShade() = default;
};

PELVOR_DEFINE_CLASS(LateShade, shadeLibrary) {
    methods.classLevel<"performPosing", &LateShade::performPosing>();
    methods.classLevel<"didLoad", &LateShade::didLoad>();
}

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&LateShade::classRecord};
constinit Library shadeLibrary{"LateShade", kDependencies, kClasses, {}};

}  // namespace
}  // namespace pelvor

PELVOR_PLUGIN(pelvor::shadeLibrary)
