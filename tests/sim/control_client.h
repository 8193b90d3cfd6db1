// A client of the control socket, for tests.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

class ControlClient {
public:
    explicit ControlClient(const std::string& path)
        : fd_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        const timeval limit{20, 0};
        setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        EXPECT_EQ(connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0)
            << path;
    }
    ControlClient(ControlClient&& other) noexcept
        : fd_(std::exchange(other.fd_, -1))
    {
    }
    ~ControlClient() { close(fd_); }

    // False if the bench has closed the connection.
    bool send(const std::string& text) const
    {
        for (size_t sent = 0; sent < text.size();) {
            const ssize_t size = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (size <= 0)
                return false;
            sent += static_cast<size_t>(size);
        }
        return true;
    }

    // Sends what there is room for. False if there is none.
    bool sendNow(const std::string& text) const
    {
        return ::send(fd_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT) > 0;
    }

    // The next line; "end" after the last, "nothing came" after 20 s.
    std::string line()
    {
        for (;;) {
            if (const size_t end = text_.find('\n'); end != text_.npos) {
                const std::string found = text_.substr(0, end);
                text_.erase(0, end + 1);
                return found;
            }
            char buffer[4096];
            const ssize_t size = recv(fd_, buffer, sizeof buffer, 0);
            if (size <= 0)
                return size < 0 && errno == EAGAIN ? "nothing came" : "end";
            text_.append(buffer, static_cast<size_t>(size));
        }
    }

    // Sends a command and returns its answer with line ends between the objects.
    std::string answer(const std::string& command)
    {
        send(command + '\n');
        std::string text;
        for (;;) {
            const std::string object = line();
            text += object + '\n';
            if (object == "end" || object == "nothing came"
                || object.find("\"status\"") != object.npos)
                return text;
        }
    }

private:
    int fd_;
    std::string text_;
};
