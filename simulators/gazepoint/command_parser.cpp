#include "gazepoint/command_parser.h"

#include <QRegularExpression>

namespace sim::gazepoint {

namespace {

/// Matches `NAME="VALUE"` or `NAME='VALUE'`. Spaces around the equals sign and between attributes are optional.
const QRegularExpression &attributePattern() {
    static const QRegularExpression pattern(R"re(([A-Za-z_][\w.-]*)\s*=\s*("([^"]*)"|'([^']*)'))re");
    return pattern;
}

bool isVerbCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

QByteArray leadingWord(const QByteArray &text) {
    int length = 0;
    while (length < text.size() && isVerbCharacter(text[length]))
        ++length;
    return text.left(length);
}

/// Latin-1 preserves every byte of a value in any encoding of the client.
Command interpret(const QByteArray &tag) {
    Command command;
    command.verb = leadingWord(tag.trimmed());
    auto match = attributePattern().globalMatch(QString::fromLatin1(tag));
    while (match.hasNext()) {
        const QRegularExpressionMatch found = match.next();
        const QByteArray name = found.captured(1).toLatin1();
        const QByteArray value = (found.captured(3) + found.captured(4)).toLatin1();
        if (name == "ID")
            command.id = value;
        else
            command.attributes.append({name, value});
    }
    return command;
}

}  // namespace

std::optional<QByteArray> Command::value(const char *name) const {
    for (const Attribute &attribute : attributes) {
        if (attribute.name == name)
            return attribute.value;
    }
    return std::nullopt;
}

void CommandParser::feed(const QByteArray &bytes) {
    input_.remove(0, position_);
    position_ = 0;
    input_ += bytes;
}

std::optional<Command> CommandParser::next() {
    while (position_ < input_.size()) {
        if (auto command = consume(input_[position_++]))
            return command;
    }
    return std::nullopt;
}

std::optional<Command> CommandParser::consume(char c) {
    if (c == '<' && state_ != State::InQuotes) {
        reset();
        state_ = State::InTag;
    } else if (c == '\r' || c == '\n' || tag_.size() >= maxCommandBytes) {
        reset();
    } else if (c == '>' && state_ == State::InTag) {
        const Command command = interpret(tag_);
        reset();
        return command;
    } else if (state_ != State::Outside) {
        if (c == '"')
            state_ = state_ == State::InTag ? State::InQuotes : State::InTag;
        tag_ += c;
    }
    return std::nullopt;
}

void CommandParser::reset() {
    tag_.clear();
    state_ = State::Outside;
}

}  // namespace sim::gazepoint
