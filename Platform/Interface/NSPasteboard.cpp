// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSPasteboard.h"

#include <poll.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSStringEncoding.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Texts/PasteboardTypes.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

NSString* const NSGeneralPboard = u"NSGeneralPboard"_ns;
NSString* const NSSelectionPboard = u"NSSelectionPboard"_ns;
NSString* const NSDragPboard = u"NSDragPboard"_ns;
NSString* const NSFindPboard = u"NSFindPboard"_ns;
NSString* const NSFontPboard = u"NSFontPboard"_ns;
NSString* const NSRulerPboard = u"NSRulerPboard"_ns;

PELVOR_DEFINE_CLASS(NSPasteboard, interfaceLibrary) {
    methods.classLevel<"generalPasteboard", &NSPasteboard::generalPasteboard>();
    methods.classLevel<"pasteboardWithName:", &NSPasteboard::pasteboardWithName>();
    methods.classLevel<"pasteboardWithUniqueName", &NSPasteboard::pasteboardWithUniqueName>();
    methods.instance<"name", &NSPasteboard::name>();
    methods.instance<"changeCount", &NSPasteboard::changeCount>();
    methods.instance<"declareTypes:owner:", &NSPasteboard::declareTypes_owner>();
    methods.instance<"addTypes:owner:", &NSPasteboard::addTypes_owner>();
    methods.instance<"setData:forType:", &NSPasteboard::setData_forType>();
    methods.instance<"setString:forType:", &NSPasteboard::setString_forType>();
    methods.instance<"setPropertyList:forType:", &NSPasteboard::setPropertyList_forType>();
    methods.instance<"types", &NSPasteboard::types>();
    methods.instance<"availableTypeFromArray:", &NSPasteboard::availableTypeFromArray>();
    methods.instance<"dataForType:", &NSPasteboard::dataForType>();
    methods.instance<"stringForType:", &NSPasteboard::stringForType>();
    methods.instance<"propertyListForType:", &NSPasteboard::propertyListForType>();
    methods.instance<"releaseGlobally", &NSPasteboard::releaseGlobally>();
}

namespace {

constexpr double kLongestWait = 2;        // for another program, in seconds
constexpr double kTypesStayValid = 0.25;  // so long another program's types count as known

NSMutableDictionary* pasteboards() {
    static NSMutableDictionary* const all = NSMutableDictionary::init().leak();
    return all;
}

struct SharedName {
    NSString* const* name;
    BackendSelection selection;
};

constexpr SharedName kSharedNames[] = {
    {&NSGeneralPboard, BackendSelection::clipboard},
    {&NSSelectionPboard, BackendSelection::primary},
    {&NSDragPboard, BackendSelection::drag},
};

/// What another program replied, which may come after nobody waits any longer.
struct Reply {
    bool isDone = false;
    bool isThere = false;
    std::string content;

    static SelectionReceiver receiver(std::shared_ptr<Reply> reply) {
        return [reply = std::move(reply)](bool isThere, std::string content) {
            *reply = {true, isThere, std::move(content)};
        };
    }
};

// Lets the back end work until the reply is there; events that come meanwhile wait in the queue.
bool waitFor(const Reply& reply, InterfaceBackend& backend) {
    const double end = NSDate::currentTimeIntervalSinceReferenceDate() + kLongestWait;
    while (!reply.isDone) {
        const bool hasEvents = backend.prepare();
        if (!hasEvents) {
            pollfd waited{backend.descriptor(), POLLIN, 0};
            const double left = std::min(end - NSDate::currentTimeIntervalSinceReferenceDate(),
                                         std::max(backend.timeout(), 0.001));
            if (waited.fd < 0 || left <= 0) return false;
            poll(&waited, 1, static_cast<int>(std::ceil(left * 1000)));
        }
        backend.dispatch();
    }
    return reply.isThere;
}

NSString* textOf(NSData* data) {
    return data ? NSString::initWithData_encoding(data, NSUTF8StringEncoding).autorelease() : nullptr;
}

}  // namespace

// MARK: Pasteboards

NSPasteboard* NSPasteboard::generalPasteboard() { return pasteboardWithName(NSGeneralPboard); }

NSPasteboard* NSPasteboard::pasteboardWithName(NSString* name) {
    requireArgument(name, "pasteboardWithName:", "the name");
    if (auto board = cast<NSPasteboard>(pasteboards()->objectForKey(name))) return board;
    auto board = withName(name);
    pasteboards()->setObject_forKey(board, board->_name);
    return board;
}

