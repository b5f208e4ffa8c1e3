// SPDX-License-Identifier: Apache-2.0
#include "NSObject-PelvorAdditions.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "BaseLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSString.h"
#include "PBIdleQueue.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/NSInvocation.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

// The methods `deepCopy` and `mutableDeepCopy`, unless a class overrides them.
Retained<Object> copyShallowly(NSObject* object) { return object ? object->copy() : nullptr; }
Retained<Object> mutableCopyShallowly(NSObject* object) { return object ? object->mutableCopy() : nullptr; }

void defineAdditions(MethodTable<NSObject>& methods) {
    using Additions = NSObject_PelvorAdditions;
    methods.classLevel<"bundle", &Additions::bundle>();
    methods.classLevel<"classSelectorNames", &Additions::classSelectorNames>();
    methods.classLevel<"instanceSelectorNames", &Additions::instanceSelectorNames>();
    methods.instance<"notificationCenter", &notificationCenter>();
    methods.instance<"bundle", &bundle>();
    methods.instanceAs<"deepCopy", &copyShallowly>();
    methods.instanceAs<"mutableDeepCopy", &mutableCopyShallowly>();
    methods.instance<"releaseWhenIdle", &releaseWhenIdle>();
    methods.instance<"intForPerformSelector:", &intForPerformSelector>();
    methods.instance<"intForPerformSelector:withObject:", &intForPerformSelector_withObject>();
    methods.instance<"floatForPerformSelector:", &floatForPerformSelector>();
    methods.instance<"floatForPerformSelector:withObject:", &floatForPerformSelector_withObject>();
    methods.instance<"boolForPerformSelector:", &boolForPerformSelector>();
    methods.instance<"boolForPerformSelector:withObject:", &boolForPerformSelector_withObject>();
    methods.instance<"performSelector:withInt:", &performSelector_withInt>();
    methods.instance<"performSelector:withFloat:", &performSelector_withFloat>();
    methods.instance<"performSelector:withBool:", &performSelector_withBool>();
}

// The names of the methods of a class record and of all superclasses.
NSSet* selectorNames(Class* cls) {
    NSMutableSet* names = NSMutableSet::set();
    for (; cls; cls = cls->superclass()) {
        cls->attachPendingCategories();
        for (const MethodGroup* group = cls->methodGroups(); group; group = group->next)
            for (const Method& method : group->methods)
                names->addObject(NSString::ofUTF8(method.selector.name()));
    }
    return names;
}

// MARK: Messages with plain numbers

// A message that is sent to one object, and its result as bytes.
class PlainMessage {
  public:
    PlainMessage(id object, SEL selector) : _object(object) {
        NSMethodSignature* signature = object->methodSignatureForSelector(selector);
        if (!signature) object->doesNotRecognizeSelector(selector);
        _invocation = NSInvocation::initWithMethodSignature(signature);
        _invocation->setSelector(selector);
    }

    void setObject(id argument) {
        char kind = argumentKind();
        if (kind != '@' && !(kind == '#' && (!argument || asClass(argument))) && !isNumber(kind))
            raiseArgument("an object");
        place(&argument, sizeof argument);
    }
    template <class Number>
    void setNumber(Number argument) {
        if (!isNumber(argumentKind())) raiseArgument("a number");
        place(&argument, sizeof argument);
    }

    // The first bytes of the result.
    template <class Bits>
    Bits resultBits() {
        _invocation->invokeWithTarget(_object);
        Bits bits = 0;
        std::memcpy(&bits, _invocation->result(), std::min<std::size_t>(sizeof bits, resultLength()));
        return bits;
    }
    std::uint32_t resultLength() { return _invocation->methodSignature()->methodReturnLength(); }

  private:
    // The kind of the first argument, 'v' for a message without one.
    char argumentKind() {
        NSMethodSignature* signature = _invocation->methodSignature();
        return signature->argumentCount() == 0 ? 'v' : signature->argument(0).encoding[0];
    }
    static bool isNumber(char kind) { return kind != '\0' && std::strchr("BcCsSiIqQfd", kind); }

