// SPDX-License-Identifier: Apache-2.0
// A host application that tells its versions and what a server knows of them.
#include <iostream>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSURL.h"
#include "PBOnlineSupport.h"
#include "PBPostURLRequest.h"
#include "Runtime/AutoreleasePool.h"

using namespace pelvor;

int main() {
    AutoreleasePool pool;
    std::cout << PBPelvorWriterInternalIntVersion() << ' ' << PBPelvorWriterInternalPreReleaseIntVersion()
              << ' ' << PBPelvorWriterInternalVersion() << '\n'
              << PBLogicalReleaseNumber() << ' ' << PBPelvorWriterApplicationName() << ' '
              << PBPelvorWriterDisplayVersion() << '\n'
              << PBOnlineInfoDictionaryURL() << ' ' << PBOnlineInfoDictionary() << ' '
              << PBOnlineInfoDictionaryForProduct(u"Other"_ns) << '\n'
              << PBPostURLRequest::uniquePartBoundary() << '\n';
}
