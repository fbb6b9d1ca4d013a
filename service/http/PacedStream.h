#pragma once

#include <array>
#include <chrono>

#include <httplib.h>

// A connection whose other side has to keep a pace, counted over all the time that we wait for it
// while one request comes in, and again while its answer goes out: who sends a byte now and then
// gives its thread back soon, in the head of a request, which may only be so long, even sooner.
class PacedStream final : public httplib::Stream {
public:
    explicit PacedStream(socket_t socket) : m_socket(socket) {}

    // Whether one begins within the time.
    bool waitForRequest(std::chrono::milliseconds time);
    void beginRequest();
    void headHasEnded();
    // Of the request's body, as far as it was taken.
    size_t bodyBytes() const { return m_taken; }
    // Lets the other side read the answer before the connection goes: what it still sends would
    // otherwise reset it.
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
    size_t m_begin = 0, m_end = 0;    // of what was received and not taken
    bool m_inHead = true;
    size_t m_taken = 0;
    mutable Pace m_reading, m_writing;
};
