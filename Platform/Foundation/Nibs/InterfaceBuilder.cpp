// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Nibs/InterfaceBuilder.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSRuntimeNames.h"
#include "Foundation/Nibs/InterfaceArguments.h"
#include "Foundation/Nibs/InterfaceFault.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

// Does the work, and says of its failure that it is the object's and the key's.
template <class Work>
auto blaming(const std::string& object, const std::string& key, Work work) {
    try {
        return work();
    } catch (const InterfaceFault& fault) {
        throw InterfaceFault{object, key, fault.reason};
    } catch (const std::exception&) {
        throw InterfaceFault{object, key, currentExceptionReason()};
    }
}

std::string classNameOf(Object* object) { return object->isa()->publicName(); }

// "setTitle:" for "title".
std::string setterOf(NSString* key) {
    std::string name = key->toUTF8();
    if (!name.empty() && name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return "set" + name + ":";
}

NSMethodSignature* typesOfSetter(Object* receiver, const std::string& setter) {
    const SEL selector = findSelector(setter);
    NSMethodSignature* types = selector ? receiver->methodSignatureForSelector(selector) : nullptr;
    if (!types || types->argumentCount() != 1)
        throw InterfaceFault{"", "",
                             "the class " + classNameOf(receiver) + " has no setter '" + setter + "'"};
    return types;
}

const InterfaceValue& referenceTo(InterfaceIndex index, InterfaceValue& value) {
    value.kind = InterfaceValue::Kind::reference;
    value.index = index;
    return value;
}

}  // namespace

InterfaceBuilder::InterfaceBuilder(const InterfaceFile& file, NSBundle* bundle, id owner)
    : _file(file),
      _bundle(bundle),
      _owner(Retained<Object>::retaining(owner)),
      _objects(file.objects.size()) {}

void InterfaceBuilder::build() {
    try {
        for (InterfaceIndex index : _file.makingOrder) makeObject(index);
        for (InterfaceIndex index : _file.makingOrder)
            for (const InterfaceSetting& setting : _file.objects[index].settings) setValue(index, setting);
        for (const InterfaceConnection& connection : _file.connections) connect(connection);
        for (InterfaceIndex index : _file.makingOrder) wake(index);
        wake(kInterfaceOwner);
    } catch (...) {
        takeReferencesBack();
        throw;
    }
}

// MARK: Steps

void InterfaceBuilder::makeObject(InterfaceIndex index) {
    const InterfaceObject& object = _file.objects[index];
    const std::string identifier = object.identifier->toUTF8();
    Class* cls = NSClassFromString(object.className);
    if (!cls) throw InterfaceFault{identifier, "Class", "there is no class " + object.className->toUTF8()};
    _objects[index] = blaming(identifier, "Create", [&] {
        const SEL creator = findSelector(object.creator);
        NSMethodSignature* types = creator ? cls->methodSignatureForSelector(creator) : nullptr;
        if (!types || types->argumentCount() != object.arguments.size() || types->result().encoding[0] != '@')
            throw InterfaceFault{"", "",
                                 "the class " + object.className->toUTF8() + " has no operation '" +
                                     object.creator + "' that returns an object"};
        Object* made = sendMessage(cls, creator, types, object.arguments.data());
        if (!made) throw InterfaceFault{"", "", "'" + object.creator + "' returned null"};
        return Retained<Object>::retaining(made);
    });
}

void InterfaceBuilder::setValue(InterfaceIndex index, const InterfaceSetting& setting) {
    sendSetter(index, setting.key, setting.setter, setting.value);
}

void InterfaceBuilder::connect(const InterfaceConnection& connection) {
    Object* source = objectAt(connection.source);
    if (!source) return;  // nobody owns the objects
    if (!connection.outlet) return connectAction(connection, source);
    InterfaceValue target;
    sendSetter(connection.source, connection.outlet, connection.setter,
               referenceTo(connection.target, target));
}

void InterfaceBuilder::connectAction(const InterfaceConnection& connection, Object* source) {
    Object* target = objectAt(connection.target);
    blaming(_file.identifierOf(connection.source), connection.action, [&] {
        const SEL action = registerSelector(connection.action);
        if (target && !target->respondsToSelector(action))
            throw InterfaceFault{"", "",
                                 "the object '" + _file.identifierOf(connection.target) + "', a " +
                                     classNameOf(target) + ", has no such operation"};
        typesOfSetter(source, "setTarget:");
        typesOfSetter(source, "setAction:");
        _references.push_back({Retained<Object>::retaining(source), "setTarget:"_sel});
        send<void>(source, "setTarget:"_sel, target);
        send<void>(source, "setAction:"_sel, action);
    });
}

