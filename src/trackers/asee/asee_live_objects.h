#pragma once

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>

namespace asee {

/// The existing objects of a class that the vendor's library passes to callbacks as their context. The library may call
/// back after it was stopped, and after the object was destroyed.
///
/// An object calls add() at the end of its constructor and remove() at the start of its destructor. with() may be
/// called from any thread.
template <typename T>
class LiveObjects {
public:
    static void add(T *object) {
        List &list = theList();
        const std::lock_guard<std::mutex> lock(list.mutex);
        list.entries.push_back({object});
    }

    /// Waits for the running calls of with(). New calls do not find the object, so a device that calls continuously
    /// does not delay the destructor.
    static void remove(T *object) {
        List &list = theList();
        std::unique_lock<std::mutex> lock(list.mutex);
        const auto entry = list.find(object);
        entry->isRemoved = true;
        list.unused.wait(lock, [entry] { return entry->userCount == 0; });
        list.entries.erase(entry);
    }

    /// Calls `use` with the object; remove() waits until `use` returns. Returns false if the object was removed. `use`
    /// must be short and must not wait for the object's thread or for the library.
    template <typename Use>
    static bool with(const void *address, Use use) {
        List &list = theList();
        std::unique_lock<std::mutex> lock(list.mutex);
        const auto entry = list.find(address);
        if (entry == list.entries.end())
            return false;
        ++entry->userCount;
        lock.unlock();
        use(*entry->object);
        lock.lock();
        if (--entry->userCount == 0 && entry->isRemoved)
            list.unused.notify_all();
        return true;
    }

private:
    struct Entry {
        T *object;
        int userCount = 0;  // running calls of with()
        bool isRemoved = false;
    };

    struct List {
        std::mutex mutex;  // guards the entries, not the objects
        std::condition_variable unused;
        std::list<Entry> entries;

        auto find(const void *address) {
            return std::find_if(entries.begin(), entries.end(),
                                [address](const Entry &entry) { return entry.object == address && !entry.isRemoved; });
        }
    };

    static List &theList() {
        static auto &list = *new List;  // never destroyed: the library's threads may run until the process ends
        return list;
    }
};

}  // namespace asee
