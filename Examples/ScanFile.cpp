// SPDX-License-Identifier: Apache-2.0
// A program that reads a list of goods and their prices from a file, seven bytes at a time.
#include <memory>

#include "FileScanner.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

int main() {
    using namespace pelvor;
    AutoreleasePool pool;
    const std::string goods = "crème brûlée: 4.50\nÄpfel: 12\n";
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    if (!file || std::fwrite(goods.data(), 1, goods.size(), file.get()) != goods.size()) return 1;

    auto scanner = FileScanner::of(file.get(), 7);
    while (NSString* name = scanner->readFullTokenWithDelimiterCharacter(u':')) {
        scanner->skipCharacters(2);
        double price = 0;
        scanner->scanDouble_maximumLength_exponentLength(&price, 9, 2);
        std::printf("%s at %u costs %.2f\n", name->toUTF8().c_str(), scanner->scanLocation(), price);
        scanner->readLine();
    }
}
