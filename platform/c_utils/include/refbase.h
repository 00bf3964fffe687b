#ifndef UTILS_BASE_REFBASE_H
#define UTILS_BASE_REFBASE_H

#include <atomic>
#include <cstddef>
#include <utility>

namespace OHOS {
// The strong count starts here so that "never had a strong reference" can be told apart from
// "all strong references are gone".
#define INITIAL_PRIMARY_VALUE (1 << 28)

class RefBase;

// The shared bookkeeping of one RefBase object. It outlives the object while weak references
// exist, so a weak reference can still ask whether the object is alive.
class RefCounter {
public:
    RefCounter() = default;
    RefCounter(const RefCounter &) = delete;
    RefCounter &operator=(const RefCounter &) = delete;

    int GetRefCount();
    void IncRefCount();
    void DecRefCount(); // frees the counter when the last holder lets go

    // The object the counts belong to; null once it has been destroyed.
    RefBase *GetOwner();

    int IncStrongRefCount(const void *objectId); // returns the previous value
    int DecStrongRefCount(const void *objectId); // returns the previous value
    int GetStrongRefCount();
    int IncWeakRefCount(const void *objectId);
    int DecWeakRefCount(const void *objectId);
    int GetWeakRefCount();

    void ExtendObjectLifetime();
    bool IsLifeTimeExtended();

    // Takes a strong reference only if the object is still alive; on success it also takes the
    // weak reference that every strong one carries. outCount gets the strong count seen before.
    bool AttemptIncStrongRef(const void *objectId, int &outCount);

private:
    friend class RefBase;
    ~RefCounter() = default;

    std::atomic<int> refCount_ {0};
    std::atomic<int> atomicStrong_ {INITIAL_PRIMARY_VALUE};
    std::atomic<int> atomicWeak_ {0};
    std::atomic<bool> lifetimeExtended_ {false};
    std::atomic<RefBase *> owner_ {nullptr};
};

// One weak handle on an object, shared by the copies of a wptr.
class WeakRefCounter {
public:
    WeakRefCounter(RefCounter *counter, void *cookie);
    WeakRefCounter(const WeakRefCounter &) = delete;
    WeakRefCounter &operator=(const WeakRefCounter &) = delete;

    void *GetRefPtr();
    void IncWeakRefCount(const void *objectId);
    void DecWeakRefCount(const void *objectId); // frees the handle with its last reference
    bool AttemptIncStrongRef(const void *objectId);

private:
    ~WeakRefCounter();

    std::atomic<int> atomicWeak_ {0};
    RefCounter *refCounter_;
    void *cookie_;
};

class RefBase {
public:
    RefBase();
    // Reference counts belong to an object's identity, not to its value: a copy or a moved-to
    // object starts with counts of its own.
    RefBase(const RefBase &);
    RefBase &operator=(const RefBase &);
    RefBase(RefBase &&) noexcept;
    RefBase &operator=(RefBase &&) noexcept;
    virtual ~RefBase();

    virtual void RefPtrCallback();
    void ExtendObjectLifetime();

    void IncStrongRef(const void *objectId);
    void DecStrongRef(const void *objectId);
    int GetSptrRefCount();

    void IncWeakRef(const void *objectId);
    void DecWeakRef(const void *objectId);
    int GetWptrRefCount();

    WeakRefCounter *CreateWeakRef(void *cookie);
    RefCounter *GetRefCounter() const;

    bool AttemptAcquire(const void *objectId);
    bool AttemptIncStrongRef(const void *objectId);
    bool IsExtendLifeTimeSet();

