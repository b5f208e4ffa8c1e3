// SPDX-License-Identifier: Apache-2.0
// A class for code that must not compile. Each other file here holds one fault and the text that the compiler
// must say about it; scripts/check-refused looks.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

using namespace pelvor;

extern Library refusedLibrary;

class Lamp : public NSObject {
    PELVOR_CLASS(Lamp, NSObject);
    PELVOR_CREATORS(initWithLevel);

  public:
    static Retained<Lamp> initWithLevel(int level, Class* cls = classObject());
    void setLevel_animated(int, bool) {}
    void show(std::string) {}
    void refer(const int&) {}

  protected:
    Lamp() = default;
    ~Lamp() = default;
};
