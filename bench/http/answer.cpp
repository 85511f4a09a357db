#include "http/answer.h"

#include <charconv>

namespace {

constexpr std::size_t longestHead = 16384;
constexpr std::string_view endOfHead = "\r\n\r\n";
constexpr std::string_view good = "HTTP/1.1 200 ";
constexpr std::string_view lengthName = "\r\nContent-Length: ";

}  // namespace

bench::Answer::State bench::Answer::feed(std::string_view bytes) {
    if (!inBody_) {
        head_.append(bytes);
        return readHead();
    }
    if (bytes.size() > missing_)
        return State::Broken;
    missing_ -= bytes.size();
    return missing_ == 0 ? State::Complete : State::Incomplete;
}

bench::Answer::State bench::Answer::readHead() {
    const std::size_t end = head_.find(endOfHead);
    if (end == std::string::npos)
        return head_.size() > longestHead ? State::Broken : State::Incomplete;
    const std::size_t length = head_.find(lengthName);
    if (head_.compare(0, good.size(), good) != 0 || length > end)
        return State::Broken;
    const char *digits = head_.data() + length + lengthName.size();
    if (std::from_chars(digits, head_.data() + end, missing_).ec != std::errc())
        return State::Broken;
    inBody_ = true;
    return feed(std::string_view(head_).substr(end + endOfHead.size()));
}
