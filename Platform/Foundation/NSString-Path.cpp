// SPDX-License-Identifier: Apache-2.0
// Strings as paths.
#include <unistd.h>

#include <climits>
#include <vector>

#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/Files/UserFolders.h"
#include "Foundation/NSPathStore2.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Runtime/NSException.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

using Path = std::u16string_view;

// The end of the path without the slashes at its end; a path of nothing but slashes keeps the first one.
std::size_t endOfLastComponent(Path path) {
    std::size_t end = path.find_last_not_of(u'/');
    return end == Path::npos ? std::min<std::size_t>(path.size(), 1) : end + 1;
}

std::size_t startOfLastComponent(Path path) {
    std::size_t end = endOfLastComponent(path);
    if (path.substr(0, end) == u"/") return 0;
    return path.substr(0, end).rfind(u'/') + 1;  // npos + 1 is 0
}

Path lastComponent(Path path) {
    std::size_t start = startOfLastComponent(path);
    return path.substr(start, endOfLastComponent(path) - start);
}

// The place of the full stop before the extension; npos if there is no extension.
std::size_t placeOfExtension(Path path) {
    Path name = lastComponent(path);
    std::size_t stop = name.rfind(u'.');
    if (stop == Path::npos || stop == 0) return Path::npos;
    return startOfLastComponent(path) + stop;
}

// The path with each run of slashes replaced by one slash, and without a slash at the end.
std::u16string withoutSpareSlashes(Path path) {
    std::u16string result;
    for (char16_t unit : path)
        if (unit != u'/' || result.empty() || result.back() != u'/') result += unit;
    result.resize(endOfLastComponent(result));
    return result;
}

std::vector<Path> splitAtSlashes(Path path) {
    std::vector<Path> components;
    for (std::size_t place = 0; place < path.size();) {
        std::size_t end = std::min(path.find(u'/', place), path.size());
        if (end > place) components.push_back(path.substr(place, end - place));
        place = end + 1;
    }
    return components;
}

NSString* pathString(NSString* receiver, Path path) {
    StringUnits own(receiver);
    return cast<NSPathStore2>(receiver) && own.view() == path ? receiver->copy().autorelease()
                                                              : NSPathStore2::of(path);
}

std::u16string expandedTilde(Path path) {
    if (path.empty() || path[0] != u'~') return std::u16string(path);
    std::size_t end = std::min(path.find(u'/'), path.size());
    std::string home = homeFolderOfUser(utf8FromUnitsMending(path.substr(1, end - 1)));
    if (home.empty()) return std::u16string(path);
    return withoutSpareSlashes(unitsFromUTF8Mending(home) + std::u16string(path.substr(end)));
}

std::u16string joined(const std::vector<std::u16string>& components, bool isAbsolute) {
    std::u16string path = isAbsolute ? u"/" : u"";
    for (const std::u16string& component : components) {
        if (!path.empty() && path.back() != u'/') path += u'/';
        path += component;
    }
    return path;
}

}  // namespace

// Components and extensions

NSString* NSString::lastPathComponent() {
    StringUnits path(this);
    return pathString(this, lastComponent(path));
}

NSString* NSString::pathExtension() {
    StringUnits units(this);
    Path path = units;
    std::size_t stop = placeOfExtension(path);
    if (stop == Path::npos) return NSPathStore2::of({});
    return NSPathStore2::of(path.substr(stop + 1, endOfLastComponent(path) - stop - 1));
}

NSString* NSString::stringByAppendingPathComponent(NSString* component) {
    requireArgument(component, "stringByAppendingPathComponent:", "the component");
    std::u16string path = toUTF16();
    StringUnits last(component);
    if (!path.empty() && last.size()) path += u'/';
    path += last.view();
    return pathString(this, withoutSpareSlashes(path));
}

NSString* NSString::stringByAppendingPathExtension(NSString* extension) {
    requireArgument(extension, "stringByAppendingPathExtension:", "the extension");
    StringUnits units(this), added(extension);
    std::u16string path = withoutSpareSlashes(units);
    if (path.empty() || path == u"/") return pathString(this, path);
    path += u'.';
    path += added.view();
    return NSPathStore2::of(path);
}

NSString* NSString::stringByDeletingLastPathComponent() {
    StringUnits units(this);
    Path path = units;
    return pathString(this, withoutSpareSlashes(path.substr(0, startOfLastComponent(path))) +
                                (lastComponent(path) == u"/" ? u"/" : u""));
}

NSString* NSString::stringByDeletingPathExtension() {
    StringUnits units(this);
    Path path = units;
    std::size_t stop = placeOfExtension(path);
    return pathString(this, withoutSpareSlashes(path.substr(0, std::min(stop, path.size()))));
}

