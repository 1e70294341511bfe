#pragma once

#include <QMutex>
#include <QReadWriteLock>

#if defined(__SANITIZE_THREAD__)
#define RADIOSIM_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define RADIOSIM_THREAD_SANITIZER 1
#endif
#endif

#ifdef RADIOSIM_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace Simulation {

// Lockers for Qt's mutex and read-write lock. Qt takes these locks inside its own library,
// which a ThreadSanitizer build does not instrument, so the sanitizer would see no order
// between the threads that share them and report races that cannot happen; these lockers tell
// it what the lock does. In every other build they are the bare lock calls.
namespace LockNotes {
#ifdef RADIOSIM_THREAD_SANITIZER
constexpr unsigned Read = __tsan_mutex_read_lock;
inline void preLock(void *lock, unsigned flags)
{
    __tsan_mutex_pre_lock(lock, flags);
}
inline void postLock(void *lock, unsigned flags)
{
    __tsan_mutex_post_lock(lock, flags, 0);
}
inline void preUnlock(void *lock, unsigned flags)
{
    __tsan_mutex_pre_unlock(lock, flags);
}
inline void postUnlock(void *lock, unsigned flags)
{
    __tsan_mutex_post_unlock(lock, flags);
}
// For a hand-over through Qt's thread pool or futures: all that one thread did before
// released(x) is seen by another after acquired(x).
inline void released(void *sync)
{
    __tsan_release(sync);
}
inline void acquired(void *sync)
{
    __tsan_acquire(sync);
}
#else
constexpr unsigned Read = 0;
inline void preLock(void *, unsigned)
{
}
inline void postLock(void *, unsigned)
{
}
inline void preUnlock(void *, unsigned)
{
}
inline void postUnlock(void *, unsigned)
{
}
inline void released(void *)
{
}
inline void acquired(void *)
{
}
#endif
} // namespace LockNotes

class MutexLocker
{
public:
    explicit MutexLocker(QMutex *mutex)
        : m_mutex(mutex)
    {
        LockNotes::preLock(m_mutex, 0);
        m_mutex->lock();
        LockNotes::postLock(m_mutex, 0);
    }
    ~MutexLocker()
    {
        LockNotes::preUnlock(m_mutex, 0);
        m_mutex->unlock();
        LockNotes::postUnlock(m_mutex, 0);
    }
    MutexLocker(const MutexLocker &) = delete;
    MutexLocker &operator=(const MutexLocker &) = delete;

private:
    QMutex *m_mutex;
};

// Holds the lock for reading or writing until unlock() or the end of its scope.
template <bool Write> class ReadWriteLocker
{
public:
    explicit ReadWriteLocker(QReadWriteLock *lock)
        : m_lock(lock)
    {
        LockNotes::preLock(m_lock, Flags);
        if (Write)
            m_lock->lockForWrite();
        else
            m_lock->lockForRead();
        LockNotes::postLock(m_lock, Flags);
    }
    ~ReadWriteLocker() { unlock(); }
    ReadWriteLocker(const ReadWriteLocker &) = delete;
    ReadWriteLocker &operator=(const ReadWriteLocker &) = delete;

    void unlock()
    {
        if (!m_lock)
            return;
        LockNotes::preUnlock(m_lock, Flags);
        m_lock->unlock();
        LockNotes::postUnlock(m_lock, Flags);
        m_lock = nullptr;
    }

private:
    static constexpr unsigned Flags = Write ? 0 : LockNotes::Read;
    QReadWriteLock *m_lock;
};

using ReadLocker = ReadWriteLocker<false>;
using WriteLocker = ReadWriteLocker<true>;

} // namespace Simulation
