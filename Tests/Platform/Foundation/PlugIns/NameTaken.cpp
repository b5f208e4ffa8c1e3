// SPDX-License-Identifier: Apache-2.0
// A plug-in with a class whose name Foundation has, behind one and a library whose names are free.
#include "Foundation/FoundationLibrary.h"

namespace pelvor {

extern Library innerLibrary;
extern Library takenLibrary;

class Inner : public NSObject {
    PELVOR_CLASS(Inner, NSObject);
};
PELVOR_DEFINE_CLASS(Inner, innerLibrary) {}

class Outer : public NSObject {
    PELVOR_CLASS(Outer, NSObject);
};
PELVOR_DEFINE_CLASS(Outer, takenLibrary) {}

namespace other {

class NSBundle : public NSObject {
    PELVOR_CLASS(NSBundle, NSObject);
};
PELVOR_DEFINE_CLASS(NSBundle, takenLibrary) {}

}  // namespace other

constexpr Class* kInner[] = {&Inner::classRecord};
constexpr Library* kDependencies[] = {&foundationLibrary, &innerLibrary};
constexpr Class* kClasses[] = {&Outer::classRecord, &other::NSBundle::classRecord};

constinit Library innerLibrary{"Inner", {}, kInner, {}};
constinit Library takenLibrary{"Taken", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::takenLibrary)
