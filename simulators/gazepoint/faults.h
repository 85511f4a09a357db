#pragma once

#include "subject/random.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <optional>

namespace sim::gazepoint {

enum class Fault { Split, Join, Silent, Drop, Garbage, Endless, Zeros, Nan, DelayStart };

struct FaultDescription {
    Fault fault;
    const char *name;
    const char *help;
};

/// Returns all faults with their names on the command line.
const QVector<FaultDescription> &faultDescriptions();
std::optional<Fault> faultOfName(const QString &name);

struct FaultOptions {
    QVector<Fault> faults;
    double after_s = 2;  ///< duration of good data before the faults start

    [[nodiscard]] bool has(Fault fault) const { return faults.contains(fault); }
};

/// The bytes to write instead of one record.
struct Delivery {
    struct Segment {
        QByteArray bytes;
        bool later = false;  ///< in another TCP segment than the bytes before it
    };
    QVector<Segment> segments;
    bool drop = false;  ///< close the connection after writing the segments
};

/// Adds faults to the data stream of one connection. Owned by the connection. Times are seconds since its data was
/// enabled.
class FaultInjector {
public:
    FaultInjector(const FaultOptions &options, std::uint64_t seed);

    /// Returns the bytes to write instead of `line`, a record with its line end.
    [[nodiscard]] Delivery deliver(const QByteArray &line, double seconds);

    /// Returns true if nothing may be sent any more, not even answers.
    [[nodiscard]] bool isSilent(double seconds) const;

private:
    [[nodiscard]] QByteArray endlessPart();
    [[nodiscard]] QByteArray garbage();
    [[nodiscard]] QByteArray withOddValue(const QByteArray &line);
    [[nodiscard]] QByteArray joined(const QByteArray &record);

    FaultOptions options_;
    Random random_;
    QByteArray held_;  // records that wait to be joined with the next one
    int heldRecordCount_ = 0;
    int endlessBytesSent_ = 0;
    int oddRecordCount_ = 0;
};

}  // namespace sim::gazepoint
