#ifndef UTILS_BASE_SAFE_MAP_H
#define UTILS_BASE_SAFE_MAP_H

#include <functional>
#include <map>
#include <mutex>

namespace OHOS {
// A std::map guarded by its own mutex; every operation takes the lock.
template <typename K, typename V>
class SafeMap {
public:
    SafeMap() = default;
    ~SafeMap() = default;

    SafeMap(const SafeMap &rhs)
    {
        std::lock_guard<std::mutex> lock(rhs.mutex_);
        map_ = rhs.map_;
    }

    SafeMap &operator=(const SafeMap &rhs)
    {
        if (&rhs == this) {
            return *this;
        }
        std::scoped_lock lock(mutex_, rhs.mutex_);
        map_ = rhs.map_;
        return *this;
    }

    V ReadVal(const K &key)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return map_[key];
    }

    template <typename LambdaCallback>
    void ChangeValueByLambda(const K &key, LambdaCallback callback)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        callback(map_[key]);
    }

    int Size()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return static_cast<int>(map_.size());
    }

    bool IsEmpty()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return map_.empty();
    }

    bool Insert(const K &key, const V &value)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return map_.insert(std::pair<K, V>(key, value)).second;
    }

    void EnsureInsert(const K &key, const V &value)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        map_[key] = value;
    }

    bool Find(const K &key, V &value)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto iter = map_.find(key);
        if (iter == map_.end()) {
            return false;
        }
        value = iter->second;
        return true;
    }

    bool FindOldAndSetNew(const K &key, V &oldValue, const V &newValue)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto iter = map_.find(key);
        if (iter == map_.end()) {
            return false;
        }
        oldValue = iter->second;
        iter->second = newValue;
        return true;
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

    using SafeMapCallBack = std::function<void(const K, V &)>;

    void Iterate(const SafeMapCallBack &callback)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (auto &[key, value] : map_) {
            callback(key, value);
        }
    }

private:
    mutable std::mutex mutex_;
    std::map<K, V> map_;
};
} // namespace OHOS

#endif // UTILS_BASE_SAFE_MAP_H
