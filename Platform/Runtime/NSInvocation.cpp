// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSInvocation.h"

#include <cstring>
#include <string>

#include "Runtime/Message.h"
#include "Runtime/Private/Failures.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {
namespace {

bool isObject(const ArgumentLayout& layout) { return layout.encoding[0] == '@' || layout.encoding[0] == '#'; }
bool isText(const ArgumentLayout& layout) { return layout.encoding[0] == '*'; }

Object*& objectAt(void* place) { return *static_cast<Object**>(place); }
char*& textAt(void* place) { return *static_cast<char**>(place); }

// The memory of invocations that have ended, for the thread's next invocations.
struct SpareMemory {
    static constexpr unsigned kLimit = 8;

    void* blocks[kLimit] = {};
    unsigned count = 0;
    unsigned limit = 0;  // 0 before the thread has kept anything and after its end

    void open();
};

// Found without a call, so every start of the library sets these few bytes aside for each thread.
[[gnu::tls_model("initial-exec")]] constinit thread_local SpareMemory spareMemory;

struct EndOfThread {
    ~EndOfThread() {
        spareMemory.limit = 0;
        while (spareMemory.count > 0) ::operator delete(spareMemory.blocks[--spareMemory.count]);
        hasEnded = true;
    }
    bool hasEnded = false;
};

void SpareMemory::open() {
    static thread_local EndOfThread endOfThread;
    if (!endOfThread.hasEnded) limit = kLimit;
}

}  // namespace

PELVOR_DEFINE_CLASS(NSInvocation, runtimeLibrary) {
    methods.creator<"invocationWithMethodSignature:", &NSInvocation::invocationWithMethodSignature>();
    methods.creator<"initWithMethodSignature:", &NSInvocation::initWithMethodSignature>();
    methods.instance<"methodSignature", &NSInvocation::methodSignature>();
    methods.instance<"target", &NSInvocation::target>();
    methods.instance<"setTarget:", &NSInvocation::setTarget>();
    methods.instance<"selector", &NSInvocation::selector>();
    methods.instance<"setSelector:", &NSInvocation::setSelector>();
    methods.instance<"setArgument:atIndex:", &NSInvocation::setArgument_atIndex>();
    methods.instance<"getArgument:atIndex:", &NSInvocation::getArgument_atIndex>();
    methods.instance<"getReturnValue:", &NSInvocation::getReturnValue>();
    methods.instance<"setReturnValue:", &NSInvocation::setReturnValue>();
    methods.instance<"retainArguments", &NSInvocation::retainArguments>();
    methods.instance<"argumentsRetained", &NSInvocation::argumentsRetained>();
    methods.instance<"invoke", &NSInvocation::invoke>();
    methods.instance<"invokeWithTarget:", &NSInvocation::invokeWithTarget>();
}

void* NSInvocation::operator new(std::size_t size) {
    SpareMemory& spare = spareMemory;
    return spare.count > 0 ? spare.blocks[--spare.count] : ::operator new(size);
}

void NSInvocation::operator delete(void* memory) noexcept {
    SpareMemory& spare = spareMemory;
    if (spare.limit == 0) spare.open();
    if (spare.count < spare.limit)
        spare.blocks[spare.count++] = memory;
    else
        ::operator delete(memory);
}

NSInvocation::NSInvocation(NSMethodSignature* signature, Object* target, SEL selector)
    : _signature(signature),
      _target(target),
      _selector(selector),
      _frame(_inlineFrame),
      _result(_inlineResult) {
    std::uint32_t frameLength = signature->frameLength();
    std::uint32_t resultLength = signature->methodReturnLength();
    if (frameLength > kInlineFrame) _frame = static_cast<std::byte*>(::operator new(frameLength));
    if (resultLength > kInlineResult) _result = static_cast<std::byte*>(::operator new(resultLength));
    if (_frame == _inlineFrame) [[likely]]
        std::memset(_inlineFrame, 0, sizeof _inlineFrame);
    else
        std::memset(_frame, 0, frameLength);
    clearResult();
}

NSInvocation::~NSInvocation() {
    if (_retainsArguments) {
        if (_target) _target->release();
        for (std::uint32_t i = 0; i < _signature->argumentCount(); ++i)
            drop(_signature->argument(i), _frame + _signature->argument(i).offset);
    }
    if (_holdsResult) drop(_signature->result(), _result);
    if (_frame != _inlineFrame) ::operator delete(_frame);
    if (_result != _inlineResult) ::operator delete(_result);
}

NSInvocation* NSInvocation::invocationWithMethodSignature(NSMethodSignature* signature) {
    requireNotNull(signature, "invocationWithMethodSignature:", "the signature");
    return initWithMethodSignature(signature).autorelease();
}

