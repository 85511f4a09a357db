#pragma once

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <vector>

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
        const std::lock_guard<std::shared_mutex> lock(list.mutex);
        list.objects.push_back(object);
    }

    /// Waits for the calls of with() that are under way.
    static void remove(T *object) {
        List &list = theList();
        const std::lock_guard<std::shared_mutex> lock(list.mutex);
        list.objects.erase(std::remove(list.objects.begin(), list.objects.end(), object), list.objects.end());
    }

    /// Calls `use` with the object, which stays until it returns; false when there is no such object any more. `use` is
    /// short, and waits neither for the object's own thread nor for the library.
    template <typename Use>
    static bool with(const void *address, Use use) {
        List &list = theList();
        const std::shared_lock<std::shared_mutex> lock(list.mutex);
        const auto found = std::find(list.objects.begin(), list.objects.end(), address);
        if (found == list.objects.end())
            return false;
        use(**found);
        return true;
    }

private:
    struct List {
        std::shared_mutex mutex;
        std::vector<T *> objects;
    };

    static List &theList() {
        static auto &list = *new List;  // stays: the library's threads may outlast everything else
        return list;
    }
};
