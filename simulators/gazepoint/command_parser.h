#pragma once

#include <QByteArray>
#include <QVector>
#include <optional>

namespace sim::gazepoint {

struct Attribute {
    QByteArray name;
    QByteArray value;
};

/// One command of a client, such as `<SET ID="ENABLE_SEND_DATA" STATE="1" />`.
struct Command {
    QByteArray verb;                ///< "SET", "GET", or whatever the client wrote there
    QByteArray id;                  ///< the attribute ID; empty when there is none
    QVector<Attribute> attributes;  ///< all but ID, as they came; entities are not decoded

    [[nodiscard]] std::optional<QByteArray> value(const char *name) const;
};

/// Finds the commands in the bytes of one client.
///
/// A command reaches from `<` to the next `>` outside quotes, so it matters neither how it was cut into
/// segments nor whether spaces or line ends follow. What is no command is skipped: bytes between commands, a
/// command with a line end in it, and one longer than kLongestCommand. No more than that is ever kept.
class CommandParser {
public:
    static constexpr int kLongestCommand = 4096;

    void feed(const QByteArray &bytes);
    std::optional<Command> next();

private:
    enum class State { Outside, InTag, InQuotes };

    std::optional<Command> consume(char c);
    void restart();

    QByteArray input_;
    int position_ = 0;
    QByteArray tag_;  // what stands between `<` and here
    State state_ = State::Outside;
};

}  // namespace sim::gazepoint
