// SPDX-License-Identifier: Apache-2.0
// WRArguments: what the user requested on the command line.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSMutableDictionary;
struct ProgramOption;

/// The arguments of the program, "--encoding NAME" or "--encoding=NAME", in any order; after "--" everything
/// is a document. Callers look options up by name:
///
///     auto arguments = WRArguments::initWithArguments(strings);
///     if (NSString* problem = arguments->problem()) return complain(problem);
///     NSString* name = arguments->valueOfOption(u"--encoding"_ns);
class WRArguments : public NSObject {
    PELVOR_CLASS(WRArguments, NSObject);
    PELVOR_CREATORS(initWithArguments);

  public:
    /// Takes what follows the program's name, made by `objectOfInput`.
    static Retained<WRArguments> initWithArguments(NSArray* arguments, Class* cls = classObject());

    /// What is wrong with the arguments, as a sentence for the user; null if nothing is wrong.
    NSString* problem() { return _problem; }
    /// Null for the sample document.
    NSString* documentPath() { return _documentPath; }
    bool hasOption(NSString* name);
    /// The value; null if the option was not given.
    NSString* valueOfOption(NSString* name);
    /// The value of an option with a number; 0 if the option was not given.
    NSUInteger numberOfOption(NSString* name);
    /// All values of an option that may be repeated, in their order. Borrowed.
    NSArray* valuesOfOption(NSString* name);

    /// Whether nothing is requested that is done without windows.
    bool wantsWindows();

    /// The explanation of the arguments.
    static NSString* usage();

  protected:
    WRArguments() = default;
    ~WRArguments();

  private:
    void takeArgument(NSArray* arguments, NSUInteger& index);
    void takeDocument(NSString* path);
    void takeValue(const ProgramOption& option, NSString* value);
    void addValue(NSString* name, NSString* value);
    void checkTogether();
    void checkFiles();

    Retained<NSString> _problem;
    Retained<NSString> _documentPath;
    Retained<NSMutableDictionary> _values;  // from the names of options to lists of strings
    bool _hasOptionsEnded = false;
};

}  // namespace pelvor
