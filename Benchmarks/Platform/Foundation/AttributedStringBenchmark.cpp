// SPDX-License-Identifier: Apache-2.0
// Attributed strings beside Qt's QTextDocument: a text of a mebibyte of units in 100,000 runs, and short
// ones.
#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSTextStorage.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr unsigned kRunsInText = 100'000, kKinds = 32;

// Words in paragraphs of some 550 units, cut into runs of about ten.
struct Sample {
    explicit Sample(unsigned units, unsigned runs) {
        std::mt19937 random(1);
        for (unsigned i = 0; i < units; ++i)
            text += i % 550 == 549 ? u'\n'
                    : random() % 6 ? static_cast<char16_t>(u'a' + random() % 26)
                                   : u' ';
        for (unsigned i = 1; i <= runs; ++i) {
            unsigned start = ends.empty() ? 0 : ends.back();
            ends.push_back(i == runs
                               ? units
                               : std::min(units, std::max(start + 1, units / runs * i + static_cast<unsigned>(
                                                                                            random() % 5))));
        }
    }
    static const Sample& large() {
        static const Sample sample(1u << 20, kRunsInText);
        return sample;
    }
    static const Sample& small() {
        static const Sample sample(60, 3);
        return sample;
    }
    std::u16string text;
    std::vector<unsigned> ends;
};

NSUInteger randomPlace(std::mt19937& random, const Sample& sample) {
    return static_cast<NSUInteger>(random() % sample.text.size());
}

// MARK: Ours

NSDictionary* kind(unsigned number) {
    static const auto kinds = [] {
        std::vector<Retained<NSDictionary>> made;
        for (unsigned i = 0; i < kKinds; ++i)
            made.push_back(NSDictionary::initWithEntries(
                {{u"NSFont"_ns, NSNumber::numberWithInt(static_cast<int>(i % 4))},
                 {u"NSColor"_ns, NSNumber::numberWithInt(static_cast<int>(i))}}));
        return made;
    }();
    return kinds[number % kKinds];
}

template <class Text = NSMutableAttributedString>
Retained<Text> build(const Sample& sample) {
    auto text =
        NSString::initWithCharacters_length(sample.text.data(), static_cast<NSUInteger>(sample.text.size()));
    std::vector<AttributeRun> runs;
    runs.reserve(sample.ends.size());
    unsigned start = 0;
    for (unsigned i = 0; i < sample.ends.size(); start = sample.ends[i++])
        runs.push_back({{start, sample.ends[i] - start}, kind(i * 7)});
    return cast<Text>(NSAttributedString::initWithString_runs(text, runs, Text::classObject()));
}

template <const Sample& (*Choice)()>
void buildOurs(benchmark::State& state) {
    AutoreleasePool pool;
    for (auto _ : state) benchmark::DoNotOptimize(build(Choice()).get());
}
BENCHMARK(buildOurs<Sample::large>)->Name("build/large")->Unit(benchmark::kMicrosecond);
BENCHMARK(buildOurs<Sample::small>)->Name("build/small");

void appendRuns(benchmark::State& state) {
    AutoreleasePool pool;
    const Sample& sample = Sample::large();
    for (auto _ : state) {
        auto text = NSMutableAttributedString::init();
        unsigned start = 0;
        for (unsigned i = 0; i < sample.ends.size(); start = sample.ends[i++]) {
            auto run =
                NSString::initWithCharacters_length(sample.text.data() + start, sample.ends[i] - start);
            text->replaceCharactersInRange_withString_attributes({start, 0}, run, kind(i * 7));
        }
        benchmark::DoNotOptimize(text.get());
    }
}
BENCHMARK(appendRuns)->Unit(benchmark::kMicrosecond);

template <const Sample& (*Choice)()>
void lookUp(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Choice());
    std::mt19937 random(2);
    std::vector<NSUInteger> places(4096);
    for (NSUInteger& place : places) place = randomPlace(random, Choice());
    std::size_t next = 0;
    for (auto _ : state) {
        NSRange run;
        benchmark::DoNotOptimize(
            text->attributesAtIndex_effectiveRange(places[next++ % places.size()], &run));
        benchmark::DoNotOptimize(run);
    }
}
BENCHMARK(lookUp<Sample::large>)->Name("lookUp/large");
BENCHMARK(lookUp<Sample::small>)->Name("lookUp/small");

