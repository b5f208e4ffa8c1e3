// SPDX-License-Identifier: Apache-2.0
// WRUploader: sends a document to a server.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSURLConnection;
class NSURLError;
class NSURLResponse;
class WRProgressLine;

/// Sends a file as a form with one part, "document", and tells on the progress line how far that has come.
/// Main thread.
class WRUploader : public NSObject {
    PELVOR_CLASS(WRUploader, NSObject);
    PELVOR_CREATORS(initWithProgress);

  public:
    static Retained<WRUploader> initWithProgress(WRProgressLine* progress, Class* cls = classObject());

    /// Runs the run loop until the file is sent and the server has answered. Returns what went wrong, as a
    /// sentence for the user; null if nothing did.
    NSString* uploadFile_toAddress(NSString* path, NSString* address);

    // The messages of the connection
    void connection_didSendBodyData_totalBytesWritten_totalBytesExpectedToWrite(NSURLConnection* connection,
                                                                                long long bytes,
                                                                                long long sent,
                                                                                long long length);
    void connection_didReceiveResponse(NSURLConnection* connection, NSURLResponse* response);
    void connection_didFailWithError(NSURLConnection* connection, NSURLError* error);
    void connectionDidFinishLoading(NSURLConnection* connection);

  protected:
    WRUploader() = default;
    ~WRUploader();

  private:
    Retained<WRProgressLine> _progress;
    Retained<NSString> _reason;
    bool _isOver = false;
};

}  // namespace pelvor
