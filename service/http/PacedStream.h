#pragma once

#include <array>
#include <chrono>

#include <httplib.h>

// A connection that gives up on a client that sends or reads too slowly. It adds up the time spent
// waiting for the head of a request, for its body and for writing the answer, each by itself. Each
// may take some seconds plus a time that grows with its bytes, so that a client that sends a byte
// now and then cannot occupy a thread for long. The head gets the shortest time, and its size is
// limited.
class PacedStream final : public httplib::Stream {
public:
    explicit PacedStream(socket_t socket) : m_socket(socket) {}

    // Returns whether a request begins to arrive within `time`.
    bool waitForRequest(std::chrono::milliseconds time);
    void beginRequest();
    void headHasEnded();
    // The number of bytes of the request's body that read() has returned.
    size_t bodyBytes() const { return m_sectionBytes; }
    // Reads and drops what the client still sends, for a second at most. Closing a socket with
    // unread bytes would reset the connection, and the client might lose the answer.
    void drain();

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* to, size_t size) override;
    ssize_t write(const char* from, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    struct Pace {
        std::chrono::milliseconds base{0}, waited{0};
        size_t bytes = 0;
        std::chrono::milliseconds left() const;
    };
    static bool wait(socket_t socket, short events, Pace& pace);

    socket_t m_socket;
    std::array<char, 16384> m_buffer{};
    size_t m_begin = 0, m_end = 0;    // the part of `m_buffer` that read() has not returned yet
    bool m_inHead = true;
    size_t m_sectionBytes = 0;
    mutable Pace m_reading, m_writing;
};
