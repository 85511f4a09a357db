#include "http/response_parser.h"

#include <charconv>

namespace {

constexpr std::size_t maxHeaderBytes = 16384;
constexpr std::string_view endOfHeader = "\r\n\r\n";
constexpr std::string_view ok = "HTTP/1.1 200 ";
constexpr std::string_view lengthName = "\r\nContent-Length: ";

}  // namespace

bench::ResponseParser::State bench::ResponseParser::feed(std::string_view bytes) {
    if (!inBody_) {
        header_.append(bytes);
        return readHeader();
    }
    if (bytes.size() > missingBytes_)
        return State::Broken;
    missingBytes_ -= bytes.size();
    return missingBytes_ == 0 ? State::Complete : State::Incomplete;
}

bench::ResponseParser::State bench::ResponseParser::readHeader() {
    const std::size_t end = header_.find(endOfHeader);
    if (end == std::string::npos)
        return header_.size() > maxHeaderBytes ? State::Broken : State::Incomplete;
    const std::size_t length = header_.find(lengthName);
    if (header_.compare(0, ok.size(), ok) != 0 || length > end)
        return State::Broken;
    const char *digits = header_.data() + length + lengthName.size();
    if (std::from_chars(digits, header_.data() + end, missingBytes_).ec != std::errc())
        return State::Broken;
    inBody_ = true;
    return feed(std::string_view(header_).substr(end + endOfHeader.size()));
}
