// SPDX-License-Identifier: Apache-2.0
// Tests of input methods on an X server, and of the text that they compose.
#include "BackendDriver.h"
#include "InterfaceXCB/Preedit.h"
#include "TestInputMethod.h"

namespace {

constexpr int kA = 30, kB = 48, kX = 45, kReturn = 28;

class XCBInputMethodTest : public XCBTest {
  protected:
    void start(const char* encoding) {
        server.emplace();
        method = std::make_unique<TestInputMethod>(encoding);
        driver.emplace();
        window = driver->openWindow({100, 100, 400, 300}, 0xFFFFFF);
        EXPECT_TRUE(driver->untilHeard("focus 1"));
        const PixelRect caret{20, 30, 1, 15};
        driver->backend->setTextInput(window, &caret);
        EXPECT_TRUE(driver->until([&] { return method->focusCount > 0; }));
    }
    void type(std::initializer_list<int> codes) {
        driver->heard.clear();
        for (const int code : codes) server->press(code);
    }
    /// Until the method has answered all keys.
    void awaitAnswers() {
        EXPECT_TRUE(driver->until([&] { return driver->backend->timeout() > 1; }));
    }
    /// All that came of keys so far, once that many things did.
    std::string results(std::size_t count) {
        std::vector<std::string> texts;
        EXPECT_TRUE(driver->until([&] {
            texts.clear();
            for (const std::string& text : driver->heard)
                if (!text.starts_with("key ")) texts.push_back(text);
            return texts.size() >= count;
        })) << joined(texts);
        return joined(texts);
    }

    std::optional<XServerScope> server;
    std::unique_ptr<TestInputMethod> method;
    std::optional<BackendDriver> driver;
    BackendWindow window = 0;
};

TEST_F(XCBInputMethodTest, ComposesInEitherEncoding) {
    for (const char* encoding : {"COMPOUND_TEXT", "UTF8_STRING"}) {
        SCOPED_TRACE(encoding);
        driver.reset();
        method.reset();
        start(encoding);
        type({kA, kX, kA, kReturn, kB});
        EXPECT_EQ(results(5), "preedit 啊 1 0+1!, preedit 啊啊 2 0+1! 1+1, preedit  0, text 啊啊, text b");
        EXPECT_EQ(method->spotX, 20);
        awaitAnswers();

        // Composing is given up when nobody takes text any longer, and keys are used here.
        type({kA});
        EXPECT_EQ(results(1), "preedit 啊 1 0+1!");
        driver->backend->setTextInput(window, nullptr);
        type({kA});
        EXPECT_EQ(results(1), "text a");
    }
}

TEST_F(XCBInputMethodTest, TakesKeysBackFromOneThatHangs) {
    start("UTF8_STRING");
    type({kA});
    EXPECT_EQ(results(1), "preedit 啊 1 0+1!");
    awaitAnswers();
    method->hangs = true;
    std::string expected = "preedit  0";
    driver->heard.clear();
    for (int i = 0; i < 20; ++i) {
        server->press(i % 3 == 0 ? kA : kB);
        expected += i % 3 == 0 ? ", text a" : ", text b";
    }
    EXPECT_EQ(results(21), expected);
    type({kB});
    EXPECT_EQ(results(1), "text b") << "at once";

    // What it does with the key that it had got is too late; then it is asked again.
    driver->heard.clear();
    method->hangs = false;
    EXPECT_TRUE(driver->until([&] {
        if (driver->count("key up") == driver->count("key down")) server->press(kA);
        return driver->count("preedit 啊") > 0;
    }));
    EXPECT_EQ(driver->count("text b"), 0U);
}

TEST_F(XCBInputMethodTest, GoesOnWithoutOneThatEndsAndFindsTheNext) {
    start("UTF8_STRING");
    type({kA, kB});
    EXPECT_EQ(results(2), "preedit 啊 1 0+1!, text b");
    driver->heard.clear();
    method.reset();
    EXPECT_EQ(results(1), "preedit  0");
    type({kA, kB});
    EXPECT_EQ(results(2), "text a, text b");
    method = std::make_unique<TestInputMethod>("UTF8_STRING");
    EXPECT_TRUE(driver->until([&] { return method->focusCount > 0; }));
    type({kA});
    EXPECT_EQ(results(1), "preedit 啊 1 0+1!");
}

TEST(PreeditTest, BelievesNoNumbers) {
    Preedit preedit;
    const auto shown = [&] {
        const Preedit::Shown shown = preedit.shown();
        return shownPreedit(shown.text, shown.caret, shown.spans);
    };
    const std::uint32_t styles[] = {0, 4, 1, 2};
    preedit.replace(100, 100, u"a\U0001F600b", styles);
    preedit.setCaret(2);
    EXPECT_EQ(shown(), "a😀b 3 0+1 1+3!");
    preedit.replace(1, 0xFFFFFFFF, u"cd", {});
    EXPECT_EQ(shown(), "acd 2 0+3");
    preedit.setCaret(0xFFFFFFFF);
    preedit.replace(0, 1, u"", styles);
    EXPECT_EQ(shown(), "cd 2 0+2");
    for (int i = 0; i < 100; ++i) preedit.replace(1, 0, std::u16string(1000, u'x'), {});
    EXPECT_LE(preedit.shown().text.size(), 16384U);
    preedit.replace(0, 1, u"\xD83D", {});  // half a pair
    preedit.clear();
    EXPECT_EQ(shown(), " 0");
}

}  // namespace
