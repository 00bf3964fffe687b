#include "ca_store_cache.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr size_t MAX_STORES = 8;
constexpr int64_t NANOSECONDS_PER_SECOND = 1000000000;
constexpr const char *CACHE_SWITCH = "VORN_TRANSPORT_CACHE";
} // namespace

bool CaStoreCache::Key::operator==(const Key &other) const
{
    return path == other.path && inode == other.inode && size == other.size && modifiedNs == other.modifiedNs;
}

bool CaStoreCache::Key::operator!=(const Key &other) const
{
    return !(*this == other);
}

CaStoreCache &CaStoreCache::GetInstance()
{
    static CaStoreCache instance;
    return instance;
}

bool CaStoreCache::IsEnabled()
{
    const char *value = std::getenv(CACHE_SWITCH);
    return value == nullptr || std::string(value) != "0";
}

std::shared_ptr<const CachedCaStore> CaStoreCache::Acquire(const std::string &caFile)
{
    std::optional<Key> key = MakeKey(caFile);
    if (!key.has_value()) {
        return nullptr;
    }
    if (auto store = Find(*key)) {
        return store;
    }
    std::lock_guard<std::mutex> loadLock(loadMutex_);
    // Another transfer may have parsed it while this one waited.
    if (auto store = Find(*key)) {
        return store;
    }
    std::shared_ptr<const CachedCaStore> store = CachedCaStore::Load(key->path);
    // A file replaced while it was read may have given either version: libcurl reads it itself.
    if (store == nullptr || MakeKey(caFile) != key) {
        return nullptr;
    }
    Insert(*key, store);
    VORN_LOGI("CaStoreCache: loaded %{private}s", key->path.c_str());
    return store;
}

size_t CaStoreCache::Size() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return entries_.size();
}

uint64_t CaStoreCache::Loads() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return loads_;
}

// A rewrite in place that keeps the size and falls within the same tick of the file system's
// clock keeps the key and goes unnoticed; bundles are usually replaced by renaming a new file
// over the old one, which changes the inode.
std::optional<CaStoreCache::Key> CaStoreCache::MakeKey(const std::string &caFile)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(caFile, error);
    struct stat info {};
    if (error || stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    Key key;
    key.path = path.string();
    key.inode = static_cast<uint64_t>(info.st_ino);
    key.size = static_cast<int64_t>(info.st_size);
    key.modifiedNs = static_cast<int64_t>(info.st_mtim.tv_sec) * NANOSECONDS_PER_SECOND + info.st_mtim.tv_nsec;
    return key;
}

std::shared_ptr<const CachedCaStore> CaStoreCache::Find(const Key &key)
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (it->key == key) {
            entries_.splice(entries_.begin(), entries_, it);
            return it->store;
        }
    }
    return nullptr;
}

void CaStoreCache::Insert(const Key &key, std::shared_ptr<const CachedCaStore> store)
{
    std::lock_guard<std::mutex> lock(mutex_);
    // An older version of the same file is never asked for again.
    entries_.remove_if([&key](const Entry &entry) { return entry.key.path == key.path; });
    entries_.push_front({key, std::move(store)});
    if (entries_.size() > MAX_STORES) {
        entries_.pop_back();
    }
    ++loads_;
}
} // namespace Vorn
} // namespace OHOS