NSPasteboard* NSPasteboard::pasteboardWithUniqueName() {
    static unsigned count = 0;
    return pasteboardWithName(NSString::stringWithFormat(u"Pasteboard %u"_ns, ++count));
}

Retained<NSPasteboard> NSPasteboard::withName(NSString* name) {
    auto board = make<NSPasteboard>(classObject());
    board->_name = name->copy();
    for (const SharedName& each : kSharedNames)
        if (name->isEqualToString(*each.name)) board->_selection = static_cast<int>(each.selection);
    return board;
}

InterfaceBackend* NSPasteboard::backend() {
    return _selection >= 0 ? &DisplayConnection::shared().backend() : nullptr;
}

// MARK: Writing

NSInteger NSPasteboard::declareTypes_owner(NSArray* types, id owner) {
    requireArgument(types, "declareTypes:owner:", "the array");
    const Retained<NSPasteboard> alive = Retained<NSPasteboard>::retaining(this);
    forgetContent();
    ++_changeCount;
    return add(types, owner, "declareTypes:owner:");
}

NSInteger NSPasteboard::addTypes_owner(NSArray* types, id owner) {
    requireArgument(types, "addTypes:owner:", "the array");
    return add(types, owner, "addTypes:owner:");
}

NSInteger NSPasteboard::add(NSArray* types, id owner, const char* operation) {
    for (NSUInteger i = 0; i < types->count(); ++i)
        if (!cast<NSString>(types->objectAtIndex(i)))
            raiseBadArgument(operation, "an object of the array is no string");
    for (NSUInteger i = 0; i < types->count(); ++i) {
        auto type = static_cast<NSString*>(types->objectAtIndex(i));
        if (Entry* entry = entryOf(type))
            entry->owner = WeakHandle(owner);
        else
            _entries.push_back({type->copy(), nullptr, WeakHandle(owner)});
    }
    offer();
    return _changeCount;
}

// Offers the content to other programs, who ask for it when they want it.
void NSPasteboard::offer() {
    InterfaceBackend* display = backend();
    if (!display) return;
    std::vector<std::string> names;
    for (const Entry& entry : _entries)
        for (std::string& name : foreignNamesOfType(entry.type)) names.push_back(std::move(name));
    DisplayConnection::shared().whenSelectionIsLost = [](BackendSelection lost) {
        for (const SharedName& each : kSharedNames)
            if (each.selection == lost) pasteboardWithName(*each.name)->contentLost();
    };
    // Pasteboards exist as long as the process, but for unique ones, which are not shared.
    _isOwner = display->offerSelection(static_cast<BackendSelection>(_selection), std::move(names),
                                       [this](const std::string& name) {
                                           NSString* type = typeOfForeignName(name);
                                           NSData* data = type ? ownData(type) : nullptr;
                                           return data ? foreignContent(type, data, name) : std::string();
                                       });
}

NSPasteboard::Entry* NSPasteboard::entryOf(NSString* type) {
    for (Entry& entry : _entries)
        if (entry.type->isEqualToString(type)) return &entry;
    return nullptr;
}

bool NSPasteboard::setData_forType(NSData* data, NSString* type) {
    requireArgument(type, "setData:forType:", "the type");
    Entry* entry = entryOf(type);
    if (!entry) return false;
    entry->data = data ? data->copy() : nullptr;
    return true;
}

bool NSPasteboard::setString_forType(NSString* string, NSString* type) {
    requireArgument(type, "setString:forType:", "the type");
    // A lone half of a character does not keep the rest of the text from being copied.
    return setData_forType(
        string ? string->dataUsingEncoding_allowLossyConversion(NSUTF8StringEncoding, true) : nullptr, type);
}

bool NSPasteboard::setPropertyList_forType(id list, NSString* type) {
    requireArgument(type, "setPropertyList:forType:", "the type");
    NSData* data = list ? NSPropertyListSerialization::dataWithPropertyList_format_options_error(
                              list, NSPropertyListXMLFormat_v1_0, 0, nullptr)
                        : nullptr;
    return (data || !list) && setData_forType(data, type);
}

std::vector<NSPasteboard::Entry> NSPasteboard::takeContent() {
    _foreignTypes.clear();
    _foreignTypesUntil = 0;
    return std::exchange(_entries, {});
}

