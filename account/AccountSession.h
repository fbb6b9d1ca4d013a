#pragma once

#include "account/AccountRecords.h"
#include "account/CreditAccount.h"

#include <QCoroTask>
#include <QTimer>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stop_token>

class AccountAPI;
class WebAuthentication;
struct GoogleAuthenticationResult;

// The signed-in account of the whole program and the actions that screens offer on it. Each action
// ends in a sentence in message(). Emits changed() whenever anything shown may differ. Lives on the
// interface thread.
class AccountSession : public CreditAccount {
    Q_OBJECT
public:
    // What the platform gives.
    struct Surroundings {
        // Gives whether a browser took the address.
        std::function<bool(const QUrl&)> openInBrowser;
        // The sign-in sheet over the window; without one, the Google sign-in goes through the
        // browser.
        WebAuthentication* webAuthentication = nullptr;
        std::chrono::milliseconds startLimit = std::chrono::seconds(8);
        std::chrono::milliseconds balanceSyncInterval = std::chrono::seconds(180);
    };

    // `api` outlives the session.
    AccountSession(AccountAPI& api, Surroundings surroundings, QObject* parent = nullptr);
    ~AccountSession() override;

    const AccountSummary& account() const { return m_account; }
    bool isLoading() const { return m_isLoading; }    // bootstrap() runs
    // An action that a screen or a link started is under way.
    bool isActing() const { return m_actions > 0 || m_isSigningInOverWindow; }
    // An action is under way, or credits are being reserved or refunded.
    bool isWorking() const { return isActing() || m_creditMoves > 0; }
    // The last sentence for the user, about charged credits too; shown as it stands.
    const QString& message() const { return m_message; }
    // The last sentence about an action that a screen or a link started. Not about charged credits:
    // the charging code tells of those elsewhere.
    const QString& outcome() const { return m_outcome; }
    // Whether outcome() says that an action failed.
    bool isProblem() const
    {
        return m_told != Told::info && (m_told != Told::signedOut || isAuthenticated());
    }
    // Whether that failure was a service that does not answer, or (needsSignIn()) a missing
    // session.
    bool isUnreachable() const { return m_told == Told::unreachable; }
    bool needsSignIn() const { return m_told == Told::signedOut; }
    const std::optional<QString>& pendingCheckoutSessionId() const { return m_pendingCheckout; }
    // The page where the pending checkout is paid, for when no browser opened it. Empty without
    // one.
    QUrl checkoutPage() const { return m_pendingCheckout ? m_checkoutPage : QUrl(); }
    const CloudCopyConfig& cloudCopyConfig() const { return m_cloudCopyConfig; }
    const QList<PurchaseHistoryItem>& purchaseHistory() const { return m_purchaseHistory; }
    // Rises by one whenever a social network was connected.
    int socialConnectionRefreshToken() const { return m_socialConnectionRefreshToken; }

    bool isAuthenticated() const { return m_account.profile.has_value(); }
    // A session is held, but the service has not said whose it is: another refresh() may sign in.
    bool mayBeSignedIn() const;
    // Where a local service shows its mails; empty for any other.
    QUrl testMailURL() const;
    bool isAdministrator() const;
    QString displayName() const;
    QString accountKey() const override;
    qint64 balance() const override { return m_account.balance; }
    bool isBalanceSyncRunning() const { return m_balanceSync.isActive(); }

    // Each returns whether it succeeded; if not, message() says why. Callers need not await them.
    QCoro::Task<bool> bootstrap();
    QCoro::Task<bool> refresh();
    QCoro::Task<bool> refreshSilently();    // leaves message() and isWorking() alone
    QCoro::Task<bool> login(const QString& email, const QString& password);
    QCoro::Task<bool> registerAccount(const QString& email, const QString& password);
    QCoro::Task<bool> requestPasswordReset(const QString& email);
    QCoro::Task<bool> logout();
    QCoro::Task<bool> updateProfile(const QString& fullName);
    QCoro::Task<bool> changePassword(const QString& currentPassword, const QString& newPassword,
                                     const QString& confirmNewPassword);
    QCoro::Task<bool> openGoogleLogin();
    QCoro::Task<bool> buyCredits(int credits);
    QCoro::Task<bool> confirmPendingCheckout();
    QCoro::Task<bool> refreshPurchaseHistory();
    QCoro::Task<bool> openPurchaseDocument(const QString& purchaseId);

    // Both report in message() alone, not in outcome(). Called by CreditJournal.
    QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId) override;
    QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId) override;

    // Opens `url` in the browser and returns whether one took it; only a failure is reported.
    bool openPage(const QUrl& url);

    // Acts on a link of the scheme "moltiva" and returns true; ignores any other link.
    bool handleDeepLink(const QUrl& url);
    void handleGoogleAuthenticationResult(const GoogleAuthenticationResult& result);

    void startBalanceSync();
    void stopBalanceSync();

private:
    enum class Told { info, problem, unreachable, signedOut };
    enum class Move { reserve, refund };    // of credits

    // Wraps each action of the user: counts it in m_actions, reports its failure and returns
    // whether it succeeded. The task that `work` returns may rely on this session to exist whenever
    // it resumes: the destructor stops its requests first.
    template <typename Work>
    QCoro::Task<bool> perform(Work work);
    QCoro::Task<> check();
    QCoro::Task<> reload(std::stop_token stop);
    QCoro::Task<> enter(QCoro::Task<AccountSummary> signingIn, QString told);
    QCoro::Task<> requestReset(QString email);
    QCoro::Task<> leave();
    QCoro::Task<> saveProfile(QString fullName);
    QCoro::Task<> savePassword(QString current, QString changed, QString confirmed);
    QCoro::Task<> startCheckout(int credits);
    QCoro::Task<> confirmCheckout(std::optional<QString> sessionId);
    QCoro::Task<> loadPurchases();
    QCoro::Task<> openDocument(QString purchaseId);
    QCoro::Task<> startGoogleLogin();
    QCoro::Task<> moveCredits(Move move, qint64 cost, QString requestId);
    QCoro::Task<> configure();

    void receive(const AccountSummary& account);
    void changeUser(const AccountSummary& account);
    void syncWhileSignedIn();
    void setAccount(const AccountSummary& account);
    void setBalance(qint64 balance);
    void tell(const QString& message, Told told = Told::info);
    static Told toldOf(const std::exception& failure);
    void openInBrowser(const QUrl& url);    // throws AccountError when it is not
    void handleAuthCallback(const QUrl& url);
    void handleSocialConnectionCallback(const QUrl& url);

    AccountAPI& m_api;
    const Surroundings m_surroundings;
    AccountSummary m_account;
    int m_accountVersion = 0;           // rises with every change: a reply from before is stale
    int m_configurationQuestion = 0;    // the number of the last request for the settings
    int m_signIn = 0;                   // rises whenever somebody signs in or out
    bool m_isLoading = false, m_isSigningInOverWindow = false;
    int m_actions = 0, m_creditMoves = 0;    // under way
    QString m_message, m_outcome;
    Told m_told = Told::info;    // the kind of m_outcome
    std::optional<QString> m_pendingCheckout;
    QUrl m_checkoutPage;
    CloudCopyConfig m_cloudCopyConfig = CloudCopyConfig::fallback();
    QList<PurchaseHistoryItem> m_purchaseHistory;
    int m_socialConnectionRefreshToken = 0;
    QTimer m_balanceSync;
    std::stop_source m_stop;    // stops all requests under way
};
