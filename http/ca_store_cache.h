#ifndef VORN_HTTP_CA_STORE_CACHE_H
#define VORN_HTTP_CA_STORE_CACHE_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "cached_ca_store.h"

namespace OHOS {
namespace Vorn {
// The process's parsed CA files. Parsing a system bundle of about 140 certificates costs far
// more than the transfer that needs it, so each version of a file (its canonical path, inode,
// size and modification time) is parsed once and shared; a rewritten or replaced file is
// parsed afresh on its next use. The least recently used of more than eight versions goes.
class CaStoreCache {
public:
    static CaStoreCache &GetInstance();

    // False when VORN_TRANSPORT_CACHE is "0". Read for every transfer, so that one process can
    // compare both ways.
    static bool IsEnabled();

    // The store of the file's current version; null when the file is missing, is not a regular
    // file or holds no certificate, and when it changed while it was read.
    std::shared_ptr<const CachedCaStore> Acquire(const std::string &caFile);

    size_t Size() const;
    // Number of files parsed into stores so far; a transfer that finds its store adds none.
    uint64_t Loads() const;

private:
    struct Key {
        std::string path;
        uint64_t inode = 0;
        int64_t size = 0;
        int64_t modifiedNs = 0;

        bool operator==(const Key &other) const;
        bool operator!=(const Key &other) const;
    };
    struct Entry {
        Key key;
        std::shared_ptr<const CachedCaStore> store;
    };

    CaStoreCache() = default;

    static std::optional<Key> MakeKey(const std::string &caFile);
    std::shared_ptr<const CachedCaStore> Find(const Key &key);
    void Insert(const Key &key, std::shared_ptr<const CachedCaStore> store);

    mutable std::mutex mutex_;
    std::list<Entry> entries_;  // most recently used first
    uint64_t loads_ = 0;
    // Serialises parsing, so that transfers starting together on a new file parse it once.
    std::mutex loadMutex_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CA_STORE_CACHE_H
