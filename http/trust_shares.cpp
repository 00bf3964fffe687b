#include "trust_shares.h"

#include <algorithm>

namespace OHOS {
namespace Vorn {
CURLSH *TrustShares::Hold(const std::string &context)
{
    auto found = std::find_if(entries_.begin(), entries_.end(),
        [&context](const Entry &entry) { return entry.context == context; });
    if (found == entries_.end()) {
        auto share = std::make_unique<CurlShare>();
        if (share->Get() == nullptr) {
            return nullptr;
        }
        entries_.push_front({context, std::move(share), 0});
    } else {
        entries_.splice(entries_.begin(), entries_, found);
    }
    Entry &entry = entries_.front();
    ++entry.holders;
    Trim();
    return entry.share->Get();
}

void TrustShares::Release(const std::string &context)
{
    auto found = std::find_if(entries_.begin(), entries_.end(),
        [&context](const Entry &entry) { return entry.context == context; });
    if (found == entries_.end() || found->holders == 0) {
        return;
    }
    --found->holders;
    Trim();
}

size_t TrustShares::Size() const
{
    return entries_.size();
}

// A share still attached to a handle cannot be cleaned up; when every context is in use the
// list stays over its bound until transfers end.
void TrustShares::Trim()
{
    for (auto it = entries_.end(); entries_.size() > MAX_CONTEXTS && it != entries_.begin();) {
        --it;
        if (it->holders == 0) {
            it = entries_.erase(it);
        }
    }
}
} // namespace Vorn
} // namespace OHOS
