#pragma once

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>

/// Which objects of a class the vendor's library may call back for: it holds their addresses as contexts and may call
/// after it was told to stop, and after the object is gone.
///
/// The object enters itself at the end of its constructor and removes itself at the begin of its destructor. Any thread
/// may call with().
template <typename T>
class LiveObjects {
public:
    static void add(T *object) {
        List &list = theList();
        const std::lock_guard<std::mutex> lock(list.mutex);
        list.entries.push_back({object});
    }

    /// Waits for the calls of with() that are under way, and for no others: a device that calls without a pause must
    /// not hold up the end of the object.
    static void remove(T *object) {
        List &list = theList();
        std::unique_lock<std::mutex> lock(list.mutex);
        const auto entry = list.find(object);
        entry->isLeaving = true;
        list.unused.wait(lock, [entry] { return entry->users == 0; });
        list.entries.erase(entry);
    }

    /// Calls `use` with the object, which stays until it returns; false when there is no such object any more. `use` is
    /// short, and waits neither for the object's own thread nor for the library.
    template <typename Use>
    static bool with(const void *address, Use use) {
        List &list = theList();
        std::unique_lock<std::mutex> lock(list.mutex);
        const auto entry = list.find(address);
        if (entry == list.entries.end())
            return false;
        ++entry->users;
        lock.unlock();
        use(*entry->object);
        lock.lock();
        if (--entry->users == 0 && entry->isLeaving)
            list.unused.notify_all();
        return true;
    }

private:
    struct Entry {
        T *object;
        int users = 0;  // calls of with() that are under way
        bool isLeaving = false;
    };

    struct List {
        std::mutex mutex;  // guards the entries, but not their objects
        std::condition_variable unused;
        std::list<Entry> entries;

        auto find(const void *address) {
            return std::find_if(entries.begin(), entries.end(),
                                [address](const Entry &entry) { return entry.object == address && !entry.isLeaving; });
        }
    };

    static List &theList() {
        static auto &list = *new List;  // stays: the library's threads may outlast everything else
        return list;
    }
};
