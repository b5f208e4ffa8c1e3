// SPDX-License-Identifier: Apache-2.0
// Laying text out, beside Qt's and Pango's layouts: the first lines, all lines, a typed character, the middle
// of a large text, a paragraph without end; random letters and text of several languages. The benchmarks
// whose names end in "Cold" run once, before anything else has filled the tables of fonts and words.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

#include <QGuiApplication>
#include <QRegularExpression>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <sstream>

#include "Foundation/NSDictionary.h"
#include "NSParagraphStyle-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSFont.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace {

using namespace pelvor;

constexpr std::size_t kMebi = 1048576;
constexpr std::size_t kParagraph = 550;
constexpr float kWidth = 500;
constexpr int kPageLines = 60;

// MARK: Texts

enum Language { random_, english, russian, arabic, hindi, thai, chinese };
constexpr const char* kNames[] = {"random", "English", "Russian", "Arabic", "Hindi", "Thai", "Chinese"};

constexpr const char* kSeeds[] = {
    "",
    "",
    "Все люди рождаются свободными и равными в своем достоинстве и правах. Они наделены разумом и совестью и "
    "должны "
    "поступать в отношении друг друга в духе братства. Каждый человек имеет право на жизнь, на свободу и на "
    "личную "
    "неприкосновенность. Никто не должен содержаться в рабстве или в подневольном состоянии.",
    "يولد جميع الناس أحرارا متساوين في الكرامة والحقوق. وقد وهبوا عقلا وضميرا وعليهم أن يعامل بعضهم بعضا "
    "بروح الإخاء. "
    "لكل فرد الحق في الحياة والحرية وسلامة شخصه. لا يجوز استرقاق أو استعباد أي شخص.",
    "सभी मनुष्यों को गौरव और अधिकारों के मामले में जन्मजात स्वतन्त्रता और समानता प्राप्त है। उन्हें बुद्धि और अन्तरात्मा की देन "
    "प्राप्त है और परस्पर उन्हें "
    "भाईचारे के भाव से बर्ताव करना चाहिए। प्रत्येक व्यक्ति को जीवन, स्वाधीनता और वैयक्तिक सुरक्षा का अधिकार है।",
    "มนุษย์ทั้งหลายเกิดมามีอิสระและเสมอภาคกันในเกียรติศักดิ์และสิทธิ ต่างมีเหตุผลและมโนธรรม "
    "และควรปฏิบัติต่อกันด้วยเจตนารมณ์แห่งภราดรภาพ "
    "ทุกคนมีสิทธิในการดำรงชีวิต เสรีภาพและความมั่นคงแห่งตัวตน บุคคลใดจะตกอยู่ในความเป็นทาสไม่ได้",
    "人人生而自由,在尊严和权利上一律平等。 他们赋有理性和良心,并应以兄弟关系的精神相对待。 "
    "人人有权享有生命、自由和人身安全。 "
    "任何人不得使为奴隶或奴役; 一切形式的奴隶制度和奴隶买卖,均应予以禁止。",
};

std::vector<QString> wordsOf(Language language) {
    QString text = QString::fromUtf8(kSeeds[language]);
    if (language == english) {
        std::ostringstream all;
        for (const char* name : {"GPL-3", "LGPL-2.1", "Artistic", "Apache-2.0"})
            all << std::ifstream(std::string("/usr/share/common-licenses/") + name).rdbuf() << ' ';
        text = QString::fromStdString(all.str());
    }
    std::vector<QString> words;
    for (const QString& word : text.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts))
        words.push_back(word);
    return words;
}

