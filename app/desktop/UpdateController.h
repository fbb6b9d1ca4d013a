#pragma once

#include <QCoroTask>
#include <QDateTime>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <optional>

class AccountSession;
class PreferencesStore;

// The newest version of the program that the service offers.
struct OfferedVersion {
    std::optional<QString> version;
    std::optional<QUrl> download;    // only an https address
    bool operator==(const OfferedVersion&) const = default;
};

// Asks the service for the newest version, when the user wants it and once a day by itself. Never
// downloads or installs anything: the user is shown where to get it.
class UpdateController : public QObject {
    Q_OBJECT
public:
    using Calendar = std::function<QDateTime()>;
    // The arguments outlive this object. `calendar` gives the time of the daily question.
    UpdateController(AccountSession& account, PreferencesStore& preferences,
                     Calendar calendar = &QDateTime::currentDateTimeUtc);

    // What the service has sent, for the platform of this program. Nothing after a question that
    // failed, until the service sends it again.
    OfferedVersion offered() const;
    bool isChecking() const { return m_isChecking; }
    // Asks now, and tells what came of it. Does nothing while a question is under way.
    void checkForUpdates();
    // Begins to ask once a day; tells only of a version that is newer.
    void checkDaily();
    void checkIfDue();

Q_SIGNALS:
    void changed();    // offered() or isChecking() may have changed
    void told(const QString& sentence, bool isProblem);

private:
    enum class Occasion { userAsked, daily };
    QCoro::Task<> check(Occasion occasion);
    bool hasFailed() const;

    AccountSession& m_account;
    PreferencesStore& m_preferences;
    const Calendar m_calendar;
    QTimer m_daily;
    bool m_isChecking = false;
    // The account's configurationVersion() before the last question, if that failed.
    std::optional<int> m_failedVersion;
};
