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

/// All faults with their names on the command line, for the parser and the help.
const QVector<FaultDescription> &faultDescriptions();
std::optional<Fault> faultOfName(const QString &name);

struct FaultOptions {
    QVector<Fault> faults;
    double after = 2;  ///< seconds of good data before the faults begin

    [[nodiscard]] bool has(Fault fault) const { return faults.contains(fault); }
};

/// What is to be written in place of one record.
struct Delivery {
    struct Segment {
        QByteArray bytes;
        bool later = false;  ///< not in one TCP segment with what stands before it
    };
    QVector<Segment> segments;
    bool drop = false;  ///< close the connection after that
};

/// Spoils the data stream of one connection. Owned by the connection; times are seconds since its data was
/// enabled.
class FaultInjector {
public:
    FaultInjector(const FaultOptions &options, std::uint64_t seed);

    /// `line`: the record with its line end.
    Delivery deliver(const QByteArray &line, double since);

    /// Nothing at all may be sent any more, not even answers.
    [[nodiscard]] bool isSilent(double since) const;

private:
    [[nodiscard]] QByteArray endlessPart();
    [[nodiscard]] QByteArray garbage();
    [[nodiscard]] QByteArray withOddValues(const QByteArray &line);
    void join(Delivery *delivery);
    static void split(Delivery *delivery);

    FaultOptions options_;
    Random random_;
    QByteArray held_;  // records that wait to be joined with the next one
    int heldRecords_ = 0;
    int sentEndless_ = 0;
    int oddRecords_ = 0;
};

}  // namespace sim::gazepoint
