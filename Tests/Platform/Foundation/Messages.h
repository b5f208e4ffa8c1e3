// SPDX-License-Identifier: Apache-2.0
// Messages as a line of text, so that tests can be tables of what is sent and what comes of it.
#pragma once

#include <cstdio>

#include "Foundation/NSString-PropertyList.h"
#include "Platform/Foundation/Pebble.h"
#include "Runtime/NSInvocation.h"

namespace pelvor::testing {

inline std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// Sets the argument that the word stands for: a number, "location,length", "'text" for a string, a C string,
/// bytes or a selector, "(a,b)" or "{a=b;}" for a list, "#(a,b)" for a set, "." for the receiver, "&" for
/// some room.
inline void setArgument(NSInvocation* invocation, int index, const std::string& word, id receiver) {
    static unichar room[8];
    const std::string type = invocation->methodSignature()->getArgumentTypeAtIndex(index);
    const auto set = [&](auto value) { invocation->setArgument_atIndex(&value, index); };
    const auto list = [](const std::string& text) { return propertyList(NSString::ofUTF8(text)); };
    unsigned number = 0, length = 0;
    if (word == "&")
        set(static_cast<void*>(room));
    else if (word == ".")
        set(receiver);
    else if (word[0] == '(' || word[0] == '{')
        set(list(word));
    else if (word[0] == '#')
        set(id(NSSet::setWithArray(cast<NSArray>(list(word.substr(1))))));
    else if (word[0] == '\'' && type == "@")
        set(id(NSString::ofUTF8(word.substr(1))));
    else if (word[0] == '\'' && type == ":")
        set(registerSelector(word.substr(1)));
    else if (word[0] == '\'')
        set(word.c_str() + 1);
    else if (std::sscanf(word.c_str(), "%u,%u", &number, &length) == 2)
        set(NSRange{number, length});
    else
        set(std::uint64_t{number});
}

/// Sends the message, "insertString:atIndex: 'x 4"; arguments that are not given are zero.
inline void perform(id receiver, const std::string& message) {
    const auto words = wordsOf(message);
    const SEL selector = registerSelector(words[0]);
    auto invocation = NSInvocation::initWithMethodSignature(receiver->methodSignatureForSelector(selector));
    invocation->setSelector(selector);
    for (std::size_t i = 1; i < words.size(); ++i)
        setArgument(invocation, static_cast<int>(i + 1), words[i], receiver);
    invocation->invokeWithTarget(receiver);
}

/// Sends the receiver the messages of the rows, "addObject: 'c -> a b c", and expects what the function shows
/// of it after each.
template <class Receiver, class Show>
void expectSteps(Receiver* receiver, std::initializer_list<std::string_view> rows, Show show) {
    expectAll(rows, [&](const std::string& message) {
        perform(receiver, message);
        return show(receiver);
    });
}

}  // namespace pelvor::testing
