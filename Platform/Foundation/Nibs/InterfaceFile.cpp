// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Nibs/InterfaceFile.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_map>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/Nibs/InterfaceFault.h"

namespace pelvor {
namespace {

constexpr int kFormat = 1;
// Objects that are made from each other usually own each other, and so end inside each other's end.
constexpr int kDeepestMaking = 512;

std::string quoted(const std::string& text) { return "'" + text + "'"; }

// One dictionary of the file, whose keys are checked; `place` is the object that faults name.
class Section {
  public:
    Section(id content, std::string place, std::string key) : _place(std::move(place)), _key(std::move(key)) {
        _content = cast<NSDictionary>(content);
        if (!_content) throw InterfaceFault{_place, _key, "this is no dictionary"};
    }

    void nameObject(const std::string& identifier) { _place = identifier; }

    void allow(std::initializer_list<NSString*> keys) const {
        for (auto [key, value] : _content) {
            auto isKey = [key = key](NSString* known) { return known->isEqual(key); };
            if (!std::any_of(keys.begin(), keys.end(), isKey)) fail(key, "there is no such key here");
        }
    }
    id find(NSString* key) const { return _content->objectForKey(key); }
    NSString* text(NSString* key) const {
        id value = find(key);
        if (value && !cast<NSString>(value)) fail(key, "this is no text");
        return cast<NSString>(value);
    }
    NSString* requiredText(NSString* key) const {
        NSString* value = text(key);
        if (!value) fail(key, "the key is missing");
        if (value->length() == 0) fail(key, "the text is empty");
        return value;
    }
    NSArray* array(NSString* key) const {
        id value = find(key);
        if (value && !cast<NSArray>(value)) fail(key, "this is no array");
        return cast<NSArray>(value);
    }
    [[noreturn]] void fail(id key, const std::string& reason) const {
        throw InterfaceFault{_place, key->description()->toUTF8(), reason};
    }
    NSDictionary* content() const { return _content; }

  private:
    NSDictionary* _content;
    std::string _place;
    std::string _key;
};

class InterfaceReader {
  public:
    InterfaceFile read(id list) {
        Section file(list, "", "");
        file.allow({u"Format"_ns, u"Strings"_ns, u"Objects"_ns, u"TopLevel"_ns, u"Connections"_ns});
        readFormat(file);
        _strings.set(file.text(u"Strings"_ns));
        NSArray* objects = file.array(u"Objects"_ns);
        if (!objects) file.fail(u"Objects"_ns, "the key is missing");
        readIdentifiers(objects);
        for (InterfaceIndex i = 0; i < _file.objects.size(); ++i)
            readObject(_file.objects[i], Section(objects->objectAtIndex(i), "", ""));
        readConnections(file.array(u"Connections"_ns));
        readTopLevel(file);
        orderMaking();
        return std::move(_file);
    }

  private:
    static void readFormat(const Section& file) {
        id format = file.find(u"Format"_ns);
        if (!format) return;
        auto* number = cast<NSNumber>(format);
        auto* text = cast<NSString>(format);
        const int version = number ? number->intValue() : text ? text->intValue() : 0;
        if (version != kFormat)
            file.fail(u"Format"_ns, "this format is not known, but only " + std::to_string(kFormat));
    }

    void readIdentifiers(NSArray* objects) {
        for (NSUInteger i = 0; i < objects->count(); ++i) {
            Section section(objects->objectAtIndex(i), std::to_string(i + 1), "");
            NSString* identifier = section.requiredText(u"Identifier"_ns);
            if (!_indexes.emplace(identifier->toUTF16(), i).second)
                section.fail(u"Identifier"_ns, "another object is called " + quoted(identifier->toUTF8()));
            if (identifier->isEqual(u"owner"_ns))
                section.fail(u"Identifier"_ns, "'owner' is the object that the file is loaded for");
            InterfaceObject object;
            object.identifier.set(identifier);
            _file.objects.push_back(std::move(object));
        }
    }

    void readObject(InterfaceObject& object, Section section) {
        const std::string identifier = object.identifier->toUTF8();
        section.nameObject(identifier);
        section.allow({u"Identifier"_ns, u"Class"_ns, u"Create"_ns, u"Arguments"_ns, u"Values"_ns});
        object.className.set(section.requiredText(u"Class"_ns));
        NSString* creator = section.text(u"Create"_ns);
        object.creator = creator ? creator->toUTF8() : "init";
        if (NSArray* arguments = section.array(u"Arguments"_ns))
            for (id argument : arguments)
                object.arguments.push_back(readValue(argument, identifier, "Arguments"));
        std::vector<InterfaceIndex> needed;
        for (const InterfaceValue& argument : object.arguments) addReferences(argument, needed);
        _makings.push_back({std::move(needed)});
        const auto colons = std::count(object.creator.begin(), object.creator.end(), ':');
        if (static_cast<std::size_t>(colons) != object.arguments.size())
            section.fail(u"Arguments"_ns, quoted(object.creator) + " takes " + std::to_string(colons) +
                                              ", and there are " + std::to_string(object.arguments.size()));
        if (id values = section.find(u"Values"_ns)) readSettings(object, values, identifier);
    }

