#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

/// A fake of the LSL library. It records the streams and their samples. All functions may be called from any thread.
struct ScriptedLsl {
    struct Sample {
        std::vector<double> values;
        std::string text;
        double time = 0;
        bool isSentNow = false;  ///< with the earlier samples
    };
    struct Stream {
        std::string name;
        std::string type;
        std::string sourceId;
        int channelCount = 0;
        double nominalRate = -1;
        int format = 0;
        std::vector<std::string> description;  ///< lines like "acquisition/model=name"
        std::vector<Sample> samples;
        bool isOpen = false;
    };

    static ScriptedLsl &instance();

    void reset();
    /// Returns all streams that were opened since reset(), in order.
    [[nodiscard]] std::vector<Stream> streams();
    /// While `isBlocked`, the calls that send a sample do not return.
    void setBlocked(bool isBlocked);
    /// Returns whether a call waits for setBlocked(false).
    [[nodiscard]] bool isWaiting();

    std::atomic<double> clockOffset{0};       ///< LSL's clock minus the steady clock, seconds
    std::atomic<bool> refusesStreams{false};  ///< whether lsl_create_outlet() fails

    std::mutex mutex;  ///< guards the fields below
    std::condition_variable changed;
    std::vector<Stream> opened;
    bool isBlocked = false;
    int waitingCount = 0;
};