Retained<NSInvocation> NSInvocation::initWithMethodSignature(NSMethodSignature* signature) {
    requireNotNull(signature, "initWithMethodSignature:", "the signature");
    return forMessage(signature, nullptr, SEL());
}

Retained<NSInvocation> NSInvocation::forMessage(NSMethodSignature* signature, Object* target, SEL selector) {
    return Retained<NSInvocation>::adopting(
        Instances::createWithExtra<NSInvocation>(0, &classRecord, signature, target, selector));
}

void NSInvocation::setTarget(Object* target) {
    if (_retainsArguments) {
        if (target) target->retain();
        if (_target) _target->release();
    }
    _target = target;
}

void NSInvocation::raiseIndex(int index) {
    throw NSException(NSInvalidArgumentException, "argument index " + std::to_string(index) +
                                                      " is outside the message " +
                                                      methodName(_target, _selector));
}

void NSInvocation::requireType(const ArgumentLayout& place, const char* encoding) {
    if (std::strcmp(place.encoding, encoding) == 0) return;
    std::string what = "the result";
    for (std::uint32_t i = 0; i < _signature->argumentCount(); ++i)
        if (&place == &_signature->argument(i)) what = "the argument at index " + std::to_string(i + 2);
    throw NSException(NSInvalidArgumentException, what + " of " + methodName(_target, _selector) + " is " +
                                                      detail::describeType(place.encoding) + ", not " +
                                                      detail::describeType(encoding));
}

// Most results fit in the object, where clearing all of it is quicker than clearing what is used.
void NSInvocation::clearResult() {
    if (_result == _inlineResult) [[likely]]
        std::memset(_inlineResult, 0, sizeof _inlineResult);
    else
        std::memset(_result, 0, _signature->methodReturnLength());
}

void NSInvocation::hold(const ArgumentLayout& argument, void* place) {
    if (isObject(argument) && objectAt(place)) objectAt(place)->retain();
    if (isText(argument) && textAt(place)) {
        std::size_t size = std::strlen(textAt(place)) + 1;
        textAt(place) = static_cast<char*>(std::memcpy(::operator new(size), textAt(place), size));
    }
}

void NSInvocation::drop(const ArgumentLayout& argument, void* place) {
    if (isObject(argument) && objectAt(place)) objectAt(place)->release();
    if (isText(argument)) ::operator delete(textAt(place));
}

void NSInvocation::setArgument_atIndex(const void* buffer, int index) {
    const ArgumentLayout& argument = argumentAtIndex(index);
    requireNotNull(buffer, "setArgument:atIndex:", "the buffer");
    void* previous = nullptr;
    void* place = _frame + argument.offset;
    bool isHeld = _retainsArguments && (isObject(argument) || isText(argument));
    if (isHeld) previous = *static_cast<void**>(place);
    std::memcpy(place, buffer, argument.size);
    if (!isHeld) return;
    hold(argument, place);
    drop(argument, &previous);
}

void NSInvocation::getArgument_atIndex(void* buffer, int index) {
    const ArgumentLayout& argument = argumentAtIndex(index);
    requireNotNull(buffer, "getArgument:atIndex:", "the buffer");
    std::memcpy(buffer, _frame + argument.offset, argument.size);
}

void NSInvocation::getReturnValue(void* buffer) {
    if (_signature->methodReturnLength() == 0) return;
    requireNotNull(buffer, "getReturnValue:", "the buffer");
    std::memcpy(buffer, _result, _signature->methodReturnLength());
}

void NSInvocation::setReturnValue(const void* buffer) {
    if (_signature->methodReturnLength() == 0) return;
    requireNotNull(buffer, "setReturnValue:", "the buffer");
    if (_holdsResult) drop(_signature->result(), _result);
    std::memcpy(_result, buffer, _signature->methodReturnLength());
    _holdsResult = _retainsArguments;
    if (_holdsResult) hold(_signature->result(), _result);
}

void NSInvocation::retainArguments() {
    if (_retainsArguments) return;
    _retainsArguments = true;
    if (_target) _target->retain();
    for (std::uint32_t i = 0; i < _signature->argumentCount(); ++i)
        hold(_signature->argument(i), _frame + _signature->argument(i).offset);
}

void NSInvocation::invoke() {
    if (_holdsResult) drop(_signature->result(), _result);
    _holdsResult = false;
    clearResult();
    const CacheEntry* entry = _target ? _target->isa()->cached(_selector) : nullptr;
    if (entry && entry->selector == _selector && entry->signatureKey == _signature->key()) [[likely]]
        _signature->invoke(entry->function, _target, _selector, _frame, _result);
    else
        sendFrame(_target, _selector, _signature, _frame, _result);
    if (_retainsArguments) {
        hold(_signature->result(), _result);
        _holdsResult = true;
    }
}

void NSInvocation::invokeWithTarget(Object* target) {
    setTarget(target);
    invoke();
}

}  // namespace pelvor