    void place(const void* bytes, std::size_t size) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, bytes, size);
        if (argumentKind() == 'B') bits = (bits & 0xFF) != 0;
        _invocation->setArgument_atIndex(&bits, 2);
    }
    [[noreturn]] void raiseArgument(const char* given) {
        raiseException(NSInvalidArgumentException,
                       u"the message %s cannot be given %s: its method takes %s"_ns,
                       _invocation->selector().name(), given,
                       argumentKind() == 'v' ? "no argument" : "an argument of another type");
    }

    Unretained<Object> _object;
    Retained<NSInvocation> _invocation;
};

std::uint32_t fourByteResult(PlainMessage& message) {
    std::uint32_t bits = message.resultBits<std::uint32_t>();
    return message.resultLength() == 4 ? bits : 0;
}

template <class Bits>
Bits perform(id object, SEL selector) {
    return PlainMessage(object, selector).resultBits<Bits>();
}

template <class Bits>
Bits performWithObject(id object, SEL selector, id argument) {
    PlainMessage message(object, selector);
    message.setObject(argument);
    return message.resultBits<Bits>();
}

template <class Number>
int performWithNumber(id object, SEL selector, Number argument) {
    PlainMessage message(object, selector);
    message.setNumber(argument);
    return static_cast<int>(fourByteResult(message));
}

}  // namespace

constinit const Category NSObject_PelvorAdditions_category =
    Category::of<NSObject, defineAdditions>("PelvorAdditions");

NSBundle* NSObject_PelvorAdditions::bundle(Class* cls) { return NSBundle::bundleForClass(cls); }

NSSet* NSObject_PelvorAdditions::classSelectorNames(Class* cls) {
    return selectorNames(cls ? cls->metaclass() : nullptr);
}

NSSet* NSObject_PelvorAdditions::instanceSelectorNames(Class* cls) { return selectorNames(cls); }

NSNotificationCenter* notificationCenter(id) { return NSNotificationCenter::defaultCenter(); }

NSBundle* bundle(id object) {
    requireArgument(object, "bundle", "the object");
    return NSBundle::bundleForClass(object->class_());
}

Retained<Object> deepCopy(NSObject* object) {
    registerLibrary(baseLibrary);
    return send<Retained<Object>>(object, "deepCopy"_sel);
}

Retained<Object> mutableDeepCopy(NSObject* object) {
    registerLibrary(baseLibrary);
    return send<Retained<Object>>(object, "mutableDeepCopy"_sel);
}

int intForPerformSelector(id object, SEL selector) {
    requireArgument(object, "intForPerformSelector:", "the object");
    return static_cast<int>(perform<std::uint32_t>(object, selector));
}

int intForPerformSelector_withObject(id object, SEL selector, id argument) {
    requireArgument(object, "intForPerformSelector:withObject:", "the object");
    return static_cast<int>(performWithObject<std::uint32_t>(object, selector, argument));
}

float floatForPerformSelector(id object, SEL selector) {
    requireArgument(object, "floatForPerformSelector:", "the object");
    return std::bit_cast<float>(perform<std::uint32_t>(object, selector));
}

float floatForPerformSelector_withObject(id object, SEL selector, id argument) {
    requireArgument(object, "floatForPerformSelector:withObject:", "the object");
    return std::bit_cast<float>(performWithObject<std::uint32_t>(object, selector, argument));
}

bool boolForPerformSelector(id object, SEL selector) {
    requireArgument(object, "boolForPerformSelector:", "the object");
    return perform<std::uint8_t>(object, selector) != 0;
}

bool boolForPerformSelector_withObject(id object, SEL selector, id argument) {
    requireArgument(object, "boolForPerformSelector:withObject:", "the object");
    return performWithObject<std::uint8_t>(object, selector, argument) != 0;
}

int performSelector_withInt(id object, SEL selector, int argument) {
    requireArgument(object, "performSelector:withInt:", "the object");
    return performWithNumber(object, selector, argument);
}

int performSelector_withFloat(id object, SEL selector, float argument) {
    requireArgument(object, "performSelector:withFloat:", "the object");
    return performWithNumber(object, selector, argument);
}

int performSelector_withBool(id object, SEL selector, bool argument) {
    requireArgument(object, "performSelector:withBool:", "the object");
    return performWithNumber(object, selector, argument);
}

void releaseWhenIdle(id object) {
    static PBIdleQueue* const queue = PBIdleQueue::initWithSelector("release"_sel).leak();
    if (queue->containsObject(object))
        object->release();
    else
        queue->addObject(object);
}

}  // namespace pelvor