void walkByLookUp(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    NSUInteger place = 0, length = text->length();
    for (auto _ : state) {
        NSRange run;
        benchmark::DoNotOptimize(text->attributesAtIndex_effectiveRange(place, &run));
        place = NSMaxRange(run) < length ? NSMaxRange(run) : 0;
    }
}
BENCHMARK(walkByLookUp);

void walkRuns(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    std::int64_t runs = 0;
    for (auto _ : state)
        for (AttributeRun run : text->runs()) {
            benchmark::DoNotOptimize(run);
            ++runs;
        }
    state.SetItemsProcessed(runs);
}
BENCHMARK(walkRuns)->Unit(benchmark::kMicrosecond);

void charactersInTurn(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    NSString* string = text->string();
    NSUInteger place = 0, length = text->length();
    for (auto _ : state) {
        benchmark::DoNotOptimize(string->characterAtIndex(place));
        if (++place == length) place = 0;
    }
}
BENCHMARK(charactersInTurn);

enum class Place { middle, anywhere };

template <Place Where, class Text>
void insertInto(benchmark::State& state, Text& text, const Sample& sample) {
    std::mt19937 random(3);
    for (auto _ : state) {
        NSUInteger place = Where == Place::middle ? static_cast<NSUInteger>(sample.text.size()) / 2
                                                  : randomPlace(random, sample);
        text.replaceCharactersInRange_withString({place, 0}, u"x"_ns);
    }
}
template <Place Where, const Sample& (*Choice)()>
void insert(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Choice());
    insertInto<Where>(state, *text, Choice());
}
BENCHMARK(insert<Place::middle, Sample::large>)->Name("insert/middle/large");
BENCHMARK(insert<Place::anywhere, Sample::large>)->Name("insert/anywhere/large");

// Insertion and removal, so that the text stays short.
void editSmall(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::small());
    for (auto _ : state) {
        text->replaceCharactersInRange_withString({30, 0}, u"x"_ns);
        text->deleteCharactersInRange({30, 1});
    }
}
BENCHMARK(editSmall);

class IdleLayoutManager : public NSObject {
    PELVOR_CLASS(IdleLayoutManager, NSObject);

  public:
    void setTextStorage(id) {}
    void hear(id, unsigned, NSRange range, NSInteger, NSRange) { benchmark::DoNotOptimize(range); }
};
constexpr Library* kDependencies[] = {&textLibrary};
constexpr Class* kClasses[] = {&IdleLayoutManager::classRecord};
constinit Library benchmarkLibrary{"AttributedStringBenchmark", kDependencies, kClasses, {}};
PELVOR_DEFINE_CLASS(IdleLayoutManager, benchmarkLibrary) {
    methods.instance<"setTextStorage:", &IdleLayoutManager::setTextStorage>();
    methods
        .instanceAs<"textStorage:edited:range:changeInLength:invalidatedRange:", &IdleLayoutManager::hear>();
}

void insertUnderLayoutManager(benchmark::State& state) {
    AutoreleasePool pool;
    auto storage = build<NSTextStorage>(Sample::large());
    storage->addLayoutManager(make<IdleLayoutManager>().get());
    insertInto<Place::middle>(state, *storage, Sample::large());
}
BENCHMARK(insertUnderLayoutManager);

void attributeOver1000(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    NSNumber* values[] = {NSNumber::numberWithInt(1), NSNumber::numberWithInt(2)};
    std::mt19937 random(4);
    std::size_t next = 0;
    for (auto _ : state) {
        NSUInteger start = static_cast<NSUInteger>(random() % (Sample::large().text.size() - 1000));
        text->addAttribute_value_range(u"NSUnderline"_ns, values[next++ % 2], {start, 1000});
    }
}
BENCHMARK(attributeOver1000);

void copyText(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    for (auto _ : state) benchmark::DoNotOptimize(text->copy().get());
}
BENCHMARK(copyText);

