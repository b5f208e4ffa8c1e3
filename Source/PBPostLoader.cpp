// SPDX-License-Identifier: Apache-2.0
#include "PBPostLoader.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unordered_set>
#include <utility>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSPathStore2.h"
#include "Foundation/NSThread.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

std::atomic<int> PBExceptionHandlingNestLevel = 0;

namespace {

using Function = void (*)();

struct LoaderState {
    std::recursive_mutex lock;
    std::unordered_set<Function> calledImplementations;
    Class* barredClass = nullptr;  // the bundle class, while it must not be initialised
    IMP bundleInitialize;
    bool hasBeenInitialized = false;
    // Bundles may be loaded on any thread.
    std::atomic<bool> isMultiThreaded = false;
    std::atomic<bool> hasProcessedClasses = false;
    std::atomic<bool> isSendingBecomingMultiThreaded = false;
};

LoaderState& loader() {
    static auto& state = *new LoaderState;
    return state;
}

class ProtectedCall {
  public:
    ProtectedCall() { ++PBExceptionHandlingNestLevel; }
    ~ProtectedCall() { --PBExceptionHandlingNestLevel; }
};

// MARK: Calling hooks

// Makes the call for the hook of the class, and reports what it throws.
template <class Call>
void callReporting(Class* cls, SEL selector, Call call) {
    AutoreleasePool pool;
    try {
        ProtectedCall protectedCall;
        call();
    } catch (...) {
        std::fprintf(stderr, "Exception raised by +[%s %s]: %s\n", cls->name(), selector.name(),
                     currentExceptionReason().c_str());
    }
}

void sendClassOrInitialize(Class* cls) {
    Class* metaclass = cls->metaclass();
    if (metaclass->instancesRespondTo("class"_sel))
        send(cls, "class"_sel);
    else if (metaclass->instancesRespondTo("initialize"_sel))
        send(cls, "initialize"_sel);
}

// A hook has no arguments and no result. If a hook declares arguments, they are zero, and a result is not
// used.
void callHook(const IMP& hook, Class* cls, SEL selector) {
    NSMethodSignature* types = hook.signature;
    if (types->key() == SignatureFor<void>::kKey)
        return types->invoke(hook.function, cls, selector, nullptr, nullptr);
    std::vector<std::max_align_t> frame(types->frameLength() / sizeof(std::max_align_t) + 1);
    std::vector<std::max_align_t> result(types->methodReturnLength() / sizeof(std::max_align_t) + 1);
    types->invoke(hook.function, cls, selector, reinterpret_cast<std::byte*>(frame.data()), result.data());
}

// The class's own implementations that were never called; from now on they count as called.
std::vector<IMP> takeHooks(SEL selector, Class* cls) {
    std::vector<IMP> hooks;
    auto& called = loader().calledImplementations;
    for (const MethodGroup* group = cls->metaclass()->methodGroups(); group; group = group->next)
        for (const Method& method : group->methods)
            if (method.selector == selector && called.insert(method.implementation.function).second)
                hooks.push_back(method.implementation);
    return hooks;
}

// The list becomes longer if classes are registered while it is read.
std::vector<Class*> allClasses() {
    std::vector<Class*> classes(classList(nullptr, 0));
    std::size_t count = classList(classes.data(), classes.size());
    while (count > classes.size()) {
        classes.resize(count);
        count = classList(classes.data(), classes.size());
    }
    return classes;
}

// The name under which the platform keeps the class that another one has posed as.
bool isReplacedFileWrapper(Class* cls) { return std::string_view(cls->name()) == "%NSFileWrapper"; }

void startSharedRegistry() {
    if (PBRegistry* registry = PBRegistry::sharedRegistry()) registry->startRegistry();
}

// MARK: Bundle initialisation

void abortBundleInitialization() {
    std::fputs(
        "+[NSBundle initialize] called too early!  This should not happen until OFPostLoader provokes it. "
        "Please rewrite your +performPosing method to not provoke +[NSBundle initialize].\n",
        stderr);
    std::abort();
}

// While an object of this class exists, path strings do not resolve symbolic links.
class UnresolvedLinks {
  public:
    UnresolvedLinks()
        : _resolving(PBReplaceMethodImplementationWithSelector(
              NSPathStore2::classObject(), resolve(), "replacement_stringByResolvingSymlinksInPath"_sel)) {}
    ~UnresolvedLinks() { PBReplaceMethodImplementation(NSPathStore2::classObject(), resolve(), _resolving); }

  private:
    static SEL resolve() { return "stringByResolvingSymlinksInPath"_sel; }

    IMP _resolving;
};

void defineOverrides(MethodTable<NSPathStore2>& methods) {
    methods.instance<"replacement_stringByResolvingSymlinksInPath",
                     &replacement_stringByResolvingSymlinksInPath>();
}

}  // namespace

NSString* replacement_stringByResolvingSymlinksInPath(NSPathStore2* path) { return path; }

constinit const Category NSPathStore2_OFOverrides_category =
    Category::of<NSPathStore2, defineOverrides>("OFOverrides");

