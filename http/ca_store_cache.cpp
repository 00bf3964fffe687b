#include "ca_store_cache.h"

#include <cstdlib>
#include <utility>

#include <sys/stat.h>

#include "vorn_log.h"
#include "vorn_metrics.h"

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

std::string CaStoreCache::Key::ToString() const
{
    return path + "#" + std::to_string(inode) + "#" + std::to_string(size) + "#" + std::to_string(modifiedNs);
}

CaStoreCache &CaStoreCache::GetInstance()
{
    static CaStoreCache instance;
    return instance;
}

bool CaStoreCache::IsEnabled()
{
    static const bool enabled = [] {
        const char *value = std::getenv(CACHE_SWITCH);
        return value == nullptr || std::string(value) != "0";
    }();
    return enabled;
}

std::optional<std::string> CaStoreCache::VersionOf(const std::string &caFile)
{
    std::optional<Key> key = MakeKey(caFile);
    if (!key.has_value()) {
        return std::nullopt;
    }
    return key->ToString();
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
    std::shared_ptr<FileLoad> fileLoad = EnterLoad(key->path);
    std::shared_ptr<const CachedCaStore> store;
    {
        // A runtime-aware wait: a transfer waiting for another's load of the same file gives
        // its worker back.
        std::lock_guard<ffrt::mutex> loadLock(fileLoad->mutex);
        // Another transfer may have parsed it while this one waited.
        store = Find(*key);
        if (store == nullptr) {
            store = Load(caFile, *key);
        }
    }
    LeaveLoad(key->path);
    return store;
}

std::shared_ptr<const CachedCaStore> CaStoreCache::Load(const std::string &caFile, const Key &key)
{
    std::shared_ptr<const CachedCaStore> store = CachedCaStore::Load(key.path, key.ToString());
    // A file replaced while it was read may have given either version: libcurl reads it itself.
    if (store == nullptr || MakeKey(caFile) != key) {
        return nullptr;
    }
    Insert(key, store);
    VORN_LOGI("CaStoreCache: loaded %{private}s", key.path.c_str());
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
// over the old one, which changes the inode. The path is kept as named: stat() follows links,
// so a link pointed at another file gives another inode, and resolving every component again
// would cost a system call each on every transfer.
std::optional<CaStoreCache::Key> CaStoreCache::MakeKey(const std::string &caFile)
{
    struct stat info {};
    if (caFile.empty() || stat(caFile.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    Key key;
    key.path = caFile;
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
    VornMetrics::Add(VornMetrics::Counter::CA_LOADS);
}

std::shared_ptr<CaStoreCache::FileLoad> CaStoreCache::EnterLoad(const std::string &path)
{
    std::lock_guard<std::mutex> lock(mutex_);
    std::shared_ptr<FileLoad> &fileLoad = fileLoads_[path];
    if (fileLoad == nullptr) {
        fileLoad = std::make_shared<FileLoad>();
    }
    ++fileLoad->waiters;
    return fileLoad;
}

// The last transfer out removes the file's lock, so the map holds only files being loaded.
void CaStoreCache::LeaveLoad(const std::string &path)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto found = fileLoads_.find(path);
    if (found != fileLoads_.end() && --found->second->waiters == 0) {
        fileLoads_.erase(found);
    }
}
} // namespace Vorn
} // namespace OHOS
