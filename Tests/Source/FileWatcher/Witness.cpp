// SPDX-License-Identifier: Apache-2.0
#include "Witness.h"

#include "BaseLibrary.h"

namespace pelvor {

constexpr Library* kDependencies[] = {&baseLibrary};
constinit Library witnessLibrary{"Witness", kDependencies, kClassesOf<Witness>, {}};

PELVOR_DEFINE_CLASS(Witness, witnessLibrary) {
    methods
        .instance<"watcher:receivedNotification:forPath:", &Witness::watcher_receivedNotification_forPath>();
    methods.instance<"fileWatcher:notedAction:forFileAtPath:",
                     &Witness::fileWatcher_notedAction_forFileAtPath>();
    methods.instance<"hear:", &Witness::hear>();
}

Retained<Witness> Witness::reacting(Reaction reaction) {
    auto witness = make<Witness>();
    witness->reaction = std::move(reaction);
    return witness;
}

// "ZWKQueueFileWrittenToNotification" is "WrittenTo".
void Witness::watcher_receivedNotification_forPath(id, NSString* name, NSString* path) {
    const std::string text = name->toUTF8();
    note(text.substr(12, text.size() - 12 - 12), path);
}

void Witness::fileWatcher_notedAction_forFileAtPath(id, std::uint32_t action, NSString* path) {
    note(std::to_string(action), path);
}

void Witness::listen(NSString* name) {
    NSWorkspace::sharedWorkspace()->notificationCenter()->addObserver_selector_name_object(this, "hear:"_sel,
                                                                                           name, nullptr);
}

void Witness::hear(NSNotification* notification) {
    watcher_receivedNotification_forPath(nullptr, notification->name(),
                                         cast<NSString>(notification->userInfo()->objectForKey(u"path"_ns)));
}

void Witness::note(const std::string& what, NSString* path) {
    const std::string report = what + " " + path->lastPathComponent()->toUTF8();
    reportsOnMainThread += NSThread::isMainThread();
    {
        std::lock_guard lock(_mutex);
        _reports.push_back(report);
        _hasMore.notify_all();
    }
    if (auto call = reaction) call(report);
}

std::vector<std::string> Witness::takeReports() {
    std::lock_guard lock(_mutex);
    return std::exchange(_reports, {});
}

bool Witness::hasReport(const std::string& report) {
    std::lock_guard lock(_mutex);
    return std::count(_reports.begin(), _reports.end(), report) != 0;
}

void Witness::await(const std::string& report) {
    std::unique_lock lock(_mutex);
    _hasMore.wait(lock, [&] { return std::count(_reports.begin(), _reports.end(), report) != 0; });
}

}  // namespace pelvor
