#pragma once

#include "account/AccountRecords.h"

#include <QCoroTask>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stop_token>

class AccountAPI;
class WebAuthentication;
struct GoogleAuthenticationResult;

// The signed-in account for the whole program, and what the screens can ask of it. Every outcome
// ends in message(). Lives on the interface thread; whoever shows it looks again after changed().
class AccountSession : public QObject {
    Q_OBJECT
public:
    // What the platform gives.
    struct Surroundings {
        // Gives whether a browser took the address.
        std::function<bool(const QUrl&)> openInBrowser;
        // Signs in over the window; where there is none, Google goes through the browser.
        WebAuthentication* webAuthentication = nullptr;
        std::chrono::milliseconds startLimit = std::chrono::seconds(8);
        std::chrono::milliseconds balanceSyncInterval = std::chrono::seconds(180);
    };

    // The client outlives the session.
    AccountSession(AccountAPI& api, Surroundings surroundings, QObject* parent = nullptr);
    ~AccountSession() override;

    const AccountSummary& account() const { return m_account; }
    bool isLoading() const { return m_isLoading; }    // the check at the start runs
    bool isWorking() const { return m_actions > 0 || m_isSigningInOverWindow; }
    const QString& message() const { return m_message; }    // shown as it stands
    // Whether it tells that something could not be done.
    bool isProblem() const
    {
        return m_told != Told::info && (m_told != Told::signedOut || isAuthenticated());
    }
    // And whether that was for want of an answer of the service, or of a session.
    bool isUnreachable() const { return m_told == Told::unreachable; }
    bool needsSignIn() const { return m_told == Told::signedOut; }
    // Whether it tells of credits being reserved or given back, which whoever charges tells too.
    bool isAboutCharge() const { return m_isAboutCharge; }
    bool isOnlyCharging() const
    {
        return m_charges > 0 && m_charges == m_actions && !m_isSigningInOverWindow;
    }
    const std::optional<QString>& pendingCheckoutSessionId() const { return m_pendingCheckout; }
    // Where the pending one is paid; a browser may not have opened it. Empty without one.
    QUrl checkoutPage() const { return m_pendingCheckout ? m_checkoutPage : QUrl(); }
    const CloudCopyConfig& cloudCopyConfig() const { return m_cloudCopyConfig; }
    const QList<PurchaseHistoryItem>& purchaseHistory() const { return m_purchaseHistory; }
    // Rises by one whenever a social network was connected.
    int socialConnectionRefreshToken() const { return m_socialConnectionRefreshToken; }

    bool isAuthenticated() const { return m_account.profile.has_value(); }
    // A session is held that could not be looked up yet: another refresh() may sign in.
    bool mayBeSignedIn() const;
    // Where a local service shows its mails; empty for any other.
    QUrl testMailURL() const;
    bool isAdministrator() const;
    QString displayName() const;
    // The user at this service, the same on every run; empty when nobody is signed in.
    QString accountKey() const;
    bool isBalanceSyncRunning() const { return m_balanceSync.isActive(); }

    // Each gives whether it was done; if not, the message says why. Nobody needs to await them.
    QCoro::Task<bool> bootstrap();
    QCoro::Task<bool> refresh();
    QCoro::Task<bool> refreshSilently();    // leaves message and isWorking alone
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

    // Throw what the client throws, which is told too: who pays must know. A CreditJournal calls
    // them, for whoever charges something.
    QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId);
    QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId);
    // The same without a word.
    QCoro::Task<> refundCreditsSilently(qint64 cost, const QString& requestId);

    // In the browser; only a failure is told. Gives whether it was opened.
    bool openPage(const QUrl& url);

    // Links of the scheme "moltiva"; others are ignored. Gives whether it was one of ours.
    bool handleDeepLink(const QUrl& url);
    void handleGoogleAuthenticationResult(const GoogleAuthenticationResult& result);

    void startBalanceSync();
    void stopBalanceSync();

Q_SIGNALS:
    void changed();

private:
    enum class Told { info, problem, unreachable, signedOut };
    enum class About { account, charge };

    // The one wrapper of what users start: it marks the work and tells what failed. What `work`
    // gives is awaited; it may count on the session being there whenever it goes on.
    template <typename Work>
    QCoro::Task<> attempt(Work work, About about = About::account);
    template <typename Work>
    QCoro::Task<bool> perform(Work work);    // gives whether it was done
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
    QCoro::Task<> moveCredits(QCoro::Task<CreditOperationResponse> moving, QString told);
    QCoro::Task<> configure();

    void receive(const AccountSummary& account);
    void changeUser(const AccountSummary& account);
    void syncWhileSignedIn();
    void setAccount(const AccountSummary& account);
    void setBalance(qint64 balance);
    void tell(const QString& message, Told told = Told::info, About about = About::account);
    static Told toldOf(const std::exception& failure);
    void openInBrowser(const QUrl& url);    // throws AccountError when it is not
    void handleAuthCallback(const QUrl& url);
    void handleSocialConnectionCallback(const QUrl& url);

    AccountAPI& m_api;
    const Surroundings m_surroundings;
    AccountSummary m_account;
    int m_accountVersion = 0;    // rises with every change: what was asked before is stale then
    int m_configurationQuestion = 0;    // the number of the last one
    int m_signIn = 0;                   // rises whenever somebody signs in or out
    bool m_isLoading = false, m_isSigningInOverWindow = false;
    int m_actions = 0, m_charges = 0;    // under way; charges are actions
    QString m_message;
    Told m_told = Told::info;    // by the message
    bool m_isAboutCharge = false;
    std::optional<QString> m_pendingCheckout;
    QUrl m_checkoutPage;
    CloudCopyConfig m_cloudCopyConfig = CloudCopyConfig::fallback();
    QList<PurchaseHistoryItem> m_purchaseHistory;
    int m_socialConnectionRefreshToken = 0;
    QTimer m_balanceSync;
    std::stop_source m_stop;    // of all that is under way
};
