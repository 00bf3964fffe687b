#ifndef UTILS_BASE_SAFE_MAP_H
#define UTILS_BASE_SAFE_MAP_H

#include <map>
#include <mutex>

namespace OHOS {
// A std::map guarded by its own mutex; every operation takes the lock.
template <typename K, typename V> class SafeMap {
public:
    SafeMap() = default;
    ~SafeMap() = default;

    template <typename LambdaCallback> void ChangeValueByLambda(const K &key, LambdaCallback callback)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        callback(map_[key]);
    }

    int Size()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return static_cast<int>(map_.size());
    }

    void Erase(const K &key)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        map_.erase(key);
    }

    void Clear()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        map_.clear();
    }

private:
    std::mutex mutex_;
    std::map<K, V> map_;
};
} // namespace OHOS

#endif // UTILS_BASE_SAFE_MAP_H
