#pragma once

#include <QByteArray>
#include <QVector>
#include <optional>

namespace sim::gazepoint {

struct Attribute {
    QByteArray name;
    QByteArray value;
};

/// One command of a client, for instance `<SET ID="ENABLE_SEND_DATA" STATE="1" />`.
struct Command {
    QByteArray verb;                ///< "SET", "GET" or any other word
    QByteArray id;                  ///< value of the attribute ID; empty if it is missing
    QVector<Attribute> attributes;  ///< all others, unchanged; entities are not decoded

    [[nodiscard]] std::optional<QByteArray> value(const char *name) const;
};

/// Finds commands in the bytes of one client.
///
/// A command reaches from `<` to the next `>` outside double quotes. Single quotes do not protect a `>`. A command may
/// arrive in any number of segments, and spaces and line ends between commands are optional. Everything else is
/// skipped: bytes between commands, a command that contains a line end, and a command longer than maxCommandBytes.
class CommandParser {
public:
    static constexpr int maxCommandBytes = 4096;

    void feed(const QByteArray &bytes);
    std::optional<Command> next();

private:
    enum class State { Outside, InTag, InQuotes };

    std::optional<Command> consume(char c);
    void reset();

    QByteArray input_;
    int position_ = 0;
    QByteArray tag_;  // bytes since the last `<`
    State state_ = State::Outside;
};

}  // namespace sim::gazepoint
