#include "gazepoint/faults.h"

#include <QRegularExpression>
#include <algorithm>
#include <utility>

namespace sim::gazepoint {

namespace {

constexpr int endlessBytes = 10 * 1000 * 1000;
constexpr int endlessPartBytes = 256 * 1024;  // small enough for the buffers of a client that reads
constexpr int zeroCount = 512;
constexpr int maxGarbageBytes = 200;
constexpr int maxJoinedRecordCount = 4;

/// Invalid values of attributes.
const QVector<QByteArray> &oddValues() {
    static const QVector<QByteArray> values{"NaN", "nan", "inf", "-inf", "1e999", "-1e999", "", "abc", "0x1F", "1,5"};
    return values;
}

/// Splits the bytes into two TCP segments.
QVector<Delivery::Segment> halves(const QByteArray &bytes) {
    const int middle = bytes.size() / 2;
    return {{bytes.left(middle), false}, {bytes.mid(middle), true}};
}

}  // namespace

const QVector<FaultDescription> &faultDescriptions() {
    static const QVector<FaultDescription> descriptions{
        {Fault::Split, "split", "each record arrives in two segments"},
        {Fault::Join, "join", "two to four records arrive in one segment"},
        {Fault::Silent, "silent", "nothing more is sent, not even answers, and the connection stays open"},
        {Fault::Drop, "drop", "the connection is closed in the middle of a record"},
        {Fault::Garbage, "garbage", "random bytes and invalid text between the records"},
        {Fault::Endless, "endless", "a line of 10 MB without a line end, then no more data"},
        {Fault::Zeros, "zeros", "512 binary zeros between the records"},
        {Fault::Nan, "nan", "attributes that are NaN, inf, 1e999, empty, missing, duplicated or unknown"},
        {Fault::DelayStart, "delay-start", "no data until --fault-after, then good data"},
    };
    return descriptions;
}

std::optional<Fault> faultOfName(const QString &name) {
    for (const FaultDescription &description : faultDescriptions()) {
        if (name == description.name)
            return description.fault;
    }
    return std::nullopt;
}

FaultInjector::FaultInjector(const FaultOptions &options, std::uint64_t seed) : options_(options), random_(seed) {}

bool FaultInjector::isSilent(double seconds) const {
    return options_.has(Fault::Silent) && seconds >= options_.after_s;
}

Delivery FaultInjector::deliver(const QByteArray &line, double seconds) {
    if (seconds < options_.after_s)
        return options_.has(Fault::DelayStart) ? Delivery() : Delivery{{{line}}};
    if (isSilent(seconds))
        return {};
    if (options_.has(Fault::Drop))
        return {{{line.left(line.size() / 2)}}, true};
    if (options_.has(Fault::Endless))
        return {{{endlessPart()}}};

    QByteArray bytes = options_.has(Fault::Nan) ? withOddValue(line) : line;
    if (options_.has(Fault::Join))
        bytes = joined(bytes);
    Delivery delivery;
    if (!bytes.isEmpty())
        delivery.segments = options_.has(Fault::Split) ? halves(bytes) : QVector<Delivery::Segment>{{bytes}};
    if (options_.has(Fault::Zeros))
        delivery.segments << Delivery::Segment{QByteArray(zeroCount, '\0')};
    if (options_.has(Fault::Garbage))
        delivery.segments << Delivery::Segment{garbage()};
    return delivery;
}

QByteArray FaultInjector::endlessPart() {
    QByteArray part = endlessBytesSent_ == 0 ? "<REC CNT=\"" : "";
    part.append(QByteArray(std::min(endlessPartBytes, endlessBytes - endlessBytesSent_) - part.size(), '7'));
    endlessBytesSent_ += part.size();
    return part;
}

QByteArray FaultInjector::garbage() {
    static const QVector<QByteArray> texts{"<REC",
                                           "<REC />\r\n",
                                           "lorem ipsum = dolor\r\n",
                                           "<ACK ID=\"SCREEN_SIZE\" />\r\n",
                                           "<REC FPOGX= FPOGY=\"\r\n",
                                           "=\"=\"= < > />\r\n"};
    if (random_.uniform(0, 1) < 0.5)
        return texts[static_cast<int>(random_.uniform(0, texts.size()))];
    QByteArray bytes;
    for (int left = static_cast<int>(random_.uniform(1, maxGarbageBytes)); left > 0; --left)
        bytes.append(static_cast<char>(random_.uniform(0, 256)));
    return bytes;
}

/// Changes one random attribute of the record. Successive calls set its value to each of oddValues(), and then remove
/// the attribute, add an unknown attribute after it, and duplicate it.
QByteArray FaultInjector::withOddValue(const QByteArray &line) {
    static const QRegularExpression attribute(R"re( \w+="[^"]*")re");
    QVector<QRegularExpressionMatch> found;
    const QString text = QString::fromLatin1(line);
    for (auto match = attribute.globalMatch(text); match.hasNext();)
        found.append(match.next());
    if (found.isEmpty())
        return line;

    const auto &chosen = found[static_cast<int>(random_.uniform(0, found.size()))];
    const QByteArray original = chosen.captured().toLatin1();
    const QByteArray name = original.left(original.indexOf('='));
    const int kind = oddRecordCount_++ % (oddValues().size() + 3);
    QByteArray changed = original + original;
    if (kind < oddValues().size())
        changed = name + "=\"" + oddValues()[kind] + "\"";
    else if (kind == oddValues().size())
        changed = "";
    else if (kind == oddValues().size() + 1)
        changed = original + " XYZZY=\"1\"";
    return QByteArray(line).replace(chosen.capturedStart(), original.size(), changed);
}

/// Holds back records and returns two to four at a time. Returns an empty array otherwise.
QByteArray FaultInjector::joined(const QByteArray &record) {
    held_ += record;
    ++heldRecordCount_;
    if (heldRecordCount_ < 2 || (heldRecordCount_ < maxJoinedRecordCount && random_.uniform(0, 1) >= 0.5))
        return {};
    heldRecordCount_ = 0;
    return std::exchange(held_, QByteArray());
}

}  // namespace sim::gazepoint
