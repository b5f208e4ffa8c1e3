// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include "Foundation/NSData.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Writer/InputText.h"
#include "Writer/LocalizedText.h"
#include "Writer/SameFile.h"
#include "Writer/TextEdit.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

enum class OptionKind { flag, text, anyText, number, choice, edit };

struct ProgramOption {
    OptionKind kind;
    NSString* name;
    NSString* placeholder;
    NSString* explanation;
    NSString* needed = nullptr;   // the options without all of which it means nothing
    NSString* choices = nullptr;  // what a choice is among
    NSUInteger least = 0;         // what a number is at least
    bool isForWindows = false;    // leaves it open whether windows are shown
};

namespace {

constexpr ProgramOption kOptions[] = {
    {.kind = OptionKind::text,
     .name = u"--encoding"_ns,
     .placeholder = u"NAME"_ns,
     .explanation = u"_the document's encoding, found out by default"_ns,
     .isForWindows = true},
    {.kind = OptionKind::number,
     .name = u"--at"_ns,
     .placeholder = u"POSITION"_ns,
     .explanation = u"_shows the word, quantity and paragraph at a position, in UTF-16 units"_ns},
    {.kind = OptionKind::text,
     .name = u"--find"_ns,
     .placeholder = u"TEXT"_ns,
     .explanation = u"_counts where the text stands in the document"_ns},
    {.kind = OptionKind::anyText,
     .name = u"--replace"_ns,
     .placeholder = u"TEXT"_ns,
     .explanation = u"_puts this in the place of what is found"_ns,
     .needed = u"--find"_ns},
    {.kind = OptionKind::choice,
     .name = u"--case"_ns,
     .placeholder = u"CASE"_ns,
     .explanation = u"_changes the letters: upper, lower, capitals, toggle"_ns,
     .choices = u"upper, lower, capitals, toggle"_ns},
    {.kind = OptionKind::number,
     .name = u"--wrap"_ns,
     .placeholder = u"COLUMN"_ns,
     .explanation = u"_breaks lines that reach the column"_ns,
     .least = 1},
    {.kind = OptionKind::choice,
     .name = u"--line-endings"_ns,
     .placeholder = u"KIND"_ns,
     .explanation = u"_makes all line endings the same: lf, crlf, cr"_ns,
     .choices = u"lf, crlf, cr"_ns},
    {.kind = OptionKind::edit,
     .name = u"--edit"_ns,
     .placeholder = u"EDIT"_ns,
     .explanation =
         u"_\"insert POSITION TEXT\", \"delete POSITION LENGTH\" or \"replace POSITION LENGTH TEXT\""_ns},
    {.kind = OptionKind::text,
     .name = u"--save-as"_ns,
     .placeholder = u"FILE"_ns,
     .explanation = u"_writes the document to the file"_ns},
    {.kind = OptionKind::text,
     .name = u"--save-encoding"_ns,
     .placeholder = u"NAME"_ns,
     .explanation = u"_the encoding to write in, by default the document's own"_ns,
     .needed = u"--save-as"_ns},
    {.kind = OptionKind::text,
     .name = u"--pdf"_ns,
     .placeholder = u"FILE"_ns,
     .explanation = u"_sets the document in pages of a PDF document"_ns},
    {.kind = OptionKind::text,
     .name = u"--png"_ns,
     .placeholder = u"FILE"_ns,
     .explanation = u"_sets the document in pages, each an image; of several, the files get numbers"_ns},
    {.kind = OptionKind::text,
     .name = u"--style-sheet"_ns,
     .placeholder = u"FILE"_ns,
     .explanation = u"_the styles and settings of the pages"_ns,
     .needed = u"--pdf, --png"_ns},
    {.kind = OptionKind::choice,
     .name = u"--paper"_ns,
     .placeholder = u"SIZE"_ns,
     .explanation = u"_the paper of the pages: a3, a4, a5, legal, letter"_ns,
     .needed = u"--pdf, --png"_ns,
     .choices = u"a3, a4, a5, legal, letter"_ns},
    {.kind = OptionKind::number,
     .name = u"--margin"_ns,
     .placeholder = u"POINTS"_ns,
     .explanation = u"_the width of the pages' margins"_ns,
     .needed = u"--pdf, --png"_ns},
    {.kind = OptionKind::number,
     .name = u"--resolution"_ns,
     .placeholder = u"PIXELS"_ns,
     .explanation = u"_the pixels an inch of images, 96 by default"_ns,
     .needed = u"--png"_ns,
     .least = 1},
    {.kind = OptionKind::text,
     .name = u"--upload"_ns,
     .placeholder = u"URL"_ns,
     .explanation = u"_sends the file that was written, or else the one that was read, to a server"_ns},
    {.kind = OptionKind::flag,
     .name = u"--trash"_ns,
     .placeholder = u""_ns,
     .explanation = u"_moves the document's file to the trash in the end"_ns},
    {.kind = OptionKind::flag,
     .name = u"--stay"_ns,
     .placeholder = u""_ns,
     .explanation =
         u"_stays and takes edits, \"at POSITION\", \"save\" and \"quit\" from standard input; its end means \"quit\""_ns},
    {.kind = OptionKind::flag,
     .name = u"--screenless"_ns,
     .placeholder = u""_ns,
     .explanation = u"_shows no windows, as if there were no display"_ns},
    {.kind = OptionKind::flag,
     .name = u"--encodings"_ns,
     .placeholder = u""_ns,
     .explanation = u"_lists the names of encodings and nothing else"_ns},
    {.kind = OptionKind::flag,
     .name = u"--check-updates"_ns,
     .placeholder = u""_ns,
     .explanation = u"_asks a server for newer versions and nothing else"_ns},
    {.kind = OptionKind::flag,
     .name = u"--list"_ns,
     .placeholder = u""_ns,
     .explanation = u"_shows what is registered and nothing else"_ns},
    {.kind = OptionKind::flag,
     .name = u"--about"_ns,
     .placeholder = u""_ns,
     .explanation = u"_tells version, build date and plug-ins of the program and nothing else"_ns},
    {.kind = OptionKind::flag,
     .name = u"--timing"_ns,
     .placeholder = u""_ns,
     .explanation = u"_prints when each stage was reached and the memory taken until then"_ns,
     .isForWindows = true},
    {.kind = OptionKind::flag, .name = u"--help"_ns, .placeholder = u""_ns, .explanation = u"_this text"_ns},
};

const ProgramOption* optionNamed(NSString* name) {
    if (name->isEqualToString(u"-h"_ns)) name = u"--help"_ns;
    for (const ProgramOption& option : kOptions)
        if (option.name->isEqualToString(name)) return &option;
    return nullptr;
}

// What is wrong with the value; null if nothing is.
NSString* problemOfValue(const ProgramOption& option, NSString* value) {
    if (value->length() == 0 && option.kind != OptionKind::anyText)
        return localizedFormat(u"_The argument \"%@\" needs a value."_ns, option.name);
    if (option.kind == OptionKind::edit && !textEditOf(value))
        return localizedFormat(u"_The argument \"%@\" does not understand \"%@\"."_ns, option.name, value);
    if (option.kind == OptionKind::choice &&
        !option.choices->componentsSeparatedByString(u", "_ns)->containsObject(value))
        return localizedFormat(u"_The argument \"%@\" takes one of %@, not \"%@\"."_ns, option.name,
                               option.choices, value);
    if (option.kind != OptionKind::number) return nullptr;
    const auto number = textPositionOf(value);
    return number && *number >= option.least
               ? nullptr
               : localizedFormat(u"_The argument \"%@\" takes a number from %u to %u, not \"%@\"."_ns,
                                 option.name, option.least, kGreatestTextPosition, value);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRArguments, writerLibrary) {
    methods.creator<"initWithArguments:", &WRArguments::initWithArguments>();
    methods.classLevel<"usage", &WRArguments::usage>();
    methods.instance<"problem", &WRArguments::problem>();
    methods.instance<"documentPath", &WRArguments::documentPath>();
    methods.instance<"hasOption:", &WRArguments::hasOption>();
    methods.instance<"valueOfOption:", &WRArguments::valueOfOption>();
    methods.instance<"numberOfOption:", &WRArguments::numberOfOption>();
    methods.instance<"valuesOfOption:", &WRArguments::valuesOfOption>();
    methods.instance<"wantsWindows", &WRArguments::wantsWindows>();
}

WRArguments::~WRArguments() = default;

Retained<WRArguments> WRArguments::initWithArguments(NSArray* arguments, Class* cls) {
    auto self = make<WRArguments>(cls);
    self->_values = NSMutableDictionary::init();
    for (id argument : arguments)
        if (auto* bytes = cast<NSData>(argument))
            self->_problem.set(localizedFormat(
                u"_The argument \"%@\" is not UTF-8; names and texts have to be."_ns, readableBytes(bytes)));
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
    const NSRange equals = argument->rangeOfString_options(u"="_ns, NSLiteralSearch);
    const bool isJoined = equals.location != NSNotFound;
    const ProgramOption* option =
        optionNamed(isJoined ? argument->substringToIndex(equals.location) : argument);
    if (!option || (isJoined && option->kind == OptionKind::flag))
        return _problem.set(localizedFormat(u"_The argument \"%@\" is not known."_ns, argument));
    if (option->kind != OptionKind::edit && hasOption(option->name))
        return _problem.set(localizedFormat(u"_The argument \"%@\" is given twice."_ns, option->name));
    if (option->kind == OptionKind::flag) return addValue(option->name, u""_ns);
    if (isJoined) return takeValue(*option, argument->substringFromIndex(NSMaxRange(equals)));
    if (++index == arguments->count())
        return _problem.set(localizedFormat(u"_The argument \"%@\" needs a value."_ns, option->name));
    takeValue(*option, static_cast<NSString*>(arguments->objectAtIndex(index)));
}

void WRArguments::takeDocument(NSString* path) {
    if (_documentPath)
        _problem.set(localizedFormat(u"_Only one document can be opened; \"%@\" is too many."_ns, path));
    _documentPath.set(path);
}

void WRArguments::takeValue(const ProgramOption& option, NSString* value) {
    _problem.set(problemOfValue(option, value));
    addValue(option.name, value);
}

void WRArguments::addValue(NSString* name, NSString* value) {
    if (!hasOption(name)) _values->setObject_forKey(NSMutableArray::array(), name);
    static_cast<NSMutableArray*>(_values->objectForKey(name))->addObject(value);
}

void WRArguments::checkTogether() {
    const auto hasNeeded = [&](const ProgramOption& option) {
        for (id name : option.needed->componentsSeparatedByString(u", "_ns))
            if (hasOption(static_cast<NSString*>(name))) return true;
        return false;
    };
    for (const ProgramOption& option : kOptions)
        if (option.needed && hasOption(option.name) && !hasNeeded(option))
            _problem.set(localizedFormat(u"_The argument \"%@\" needs another: \"%@\"."_ns, option.name,
                                         option.needed));
    checkFiles();
}

// The sample is the program's, and is neither sent nor thrown away. What is thrown away is not written to.
void WRArguments::checkFiles() {
    const auto checkFile = [this](NSString* option, bool isThere) {
        if (hasOption(option) && !isThere)
            _problem.set(localizedFormat(u"_The argument \"%@\" needs a document."_ns, option));
    };
    checkFile(u"--upload"_ns, _documentPath || hasOption(u"--save-as"_ns));
    checkFile(u"--trash"_ns, static_cast<bool>(_documentPath));
    if (_problem || !hasOption(u"--trash"_ns)) return;
    for (NSString* option : {u"--save-as"_ns, u"--pdf"_ns, u"--png"_ns})
        if (NSString* path = valueOfOption(option); path && isSameFile(path, _documentPath))
            _problem.set(
                localizedFormat(u"_The arguments \"%@\" and \"--trash\" name the same file."_ns, option));
}

bool WRArguments::hasOption(NSString* name) { return _values->objectForKey(name); }

NSString* WRArguments::valueOfOption(NSString* name) {
    NSArray* values = valuesOfOption(name);
    return values->count() ? static_cast<NSString*>(values->lastObject()) : nullptr;
}

NSUInteger WRArguments::numberOfOption(NSString* name) {
    NSString* value = valueOfOption(name);
    return value ? static_cast<NSUInteger>(value->intValue()) : 0;
}

NSArray* WRArguments::valuesOfOption(NSString* name) {
    auto* values = static_cast<NSArray*>(_values->objectForKey(name));
    return values ? values : NSArray::array();
}

bool WRArguments::wantsWindows() {
    for (const ProgramOption& option : kOptions)
        if (!option.isForWindows && hasOption(option.name)) return false;
    return true;
}

NSString* WRArguments::usage() {
    NSMutableString* text = NSMutableString::string();
    text->appendString(localized(u"_Usage: PelvorWriter [options] [document]"_ns));
    text->append(u"\n");
    text->appendString(localized(u"_Opens the document, or a sample, and tells what is in it."_ns));
    for (const ProgramOption& option : kOptions) {
        NSString* form = NSString::stringWithFormat(u"%@ %@"_ns, option.name, option.placeholder);
        form = form->stringByPaddingToLength_withString_startingAtIndex(20, u" "_ns, 0);
        text->appendFormat(u"\n  %@  %@"_ns, form, localized(option.explanation));
    }
    return text;
}

}  // namespace pelvor
