// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableString.h"
#include "PBUtil.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

struct Option {
    const char* form;
    NSString* explanation;
};

constexpr Option kOptions[] = {
    {"--encoding NAME", u"_the document's encoding, found out by default"_ns},
    {"--save-as FILE", u"_writes the document to the file"_ns},
    {"--save-encoding NAME", u"_the encoding to write in, UTF-8 by default"_ns},
    {"--list", u"_shows what is registered and nothing else"_ns},
    {"--timing", u"_prints when each stage was reached"_ns},
    {"--help", u"_this text"_ns},
};

}  // namespace

PELVOR_DEFINE_CLASS(WRArguments, writerLibrary) {
    methods.classLevel<"initWithArguments:", &WRArguments::initWithArguments>();
    methods.classLevel<"usage", &WRArguments::usage>();
    methods.instance<"problem", &WRArguments::problem>();
    methods.instance<"documentPath", &WRArguments::documentPath>();
    methods.instance<"encodingName", &WRArguments::encodingName>();
    methods.instance<"savePath", &WRArguments::savePath>();
    methods.instance<"saveEncodingName", &WRArguments::saveEncodingName>();
    methods.instance<"wantsHelp", &WRArguments::wantsHelp>();
    methods.instance<"wantsList", &WRArguments::wantsList>();
    methods.instance<"wantsTiming", &WRArguments::wantsTiming>();
}

Retained<WRArguments> WRArguments::initWithArguments(NSArray* arguments, Class* cls) {
    auto self = make<WRArguments>(cls);
    for (NSUInteger i = 0; i < arguments->count() && !self->_problem; ++i) self->takeArgument(arguments, i);
    if (!self->_problem) self->checkTogether();
    return self;
}

// Takes the argument at the index, and the one after it if that is its value.
void WRArguments::takeArgument(NSArray* arguments, NSUInteger& index) {
    auto* argument = static_cast<NSString*>(arguments->objectAtIndex(index));
    if (_hasOptionsEnded || !argument->hasPrefix(u"-"_ns) || argument->length() == 1)
        return takeDocument(argument);
    if (argument->isEqualToString(u"--"_ns)) {
        _hasOptionsEnded = true;
        return;
    }
    if (takeFlag(argument)) return;
    const NSRange equals = argument->rangeOfString_options(u"="_ns, NSLiteralSearch);
    const bool isJoined = equals.location != NSNotFound;
    NSString* name = isJoined ? argument->substringToIndex(equals.location) : argument;
    Retained<NSString>* value = valueNamed(name);
    if (!value) return complain(u"_The argument \"%@\" is not known."_ns, argument);
    if (isJoined) return takeValue(name, *value, argument->substringFromIndex(NSMaxRange(equals)));
    if (++index == arguments->count()) return complain(u"_The argument \"%@\" needs a value."_ns, name);
    takeValue(name, *value, static_cast<NSString*>(arguments->objectAtIndex(index)));
}

void WRArguments::takeDocument(NSString* path) {
    if (_documentPath) return complain(u"_Only one document can be opened; \"%@\" is too many."_ns, path);
    _documentPath.set(path);
}

bool WRArguments::takeFlag(NSString* name) {
    const bool isHelp = name->isEqualToString(u"--help"_ns) || name->isEqualToString(u"-h"_ns);
    const bool isList = name->isEqualToString(u"--list"_ns);
    const bool isTiming = name->isEqualToString(u"--timing"_ns);
    _wantsHelp |= isHelp;
    _wantsList |= isList;
    _wantsTiming |= isTiming;
    return isHelp || isList || isTiming;
}

Retained<NSString>* WRArguments::valueNamed(NSString* name) {
    if (name->isEqualToString(u"--encoding"_ns)) return &_encodingName;
    if (name->isEqualToString(u"--save-as"_ns)) return &_savePath;
    if (name->isEqualToString(u"--save-encoding"_ns)) return &_saveEncodingName;
    return nullptr;
}

void WRArguments::takeValue(NSString* name, Retained<NSString>& value, NSString* text) {
    if (text->length() == 0) return complain(u"_The argument \"%@\" needs a value."_ns, name);
    value.set(text);
}

void WRArguments::checkTogether() {
    if (_saveEncodingName && !_savePath)
        complain(u"_The argument \"%@\" needs another: \"--save-as\"."_ns, u"--save-encoding"_ns);
}

void WRArguments::complain(NSString* key, NSString* argument) {
    _problem.set(NSString::stringWithFormat(_PBDoLocalize(key, nullptr), argument));
}

NSString* WRArguments::usage() {
    NSMutableString* text = NSMutableString::string();
    text->appendString(_PBDoLocalize(u"_Usage: PelvorWriter [options] [document]"_ns, nullptr));
    text->append(u"\n");
    text->appendString(_PBDoLocalize(u"_Opens the document, or a sample, and tells what is in it."_ns, nullptr));
    for (const Option& option : kOptions)
        text->appendFormat(u"\n  %-20s  %@"_ns, option.form, _PBDoLocalize(option.explanation, nullptr));
    return text;
}

}  // namespace pelvor
