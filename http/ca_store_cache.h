#ifndef VORN_HTTP_CA_STORE_CACHE_H
#define VORN_HTTP_CA_STORE_CACHE_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "cached_ca_store.h"
#include "ffrt_inner.h"

namespace OHOS {
namespace Vorn {
// The process's parsed CA files. Parsing a system bundle of about 140 certificates costs far
// more than the transfer that needs it, so each version of a file (its canonical path, inode,
// size and modification time) is parsed once and shared; a rewritten or replaced file is
// parsed afresh on its next use. The least recently used of more than eight versions goes.
class CaStoreCache {
public:
    static CaStoreCache &GetInstance();

    // False when VORN_TRANSPORT_CACHE is "0": then nothing is cached or kept by the transport.
    // Read once, at first use, so that one process never mixes both ways.
    static bool IsEnabled();

    // The version of "caFile" that a store or a connection verified with it stands for; none
    // when the file cannot be looked at or is not a regular file.
    static std::optional<std::string> VersionOf(const std::string &caFile);

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
        std::string ToString() const;
    };
    struct Entry {
        Key key;
        std::shared_ptr<const CachedCaStore> store;
    };
    // The lock of one file's loads, shared by the transfers that wait for it.
    struct FileLoad {
        ffrt::mutex mutex;
        size_t waiters = 0;
    };

    CaStoreCache() = default;

    static std::optional<Key> MakeKey(const std::string &caFile);
    std::shared_ptr<const CachedCaStore> Find(const Key &key);
    std::shared_ptr<const CachedCaStore> Load(const std::string &caFile, const Key &key);
    void Insert(const Key &key, std::shared_ptr<const CachedCaStore> store);
    std::shared_ptr<FileLoad> EnterLoad(const std::string &path);
    void LeaveLoad(const std::string &path);

    mutable std::mutex mutex_;
    std::list<Entry> entries_; // most recently used first
    uint64_t loads_ = 0;
    // One lock per file being loaded, so that transfers starting together on a new file parse
    // it once, while a slow file holds up no transfer that names another.
    std::map<std::string, std::shared_ptr<FileLoad>> fileLoads_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CA_STORE_CACHE_H
