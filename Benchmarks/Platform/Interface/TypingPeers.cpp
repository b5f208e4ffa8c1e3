// SPDX-License-Identifier: Apache-2.0
// The windows of Qt that TypingBenchmark looks at. Usage: TypingPeers QTextEdit|QPlainTextEdit LETTERS
#define QT_NO_KEYWORDS
#include <QApplication>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextEdit>

#include "TypingSample.h"

namespace {

using namespace pelvor;

template <class Edit>
int showQt(std::size_t size) {
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    int argc = 1;
    char name[] = "peer";
    char* argv[] = {name, nullptr};
    QApplication app(argc, argv);
    Edit edit;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    edit.setFont(font);
    edit.setPlainText(QString::fromStdString(sampleText(size)));
    QTextCursor cursor = edit.textCursor();
    cursor.setPosition(static_cast<int>(size / 2));
    edit.setTextCursor(cursor);
    edit.setGeometry(kWindowLeft, kWindowTop, kWindowWidth, kWindowHeight);
    edit.show();
    edit.ensureCursorVisible();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::size_t size = std::strtoul(argv[2], nullptr, 10);
    return std::string_view(argv[1]) == "QTextEdit" ? showQt<QTextEdit>(size) : showQt<QPlainTextEdit>(size);
}
