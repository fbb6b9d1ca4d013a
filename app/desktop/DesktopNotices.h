#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

class Desktop;
class LocalAIManager;
class StudioSession;

// Tells the user through the desktop how long work has ended while another program is in front, in
// the sentence of the status line. Says nothing of work that the user has stopped himself.
class DesktopNotices : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    static constexpr std::chrono::seconds longWork{10};

    // The arguments outlive this object. `isQuiet`: whether notices are unwanted, because the
    // program has the focus or is closing.
    DesktopNotices(Desktop& desktop, std::function<bool()> isQuiet,
                   Clock clock = &std::chrono::steady_clock::now, QObject* parent = nullptr);
    void follow(const StudioSession& session);
    void follow(const LocalAIManager& manager);

private:
    enum class Work { generation, exporting, publication, installation };
    enum class End { own, stopped };
    void begin(Work work);    // does nothing while the work is under way
    void end(Work work, End how, const QString& sentence);

    Desktop& m_desktop;
    const std::function<bool()> m_isQuiet;
    const Clock m_clock;
    QHash<Work, std::chrono::steady_clock::time_point> m_begun;    // of the work under way
};