void copyThenInsert(benchmark::State& state) {
    AutoreleasePool pool;
    auto text = build(Sample::large());
    for (auto _ : state) {
        auto copy = text->copy();
        text->replaceCharactersInRange_withString({500'000, 0}, u"x"_ns);
        benchmark::DoNotOptimize(copy.get());
    }
}
BENCHMARK(copyThenInsert);

// MARK: Qt

QTextCharFormat qtKind(unsigned number) {
    QTextCharFormat format;
    format.setFontWeight(static_cast<int>(400 + number % 4));
    format.setForeground(QColor(static_cast<int>(number % kKinds), 0, 0));
    return format;
}

void buildQt(QTextDocument& document, const Sample& sample) {
    document.setUndoRedoEnabled(false);
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    unsigned start = 0;
    for (unsigned i = 0; i < sample.ends.size(); start = sample.ends[i++])
        cursor.insertText(
            QString::fromUtf16(sample.text.data() + start, static_cast<qsizetype>(sample.ends[i] - start)),
            qtKind(i * 7));
    cursor.endEditBlock();
}

template <const Sample& (*Choice)()>
void peerBuild(benchmark::State& state) {
    for (auto _ : state) {
        QTextDocument document;
        buildQt(document, Choice());
    }
}
BENCHMARK(peerBuild<Sample::large>)->Name("peer/build/large")->Unit(benchmark::kMicrosecond);
BENCHMARK(peerBuild<Sample::small>)->Name("peer/build/small");

template <const Sample& (*Choice)()>
void peerLookUp(benchmark::State& state) {
    QTextDocument document;
    buildQt(document, Choice());
    QTextCursor cursor(&document);
    std::mt19937 random(2);
    for (auto _ : state) {
        cursor.setPosition(static_cast<int>(randomPlace(random, Choice())) + 1);
        benchmark::DoNotOptimize(cursor.charFormat());
    }
}
BENCHMARK(peerLookUp<Sample::large>)->Name("peer/lookUp/large");
BENCHMARK(peerLookUp<Sample::small>)->Name("peer/lookUp/small");

void peerWalk(benchmark::State& state) {
    QTextDocument document;
    buildQt(document, Sample::large());
    std::int64_t runs = 0;
    for (auto _ : state)
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
            for (auto place = block.begin(); !place.atEnd(); ++place, ++runs)
                benchmark::DoNotOptimize(place.fragment().charFormatIndex());
    state.SetItemsProcessed(runs);
}
BENCHMARK(peerWalk)->Unit(benchmark::kMicrosecond);

template <Place Where>
void peerInsert(benchmark::State& state) {
    QTextDocument document;
    buildQt(document, Sample::large());
    QTextCursor cursor(&document);
    std::mt19937 random(3);
    for (auto _ : state) {
        cursor.setPosition(Where == Place::middle ? 1 << 19
                                                  : static_cast<int>(randomPlace(random, Sample::large())));
        cursor.insertText(QStringLiteral("x"));
    }
}
BENCHMARK(peerInsert<Place::middle>)->Name("peer/insert/middle/large");
BENCHMARK(peerInsert<Place::anywhere>)->Name("peer/insert/anywhere/large");

void peerEditSmall(benchmark::State& state) {
    QTextDocument document;
    buildQt(document, Sample::small());
    QTextCursor cursor(&document);
    for (auto _ : state) {
        cursor.setPosition(30);
        cursor.insertText(QStringLiteral("x"));
        cursor.deletePreviousChar();
    }
}
BENCHMARK(peerEditSmall);

void peerAttributeOver1000(benchmark::State& state) {
    QTextDocument document;
    buildQt(document, Sample::large());
    QTextCursor cursor(&document);
    QTextCharFormat formats[2];
    formats[0].setFontUnderline(true);
    formats[1].setFontUnderline(false);
    std::mt19937 random(4);
    std::size_t next = 0;
    for (auto _ : state) {
        int start = static_cast<int>(random() % (Sample::large().text.size() - 1000));
        cursor.setPosition(start);
        cursor.setPosition(start + 1000, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(formats[next++ % 2]);
    }
}
BENCHMARK(peerAttributeOver1000);

}  // namespace
}  // namespace pelvor

int main(int count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QGuiApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
