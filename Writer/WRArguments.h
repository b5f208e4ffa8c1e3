// SPDX-License-Identifier: Apache-2.0
// WRArguments: what the user asked for on the command line.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;

/// The arguments of the program, "--encoding NAME" or "--encoding=NAME", in any order; after "--" everything
/// is a document.
class WRArguments : public NSObject {
    PELVOR_CLASS(WRArguments, NSObject);

  public:
    /// Takes the strings that follow the program's name.
    static Retained<WRArguments> initWithArguments(NSArray* arguments, Class* cls = classObject());

    /// What is wrong with the arguments, as a sentence for the user; none if nothing is.
    NSString* problem() { return _problem; }
    /// None for the sample document.
    NSString* documentPath() { return _documentPath; }
    /// The encoding to read in; none to find it out.
    NSString* encodingName() { return _encodingName; }
    /// Where to write the document; none for nowhere.
    NSString* savePath() { return _savePath; }
    /// The encoding to write in; none for the writer's own.
    NSString* saveEncodingName() { return _saveEncodingName; }
    bool wantsHelp() { return _wantsHelp; }
    /// Whether to show what is registered and nothing else.
    bool wantsList() { return _wantsList; }
    /// Whether to print when each stage was reached.
    bool wantsTiming() { return _wantsTiming; }

    /// The explanation of the arguments.
    static NSString* usage();

  protected:
    WRArguments() = default;
    ~WRArguments() = default;

  private:
    void takeArgument(NSArray* arguments, NSUInteger& index);
    void takeDocument(NSString* path);
    bool takeFlag(NSString* name);
    Retained<NSString>* valueNamed(NSString* name);
    void takeValue(NSString* name, Retained<NSString>& value, NSString* text);
    void checkTogether();
    void complain(NSString* key, NSString* argument);

    Retained<NSString> _problem;
    Retained<NSString> _documentPath;
    Retained<NSString> _encodingName;
    Retained<NSString> _savePath;
    Retained<NSString> _saveEncodingName;
    bool _wantsHelp = false;
    bool _wantsList = false;
    bool _wantsTiming = false;
    bool _hasOptionsEnded = false;
};

}  // namespace pelvor
