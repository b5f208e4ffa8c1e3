// SPDX-License-Identifier: Apache-2.0
// Reading declaration files, against the parsing alone, and queries of a registry of many profiles.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary-PropertyList.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr int kFiles = 1000;
constexpr int kProfilesPerFile = 10;

constexpr const char* kTypes[] = {
    "document reader", "document writer", "document",         "document service", "document view",
    "lasso reader",    "lasso writer",    "palette",          "sidebar",          "preference pane",
    "coder",           "language",        "measurement unit", "formats",
};

// A folder of declaration files such as plug-ins have, for the life of the program.
class Declarations {
  public:
    Declarations() {
        _folder = std::filesystem::temp_directory_path() / ("declarations-" + std::to_string(::getpid()));
        std::filesystem::create_directory(_folder);
        for (int file = 0; file < kFiles; ++file) {
            std::string path = _folder / ("Profiles" + std::to_string(file) + ".plist");
            write(path, file);
            _paths.push_back(NSString::initWithUTF8String(path.c_str()));
        }
    }
    ~Declarations() { std::filesystem::remove_all(_folder); }

    static Declarations& shared() {
        static Declarations declarations;
        return declarations;
    }
    const std::vector<Retained<NSString>>& paths() const { return _paths; }

  private:
    static void write(const std::string& path, int file) {
        std::ofstream out(path);
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
               "version=\"1.0\">\n<dict>\n<key>Profiles</key>\n<dict>\n";
        for (int i = file * kProfilesPerFile; i < (file + 1) * kProfilesPerFile; ++i)
            out << "<key>profile " << i << "</key>\n<dict>\n<key>type</key><string>"
                << kTypes[static_cast<std::size_t>(i) % std::size(kTypes)]
                << "</string>\n<key>class</key><string>PBPlugIn" << i
                << "</string>\n<key>name</key><string>Name of " << i
                << "</string>\n<key>strings</key><string>PlugIn</string>\n<key>rich</key><true/>\n"
                << "<key>palette order</key><integer>" << i
                << "</integer>\n<key>content types</key>\n<array><string>text/plain</string><string>text/x-"
                << i
                << "</string></array>\n<key>formats</key>\n<dict><key>plain</key><dict><key>extension</key>"
                << "<string>t" << i << "</string></dict></dict>\n</dict>\n";
        out << "</dict>\n<key>DisabledProfiles</key>\n<array><string>old</string></array>\n</dict>\n</"
               "plist>\n";
    }

    std::filesystem::path _folder;
    std::vector<Retained<NSString>> _paths;
};

Retained<PBRegistry> filledRegistry() {
    auto registry = PBRegistry::init();
    for (const auto& path : Declarations::shared().paths()) {
        AutoreleasePool pool;
        registry->addProfilesFromPath_bundle(path, nullptr);
    }
    return registry;
}

void parseDeclarations(benchmark::State& state) {
    const auto& paths = Declarations::shared().paths();
    for (auto _ : state) {
        AutoreleasePool pool;
        for (const auto& path : paths)
            benchmark::DoNotOptimize(NSDictionary_PropertyList::dictionaryWithContentsOfFile(path));
    }
    state.SetItemsProcessed(state.iterations() * kFiles * kProfilesPerFile);
}
BENCHMARK(parseDeclarations)->Unit(benchmark::kMillisecond);

void registerDeclarations(benchmark::State& state) {
    const auto& paths = Declarations::shared().paths();
    for (auto _ : state) {
        AutoreleasePool pool;
        auto registry = PBRegistry::init();
        for (const auto& path : paths) registry->addProfilesFromPath_bundle(path, nullptr);
    }
    state.SetItemsProcessed(state.iterations() * kFiles * kProfilesPerFile);
}
BENCHMARK(registerDeclarations)->Unit(benchmark::kMillisecond);

// A registry of 10,000 profiles that is the shared one while a benchmark runs.
class FilledRegistry : public benchmark::Fixture {
  public:
    void SetUp(const benchmark::State&) override {
        _previous.set(PBRegistry::sharedRegistry());
        registry = filledRegistry();
        PBRegistry::setSharedRegistry(registry);
    }
    void TearDown(const benchmark::State&) override {
        PBRegistry::setSharedRegistry(_previous);
        registry = nullptr;
    }

    Retained<PBRegistry> registry;

  private:
    Retained<PBRegistry> _previous;
};

BENCHMARK_F(FilledRegistry, queryByType)(benchmark::State& state) {
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(registry->profilesOfType(PBProfilePaletteType));
    }
}

BENCHMARK_F(FilledRegistry, queryOfOvertakenSet)(benchmark::State& state) {
    AutoreleasePool pool;
    PBProfileSet* palettes = registry->profilesOfType(PBProfilePaletteType);
    registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(u"late"_ns, nullptr, nullptr));
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(palettes->profiles());
    }
}

BENCHMARK_F(FilledRegistry, queryByTypeAfterEveryChange)(benchmark::State& state) {
    AutoreleasePool pool;
    PBProfile* late = PBProfile::profileWithIdentifier_dictionary_bundle(u"late"_ns, nullptr, nullptr);
    for (auto _ : state) {
        AutoreleasePool inner;
        registry->addProfile(late);
        benchmark::DoNotOptimize(registry->profilesOfType(PBProfilePaletteType));
    }
}

BENCHMARK_F(FilledRegistry, queryByPath)(benchmark::State& state) {
    AutoreleasePool pool;
    NSArray* path = NSArray::of({PBProfileFormatsKey, u"plain"_ns, u"extension"_ns});
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(registry->profilesWithValue_forKey(u"t77"_ns, path));
    }
}

}  // namespace
}  // namespace pelvor
