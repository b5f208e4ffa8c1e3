// SPDX-License-Identifier: Apache-2.0
// PBPostLoader: calls the load-time hooks of all classes, phase by phase and each once.
#pragma once

#include <atomic>

#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSNotification;
class NSPathStore2;
class NSString;

/// How many protected calls are running inside each other; shared with whatever handles exceptions. One
/// more while the post-loader calls a hook, and one less however the call ends.
extern PELVOR_EXPORT std::atomic<int> PBExceptionHandlingNestLevel;

/// Runs what classes want done once, after code was loaded and before it is used. A class, or a category
/// of it, asks for it by a class operation without arguments or result:
///
///     performPosing          replace classes and methods; nothing has been initialised
///     didLoad                every class has posed, the profile registry is filled; the class is initialised
///     activateToolkit        every didLoad has run; the class is initialised
///     becomingMultiThreaded  the process is about to have, or has, a second thread
///
/// Each implementation is called once in the life of the process, also when several classes share it; an
/// implementation that a class inherits is its superclass's alone. Only the order of the phases can be
/// relied on, not that of the classes in a phase. A hook may register classes, whose hooks then run in the
/// same phase, and load bundles, whose whole cycle runs inside that hook. What a hook throws is reported as
/// one line on standard error, and the next hook is called.
///
/// The host calls `processClasses` once. Bundles that are loaded later pass through all phases by
/// themselves, and their profiles go to the registry. Cycles are for the main thread; those of bundles that
/// other threads load wait for each other.
class PELVOR_EXPORT PBPostLoader : public NSObject {
    PELVOR_CLASS(PBPostLoader, NSObject);

  public:
    /// Sent by the first message to the class, once: runs the posing phase, in which the bundle class must
    /// not be used, then initialises the bundle class and begins to listen for bundles and threads.
    static void initialize(Class* cls);

    /// One cycle with everything: what a host calls before its main loop. The library itself is registered
    /// by then; a host registers its own classes first.
    static void processClasses();
    /// One cycle with posing.
    static void processClassesStartingRegistry(bool startRegistry);
    /// One cycle: posing if wanted, the profile registry's start if wanted, `didLoad`, `activateToolkit`,
    /// and, once there is a second thread, `becomingMultiThreaded`.
    static void processClassesStartingRegistry_posing(bool startRegistry, bool posing);
    /// Calls each class's own class-level methods for the selector that were never called, pass after pass
    /// until one finds none. With `initialize`, a class is initialised before its first hook.
    static void processSelector_initialize(SEL selector, bool initialize);
    /// Sent for every bundle that was loaded: a cycle without the registry's start, and then the bundle's
    /// profiles go to the registry.
    static void bundleDidLoad(NSNotification* notification);
    /// Whether the phase for a second thread has run.
    static bool isMultiThreaded();

    // C++ only
    /// Returns whether a cycle has ever begun. Any thread.
    static bool hasProcessedClasses();

  private:
    static void _becomingMultiThreaded(NSNotification* notification);
    static bool _processSelector_inClass_initialize(SEL selector, Class* inClass, bool initialize);
    static void _preventBundleInitialization();
    static void _provokeBundleInitialization();
};

/// "OFOverrides": what path strings answer while the bundle class is being initialised.
extern const Category NSPathStore2_OFOverrides_category;
/// The path itself, with whatever symbolic links are in it.
PELVOR_EXPORT NSString* replacement_stringByResolvingSymlinksInPath(NSPathStore2* path);

}  // namespace pelvor
