#include "gazepoint/faults.h"

#include <QRegularExpression>
#include <algorithm>

namespace sim::gazepoint {

namespace {

constexpr int kEndlessSize = 10 * 1000 * 1000;
constexpr int kEndlessPart = 256 * 1024;  // as much at a time as a reading client takes easily
constexpr int kZeros = 512;
constexpr int kMostGarbage = 200;
constexpr int kMostJoined = 4;

/// What takes the place of a value.
const QVector<QByteArray> &oddValues() {
    static const QVector<QByteArray> values{"NaN", "nan", "inf", "-inf", "1e999", "-1e999", "", "abc", "0x1F", "1,5"};
    return values;
}

}  // namespace

const QVector<FaultDescription> &faultDescriptions() {
    static const QVector<FaultDescription> descriptions{
        {Fault::Split, "split", "each record comes in two segments"},
        {Fault::Join, "join", "two to four records come in one segment"},
        {Fault::Silent, "silent", "nothing more is sent, not even answers; the connection stays open"},
        {Fault::Drop, "drop", "the connection is closed in the middle of a record"},
        {Fault::Garbage, "garbage", "random bytes and meaningless text between the records"},
        {Fault::Endless, "endless", "a line of 10 MB without an end, then nothing more"},
        {Fault::Zeros, "zeros", "512 binary zeros between the records"},
        {Fault::Nan, "nan", "NaN, inf, 1e999, empty, missing, doubled and unknown attributes"},
        {Fault::DelayStart, "delay-start", "no data for the time of --fault-after, then good data"},
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

bool FaultInjector::isSilent(double since) const {
    return options_.has(Fault::Silent) && since >= options_.after;
}

Delivery FaultInjector::deliver(const QByteArray &line, double since) {
    if (since < options_.after)
        return options_.has(Fault::DelayStart) ? Delivery() : Delivery{{{line}}};
    if (isSilent(since))
        return {};
    if (options_.has(Fault::Drop))
        return {{{line.left(line.size() / 2)}}, true};
    if (options_.has(Fault::Endless))
        return {{{endlessPart()}}};

    Delivery delivery{{{options_.has(Fault::Nan) ? withOddValues(line) : line}}};
    if (options_.has(Fault::Join))
        join(&delivery);
    if (options_.has(Fault::Split))
        split(&delivery);
    if (options_.has(Fault::Zeros))
        delivery.segments << Delivery::Segment{QByteArray(kZeros, '\0'), false};
    if (options_.has(Fault::Garbage))
        delivery.segments << Delivery::Segment{garbage(), false};
    return delivery;
}

QByteArray FaultInjector::endlessPart() {
    QByteArray part = sentEndless_ == 0 ? "<REC CNT=\"" : "";
    part.append(QByteArray(std::min(kEndlessPart, kEndlessSize - sentEndless_) - part.size(), '7'));
    sentEndless_ += part.size();
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
    for (int left = static_cast<int>(random_.uniform(1, kMostGarbage)); left > 0; --left)
        bytes.append(static_cast<char>(random_.uniform(0, 256)));
    return bytes;
}

/// Each record has one of its attributes spoilt, in turn by an odd value, by leaving it out and by doubling
/// it.
QByteArray FaultInjector::withOddValues(const QByteArray &line) {
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
    const int kind = oddRecords_++ % (oddValues().size() + 3);
    QByteArray spoilt = original + original;
    if (kind < oddValues().size())
        spoilt = name + "=\"" + oddValues()[kind] + "\"";
    else if (kind == oddValues().size())
        spoilt = "";
    else if (kind == oddValues().size() + 1)
        spoilt = original + " XYZZY=\"1\"";
    return QByteArray(line).replace(chosen.capturedStart(), original.size(), spoilt);
}

void FaultInjector::join(Delivery *delivery) {
    held_ += delivery->segments.first().bytes;
    ++heldRecords_;
    const bool enough = heldRecords_ >= kMostJoined || (heldRecords_ >= 2 && random_.uniform(0, 1) < 0.5);
    delivery->segments.clear();
    if (!enough)
        return;
    delivery->segments << Delivery::Segment{held_, false};
    held_.clear();
    heldRecords_ = 0;
}

void FaultInjector::split(Delivery *delivery) {
    QVector<Delivery::Segment> halves;
    for (const Delivery::Segment &segment : delivery->segments) {
        const int middle = segment.bytes.size() / 2;
        halves << Delivery::Segment{segment.bytes.left(middle)} << Delivery::Segment{segment.bytes.mid(middle), true};
    }
    delivery->segments = halves;
}

}  // namespace sim::gazepoint
