// SPDX-License-Identifier: Apache-2.0
// Writer opening documents of 100 MB, with the reading and decoding of the same files by ICU and Qt beside.
#include <benchmark/benchmark.h>
#include <unicode/ustring.h>
#include <unistd.h>

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kSize = 100'000'000;

// A file of so many bytes that repeats the text.
class Document {
  public:
    explicit Document(const std::string& text)
        : _path(std::filesystem::temp_directory_path() / ("PelvorOpen" + std::to_string(getpid()) + ".txt")) {
        std::string bytes;
        while (bytes.size() < kSize) bytes += text;
        std::ofstream(_path, std::ios::binary) << bytes;
    }
    ~Document() { std::filesystem::remove(_path); }
    const std::string& path() const { return _path; }

  private:
    std::string _path;
};

// Milliseconds, of the clock on the wall and of the processor: other programs may be running.
struct Times {
    double wall = 1e9;
    double processor = 1e9;

    static Times now() {
        const auto wall = std::chrono::steady_clock::now().time_since_epoch();
        return {std::chrono::duration<double, std::milli>(wall).count(),
                1000.0 * std::clock() / CLOCKS_PER_SEC};
    }
    Times since(const Times& start) const { return {wall - start.wall, processor - start.processor}; }
    void keepBest(const Times& other) {
        wall = std::min(wall, other.wall);
        processor = std::min(processor, other.processor);
    }
};

// The figures that the program tells when it opens the document, "timing opened" and so on; none if it fails.
std::map<std::string, double> openedByWriter(const std::string& path) {
    std::map<std::string, double> figures;
    std::FILE* output = popen((WRITER_PROGRAM " --timing '" + path + "'").c_str(), "r");
    char kind[16], moment[32], line[4096];
    double figure;
    while (output && std::fgets(line, sizeof line, output))
        if (std::sscanf(line, "%15s %31[a-z -] %lf", kind, moment, &figure) == 3)
            figures[std::string(kind) + " " + std::string(moment).substr(0, std::string(moment).find(' '))] =
                figure;
    if (!output || pclose(output) != 0) figures.clear();
    return figures;
}

QByteArray contentOf(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Answer the length of the text.
std::size_t openedByQt(const std::string& path) {
    const QString text = QStringDecoder(QStringDecoder::Utf8)(contentOf(path));
    return static_cast<std::size_t>(text.size());
}

std::size_t openedByICU(const std::string& path) {
    const QByteArray bytes = contentOf(path);
    std::vector<char16_t> units(static_cast<std::size_t>(bytes.size()));
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                  static_cast<std::int32_t>(bytes.size()), &error);
    return U_SUCCESS(error) ? static_cast<std::size_t>(length) : 0;
}

// As Qt's, in blocks that stay in the cache.
std::size_t openedByQtInBlocks(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return 0;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text(static_cast<qsizetype>(kSize + 4096), Qt::Uninitialized);
    QChar* end = text.data();
    std::vector<char> block(256 * 1024);
    for (qint64 count; (count = file.read(block.data(), static_cast<qint64>(block.size()))) > 0;)
        end = decoder.appendToBuffer(end, QByteArrayView(block.data(), count));
    return static_cast<std::size_t>(end - text.data());
}

// One round opens the document with everybody once.
void open(benchmark::State& state, const std::string& text) {
    const Document document(text);
    std::size_t (*const peers[])(const std::string&) = {openedByQt, openedByQtInBlocks, openedByICU};
    Times peer, peerTimes[std::size(peers)], writer;
    double memory = 0, memoryAtEnd = 0;
    std::size_t length = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < std::size(peers); ++i) {
            const Times start = Times::now();
            length = peers[i](document.path());
            peerTimes[i].keepBest(Times::now().since(start));
            peer.keepBest(peerTimes[i]);
        }
        auto figures = openedByWriter(document.path());
        if (figures.empty() || length == 0) return state.SkipWithError("the document was not opened");
        const Times opened{figures["timing opened"], figures["processor opened"]};
        const Times opening = opened.since({figures["timing ready"], figures["processor ready"]});
        state.SetIterationTime(opening.wall / 1000);
        writer.keepBest(opening);
        memory = std::max(memory, figures["memory opened"]);
        memoryAtEnd = std::max(memoryAtEnd, figures["memory end"]);
        state.counters["count_ms"] = figures["processor counted"] - figures["processor examined"];
    }
    const double textKiB = static_cast<double>(length) * 2 / 1024;
    state.counters["writer_ms"] = writer.processor;
    state.counters["qt_ms"] = peerTimes[0].processor;
    state.counters["qt_blocks_ms"] = peerTimes[1].processor;
    state.counters["icu_ms"] = peerTimes[2].processor;
    state.counters["wall_ratio"] = writer.wall / peer.wall;
    state.counters["ratio"] = writer.processor / peer.processor;
    state.counters["memory_ratio"] = memory / textKiB;
    state.counters["memory_ratio_at_end"] = memoryAtEnd / textKiB;
}

const std::string kEnglish = "It was a bright cold day in April, and the clocks were striking thirteen.\n";
const std::string kFrench = "L’après-midi, nous avons parlé des espaces où l’on rêve à côté de la forêt.\n";
const std::string kRussian = "Был яркий холодный апрельский день, и часы били тринадцать раз подряд.\n";
const std::string kChinese = "四月間，天氣寒冷晴朗，鐘敲了十三下，他把下巴貼在胸前，躲避寒風。\n";

void settings(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
}

BENCHMARK_CAPTURE(open, English, kEnglish)->Apply(settings);
BENCHMARK_CAPTURE(open, French, kFrench)->Apply(settings);
BENCHMARK_CAPTURE(open, Russian, kRussian)->Apply(settings);
BENCHMARK_CAPTURE(open, Chinese, kChinese)->Apply(settings);
BENCHMARK_CAPTURE(open, Mixed, kEnglish + kFrench + kRussian + kChinese)->Apply(settings);

}  // namespace
