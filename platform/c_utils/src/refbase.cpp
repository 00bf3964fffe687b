#include "refbase.h"

namespace OHOS {
namespace {
// Keeps a counter alive across an operation that may destroy its object (and with it the
// object's own hold on the counter).
class CounterPin {
public:
    explicit CounterPin(RefCounter *counter) : counter_(counter) { counter_->IncRefCount(); }
    ~CounterPin() { counter_->DecRefCount(); }
    CounterPin(const CounterPin &) = delete;
    CounterPin &operator=(const CounterPin &) = delete;

private:
    RefCounter *counter_;
};
} // namespace

int RefCounter::GetRefCount()
{
    return refCount_.load(std::memory_order_relaxed);
}

void RefCounter::IncRefCount()
{
    refCount_.fetch_add(1, std::memory_order_relaxed);
}

void RefCounter::DecRefCount()
{
    if (refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

RefBase *RefCounter::GetOwner()
{
    return owner_.load(std::memory_order_acquire);
}

int RefCounter::IncStrongRefCount(const void * /* objectId */)
{
    return atomicStrong_.fetch_add(1, std::memory_order_relaxed);
}

int RefCounter::DecStrongRefCount(const void * /* objectId */)
{
    int current = atomicStrong_.load(std::memory_order_relaxed);
    if (current <= 0) {
        return current; // unbalanced release: leave the count alone
    }
    return atomicStrong_.fetch_sub(1, std::memory_order_acq_rel);
}

int RefCounter::GetStrongRefCount()
{
    return atomicStrong_.load(std::memory_order_relaxed);
}

int RefCounter::IncWeakRefCount(const void * /* objectId */)
{
    return atomicWeak_.fetch_add(1, std::memory_order_relaxed);
}

int RefCounter::DecWeakRefCount(const void *objectId)
{
    int previous = atomicWeak_.fetch_sub(1, std::memory_order_acq_rel);
    if (previous != 1) {
        return previous;
    }
    RefBase *owner = GetOwner();
    if (owner == nullptr) {
        return previous;
    }
    owner->OnLastWeakRef(objectId);
    // An extended object lives as long as any reference; an ordinary one died with its last
    // strong reference (or never had one and belongs to whoever created it).
    if (IsLifeTimeExtended()) {
        owner->RefPtrCallback();
    }
    return previous;
}

int RefCounter::GetWeakRefCount()
{
    return atomicWeak_.load(std::memory_order_relaxed);
}

void RefCounter::ExtendObjectLifetime()
{
    lifetimeExtended_.store(true, std::memory_order_relaxed);
}

bool RefCounter::IsLifeTimeExtended()
{
    return lifetimeExtended_.load(std::memory_order_relaxed);
}

bool RefCounter::AttemptIncStrongRef(const void *objectId, int &outCount)
{
    int current = atomicStrong_.load(std::memory_order_relaxed);
    for (;;) {
        if (current > 0 && current != INITIAL_PRIMARY_VALUE) {
            if (atomicStrong_.compare_exchange_weak(current, current + 1, std::memory_order_acquire)) {
                IncWeakRefCount(objectId);
                outCount = current;
                return true;
            }
            continue;
        }
        // Zero means the last strong reference is gone: the object is dead or being destroyed,
        // unless its lifetime follows the weak references.
        if (current <= 0 && !IsLifeTimeExtended()) {
            return false;
        }
        RefBase *owner = GetOwner();
        if (owner == nullptr || (current <= 0 && !owner->OnAttemptPromoted(objectId))) {
            return false;
        }
        if (atomicStrong_.compare_exchange_weak(current, 1, std::memory_order_acquire)) {
            IncWeakRefCount(objectId);
            outCount = current;
            owner->OnFirstStrongRef(objectId);
            return true;
        }
    }
}

WeakRefCounter::WeakRefCounter(RefCounter *counter, void *cookie) : refCounter_(counter), cookie_(cookie)
{
    refCounter_->IncRefCount();
}

WeakRefCounter::~WeakRefCounter()
{
    refCounter_->DecRefCount();
}

void *WeakRefCounter::GetRefPtr()
{
    return cookie_;
}

void WeakRefCounter::IncWeakRefCount(const void *objectId)
{
    if (atomicWeak_.fetch_add(1, std::memory_order_relaxed) == 0) {
        refCounter_->IncWeakRefCount(objectId);
    }
}

void WeakRefCounter::DecWeakRefCount(const void *objectId)
{
    if (atomicWeak_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        refCounter_->DecWeakRefCount(objectId);
        delete this;
    }
}

bool WeakRefCounter::AttemptIncStrongRef(const void *objectId)
{
    int previous = 0;
    return refCounter_->AttemptIncStrongRef(objectId, previous);
}

RefBase::RefBase() : refs_(new RefCounter())
{
    refs_->IncRefCount();
    refs_->owner_.store(this, std::memory_order_release);
}

RefBase::RefBase(const RefBase & /* other */) : RefBase() {}

RefBase &RefBase::operator=(const RefBase & /* other */)
{
    return *this;
}

RefBase::RefBase(RefBase && /* other */) noexcept : RefBase() {}

RefBase &RefBase::operator=(RefBase && /* other */) noexcept
{
    return *this;
}

RefBase::~RefBase()
{
    refs_->owner_.store(nullptr, std::memory_order_release);
    refs_->DecRefCount();
    refs_ = nullptr;
}

void RefBase::RefPtrCallback()
{
    delete this;
}

void RefBase::ExtendObjectLifetime()
{
    refs_->ExtendObjectLifetime();
}

void RefBase::IncStrongRef(const void *objectId)
{
    refs_->IncWeakRefCount(objectId);
    if (refs_->IncStrongRefCount(objectId) == INITIAL_PRIMARY_VALUE) {
        refs_->atomicStrong_.fetch_sub(INITIAL_PRIMARY_VALUE, std::memory_order_relaxed);
        OnFirstStrongRef(objectId);
    }
}

void RefBase::DecStrongRef(const void *objectId)
{
    RefCounter *refs = refs_;
    CounterPin pin(refs);
    if (refs->DecStrongRefCount(objectId) == 1) {
        OnLastStrongRef(objectId);
        if (!refs->IsLifeTimeExtended()) {
            RefPtrCallback(); // `this` is gone from here on
        }
    }
    refs->DecWeakRefCount(objectId);
}

int RefBase::GetSptrRefCount()
{
    return refs_->GetStrongRefCount();
}

void RefBase::IncWeakRef(const void *objectId)
{
    refs_->IncWeakRefCount(objectId);
}

void RefBase::DecWeakRef(const void *objectId)
{
    RefCounter *refs = refs_;
    CounterPin pin(refs);
    refs->DecWeakRefCount(objectId);
}

int RefBase::GetWptrRefCount()
{
    return refs_->GetWeakRefCount();
}

WeakRefCounter *RefBase::CreateWeakRef(void *cookie)
{
    return new WeakRefCounter(refs_, cookie);
}

RefCounter *RefBase::GetRefCounter() const
{
    return refs_;
}

bool RefBase::AttemptAcquire(const void *objectId)
{
    return AttemptIncStrongRef(objectId);
}

bool RefBase::AttemptIncStrongRef(const void *objectId)
{
    int previous = 0;
    return refs_->AttemptIncStrongRef(objectId, previous);
}

bool RefBase::IsExtendLifeTimeSet()
{
    return refs_->IsLifeTimeExtended();
}

void RefBase::OnFirstStrongRef(const void * /* objectId */) {}

void RefBase::OnLastStrongRef(const void * /* objectId */) {}

void RefBase::OnLastWeakRef(const void * /* objectId */) {}

bool RefBase::OnAttemptPromoted(const void * /* objectId */)
{
    return true;
}
} // namespace OHOS
