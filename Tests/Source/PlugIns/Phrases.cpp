// SPDX-License-Identifier: Apache-2.0
// A plug-in of the tests that has a class and a string table.
#include "Foundation/FoundationLibrary.h"

namespace pelvor {
namespace {

extern Library phrasesLibrary;

class Phrases : public NSObject {
    PELVOR_CLASS(Phrases, NSObject);

  protected:
    Phrases() = default;
    ~Phrases() = default;
};

PELVOR_DEFINE_CLASS(Phrases, phrasesLibrary) {}

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&Phrases::classRecord};
constinit Library phrasesLibrary{"Phrases", kDependencies, kClasses, {}};

}  // namespace
}  // namespace pelvor

PELVOR_PLUGIN(pelvor::phrasesLibrary)
