// SPDX-License-Identifier: Apache-2.0
// Reads bytes as an interface file, makes its objects if all are of this target's class, and checks that
// either all of them are there or none.
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSNib.h"
#include "Foundation/NSNibError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

using namespace pelvor;

namespace {

extern Library fuzzLibrary;

// An object that keeps what it is given.
class FZPart final : public NSObject {
    PELVOR_CLASS(FZPart, NSObject);

  public:
    static Retained<FZPart> initWithName_inside(NSString* name, FZPart* outer, Class* cls = classObject()) {
        if (!name) throw NSException(NSInvalidArgumentException, "initWithName:inside: the name is null");
        auto part = make<FZPart>(cls);
        part->_outer.set(outer);
        return part;
    }
    void setName(NSString* name) { _any.set(name); }
    void setAny(id object) { _any.set(object); }
    void setPeer(FZPart* peer) { _peer.set(peer); }
    void setWidth(float) {}
    void setCount(int count) {
        if (count < 0) throw NSException(NSRangeException, "setCount: the count is below 0");
    }
    void setShown(bool) {}
    void setFrame(NSRect) {}
    void setTarget(id target) { _target = target; }
    void setAction(SEL) {}
    void push(id) {}
    void awakeFromNib() { letGo(); }
    // Objects that own each other let go in the end.
    void letGo() { _any = _peer = nullptr; }

    static inline int alive = 0;

  protected:
    FZPart() { ++alive; }
    ~FZPart() { --alive; }

  private:
    Retained<Object> _any, _peer, _outer;
    Unretained<Object> _target;
};

PELVOR_DEFINE_CLASS(FZPart, fuzzLibrary) {
    methods.creator<"initWithName:inside:", &FZPart::initWithName_inside>();
    methods.instance<"setName:", &FZPart::setName>();
    methods.instance<"setAny:", &FZPart::setAny>();
    methods.instance<"setPeer:", &FZPart::setPeer>();
    methods.instance<"setWidth:", &FZPart::setWidth>();
    methods.instance<"setCount:", &FZPart::setCount>();
    methods.instance<"setShown:", &FZPart::setShown>();
    methods.instance<"setFrame:", &FZPart::setFrame>();
    methods.instance<"setTarget:", &FZPart::setTarget>();
    methods.instance<"setAction:", &FZPart::setAction>();
    methods.instance<"push:", &FZPart::push>();
    methods.instance<"awakeFromNib", &FZPart::awakeFromNib>();
}

constexpr Class* kClasses[] = {&FZPart::classRecord};
constinit Library fuzzLibrary{"FuzzParts", {}, kClasses, {}};

// A file may name any class and any of its operations, which a target must not call.
bool isHarmless(NSData* data) {
    id list = NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, nullptr, nullptr);
    for (id object : cast<NSArray>(cast<NSDictionary>(list)->objectForKey(u"Objects"_ns))) {
        auto* entries = cast<NSDictionary>(object);
        id creator = entries->objectForKey(u"Create"_ns);
        const bool isKnown =
            !creator || creator->isEqual(u"init"_ns) || creator->isEqual(u"initWithName:inside:"_ns);
        if (!isKnown || !entries->objectForKey(u"Class"_ns)->isEqual(u"FZPart"_ns)) return false;
    }
    return true;
}

void checkMaking(NSNib* nib, FZPart* owner) {
    const int before = FZPart::alive;
    AutoreleasePool pool;
    NSNibError* error = nullptr;
    NSArray* objects = nullptr;
    const bool isMade = nib->instantiateNibWithOwner_topLevelObjects_error(owner, &objects, &error);
    require(isMade == !error && isMade == !!objects, "either objects or an error");
    if (error) require(error->description()->length() > 0, "an error says something");
    owner->letGo();
    if (!isMade) require(FZPart::alive == before, "nothing stays behind");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    registerLibrary(fuzzLibrary);
    {
        AutoreleasePool pool;
        NSData* bytes = NSData::dataWithBytes_length(data, static_cast<NSUInteger>(size));
        NSNibError* error = nullptr;
        auto nib = NSNib::initWithData_bundle_error(bytes, nullptr, &error);
        require(!nib == !!error, "either a nib or an error");
        if (!nib || !isHarmless(bytes)) return 0;
        auto owner = make<FZPart>();
        for (int time = 0; time < 2; ++time) checkMaking(nib, owner);
    }
    require(FZPart::alive == 0, "all parts end");
    return 0;
}
