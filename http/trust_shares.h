#ifndef VORN_HTTP_TRUST_SHARES_H
#define VORN_HTTP_TRUST_SHARES_H

#include <cstddef>
#include <list>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "curl_share.h"

namespace OHOS {
namespace Vorn {
// One share of kept connections, TLS sessions and DNS results per trust context, so that a
// connection (or a resumable session) only ever serves transfers that would have verified and
// routed it the same way. libcurl's own reuse check cannot be relied on for that: it does not
// compare a CA store installed through the SSL context callback, and compares the interface
// only when the new transfer names one. Used by the transfer loop's thread only, hence no lock.
class TrustShares {
public:
    // Contexts kept at once; the least recently used one that no transfer uses goes first.
    static constexpr size_t MAX_CONTEXTS = 8;

    // The share of `context`, made on first use and held until the matching Release; null
    // when libcurl cannot make one.
    CURLSH *Hold(const std::string &context);
    void Release(const std::string &context);
    size_t Size() const;

private:
    struct Entry {
        std::string context;
        std::unique_ptr<CurlShare> share;
        size_t holders = 0;
    };

    void Trim();

    std::list<Entry> entries_; // most recently used first
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_TRUST_SHARES_H
