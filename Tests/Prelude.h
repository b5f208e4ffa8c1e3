// SPDX-License-Identifier: Apache-2.0
// What every test may use: the everyday classes, and short ways to write what tests do again and again.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNull.h"
#include "Foundation/NSNumber.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// An instance of a class that was made while the test runs.
inline Retained<Object> instanceOf(Class* cls) { return Retained<Object>::adopting(cls->createInstance()); }

/// The reason of the exception that the call raises, of that name if one is given; else what happened
/// instead.
inline std::string reasonOf(const char* name, const std::function<void()>& call) {
    try {
        call();
    } catch (const NSException& exception) {
        if (!name || exception.name() == name) return exception.reason();
        return std::string("raised ") + exception.what();
    }
    return name ? "nothing raised" : "";
}
inline std::string reasonOf(const std::function<void()>& call) { return reasonOf(nullptr, call); }

/// What the expression raises, "NSRangeException: index (4) beyond bounds (4)"; "" if nothing.
#define RAISED(...) ::pelvor::whatIsRaisedBy([&] { (void)(__VA_ARGS__); })
template <class Call>
std::string whatIsRaisedBy(Call call) {
    try {
        call();
        return "";
    } catch (const NSException& exception) {
        return exception.what();
    }
}

/// The values as a stream shows them, with blanks between.
template <class... Values>
std::string shown(const Values&... values) {
    AutoreleasePool pool;
    std::ostringstream stream;
    const char* blank = "";
    ((stream << std::exchange(blank, " ") << values), ...);
    return std::move(stream).str();
}

/// The texts with commas between.
inline std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (&text == texts.data() ? "" : ", ") + text;
    return all;
}

/// Expects of each row what it says that the function makes of its text: "text -> result as a stream shows
/// it".
template <class Function>
void expectAll(std::initializer_list<std::string_view> rows, Function function) {
    for (std::string_view row : rows) {
        const std::size_t arrow = row.find(" -> ");
        EXPECT_EQ(shown(function(std::string(row.substr(0, arrow)))), row.substr(arrow + 4)) << row;
    }
}

/// The classes as a library lists them.
template <class... Classes>
constexpr Class* kClassesOf[] = {&Classes::classRecord...};

/// "0x…", as descriptions have it.
inline std::string addressOf(Object* object) {
    return NSString::stringWithFormat(u"%p"_ns, static_cast<void*>(object))->toUTF8();
}

/// Does the work, which is given a number from 0, on so many threads at once, and waits for them.
template <class Work>
void onThreads(int count, Work work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back([&work, number] {
            AutoreleasePool pool;
            work(number);
        });
    for (std::thread& thread : threads) thread.join();
}

/// Keeps the texts that are logged for a scope.
class LogLines {
  public:
    std::vector<std::string> lines;

  private:
    LogSinkScope _scope{[this](const LogEntry& entry) { lines.emplace_back(entry.text); }};
};

/// What calls the function when its last copy ends.
inline std::shared_ptr<void> atEnd(std::function<void()> call) {
    return {nullptr, [call = std::move(call)](void*) { call(); }};
}

/// Keeps the notifications that it hears from the default centre while it lives, and does what it is told.
class Listener : public NSObject {
    PELVOR_CLASS(Listener, NSObject);

  public:
    /// From that sender, or from any.
    static Retained<Listener> to(NSString* name, Object* sender = nullptr);
    /// One that hands what it hears to the task, and keeps nothing.
    static Retained<Listener> doing(std::function<void(id)> task);
    void listen(NSString* name, Object* sender);
    void hear(id what);
    /// How many it heard since it was asked last.
    std::size_t takeCount() { return std::exchange(heard, {}).size(); }

    std::vector<Retained<NSNotification>> heard;
    std::function<void()> reaction;
    std::function<void(id)> task;

  protected:
    ~Listener() { NSNotificationCenter::defaultCenter()->removeObserver(this); }
};

}  // namespace pelvor

/// Tests speak of the library without its name.
using namespace pelvor;
