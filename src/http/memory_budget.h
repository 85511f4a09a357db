#pragma once

#include <QtGlobal>
#include <atomic>

/// The memory that all requests of a listener may hold together. Thread-safe.
class MemoryBudget {
public:
    explicit MemoryBudget(qint64 maxBytes) : maxBytes_(maxBytes) {}
    MemoryBudget(const MemoryBudget &) = delete;
    MemoryBudget &operator=(const MemoryBudget &) = delete;

    [[nodiscard]] qint64 usedBytes() const { return usedBytes_; }

private:
    friend class MemoryShare;

    [[nodiscard]] bool take(qint64 bytes) {
        if (usedBytes_.fetch_add(bytes) + bytes <= maxBytes_)
            return true;
        usedBytes_.fetch_sub(bytes);
        return false;
    }
    void giveBack(qint64 bytes) { usedBytes_.fetch_sub(bytes); }

    const qint64 maxBytes_;
    std::atomic<qint64> usedBytes_{0};
};

/// The part of a budget that one request holds. The destructor gives it back. Used by one thread at a time.
class MemoryShare {
public:
    /// `budget` must outlive the share. Without a budget the share is unlimited.
    explicit MemoryShare(MemoryBudget *budget) : budget_(budget) {}
    ~MemoryShare() { shrink(bytes_); }
    MemoryShare(const MemoryShare &) = delete;
    MemoryShare &operator=(const MemoryShare &) = delete;

    /// Returns false, and changes nothing, if the budget has no room. Call it before the memory is allocated.
    [[nodiscard]] bool grow(qint64 bytes) {
        if (budget_ && !budget_->take(bytes))
            return false;
        bytes_ += bytes;
        return true;
    }
    void shrink(qint64 bytes) {
        bytes_ -= bytes;
        if (budget_)
            budget_->giveBack(bytes);
    }

private:
    MemoryBudget *const budget_;
    qint64 bytes_ = 0;
};