    // The values of one dictionary are set in the order of their keys; an array of dictionaries has an order
    // of its own.
    void readSettings(InterfaceObject& object, id values, const std::string& identifier) {
        if (auto* groups = cast<NSArray>(values)) {
            for (id group : groups)
                readSettings(object, Section(group, identifier, "Values").content(), identifier);
            return;
        }
        NSDictionary* settings = Section(values, identifier, "Values").content();
        for (id key : settings->allKeys()->sortedArrayUsingSelector("compare:"_sel)) {
            auto* name = static_cast<NSString*>(key);
            InterfaceSetting setting;
            setting.key.set(name);
            setting.value = readValue(settings->objectForKey(name), identifier, name->toUTF8());
            object.settings.push_back(std::move(setting));
        }
    }

    InterfaceIndex indexOf(NSString* identifier, const std::string& object, const std::string& key) const {
        if (identifier->isEqual(u"owner"_ns)) return kInterfaceOwner;
        auto found = _indexes.find(identifier->toUTF16());
        if (found == _indexes.end())
            throw InterfaceFault{object, key, "there is no object " + quoted(identifier->toUTF8())};
        return found->second;
    }

    // The nesting is that of the property list, which has a bound. The functions are small and stay apart, so
    // that the stack of a thread is enough for it.
    InterfaceValue readValue(id content, const std::string& object, const std::string& key) {
        if (auto* items = cast<NSArray>(content)) return readItems(items, object, key);
        if (auto* entries = cast<NSDictionary>(content)) return readSpecialValue(entries, object, key);
        InterfaceValue value;
        value.object.set(content);
        return value;
    }

    [[gnu::noinline]] InterfaceValue readItems(NSArray* items, const std::string& object,
                                               const std::string& key) {
        InterfaceValue value;
        value.kind = InterfaceValue::Kind::array;
        for (NSUInteger i = 0; i < items->count(); ++i)
            value.items.push_back(readValue(items->objectAtIndex(i), object, key));
        return shared(std::move(value));
    }

    InterfaceValue readSpecialValue(NSDictionary* entries, const std::string& object,
                                    const std::string& key) {
        if (entries->objectForKey(u"Object"_ns)) return readReference(entries, object, key);
        if (entries->objectForKey(u"Text"_ns)) return readText(entries, object, key);
        return readEntries(entriesOf(entries, object, key), object, key);
    }

    [[gnu::noinline]] InterfaceValue readReference(NSDictionary* entries, const std::string& object,
                                                   const std::string& key) {
        Section section(entries, object, key);
        section.allow({u"Object"_ns});
        InterfaceValue value;
        value.kind = InterfaceValue::Kind::reference;
        value.index = indexOf(section.text(u"Object"_ns), object, key);
        return value;
    }

    [[gnu::noinline]] InterfaceValue readText(NSDictionary* entries, const std::string& object,
                                              const std::string& key) {
        Section section(entries, object, key);
        section.allow({u"Text"_ns, u"Table"_ns});
        InterfaceValue value;
        value.kind = InterfaceValue::Kind::text;
        value.object.set(section.text(u"Text"_ns));
        NSString* table = section.text(u"Table"_ns);
        value.table.set(table ? table : _strings.get());
        return value;
    }

    [[gnu::noinline]] static NSDictionary* entriesOf(NSDictionary* entries, const std::string& object,
                                                     const std::string& key) {
        Section section(entries, object, key);
        id content = section.find(u"Dictionary"_ns);
        if (!content)
            throw InterfaceFault{object, key,
                                 "a dictionary as a value has the key 'Object', 'Text' or 'Dictionary'"};
        section.allow({u"Dictionary"_ns});
        return Section(content, object, key).content();
    }

    [[gnu::noinline]] InterfaceValue readEntries(NSDictionary* entries, const std::string& object,
                                                 const std::string& key) {
        InterfaceValue value;
        value.kind = InterfaceValue::Kind::dictionary;
        NSArray* keys = entries->allKeys();
        value.object.set(keys);
        for (NSUInteger i = 0; i < keys->count(); ++i) {
            auto* name = static_cast<NSString*>(keys->objectAtIndex(i));
            value.items.push_back(readValue(entries->objectForKey(name), object, key));
        }
        return shared(std::move(value));
    }