void NSPasteboard::tellOwners(const std::vector<Entry>& gone) {
    const SEL changed = "pasteboardChangedOwner:"_sel;
    id last = nullptr;
    for (const Entry& entry : gone) {
        const Retained<Object> owner = entry.owner.object();
        if (owner && owner.get() != last && owner->respondsToSelector(changed)) send(owner, changed, this);
        last = owner.get();
    }
}

void NSPasteboard::forgetContent() { tellOwners(takeContent()); }

// Called from inside the back end, where no code of the program may run.
void NSPasteboard::contentLost() {
    _isOwner = false;
    ++_changeCount;
    const auto gone = std::make_shared<std::vector<Entry>>(takeContent());
    if (gone->empty()) return;
    NSRunLoop::mainRunLoop()->perform([this, gone] { tellOwners(*gone); },
                                      NSArray::arrayWithObject(NSRunLoopCommonModes));
}

void NSPasteboard::releaseGlobally() {
    const Retained<NSPasteboard> alive = Retained<NSPasteboard>::retaining(this);
    ++_changeCount;
    forgetContent();
    if (_isOwner) offer();
    if (_name->hasPrefix(u"Pasteboard "_ns)) pasteboards()->removeObjectForKey(_name);
}

// MARK: Reading

NSArray* NSPasteboard::types() {
    auto types = NSMutableArray::init();
    if (_entries.empty()) {
        for (const auto& type : foreignTypes()) types->addObject(type);
    } else {
        for (const Entry& entry : _entries) types->addObject(entry.type);
    }
    return types->copy().autorelease();
}

NSString* NSPasteboard::availableTypeFromArray(NSArray* wanted) {
    requireArgument(wanted, "availableTypeFromArray:", "the array");
    NSArray* available = types();
    for (NSUInteger i = 0; i < wanted->count(); ++i)
        if (auto type = cast<NSString>(wanted->objectAtIndex(i)); type && available->containsObject(type))
            return type;
    return nullptr;
}

NSData* NSPasteboard::dataForType(NSString* type) {
    requireArgument(type, "dataForType:", "the type");
    return _entries.empty() ? foreignData(type) : ownData(type);
}

NSData* NSPasteboard::ownData(NSString* type) {
    Entry* entry = entryOf(type);
    if (!entry) return nullptr;
    const SEL provide = "pasteboard:provideDataForType:"_sel;
    if (const Retained<Object> owner = entry->owner.object();
        !entry->data && owner && owner->respondsToSelector(provide)) {
        send(owner, provide, this, type);
        entry = entryOf(type);  // the owner may have declared other types
    }
    return entry && entry->data ? entry->data->copy().autorelease() : nullptr;
}

const NSPasteboard::TypeNames& NSPasteboard::foreignTypes() {
    InterfaceBackend* display = backend();
    if (!display || NSDate::currentTimeIntervalSinceReferenceDate() < _foreignTypesUntil)
        return _foreignTypes;
    auto reply = std::make_shared<Reply>();
    display->requestTypes(static_cast<BackendSelection>(_selection), Reply::receiver(reply));
    waitFor(*reply, *display);
    _foreignTypes.clear();
    _foreignTypesUntil = NSDate::currentTimeIntervalSinceReferenceDate() + kTypesStayValid;
    for (std::string_view rest = reply->content; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        NSString* type = typeOfForeignName(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (type && std::none_of(_foreignTypes.begin(), _foreignTypes.end(),
                                 [&](const auto& known) { return known->isEqualToString(type); }))
            _foreignTypes.push_back(type->copy());
    }
    return _foreignTypes;
}

NSData* NSPasteboard::foreignData(NSString* type) {
    InterfaceBackend* display = backend();
    if (!display) return nullptr;
    for (const std::string& name : foreignNamesOfType(type)) {
        auto reply = std::make_shared<Reply>();
        display->requestSelection(static_cast<BackendSelection>(_selection), name, Reply::receiver(reply));
        if (waitFor(*reply, *display)) return contentOfForeign(type, reply->content, name);
        if (!reply->isDone) break;  // who does not reply to one name does not reply to the others either
    }
    return nullptr;
}

NSString* NSPasteboard::stringForType(NSString* type) {
    requireArgument(type, "stringForType:", "the type");
    return textOf(dataForType(type));
}

id NSPasteboard::propertyListForType(NSString* type) {
    requireArgument(type, "propertyListForType:", "the type");
    NSData* data = dataForType(type);
    return data ? NSPropertyListSerialization::propertyListWithData_options_format_error(
                      data, NSPropertyListImmutable, nullptr, nullptr)
                : nullptr;
}

}  // namespace pelvor
