// SPDX-License-Identifier: Apache-2.0
// Which profiles of a registry have which entries; for the library's own sources.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "PBProfileSet.h"

namespace pelvor {

/// What a filter looks for.
struct ProfileQuery {
    id key;
    std::optional<std::span<Object* const>> values;  ///< one of these; none: any entry will do
};

/// A profile that a filter has to look at, or one that is known to pass.
struct ProfileCandidate {
    NSDictionaryEntry member;
    bool passes;
};

/// For one key of profiles, the places of the profiles by the texts that stand under it, alone or in an
/// array. Profiles whose entry is anything else, or may answer another one tomorrow, have to be asked each
/// time.
class ProfileIndex {
  public:
    /// `key` is what `canIndex` said yes to.
    explicit ProfileIndex(id key);

    /// Whether the key is a text or a path of texts, so that it leads to the same place each time.
    static bool canIndex(id key);
    bool isForKey(id key) { return _key->isEqual(key); }
    /// Places come in ascending order.
    void add(std::uint32_t place, PBProfile* profile);

    /// A place and whether its profile passes for certain.
    using Finding = std::pair<std::uint32_t, bool>;
    /// In ascending order, the profiles that have one of the texts or the wildcard, and those to be asked.
    std::vector<Finding> findings(std::span<Object* const> texts);
    /// The same for profiles with whichever entry.
    std::vector<Finding> findingsWithEntry();

  private:
    struct Hash {
        std::size_t operator()(const Retained<NSString>& text) const { return text->hash(); }
    };
    struct Equal {
        bool operator()(const Retained<NSString>& a, const Retained<NSString>& b) const {
            return a->isEqualToString(b);
        }
    };

    void addText(std::uint32_t place, id text);
    std::vector<Finding> withThoseToAsk(std::vector<Finding> findings);

    Retained<Object> _key;
    std::unordered_map<Retained<NSString>, std::vector<std::uint32_t>, Hash, Equal> _places;
    std::vector<std::uint32_t> _withTexts;
    std::vector<std::uint32_t> _toAsk;
};

/// A registry's profiles in the order in which they came, and an index for each of the keys asked for last.
class ProfileIndexes {
  public:
    /// Borrows the profiles, which the owner keeps alive.
    explicit ProfileIndexes(NSDictionary* profiles);

    /// A profile of an identifier that is not there yet.
    void add(id identifier, PBProfile* profile);
    /// In the order in which they came, the profiles that may pass; all, if the query is not one for texts.
    std::vector<ProfileCandidate> candidates(const ProfileQuery& query);

  private:
    struct Member {
        id identifier;
        PBProfile* profile;
    };
    ProfileIndex& indexForKey(id key);

    static constexpr std::size_t kMostIndexes = 8;
    std::vector<Member> _members;
    std::vector<ProfileIndex> _indexes;  // the one asked for last at the end
};

}  // namespace pelvor
