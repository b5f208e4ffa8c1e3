// SPDX-License-Identifier: Apache-2.0
// InterfaceBuilder: makes the objects of an interface file; for Foundation's own sources.
#pragma once

#include <cstddef>

#include "Foundation/Nibs/InterfaceFile.h"

namespace pelvor {

class NSBundle;
struct ArgumentLayout;

/// Makes the objects of one interface file once.
class InterfaceBuilder {
  public:
    /// The file and the bundle, in which texts are looked up, have to outlive the builder.
    InterfaceBuilder(const InterfaceFile& file, NSBundle* bundle, id owner);
    InterfaceBuilder(const InterfaceBuilder&) = delete;

    /// Makes the objects, sets their values, connects them and wakes them. Throws InterfaceFault, after all
    /// values and connections that refer to objects have been set to null again.
    void build();
    /// The objects, in the order of the file.
    const std::vector<Retained<Object>>& objects() const { return _objects; }

  private:
    // A setter of an object that the builder has given a reference.
    struct Reference {
        Retained<Object> receiver;
        SEL setter;
    };

    void makeObject(InterfaceIndex index);
    void setValue(InterfaceIndex index, const InterfaceSetting& setting);
    void connect(const InterfaceConnection& connection);
    void connectAction(const InterfaceConnection& connection, Object* source);
    void wake(InterfaceIndex index);
    void takeReferencesBack() noexcept;

    Object* objectAt(InterfaceIndex index) const;
    Retained<Object> objectOf(const InterfaceValue& value) const;
    void sendSetter(InterfaceIndex index, NSString* key, SEL& setter, const InterfaceValue& value);
    Object* sendMessage(Object* receiver, SEL selector, NSMethodSignature* types,
                        const InterfaceValue* values);
    void writeArgument(const InterfaceValue& value, const ArgumentLayout& argument, std::byte* place);

    const InterfaceFile& _file;
    NSBundle* const _bundle;
    const Retained<Object> _owner;
    std::vector<Retained<Object>> _objects;
    std::vector<Reference> _references;
    std::vector<Retained<Object>> _arguments;  // what the message that is being sent refers to
    std::vector<std::max_align_t> _frame;
};

}  // namespace pelvor
