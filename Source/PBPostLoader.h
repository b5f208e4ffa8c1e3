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

/// How many protected calls are running inside each other; code that handles exceptions reads this number.
/// The post-loader adds 1 for the time of each call of a hook, in whatever way the call ends.
extern PELVOR_EXPORT std::atomic<int> PBExceptionHandlingNestLevel;

/// Calls the load-time hooks of all classes: class operations with agreed names, by which classes set
/// themselves up after their code was loaded and before it is used. A host calls it once, before its main
/// loop:
///
///     registerLibrary(hostLibrary);
///     PBPostLoader::processClasses();
///
/// A hook has no argument and no result. A class, and each category of it, may define any of these, which are
/// the phases of a cycle in their order:
///
///     performPosing          to replace classes and methods; nothing has been initialised
///     didLoad                every class has posed, the registry is filled; the class is initialised
///     activateToolkit        every didLoad has run; the class is initialised
///     becomingMultiThreaded  the process is about to have a second thread, or has one
///
/// Each implementation is called once in the life of the process, even if several classes share it. A class
/// that only inherits a hook is not called. The order of the phases can be relied on, the order of the
/// classes in a phase cannot. A hook may register classes, whose hooks then run in the same phase, and load
/// bundles, whose whole cycle then runs inside the hook. An exception of a hook is reported in one line on
/// standard error, and the next hook is called.
///
/// A bundle that is loaded later passes through all phases inside `NSBundle::load`, and then its profiles are
/// added to the registry. Cycles run on the main thread; the cycles of bundles that other threads load run
/// one after the other.
class PELVOR_EXPORT PBPostLoader : public NSObject {
    PELVOR_CLASS(PBPostLoader, NSObject);

  public:
    /// Runs with the first message to the class, once. It runs the posing phase, in which the bundle class
    /// must not be used, then initialises the bundle class and begins to listen for bundles and threads.
    static void initialize(Class* cls);

    /// Runs one cycle with all phases and the start of the registry. A host registers its own classes before
    /// this call.
    static void processClasses();
    /// Runs one cycle with posing.
    static void processClassesStartingRegistry(bool startRegistry);
    /// Runs one cycle: `performPosing` if wanted, the start of the profile registry if wanted, `didLoad`,
    /// `activateToolkit`, and `becomingMultiThreaded` if there is a second thread.
    static void processClassesStartingRegistry_posing(bool startRegistry, bool posing);
    /// Calls the hooks with this name of all classes, except hooks that were called before, and goes through
    /// the classes again until no hook is left to be called. With `initialize`, a class is initialised before
    /// its first hook.
    static void processSelector_initialize(SEL selector, bool initialize);
    /// Called for every bundle that was loaded: runs a cycle without the start of the registry, and then adds
    /// the profiles of the bundle.
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

/// "OFOverrides": the behaviour of path strings while the bundle class is being initialised.
extern const Category NSPathStore2_OFOverrides_category;
/// Returns the path itself: symbolic links are not resolved.
PELVOR_EXPORT NSString* replacement_stringByResolvingSymlinksInPath(NSPathStore2* path);

}  // namespace pelvor
