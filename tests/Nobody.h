#pragma once

#include <csignal>
#include <cstring>

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

// The functions act as the user "nobody", in a child process, which only root can do. The child
// makes only system calls: another thread may have a lock at the fork, which the child could never
// get.

inline bool canBeNobody()
{
    return ::geteuid() == 0;
}

inline bool becomeNobody()
{
    constexpr id_t nobody = 65534;
    return ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
}

// Runs `act` in the child. Returns its result, which must be 0 to 99; 100 and 101 are failures of
// the child.
template <typename Act>
int asNobody(const Act& act)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(becomeNobody() ? act() : 100);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 101;
}

// Sends `request` from 127.0.0.`source`. Returns the first digit of the HTTP status; 0 without a
// reply.
inline int requestAsNobody(int port, const char* request, int source = 1)
{
    return asNobody([=] {
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in ours{}, theirs{};
        ours.sin_family = theirs.sin_family = AF_INET;
        ours.sin_addr.s_addr = htonl(INADDR_LOOPBACK - 1 + in_addr_t(source));
        theirs.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        theirs.sin_port = htons(in_port_t(port));
        if (::bind(socket, reinterpret_cast<sockaddr*>(&ours), sizeof(ours)) != 0 ||
            ::connect(socket, reinterpret_cast<sockaddr*>(&theirs), sizeof(theirs)) != 0)
            return 98;
        ::send(socket, request, std::strlen(request), MSG_NOSIGNAL);
        char answer[10]{};
        return ::recv(socket, answer, sizeof(answer), MSG_WAITALL) == 10 ? answer[9] - '0' : 0;
    });
}

// Listens as the user "nobody" at the path where the program expects its own socket.
class NobodyListening {
public:
    // Sends `line` to the first client, then reads what the client sends.
    NobodyListening(const char* path, const char* line)
    {
        int ready[2];
        if (::pipe(ready) != 0)
            return;
        m_child = ::fork();
        if (m_child == 0)
            ::_exit(listenAndHear(path, line, ready[1]));
        ::close(ready[1]);
        char byte = 0;
        [[maybe_unused]] const auto waited = ::read(ready[0], &byte, 1);
        ::close(ready[0]);
    }
    ~NobodyListening()
    {
        if (m_child > 0) {
            ::kill(m_child, SIGKILL);
            ::waitpid(m_child, nullptr, 0);
        }
    }
    // Waits until the client has left; returns the number of bytes that the client sent, up to 99.
    int heardBytes()
    {
        int status = 0;
        ::waitpid(m_child, &status, 0);
        m_child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 101;
    }

private:
    static int listenAndHear(const char* path, const char* line, int ready)
    {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
        if (::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
            !becomeNobody() || ::listen(socket, 5) != 0 || ::write(ready, "x", 1) != 1)
            return 100;
        const int connection = ::accept(socket, nullptr, nullptr);
        ::send(connection, line, std::strlen(line), MSG_NOSIGNAL);
        char heard[99];
        const ssize_t count = ::recv(connection, heard, sizeof(heard), 0);
        return count > 0 ? int(count) : 0;
    }

    pid_t m_child = -1;
};