void InterfaceBuilder::wake(InterfaceIndex index) {
    Object* object = objectAt(index);
    if (!object || !object->respondsToSelector("awakeFromNib"_sel)) return;
    blaming(_file.identifierOf(index), "awakeFromNib", [&] { send<void>(object, "awakeFromNib"_sel); });
}

// Objects that own each other would keep each other alive, and the owner would keep objects that were not
// finished.
void InterfaceBuilder::takeReferencesBack() noexcept {
    while (!_references.empty()) {
        Reference reference = std::move(_references.back());
        _references.pop_back();
        try {
            send<void>(reference.receiver, reference.setter, static_cast<Object*>(nullptr));
        } catch (const std::exception&) {
            // A setter that insists on an object keeps the one that it has.
        }
    }
    while (!_objects.empty()) _objects.pop_back();
}

// MARK: Values and messages

Object* InterfaceBuilder::objectAt(InterfaceIndex index) const {
    if (index == kInterfaceOwner) return _owner;
    return index == kNoInterfaceObject ? nullptr : _objects[index].get();
}

Retained<Object> InterfaceBuilder::objectOf(const InterfaceValue& value) const {
    using Kind = InterfaceValue::Kind;
    switch (value.kind) {
        case Kind::text:
            return Retained<Object>::retaining(_bundle->localizedStringForKey_value_table(
                static_cast<NSString*>(value.object.get()), nullptr, value.table));
        case Kind::reference:
            return Retained<Object>::retaining(objectAt(value.index));
        case Kind::array: {
            auto array = NSMutableArray::init();
            for (const InterfaceValue& item : value.items)
                if (auto object = objectOf(item)) array->addObject(object);
            return array->copy();
        }
        case Kind::dictionary: {
            auto dictionary = NSMutableDictionary::init();
            auto* keys = static_cast<NSArray*>(value.object.get());
            for (NSUInteger i = 0; i < keys->count(); ++i)
                if (auto object = objectOf(value.items[i]))
                    dictionary->setObject_forKey(object, keys->objectAtIndex(i));
            return dictionary->copy();
        }
        default:
            return value.object;
    }
}

void InterfaceBuilder::sendSetter(InterfaceIndex index, NSString* key, SEL& setter,
                                  const InterfaceValue& value) {
    Object* receiver = objectAt(index);
    blaming(_file.identifierOf(index), key->toUTF8(), [&] {
        NSMethodSignature* types = setter ? receiver->methodSignatureForSelector(setter) : nullptr;
        if (!types) {
            types = typesOfSetter(receiver, setterOf(key));
            setter = findSelector(setterOf(key));
        }
        if (types->argument(0).encoding[0] == '@' && value.refersToObjects())
            _references.push_back({Retained<Object>::retaining(receiver), setter});
        sendMessage(receiver, setter, types, &value);
    });
}

Object* InterfaceBuilder::sendMessage(Object* receiver, SEL selector, NSMethodSignature* types,
                                      const InterfaceValue* values) {
    _arguments.clear();
    _frame.assign(types->frameLength() / sizeof(std::max_align_t) + 1, {});
    auto* frame = reinterpret_cast<std::byte*>(_frame.data());
    for (std::uint32_t i = 0; i < types->argumentCount(); ++i)
        writeArgument(values[i], types->argument(i), frame + types->argument(i).offset);
    std::vector<std::max_align_t> result(types->result().size / sizeof(std::max_align_t) + 1);
    sendFrame(receiver, selector, types, frame, result.data());
    if (types->result().encoding[0] != '@') return nullptr;
    return *reinterpret_cast<Object**>(result.data());
}

void InterfaceBuilder::writeArgument(const InterfaceValue& value, const ArgumentLayout& argument,
                                     std::byte* place) {
    auto object = objectOf(value);
    if (argument.encoding[0] != '@') return writePlainArgument(object, argument, place);
    ::new (place) Object*(object.get());
    _arguments.push_back(std::move(object));
}

}  // namespace pelvor