// About so many units in paragraphs of about 550: running text over and over, or random letters.
const QString& textOf(Language language, std::size_t units) {
    static std::map<std::pair<int, std::size_t>, QString> all;
    QString& text = all[{language, units}];
    if (!text.isEmpty()) return text;
    std::minstd_rand random(1);
    const std::vector<QString> words = language == random_ ? std::vector<QString>() : wordsOf(language);
    for (std::size_t place = 0, start = 0; text.size() < static_cast<qsizetype>(units); ++place) {
        if (language == random_)
            for (unsigned i = 0, length = 2 + random() % 9; i < length; ++i)
                text += QChar('a' + static_cast<int>(random() % 26));
        else
            text += words[place % words.size()];
        const bool ends = static_cast<std::size_t>(text.size()) - start > kParagraph;
        text += QChar(ends ? '\n' : ' ');
        if (ends) start = static_cast<std::size_t>(text.size());
    }
    return text;
}

NSString* stringOf(const QString& text) {
    return NSString::of(
        {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())});
}

// MARK: Layouts

struct Ours {
    explicit Ours(const QString& text) {
        storage = NSTextStorage::initWithString_attributes(
            stringOf(text),
            NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)}}));
        layOut();
    }
    void layOut() {
        if (layout) storage->removeLayoutManager(layout);
        layout = NSLayoutManager::init();
        container = NSTextContainer::initWithContainerSize({kWidth, 1.0e7F});
        container->setLineFragmentPadding(0);
        layout->addTextContainer(container);
        storage->addLayoutManager(layout);
    }
    void all() { layout->ensureLayoutForCharacterRange({0, storage->length()}); }
    /// The lines of a page at a height.
    NSRange page(float y) {
        return layout->glyphRangeForBoundingRect_inTextContainer({{0, y}, {kWidth, kPageLines * 14.0F}},
                                                                 container);
    }

    AutoreleasePool pool;
    Retained<NSTextStorage> storage;
    Retained<NSLayoutManager> layout;
    Retained<NSTextContainer> container;
};

QFont qtFont() {
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    return font;
}

int qtLines(const QString& paragraph, int limit) {
    QTextLayout layout(paragraph, qtFont());
    layout.setCacheEnabled(true);
    layout.beginLayout();
    int lines = 0;
    for (QTextLine line = layout.createLine(); line.isValid() && lines < limit;
         line = layout.createLine(), ++lines)
        line.setLineWidth(static_cast<qreal>(kWidth));
    layout.endLayout();
    return lines;
}

struct PangoSetter {
    PangoSetter() {
        map = pango_ft2_font_map_new();
        pango_ft2_font_map_set_resolution(PANGO_FT2_FONT_MAP(map), 72, 72);
        context = pango_font_map_create_context(map);
        description = pango_font_description_from_string("DejaVu Sans 12");
    }
    int lines(const std::string& paragraph) {
        PangoLayout* layout = pango_layout_new(context);
        pango_layout_set_font_description(layout, description);
        pango_layout_set_width(layout, static_cast<int>(kWidth) * PANGO_SCALE);
        pango_layout_set_text(layout, paragraph.data(), static_cast<int>(paragraph.size()));
        const int count = pango_layout_get_line_count(layout);
        g_object_unref(layout);
        return count;
    }
    PangoFontMap* map;
    PangoContext* context;
    PangoFontDescription* description;
};

std::vector<std::string> utf8Paragraphs(const QString& text) {
    std::vector<std::string> all;
    for (const QString& paragraph : text.split('\n')) all.push_back(paragraph.toStdString());
    return all;
}

// MARK: The first lines

void ourPage(benchmark::State& state, Language language) {
    Ours ours(textOf(language, kMebi));
    for (auto _ : state) {
        state.PauseTiming();
        ours.layOut();
        state.ResumeTiming();
        benchmark::DoNotOptimize(ours.page(0));
    }
}

void qtPage(benchmark::State& state, Language language) {
    const QStringList paragraphs = textOf(language, kMebi).split('\n');
    for (auto _ : state)
        for (int lines = 0, i = 0; lines < kPageLines; ++i)
            lines += qtLines(paragraphs[i], kPageLines - lines);
}

