// SPDX-License-Identifier: Apache-2.0
#include "Private/ProfileIndex.h"

#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableString.h"
#include "PBProfileKeys.h"

namespace pelvor {
namespace {

// A text that nobody can change.
bool isFixedText(id object) { return cast<NSString>(object) && !cast<NSMutableString>(object); }

bool holdsOnlyFixedTexts(NSArray* array) {
    for (id element : array)
        if (!isFixedText(element)) return false;
    return true;
}

bool isForTexts(const ProfileQuery& query) {
    if (!ProfileIndex::canIndex(query.key)) return false;
    if (!query.values) return true;
    return std::all_of(query.values->begin(), query.values->end(),
                       [](id value) { return cast<NSString>(value) && !value->isEqual(u"*"_ns); });
}

}  // namespace

ProfileIndex::ProfileIndex(id key) : _key(static_cast<NSObject*>(key)->copy()) {}

bool ProfileIndex::canIndex(id key) {
    auto* path = cast<NSArray>(key);
    return path ? holdsOnlyFixedTexts(path) : cast<NSString>(key) != nullptr;
}

void ProfileIndex::add(std::uint32_t place, PBProfile* profile) {
    if (profile->isa() != PBProfile::classObject()) return _toAsk.push_back(place);
    id entry = _PBValueForKeyInProfile(profile, _key);
    if (!entry) return;
    auto* entries = cast<NSArray>(entry);
    if (entries ? !holdsOnlyFixedTexts(entries) : !isFixedText(entry)) return _toAsk.push_back(place);
    _withTexts.push_back(place);
    if (!entries) return addText(place, entry);
    for (id text : entries) addText(place, text);
}

void ProfileIndex::addText(std::uint32_t place, id text) {
    auto& places = _places[Retained<NSString>::retaining(static_cast<NSString*>(text))];
    if (places.empty() || places.back() != place) places.push_back(place);
}

std::vector<ProfileIndex::Finding> ProfileIndex::withThoseToAsk(std::vector<Finding> findings) {
    for (std::uint32_t place : _toAsk) findings.emplace_back(place, false);
    std::sort(findings.begin(), findings.end());
    findings.erase(std::unique(findings.begin(), findings.end()), findings.end());
    return findings;
}

std::vector<ProfileIndex::Finding> ProfileIndex::findings(std::span<Object* const> texts) {
    std::vector<Finding> findings;
    auto append = [&](id text) {
        auto found = _places.find(Retained<NSString>::retaining(static_cast<NSString*>(text)));
        if (found == _places.end()) return;
        for (std::uint32_t place : found->second) findings.emplace_back(place, true);
    };
    append(u"*"_ns);
    for (id text : texts) append(text);
    return withThoseToAsk(std::move(findings));
}

std::vector<ProfileIndex::Finding> ProfileIndex::findingsWithEntry() {
    std::vector<Finding> findings;
    for (std::uint32_t place : _withTexts) findings.emplace_back(place, true);
    return withThoseToAsk(std::move(findings));
}

// Most queries are for types, so their index is there from the beginning.
ProfileIndexes::ProfileIndexes(NSDictionary* profiles) {
    _indexes.emplace_back(PBProfileTypeKey);
    for (auto [identifier, profile] : profiles)
        if (auto* member = cast<PBProfile>(profile)) add(identifier, member);
}

void ProfileIndexes::add(id identifier, PBProfile* profile) {
    auto place = static_cast<std::uint32_t>(_members.size());
    _members.push_back({identifier, profile});
    for (ProfileIndex& index : _indexes) index.add(place, profile);
}

ProfileIndex& ProfileIndexes::indexForKey(id key) {
    auto found = std::find_if(_indexes.begin(), _indexes.end(),
                              [key](ProfileIndex& index) { return index.isForKey(key); });
    if (found != _indexes.end()) {
        std::rotate(found, found + 1, _indexes.end());
        return _indexes.back();
    }
    ProfileIndex index(key);
    for (std::uint32_t place = 0; place < _members.size(); ++place) index.add(place, _members[place].profile);
    if (_indexes.size() == kMostIndexes) _indexes.erase(_indexes.begin());
    return _indexes.emplace_back(std::move(index));
}

std::vector<ProfileCandidate> ProfileIndexes::candidates(const ProfileQuery& query) {
    std::vector<ProfileCandidate> candidates;
    if (!isForTexts(query)) {
        for (const Member& member : _members)
            candidates.push_back({{member.identifier, member.profile}, false});
        return candidates;
    }
    ProfileIndex& index = indexForKey(query.key);
    for (auto [place, passes] : query.values ? index.findings(*query.values) : index.findingsWithEntry())
        candidates.push_back({{_members[place].identifier, _members[place].profile}, passes});
    return candidates;
}

}  // namespace pelvor
