// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/LayoutRegistry.h"

#include <dlfcn.h>
#include <xkbcommon/xkbregistry.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace pelvor {

namespace {

struct RegistryFunctions {
    decltype(&::rxkb_context_new) contextNew;
    decltype(&::rxkb_context_unref) contextEnd;
    decltype(&::rxkb_context_parse_default_ruleset) parse;
    decltype(&::rxkb_layout_first) first;
    decltype(&::rxkb_layout_next) next;
    decltype(&::rxkb_layout_get_name) name;
    decltype(&::rxkb_layout_get_variant) variant;
    decltype(&::rxkb_layout_get_description) description;
    decltype(&::rxkb_layout_get_iso639_first) firstLanguage;
    decltype(&::rxkb_iso639_code_get_code) code;

    bool load() {
        void* library = ::dlopen("libxkbregistry.so.0", RTLD_NOW | RTLD_LOCAL);
        if (!library) return false;
        bool isComplete = true;
        const auto find = [&]<class Function>(Function& function, const char* symbol) {
            function = reinterpret_cast<Function>(::dlsym(library, symbol));
            isComplete = isComplete && function;
        };
        find(contextNew, "rxkb_context_new");
        find(contextEnd, "rxkb_context_unref");
        find(parse, "rxkb_context_parse_default_ruleset");
        find(first, "rxkb_layout_first");
        find(next, "rxkb_layout_next");
        find(name, "rxkb_layout_get_name");
        find(variant, "rxkb_layout_get_variant");
        find(description, "rxkb_layout_get_description");
        find(firstLanguage, "rxkb_layout_get_iso639_first");
        find(code, "rxkb_iso639_code_get_code");
        return isComplete;
    }

    BackendLayout layout(rxkb_layout* entry) const {
        const auto text = [](const char* bytes) { return std::string(bytes ? bytes : ""); };
        const std::string kind = text(variant(entry));
        rxkb_iso639_code* language = firstLanguage(entry);
        BackendLayout layout;
        layout.shortName = text(name(entry));
        layout.name = kind.empty() ? layout.shortName : layout.shortName + "(" + kind + ")";
        layout.displayName = text(description(entry));
        layout.language = languageOfLayout(layout.shortName, kind, language ? text(code(language)) : "");
        return layout;
    }
};

std::vector<BackendLayout> readRegistry() {
    RegistryFunctions registry;
    std::vector<BackendLayout> layouts;
    if (!registry.load()) return layouts;
    const std::unique_ptr<rxkb_context, decltype(registry.contextEnd)> context(
        registry.contextNew(RXKB_CONTEXT_LOAD_EXOTIC_RULES), registry.contextEnd);
    if (!context || !registry.parse(context.get())) return layouts;
    for (rxkb_layout* entry = registry.first(context.get()); entry; entry = registry.next(entry))
        layouts.push_back(registry.layout(entry));
    std::ranges::stable_sort(layouts, {}, &BackendLayout::name);
    const auto isRepeated = [](const BackendLayout& a, const BackendLayout& b) { return a.name == b.name; };
    layouts.erase(std::unique(layouts.begin(), layouts.end(), isRepeated), layouts.end());
    return layouts;
}

bool isCountry(std::string_view layout) {
    return layout.size() == 2 &&
           std::ranges::all_of(layout, [](char letter) { return letter >= 'a' && letter <= 'z'; });
}

}  // namespace

std::string languageOfLayout(std::string_view layout, std::string_view variant, std::string_view code) {
    if (layout == "tw" && code == "fox") code = "zho";  // the registry names the languages of the aborigines
    if (code.empty()) return "";
    std::string language(code);
    if (variant.starts_with("latin")) language += "-Latn";
    if (variant.starts_with("cyr")) language += "-Cyrl";
    if (isCountry(layout)) {
        language += "-";
        for (const char letter : layout) language += static_cast<char>(letter - 'a' + 'A');
    }
    return language;
}

const std::vector<BackendLayout>& XLayoutRegistry::all() {
    if (!std::exchange(_isRead, true)) _layouts = readRegistry();
    return _layouts;
}

const BackendLayout* XLayoutRegistry::find(std::string_view name) {
    const auto found = std::ranges::lower_bound(all(), name, {}, &BackendLayout::name);
    return found != _layouts.end() && found->name == name ? &*found : nullptr;
}

}  // namespace pelvor