void pangoPage(benchmark::State& state, Language language) {
    static PangoSetter pango;
    const auto paragraphs = utf8Paragraphs(textOf(language, kMebi));
    for (auto _ : state)
        for (std::size_t lines = 0, i = 0; lines < kPageLines; ++i)
            lines += static_cast<std::size_t>(pango.lines(paragraphs[i]));
}

// MARK: All lines

void ourLines(benchmark::State& state, Language language) {
    Ours ours(textOf(language, kMebi));
    for (auto _ : state) {
        state.PauseTiming();
        ours.layOut();
        state.ResumeTiming();
        ours.all();
    }
}

void qtDocument(benchmark::State& state, Language language) {
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setDefaultFont(qtFont());
    document.setPlainText(textOf(language, kMebi));
    qreal width = static_cast<qreal>(kWidth);
    for (auto _ : state) {
        document.setTextWidth(width += 0.01);
        benchmark::DoNotOptimize(document.size());
    }
}

void pangoLines(benchmark::State& state, Language language) {
    static PangoSetter pango;
    const auto paragraphs = utf8Paragraphs(textOf(language, kMebi));
    for (auto _ : state)
        for (const std::string& paragraph : paragraphs) benchmark::DoNotOptimize(pango.lines(paragraph));
}

// MARK: Editing

void ourTyping(benchmark::State& state) {
    Ours ours(textOf(english, kMebi));
    ours.all();
    const NSUInteger place = ours.storage->length() / 2;
    const float y = NSMinY(ours.layout->lineFragmentRectForGlyphAtIndex_effectiveRange(place, nullptr));
    for (auto _ : state) {
        AutoreleasePool pool;
        ours.storage->replaceCharactersInRange_withString({place, 0}, u"x"_ns);
        const NSRange page = ours.page(y - 100);
        // The glyphs of the page, as drawing needs them.
        for (NSUInteger unit = page.location; unit < NSMaxRange(page);) {
            NSRange line;
            ours.layout->lineFragmentRectForGlyphAtIndex_effectiveRange(unit, &line);
            benchmark::DoNotOptimize(ours.layout->locationForGlyphAtIndex(unit));
            unit = NSMaxRange(line);
        }
    }
}

void qtTyping(benchmark::State& state) {
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setDefaultFont(qtFont());
    document.setPlainText(textOf(english, kMebi));
    document.setTextWidth(static_cast<qreal>(kWidth));
    benchmark::DoNotOptimize(document.size());
    QTextCursor cursor(&document);
    cursor.setPosition(static_cast<int>(kMebi) / 2);
    for (auto _ : state) {
        cursor.insertText("x");
        benchmark::DoNotOptimize(document.size());
    }
}

// MARK: Large texts

void ourMiddle(benchmark::State& state) {
    Ours ours(textOf(english, 10 * kMebi));
    for (auto _ : state) {
        state.PauseTiming();
        ours.layOut();
        state.ResumeTiming();
        ours.page(0);
        const float height = ours.layout->usedRectForTextContainer(ours.container).size.height;
        benchmark::DoNotOptimize(ours.page(height / 2));
    }
}

void ourGiant(benchmark::State& state) {
    QString text = textOf(english, 10 * kMebi);
    text.truncate(10000000);
    Ours ours(text.replace('\n', ' '));
    for (auto _ : state) {
        state.PauseTiming();
        ours.layOut();
        state.ResumeTiming();
        ours.all();
    }
}

// MARK: Look-ups and memory

void safeLookUps(benchmark::State& state) {
    Ours ours(textOf(english, kMebi));
    ours.all();
    NSUInteger unit = 0;
    NSRange range;
    for (auto _ : state) {
        unit = (unit + 7919) % ours.storage->length();
        benchmark::DoNotOptimize(
            ours.layout->containerRunTable()->elementAtIndex_effectiveRange(unit, &range));
        benchmark::DoNotOptimize(ours.layout->firstUnlaidGlyphIndex());
    }
}

