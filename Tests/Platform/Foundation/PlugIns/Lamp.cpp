// SPDX-License-Identifier: Apache-2.0
// A sound plug-in with two classes and a category.
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"

namespace pelvor {

extern Library lampLibrary;

class Lamp : public NSObject {
    PELVOR_CLASS(Lamp, NSObject);

  public:
    int watts() { return 60; }
};

class FloorLamp : public Lamp {
    PELVOR_CLASS(FloorLamp, Lamp);
};

PELVOR_DEFINE_CLASS(Lamp, lampLibrary) { methods.instance<"watts", &Lamp::watts>(); }
PELVOR_DEFINE_CLASS(FloorLamp, lampLibrary) {}

int lampCount(NSString* string) { return static_cast<int>(string->length()); }
void defineAdditions(MethodTable<NSString>& methods) { methods.instance<"lampCount", &lampCount>(); }

constinit const Category kAdditions = Category::of<NSString, defineAdditions>("LampAdditions");

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&Lamp::classRecord, &FloorLamp::classRecord};
constexpr const Category* kCategories[] = {&kAdditions};

constinit Library lampLibrary{"Lamp", kDependencies, kClasses, kCategories};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::lampLibrary)
