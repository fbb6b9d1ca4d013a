#pragma once

#include <QString>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <httplib.h>

// A provider of texts on this machine, for the account service. Each answer is numbered, beginning
// with 1, and has its number in all its texts.
class StandInProvider {
public:
    enum class Mode {
        good,
        wrong,      // the answer has no texts
        failing,    // status 500
        held        // answers when the mode is set again
    };

    StandInProvider()
    {
        m_server.Post("/v1/chat/completions",
                      [this](const auto&, httplib::Response& reply) { answer(reply); });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_serving = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~StandInProvider()
    {
        set(Mode::failing);
        m_server.stop();
        m_serving.join();
    }

    QString address() const { return QStringLiteral("http://127.0.0.1:%1/v1").arg(m_port); }
    int asked() const { return m_asked; }
    void set(Mode mode)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_mode = mode;
            ++m_settings;
        }
        m_changed.notify_all();
    }

private:
    void answer(httplib::Response& reply)
    {
        const std::string number = std::to_string(++m_asked);
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this, settings = m_settings] {
            return m_mode != Mode::held || m_settings != settings;
        });
        if (m_mode == Mode::failing || m_mode == Mode::held) {
            reply.status = 500;
            return;
        }
        std::string texts = "nada";
        if (m_mode == Mode::good) {
            texts = R"({\"title\":\"T-)" + number + R"(.\",\"subtitle\":\"S-)" + number +
                    R"(.\",\"tagline\":\"P-)" + number + R"(.\",\"callToAction\":\"Ver )" + number +
                    R"(\",\"publicationCaption\":\"C-)" + number + R"(.\"})";
        }
        reply.set_content(R"({"choices":[{"message":{"content":")" + texts + R"("}}]})",
                          "application/json");
    }

    httplib::Server m_server;
    std::thread m_serving;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Mode m_mode = Mode::good;
    int m_settings = 0;    // how often the mode was set
    std::atomic<int> m_asked = 0;
    int m_port = 0;
};
