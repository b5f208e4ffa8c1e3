// SPDX-License-Identifier: Apache-2.0
// Making the 100 objects of an interface file that was read before, and of one that is read each time.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSNib.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

extern Library benchmarkLibrary;

// A part of a panel with the values that parts usually have.
class BMPart : public NSObject {
    PELVOR_CLASS(BMPart, NSObject);

  public:
    void setTitle(NSString* title) { _title.set(title); }
    void setWidth(float width) { _width = width; }
    void setTag(int tag) { _tag = tag; }
    void setShown(bool isShown) { _isShown = isShown; }
    void setNext(BMPart* next) { _next = next; }
    void setTarget(id target) { _target = target; }
    void setAction(SEL action) { _action = action; }
    void push(id) {}

  protected:
    BMPart() = default;
    ~BMPart() = default;

  private:
    Retained<NSString> _title;
    Unretained<BMPart> _next;
    Unretained<Object> _target;
    SEL _action;
    float _width = 0;
    int _tag = 0;
    bool _isShown = false;
};

PELVOR_DEFINE_CLASS(BMPart, benchmarkLibrary) {
    methods.instance<"setTitle:", &BMPart::setTitle>();
    methods.instance<"setWidth:", &BMPart::setWidth>();
    methods.instance<"setTag:", &BMPart::setTag>();
    methods.instance<"setShown:", &BMPart::setShown>();
    methods.instance<"setNext:", &BMPart::setNext>();
    methods.instance<"setTarget:", &BMPart::setTarget>();
    methods.instance<"setAction:", &BMPart::setAction>();
    methods.instance<"push:", &BMPart::push>();
}

constexpr Class* kClasses[] = {&BMPart::classRecord};
constinit Library benchmarkLibrary{"BenchmarkParts", {}, kClasses, {}};

// Four values, an outlet and an action for each object.
NSData* interfaceFile(int count) {
    std::string objects, connections;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        objects += "{Identifier = part" + number + "; Class = BMPart; Values = {title = \"Part " + number +
                   "\"; width = 12.5; tag = " + number + "; shown = YES;};},\n";
        connections += "{Source = part" + number + "; Outlet = next; Target = part" +
                       std::to_string((i + 1) % count) + ";}, {Source = part" + number +
                       "; Action = \"push:\"; Target = owner;},\n";
    }
    const std::string text = "{Objects = (" + objects + "); Connections = (" + connections + ");}";
    return NSData::dataWithBytes_length(text.data(), static_cast<NSUInteger>(text.size()));
}

void instantiate(NSNib* nib, id owner) {
    NSArray* objects = nullptr;
    if (!nib || !nib->instantiateNibWithOwner_topLevelObjects(owner, &objects)) std::abort();
    benchmark::DoNotOptimize(objects);
}

void makeFromParsedFile(benchmark::State& state) {
    AutoreleasePool pool;
    registerLibrary(benchmarkLibrary);
    auto nib = NSNib::initWithData_bundle_error(interfaceFile(100), nullptr, nullptr);
    auto owner = make<BMPart>();
    for (auto _ : state) {
        AutoreleasePool inner;
        instantiate(nib, owner);
    }
}
BENCHMARK(makeFromParsedFile)->Unit(benchmark::kMicrosecond);

void makeAndParseEachTime(benchmark::State& state) {
    AutoreleasePool pool;
    registerLibrary(benchmarkLibrary);
    NSData* file = interfaceFile(100);
    auto owner = make<BMPart>();
    for (auto _ : state) {
        AutoreleasePool inner;
        instantiate(NSNib::initWithData_bundle_error(file, nullptr, nullptr).get(), owner);
    }
}
BENCHMARK(makeAndParseEachTime)->Unit(benchmark::kMicrosecond);

// The same objects, values and connections by C++ calls alone.
void makeByHand(benchmark::State& state) {
    auto owner = make<BMPart>();
    for (auto _ : state) {
        AutoreleasePool inner;
        std::vector<Retained<BMPart>> parts;
        for (int i = 0; i < 100; ++i) {
            parts.push_back(make<BMPart>());
            parts[i]->setTitle(NSString::ofUTF8("Part " + std::to_string(i)));
            parts[i]->setWidth(12.5f);
            parts[i]->setTag(i);
            parts[i]->setShown(true);
        }
        for (int i = 0; i < 100; ++i) {
            parts[i]->setNext(parts[(i + 1) % 100]);
            parts[i]->setTarget(owner);
            parts[i]->setAction("push:"_sel);
        }
        benchmark::DoNotOptimize(parts);
    }
}
BENCHMARK(makeByHand)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace pelvor

BENCHMARK_MAIN();
