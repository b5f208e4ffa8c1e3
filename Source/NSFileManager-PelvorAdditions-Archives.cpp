// SPDX-License-Identifier: Apache-2.0
// Temporary archives of files.
#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSProcessInfo.h"
#include "Foundation/NSSet.h"
#include "Foundation/ProgramRun.h"
#include "NSFileManager-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr NSString* kUsualArchiver = u"/usr/bin/ditto"_ns;
constexpr NSString* kFinder = u"/usr/bin/which"_ns;

// The search path, at whose end are the programs of the library.
NSString* searchPath() {
    id own = NSProcessInfo::processInfo()->environment()->objectForKey(u"PATH"_ns);
    return NSString::stringWithFormat(u"%@:%@"_ns, own ? own : u"/usr/bin:/bin"_ns, libraryProgramsFolder());
}

// What the finder says; null if there is no finder or no archiver.
NSString* foundArchiver(NSFileManager* manager) {
    if (!manager->fileExistsAtPath(kFinder)) {
        NSLog(u"*** the 'which' command is not available"_ns);
        return nullptr;
    }
    std::string output;
    runProgram(kFinder, NSArray::of({u"ditto"_ns}), &output, searchPath());
    auto answer = NSString::initWithBytes_length_encoding(
        output.data(), static_cast<NSUInteger>(output.size()), NSASCIIStringEncoding);
    if (!answer) return nullptr;
    NSString* path =
        answer->stringByTrimmingCharactersInSet(NSCharacterSet::whitespaceAndNewlineCharacterSet());
    return path->length() == 0 || path->hasPrefix(u"no "_ns) ? nullptr : path;
}

NSString* lookedUpArchiver(NSFileManager* manager) {
    if (manager->fileExistsAtPath(kUsualArchiver)) return kUsualArchiver;
    NSString* path = foundArchiver(manager);
    if (path)
        NSLog(u"ditto is located at \"%@\""_ns, path);
    else
        NSLog(u"*** the 'ditto' command is not available on this computer"_ns);
    return path;
}

// The archiver's path, which is looked up once; null if there is no archiver. It is never released.
NSString* archiver(NSFileManager* manager) {
    static NSString* const path = Retained<NSString>::retaining(lookedUpArchiver(manager)).leak();
    return path;
}

// A path that is not taken for an option.
NSString* asArgument(NSString* path) {
    return path->hasPrefix(u"-"_ns) ? u"./"_ns->stringByAppendingString(path) : path;
}

bool isArchive(NSString* path) {
    static NSSet* const extensions =
        Retained<NSSet>::retaining(NSSet::of({u"zip"_ns, u"cpio"_ns, u"sit"_ns, u"sitx"_ns})).leak();
    return path && extensions->containsObject(path->pathExtension()->lowercaseString());
}

// A pipe or a device has nothing that could be archived.
bool isFileOrFolder(NSFileManager* manager, NSString* path) {
    NSDictionary* attributes = manager->fileAttributesAtPath_traverseLink(path, true);
    id type = attributes ? attributes->objectForKey(NSFileType) : nullptr;
    return type && (type->isEqual(NSFileTypeRegular) || type->isEqual(NSFileTypeDirectory));
}

}  // namespace

NSString* tempArchiveForFileAtPath(NSFileManager* manager, NSString* path) {
    requireArgument(manager, "tempArchiveForFileAtPath:", "the receiver");
    NSString* program = archiver(manager);
    if (!program || !path || path->length() == 0 || !manager->isReadableFileAtPath(path)) return nullptr;
    if (!isFileOrFolder(manager, path)) return nullptr;
    NSString* name = path->lastPathComponent();
    const bool isPacked = isArchive(path);
    if (NSString* target = resolvedPathForAliasAtPath(manager, path)) path = target;
    if (!isPacked) name = name->stringByDeletingPathExtension()->stringByAppendingPathExtension(u"cpio"_ns);
    NSString* archive = tempFilePathWithFileName(manager, name);
    if (!archive) return nullptr;
    if (isPacked)
        manager->copyFile_toPrivateFile(path, archive);
    else
        runProgram(program, NSArray::of({u"-c"_ns, u"-X"_ns, u"-z"_ns, u"--rsrc"_ns, asArgument(path),
                                         asArgument(archive)}));
    // Somebody else may have put a file there meanwhile.
    return manager->isOwnFileAtPath(archive) && manager->isReadableFileAtPath(archive) ? archive : nullptr;
}

}  // namespace pelvor