void measureString(benchmark::State& state) {
    AutoreleasePool outer;
    NSDictionary* attributes =
        NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)}});
    NSString* strings[] = {u"A short string"_ns,
                           state.range(0) ? u"Another string"_ns : u"A short string"_ns};
    unsigned turn = 0;
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(sizeWithAttributes(strings[++turn & 1], attributes));
    }
}

void tabLookUp(benchmark::State& state) {
    AutoreleasePool pool;
    auto style = NSMutableParagraphStyle::init();
    for (int i = 1; i <= 20; ++i)
        style->addTabStop(
            NSTextTab::initWithType_location(NSLeftTabStopType, static_cast<float>(i) * 20).get());
    float place = 0;
    for (auto _ : state) {
        place = place > 390 ? 0 : place + 7;
        benchmark::DoNotOptimize(textTabForGlyphLocation_writingDirection_maxLocation(
            style, place, NSWritingDirectionNatural, 500));
    }
}

std::size_t inUse() { return mallinfo2().uordblks + mallinfo2().hblkhd; }

void memory(benchmark::State& state) {
    for (auto _ : state) {
        const QString& text = textOf(english, kMebi);
        const std::size_t before = inUse();
        std::optional<AutoreleasePool> pool(std::in_place);  // for the text as a string
        Retained<NSString> string = stringOf(text)->copy();
        pool.reset();
        Ours ours{QString()};
        ours.storage->replaceCharactersInRange_withString({0, 0}, string);
        string = nullptr;
        ours.all();
        const std::size_t between = inUse();
        QTextDocument document;
        document.setUndoRedoEnabled(false);
        document.setDefaultFont(qtFont());
        document.setPlainText(text);
        document.setTextWidth(static_cast<qreal>(kWidth));
        benchmark::DoNotOptimize(document.size());
        const std::size_t after = inUse();
        state.counters["oursMB"] = static_cast<double>(between - before) / 1e6;
        state.counters["QtMB"] = static_cast<double>(after - between) / 1e6;
    }
}

void addAll() {
    using benchmark::kMillisecond;
    const auto add = [](const std::string& name, auto function) {
        return benchmark::RegisterBenchmark(name.c_str(), function)->Unit(kMillisecond);
    };
    add("Page/ours/EnglishCold", [](auto& state) { ourPage(state, english); })->Iterations(1);
    add("Lines/ours/EnglishCold", [](auto& state) { ourLines(state, english); })->Iterations(1);
    add("Lines/ours/randomCold", [](auto& state) { ourLines(state, random_); })->Iterations(1);
    add("Page/Qt/EnglishCold", [](auto& state) { qtPage(state, english); })->Iterations(1);
    add("Page/Pango/EnglishCold", [](auto& state) { pangoPage(state, english); })->Iterations(1);
    for (Language language : {random_, english, russian, arabic, hindi, thai, chinese}) {
        const std::string name = kNames[language];
        add("Page/ours/" + name, [=](auto& state) { ourPage(state, language); });
        add("Page/Qt/" + name, [=](auto& state) { qtPage(state, language); });
        add("Page/Pango/" + name, [=](auto& state) { pangoPage(state, language); });
        add("Lines/ours/" + name, [=](auto& state) { ourLines(state, language); });
        add("Lines/Qt/" + name, [=](auto& state) { qtDocument(state, language); });
        add("Lines/Pango/" + name, [=](auto& state) { pangoLines(state, language); });
    }
    add("Typing/ours", ourTyping);
    add("Typing/Qt", qtTyping);
    add("TenMebiMiddle/ours", ourMiddle);
    add("TenMillionInOne/ours", ourGiant);
    add("SafeLookUp/ours", safeLookUps)->Unit(benchmark::kNanosecond);
    add("MeasureString/ours", measureString)->Arg(0)->Arg(1)->Unit(benchmark::kNanosecond);
    add("TabLookUp/ours", tabLookUp)->Unit(benchmark::kNanosecond);
    add("Memory", memory)->Iterations(1);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    addAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