PELVOR_DEFINE_CLASS(PBPostLoader, baseLibrary) {
    methods.classLevel<"initialize", &PBPostLoader::initialize>();
    methods.classLevel<"processClasses", &PBPostLoader::processClasses>();
    methods.classLevel<"processClassesStartingRegistry:", &PBPostLoader::processClassesStartingRegistry>();
    methods.classLevel<"processClassesStartingRegistry:posing:",
                       &PBPostLoader::processClassesStartingRegistry_posing>();
    methods.classLevel<"processSelector:initialize:", &PBPostLoader::processSelector_initialize>();
    methods.classLevel<"bundleDidLoad:", &PBPostLoader::bundleDidLoad>();
    methods.classLevel<"isMultiThreaded", &PBPostLoader::isMultiThreaded>();
    methods.classLevel<"_processSelector:inClass:initialize:",
                       &PBPostLoader::_processSelector_inClass_initialize>();
    methods.classLevel<"_becomingMultiThreaded:", &PBPostLoader::_becomingMultiThreaded>();
    methods.classLevel<"_preventBundleInitialization", &PBPostLoader::_preventBundleInitialization>();
    methods.classLevel<"_provokeBundleInitialization", &PBPostLoader::_provokeBundleInitialization>();
}

void PBPostLoader::initialize(Class* cls) {
    sendSuper(&metaclassRecord, cls, "initialize"_sel);
    if (loader().hasBeenInitialized) return;
    loader().hasBeenInitialized = true;
    _preventBundleInitialization();
    processSelector_initialize("performPosing"_sel, false);
    _provokeBundleInitialization();
    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    center->addObserver_selector_name_object(cls, "bundleDidLoad:"_sel, NSBundleDidLoadNotification, nullptr);
    center->addObserver_selector_name_object(cls, "_becomingMultiThreaded:"_sel,
                                             NSWillBecomeMultiThreadedNotification, nullptr);
}

void PBPostLoader::processClasses() { processClassesStartingRegistry(true); }

void PBPostLoader::processClassesStartingRegistry(bool startRegistry) {
    processClassesStartingRegistry_posing(startRegistry, true);
}

void PBPostLoader::processClassesStartingRegistry_posing(bool startRegistry, bool posing) {
    classRecord.initializeIfNeeded();
    AutoreleasePool pool;
    loader().hasProcessedClasses = true;
    if (posing) processSelector_initialize("performPosing"_sel, false);
    if (startRegistry) startSharedRegistry();
    processSelector_initialize("didLoad"_sel, true);
    processSelector_initialize("activateToolkit"_sel, true);
    if (NSThread::isMultiThreaded()) _becomingMultiThreaded(nullptr);
}

void PBPostLoader::processSelector_initialize(SEL selector, bool initialize) {
    classRecord.initializeIfNeeded();
    std::lock_guard guard(loader().lock);
    for (bool foundAny = true; foundAny;) {
        foundAny = false;
        for (Class* cls : allClasses()) {
            cls->attachPendingCategories();
            foundAny |= _processSelector_inClass_initialize(selector, cls, initialize);
        }
    }
}

void PBPostLoader::bundleDidLoad(NSNotification* notification) {
    requireArgument(notification, "bundleDidLoad:", "the notification");
    processClassesStartingRegistry(false);
    if (PBRegistry* registry = PBRegistry::sharedRegistry())
        registry->addProfilesFromBundle(cast<NSBundle>(notification->object()));
}

// Exceptions of hooks have been reported already. An exception here is a failure of another kind.
void PBPostLoader::_becomingMultiThreaded(NSNotification*) {
    if (loader().isSendingBecomingMultiThreaded.exchange(true)) return;
    try {
        ProtectedCall protectedCall;
        processSelector_initialize("becomingMultiThreaded"_sel, false);
    } catch (...) {
        NSLog(u"Ignoring exception raised while sending -becomingMultiThreaded.  %@"_ns,
              NSString::ofUTF8(currentExceptionReason()));
    }
    loader().isMultiThreaded = true;
    loader().isSendingBecomingMultiThreaded = false;
}

bool PBPostLoader::isMultiThreaded() {
    classRecord.initializeIfNeeded();
    return loader().isMultiThreaded;
}

bool PBPostLoader::hasProcessedClasses() { return loader().hasProcessedClasses; }

bool PBPostLoader::_processSelector_inClass_initialize(SEL selector, Class* inClass, bool initialize) {
    requireArgument(inClass, "_processSelector:inClass:initialize:", "the class");
    std::vector<IMP> hooks = takeHooks(selector, inClass);
    if (hooks.empty()) return false;
    if (initialize && !isReplacedFileWrapper(inClass))
        callReporting(inClass, selector, [=] { sendClassOrInitialize(inClass); });
    for (const IMP& hook : hooks)
        callReporting(inClass, selector, [&] { callHook(hook, inClass, selector); });
    return true;
}

// Only an `initialize` that the bundle class defines itself is barred.
void PBPostLoader::_preventBundleInitialization() {
    Class* bundleClass = classNamed("NSBundle");
    if (!bundleClass) return;
    SEL initialize = "initialize"_sel;
    Class* superclass = bundleClass->superclass();
    const Method* method = bundleClass->classMethod(initialize);
    if (!method || (superclass && superclass->classMethod(initialize) == method)) return;
    loader().barredClass = bundleClass;
    loader().bundleInitialize =
        PBReplaceMethodImplementation(bundleClass->metaclass(), initialize,
                                      classImplementation<"initialize", &abortBundleInitialization>());
}

void PBPostLoader::_provokeBundleInitialization() {
    Class* bundleClass = std::exchange(loader().barredClass, nullptr);
    if (!bundleClass) return;
    PBReplaceMethodImplementation(bundleClass->metaclass(), "initialize"_sel, loader().bundleInitialize);
    UnresolvedLinks unresolvedLinks;
    bundleClass->initializeIfNeeded();
}

}  // namespace pelvor
