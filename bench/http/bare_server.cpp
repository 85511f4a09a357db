// The baseline for HTTP servers on this machine: blocking sockets, one thread per connection, prepared responses. Reads
// only the path of a request and "Connection: close".
//
// usage: bare_server PORT PATH=FILE ...      FILE contains the whole response, including the headers

#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <netinet/tcp.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using Responses = std::map<std::string, std::string, std::less<>>;

constexpr int backlog = 1024;
constexpr std::string_view endOfHeader = "\r\n\r\n";

Responses responsesFrom(char **begin, char **end) {
    Responses responses;
    for (char **argument = begin; argument != end; ++argument) {
        const std::string text = *argument;
        const std::size_t equals = text.find('=');
        std::ifstream file(text.substr(equals + 1), std::ios::binary);
        responses[text.substr(0, equals)] = {std::istreambuf_iterator<char>(file), {}};
    }
    return responses;
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

/// Returns whether the connection stays open.
bool respond(int socket, std::string_view request, const Responses &responses) {
    const std::size_t path = request.find(' ') + 1;
    const auto found = responses.find(request.substr(path, request.find(' ', path) - path));
    return found != responses.end() && sendAll(socket, found->second) &&
           request.find("Connection: close") == std::string_view::npos;
}

void serve(int socket, const Responses &responses) {
    std::array<char, 8192> buffer{};
    std::string received;
    bool open = true;
    while (open) {
        const ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
        if (size <= 0)
            break;
        received.append(buffer.data(), static_cast<std::size_t>(size));
        const std::size_t end = received.find(endOfHeader);
        if (end == std::string::npos)
            continue;
        open = respond(socket, std::string_view(received).substr(0, end), responses);
        received.erase(0, end + endOfHeader.size());
    }
    close(socket);
}

int listenOn(int port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);  // inherited by accepted sockets
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        listen(listener, backlog) != 0) {
        std::perror("bare_server");
        std::exit(1);
    }
    return listener;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: bare_server PORT PATH=FILE ...\n");
        return 2;
    }
    const Responses responses = responsesFrom(argv + 2, argv + argc);
    const int listener = listenOn(std::atoi(argv[1]));
    while (true) {
        const int socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0)
            std::thread(serve, socket, std::cref(responses)).detach();
    }
}