    virtual void OnFirstStrongRef(const void *objectId);
    virtual void OnLastStrongRef(const void *objectId);
    virtual void OnLastWeakRef(const void *objectId);
    virtual bool OnAttemptPromoted(const void *objectId);

private:
    RefCounter *refs_;
};

template <typename T> class wptr;

template <typename T> class sptr {
public:
    sptr() = default;

    sptr(T *other) : refs_(other)
    {
        if (refs_ != nullptr) {
            refs_->IncStrongRef(this);
        }
    }

    sptr(const sptr<T> &other) : sptr(other.GetRefPtr()) {}

    sptr(sptr<T> &&other) noexcept : refs_(other.refs_) { other.refs_ = nullptr; }

    template <typename O> sptr(const sptr<O> &other) : sptr(other.GetRefPtr()) {}

    // Adopts the strong reference that a successful promotion already took.
    sptr(WeakRefCounter *p, bool /* force */) : refs_(p != nullptr ? static_cast<T *>(p->GetRefPtr()) : nullptr) {}

    ~sptr() { clear(); }

    template <typename... Args> static inline sptr<T> MakeSptr(Args &&...args)
    {
        return sptr<T>(new T(std::forward<Args>(args)...));
    }

    T *GetRefPtr() const { return refs_; }

    void ForceSetRefPtr(T *other) { refs_ = other; }

    void clear()
    {
        if (refs_ != nullptr) {
            T *old = refs_;
            refs_ = nullptr;
            old->DecStrongRef(this);
        }
    }

    operator T *() const { return refs_; }

    explicit operator bool() const { return refs_ != nullptr; }

    T &operator*() const { return *refs_; }

    T *operator->() const { return refs_; }

    sptr<T> &operator=(T *other)
    {
        if (other != nullptr) {
            other->IncStrongRef(this);
        }
        T *old = refs_;
        refs_ = other;
        if (old != nullptr) {
            old->DecStrongRef(this);
        }
        return *this;
    }

    sptr<T> &operator=(const sptr<T> &other) { return operator=(other.GetRefPtr()); }

    sptr<T> &operator=(sptr<T> &&other) noexcept
    {
        if (this != &other) {
            clear();
            refs_ = other.refs_;
            other.refs_ = nullptr;
        }
        return *this;
    }

    sptr<T> &operator=(const wptr<T> &other) { return operator=(other.promote()); }

    template <typename O> sptr<T> &operator=(const sptr<O> &other) { return operator=(other.GetRefPtr()); }

    // The overloads for T*, const T* and nullptr keep comparisons with raw pointers from being
    // ambiguous against the built-in comparison reached through operator T*().
    bool operator==(T *other) const { return refs_ == other; }

    bool operator!=(T *other) const { return refs_ != other; }

    bool operator==(const T *other) const { return refs_ == other; }

    bool operator!=(const T *other) const { return refs_ != other; }

    bool operator==(std::nullptr_t) const { return refs_ == nullptr; }

    bool operator!=(std::nullptr_t) const { return refs_ != nullptr; }

    bool operator==(const sptr<T> &other) const { return refs_ == other.GetRefPtr(); }

    bool operator!=(const sptr<T> &other) const { return refs_ != other.GetRefPtr(); }

    bool operator==(const wptr<T> &other) const { return refs_ == other.GetRefPtr(); }

    bool operator!=(const wptr<T> &other) const { return refs_ != other.GetRefPtr(); }

private:
    T *refs_ = nullptr;
};

template <typename T> class wptr {
public:
    wptr() = default;

    wptr(T *other) : refs_(Attach(other)) {}

    wptr(const wptr<T> &other) : refs_(other.refs_)
    {
        if (refs_ != nullptr) {
            refs_->IncWeakRefCount(this);
        }
    }

    wptr(const sptr<T> &other) : refs_(Attach(other.GetRefPtr())) {}

    // The pointer conversion reads the object, so it must still be alive (as on the device).
    template <typename O> wptr(const wptr<O> &other) : refs_(Attach(other.GetRefPtr())) {}

    template <typename O> wptr(const sptr<O> &other) : refs_(Attach(other.GetRefPtr())) {}

    ~wptr() { Release(); }

    wptr<T> &operator=(T *other)
    {
        WeakRefCounter *fresh = Attach(other);
        Release();
        refs_ = fresh;
        return *this;
    }

    wptr<T> &operator=(const wptr<T> &other)
    {
        if (other.refs_ != nullptr) {
            other.refs_->IncWeakRefCount(this);
        }
        Release();
        refs_ = other.refs_;
        return *this;
    }

    wptr<T> &operator=(const sptr<T> &other) { return operator=(other.GetRefPtr()); }

    T &operator*() const { return *GetRefPtr(); }

    T *operator->() const { return GetRefPtr(); }

    // The raw pointer, even after the object died; only promote() tells whether it is alive.
    T *GetRefPtr() const { return refs_ != nullptr ? static_cast<T *>(refs_->GetRefPtr()) : nullptr; }

    bool operator==(const T *other) const { return GetRefPtr() == other; }

    bool operator!=(const T *other) const { return GetRefPtr() != other; }

    bool operator==(const wptr<T> &other) const { return GetRefPtr() == other.GetRefPtr(); }

    bool operator!=(const wptr<T> &other) const { return GetRefPtr() != other.GetRefPtr(); }

    bool operator==(const sptr<T> &other) const { return GetRefPtr() == other.GetRefPtr(); }

    bool operator!=(const sptr<T> &other) const { return GetRefPtr() != other.GetRefPtr(); }

    const sptr<T> promote() const
    {
        if (refs_ == nullptr || !refs_->AttemptIncStrongRef(this)) {
            return nullptr;
        }
        return sptr<T>(refs_, true);
    }

private:
    WeakRefCounter *Attach(T *object)
    {
        if (object == nullptr) {
            return nullptr;
        }
        WeakRefCounter *refs = object->CreateWeakRef(object);
        if (refs != nullptr) {
            refs->IncWeakRefCount(this);
        }
        return refs;
    }

    void Release()
    {
        if (refs_ != nullptr) {
            WeakRefCounter *old = refs_;
            refs_ = nullptr;
            old->DecWeakRefCount(this);
        }
    }

    WeakRefCounter *refs_ = nullptr;
};
} // namespace OHOS

#endif // UTILS_BASE_REFBASE_H