NSArray* NSString::pathComponents() {
    StringUnits units(this);
    Path path = units;
    std::vector<Retained<NSString>> components;
    auto add = [&](Path component) {
        components.push_back(Retained<NSString>::retaining(NSPathStore2::of(component)));
    };
    if (!path.empty() && path[0] == u'/') add(u"/");
    for (Path component : splitAtSlashes(path)) add(component);
    if (path.find_first_not_of(u'/') != Path::npos && path.back() == u'/') add(u"/");
    return NSInlineArray::createAdopting(std::move(components)).autorelease();
}

NSString* NSString::pathWithComponents(NSArray* components) {
    requireArgument(components, "pathWithComponents:", "the array");
    std::u16string path;
    for (id object : components) {
        auto* string = cast<NSString>(object);
        if (!string)
            raiseException(NSInvalidArgumentException, u"pathWithComponents: a component is no string: %@"_ns,
                           object);
        StringUnits component(string);
        if (!path.empty() && component.size()) path += u'/';
        path += component.view();
    }
    return NSPathStore2::of(withoutSpareSlashes(path));
}

bool NSString::isAbsolutePath() {
    return length() > 0 && (characterAtIndex(0) == u'/' || characterAtIndex(0) == u'~');
}

// Home directories and links

NSString* NSString::stringByExpandingTildeInPath() {
    StringUnits path(this);
    return pathString(this, expandedTilde(path));
}

NSString* NSString::stringByAbbreviatingWithTildeInPath() {
    StringUnits units(this);
    std::u16string path = withoutSpareSlashes(units);
    std::u16string home = withoutSpareSlashes(unitsFromUTF8Mending(homeFolderOfUser("")));
    bool isBelow = home.size() > 1 && path.starts_with(home) &&
                   (path.size() == home.size() || path[home.size()] == u'/');
    return pathString(this, isBelow ? u"~" + path.substr(home.size()) : path);
}

NSString* NSString::stringByStandardizingPath() {
    StringUnits units(this);
    std::u16string path = expandedTilde(units);
    bool isAbsolute = !path.empty() && path[0] == u'/';
    std::vector<std::u16string> components;
    for (Path component : splitAtSlashes(path)) {
        if (component == u".") continue;
        if (component != u".." || !isAbsolute)
            components.emplace_back(component);
        else if (!components.empty())
            components.pop_back();
    }
    std::u16string result = joined(components, isAbsolute);
    return pathString(this, result.empty() && !path.empty() ? u"." : result);
}

namespace {

// Follows the links of a path, component by component; what does not exist is kept as it is.
class LinkResolver {
  public:
    std::u16string resolve(Path path) {
        _isAbsolute = !path.empty() && path[0] == u'/';
        push(path);
        while (!_pending.empty()) {
            std::u16string component = std::move(_pending.back());
            _pending.pop_back();
            step(component);
        }
        std::u16string result = joined(_resolved, _isAbsolute);
        return result.empty() && !path.empty() ? u"." : result;
    }

  private:
    // As many links as the kernel follows.
    static constexpr int kMostLinks = 40;

    void push(Path path) {
        std::vector<Path> components = splitAtSlashes(path);
        for (auto component = components.rbegin(); component != components.rend(); ++component)
            _pending.emplace_back(*component);
    }

    void step(const std::u16string& component) {
        if (component == u".") return;
        if (component == u"..") return goUp();
        _resolved.push_back(component);
        std::u16string target = linkTarget(joined(_resolved, _isAbsolute));
        if (target.empty() || ++_links > kMostLinks) return;
        _resolved.pop_back();
        if (target[0] == u'/') {
            _resolved.clear();
            _isAbsolute = true;
        }
        push(target);
    }

    void goUp() {
        if (!_resolved.empty() && _resolved.back() != u"..")
            _resolved.pop_back();
        else if (!_isAbsolute)
            _resolved.push_back(u"..");
    }

    // The target of the link at the path; empty if there is no link.
    static std::u16string linkTarget(const std::u16string& path) {
        char target[PATH_MAX];
        ssize_t size = readlink(systemPath(path).c_str(), target, sizeof target);
        if (size <= 0) return {};
        return unitsOfSystemPath({target, static_cast<std::size_t>(size)});
    }

    bool _isAbsolute = false;
    int _links = 0;
    std::vector<std::u16string> _resolved;
    std::vector<std::u16string> _pending;  // the next component last
};

}  // namespace

NSString* NSString::stringByResolvingSymlinksInPath() {
    StringUnits units(this);
    return pathString(this, LinkResolver().resolve(expandedTilde(units)));
}

}  // namespace pelvor