    // An array or dictionary of plain values is a plain value, which all who are made share.
    static InterfaceValue shared(InterfaceValue value) {
        auto objects = NSMutableArray::init();
        for (const InterfaceValue& item : value.items) {
            if (item.kind != InterfaceValue::Kind::plain) return value;
            objects->addObject(item.object);
        }
        InterfaceValue plain;
        if (value.kind == InterfaceValue::Kind::array)
            plain.object = objects->copy();
        else
            plain.object =
                NSDictionary::initWithObjects_forKeys(objects, static_cast<NSArray*>(value.object.get()));
        return plain;
    }

    void readConnections(NSArray* connections) {
        if (!connections) return;
        for (id content : connections) {
            Section section(content, "", "Connections");
            NSString* source = section.requiredText(u"Source"_ns);
            section.nameObject(source->toUTF8());
            section.allow({u"Source"_ns, u"Target"_ns, u"Outlet"_ns, u"Action"_ns});
            InterfaceConnection connection;
            connection.source = indexOf(source, "", "Source");
            NSString* action = section.text(u"Action"_ns);
            connection.outlet.set(section.text(u"Outlet"_ns));
            connection.action = action ? action->toUTF8() : "";
            if (!action == !connection.outlet.get())
                section.fail(u"Connections"_ns, "a connection has either 'Outlet' or 'Action'");
            NSString* target = action ? section.text(u"Target"_ns) : section.requiredText(u"Target"_ns);
            NSString* name = action ? action : connection.outlet.get();
            connection.target =
                target ? indexOf(target, source->toUTF8(), name->toUTF8()) : kNoInterfaceObject;
            _file.connections.push_back(std::move(connection));
        }
    }

    void readTopLevel(const Section& file) {
        NSArray* identifiers = file.array(u"TopLevel"_ns);
        if (!identifiers)
            for (InterfaceIndex i = 0; i < _file.objects.size(); ++i) _file.topLevel.push_back(i);
        else
            for (id identifier : identifiers) {
                auto* name = cast<NSString>(identifier);
                if (!name) file.fail(u"TopLevel"_ns, "one of the identifiers is no text");
                _file.topLevel.push_back(indexOf(name, "", "TopLevel"));
                if (_file.topLevel.back() == kInterfaceOwner)
                    file.fail(u"TopLevel"_ns, "the owner is no object of the file");
            }
    }

    // MARK: The order of making

    static void addReferences(const InterfaceValue& value, std::vector<InterfaceIndex>& references) {
        if (value.kind == InterfaceValue::Kind::reference && value.index != kInterfaceOwner)
            references.push_back(value.index);
        for (const InterfaceValue& item : value.items) addReferences(item, references);
    }

    struct Making {
        std::vector<InterfaceIndex> needed;
        bool isActive = false;
        int depth = 0;  // how many objects are made one from the other up to here; 0 before the object's turn
    };

    void orderMaking() {
        for (InterfaceIndex i = 0; i < _file.objects.size(); ++i) orderObject(i);
    }

    int orderObject(InterfaceIndex index) {
        if (_makings[index].depth > 0) return _makings[index].depth;
        if (_makings[index].isActive) failInCircle(index);
        _makings[index].isActive = true;
        _path.push_back(index);
        int depth = 0;
        if (_path.size() <= kDeepestMaking)
            for (InterfaceIndex needed : _makings[index].needed) depth = std::max(depth, orderObject(needed));
        if (depth >= kDeepestMaking || _path.size() > kDeepestMaking)
            throw InterfaceFault{
                _file.identifierOf(index), "Arguments",
                "more than " + std::to_string(kDeepestMaking) + " objects are made one from the other"};
        _path.pop_back();
        _makings[index] = {{}, false, depth + 1};
        _file.makingOrder.push_back(index);
        return depth + 1;
    }

    [[noreturn]] void failInCircle(InterfaceIndex index) const {
        std::string names;
        for (auto member = std::find(_path.begin(), _path.end(), index); member != _path.end(); ++member)
            names += quoted(_file.identifierOf(*member)) + " needs ";
        throw InterfaceFault{
            _file.identifierOf(index), "Arguments",
            "the objects are made from each other: " + names + quoted(_file.identifierOf(index))};
    }

    InterfaceFile _file;
    Retained<NSString> _strings;
    std::unordered_map<std::u16string, InterfaceIndex> _indexes;
    std::vector<Making> _makings;
    std::vector<InterfaceIndex> _path;
};

}  // namespace

bool InterfaceValue::refersToObjects() const {
    return kind == Kind::reference || std::any_of(items.begin(), items.end(), [](const InterfaceValue& item) {
               return item.refersToObjects();
           });
}

std::string InterfaceFile::identifierOf(InterfaceIndex index) const {
    return index == kInterfaceOwner ? "owner" : objects[index].identifier->toUTF8();
}

InterfaceFile InterfaceFile::read(id propertyList) { return InterfaceReader().read(propertyList); }

}  // namespace pelvor
