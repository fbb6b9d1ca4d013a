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

enum class LinkAnswer { changeAccount, keepAccount };

// The signed-in account and the actions that the screens offer on it. message() tells the user
// about their results. Emits changed() whenever a screen may have to be updated. Lives on the
// interface thread.
class AccountSession : public CreditAccount {
    Q_OBJECT
public:
    struct Surroundings {
        // Opens the address in a browser; returns whether that worked.
        std::function<bool(const QUrl&)> openInBrowser;
        // Shows the Google sign-in over the program's window. Null where the platform has no such
        // thing: then the browser shows it.
        WebAuthentication* webAuthentication = nullptr;
        std::chrono::milliseconds startLimit = std::chrono::seconds(8);
        std::chrono::milliseconds balanceSyncInterval = std::chrono::seconds(180);
    };

    // `api` must outlive the session.
    AccountSession(AccountAPI& api, Surroundings surroundings, QObject* parent = nullptr);
    ~AccountSession() override;

    const AccountSummary& account() const { return m_account; }
    bool isLoading() const { return m_isLoading; }    // bootstrap() is running
    // Whether an action that a screen or a link started is running.
    bool isActing() const { return m_actions > 0 || m_isSigningInOverWindow; }
    // Whether an action is running, or credits are being reserved or refunded.
    bool isWorking() const { return isActing() || m_creditMoves > 0; }
    // The last sentence for the user: about an action, or about credits reserved or refunded.
    const QString& message() const { return m_message; }
    // The last sentence about an action that a screen or a link started. Leaves out those about
    // credits reserved or refunded, which the code that charges them reports itself.
    const QString& outcome() const { return m_outcome; }
    // How many outcomes there have been: two in succession may read the same.
    int outcomes() const { return m_outcomes; }
    // Whether outcome() reports a failure. While nobody is signed in, a required sign-in does not
    // count as one.
    bool isProblem() const
    {
        return m_told != Told::info && (m_told != Told::signedOut || isAuthenticated());
    }
    // These two tell why the action of outcome() failed: the service did not answer, or it requires
    // a sign-in.
    bool isUnreachable() const { return m_told == Told::unreachable; }
    bool needsSignIn() const { return m_told == Told::signedOut; }
    const std::optional<QString>& pendingCheckoutSessionId() const { return m_pendingCheckout; }
    // The web page on which to pay the pending checkout, in case no browser opened it. Empty
    // without a pending checkout.
    QUrl checkoutPage() const { return m_pendingCheckout ? m_checkoutPage : QUrl(); }
    const CloudCopyConfig& cloudCopyConfig() const { return m_cloudCopyConfig; }
    // Rises whenever the service has sent its settings.
    int configurationVersion() const { return m_configurationVersion; }
    const QList<PurchaseHistoryItem>& purchaseHistory() const { return m_purchaseHistory; }
    // Rises by one whenever a social network was connected.
    int socialConnectionRefreshToken() const { return m_socialConnectionRefreshToken; }

    bool isAuthenticated() const { return m_account.profile.has_value(); }
    // Whether there is a session cookie that the service has not confirmed yet: refresh() may still
    // sign in.
    bool mayBeSignedIn() const;
    // The page on which the local service shows its mails; empty for any other service.
    QUrl testMailURL() const;
    bool isAdministrator() const;
    QString displayName() const;
    QString accountKey() const override;
    qint64 balance() const override { return m_account.balance; }
    bool isBalanceSyncRunning() const { return m_balanceSync.isActive(); }

    // Each returns whether it succeeded; if not, message() says why. Callers need not await them.
    QCoro::Task<bool> bootstrap();
    QCoro::Task<bool> refresh();
    QCoro::Task<bool> refreshSilently();    // does not change message() or isWorking()
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

    // Both change message(), but not outcome(). Called by CreditJournal.
    QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId) override;
    QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId) override;

    // Opens `url` in a browser and returns whether that worked; message() tells only of a failure.
    bool openPage(const QUrl& url);

    // Whether handleDeepLink() acts on the link.
    static bool isDeepLink(const QUrl& url);
    // Acts on a link of the scheme "moltiva" and returns true; ignores any other link. Links are
    // acted on in their order, after the first bootstrap() and after a sign-in that is under way.
    // Anybody can make a link: one that would replace the signed-in account is only acted on once
    // the user agrees, unless openGoogleLogin() awaits it.
    bool handleDeepLink(const QUrl& url);
    // Whether a link awaits answerLink(), because it would replace the signed-in account.
    bool asksToChangeAccount() const { return m_askedToken.has_value(); }
    void answerLink(LinkAnswer answer);
    // Posts the notification with which handleGoogleAuthenticationResult() gets the result.
    static void postGoogleAuthenticationResult(const GoogleAuthenticationResult& result);
    void handleGoogleAuthenticationResult(const GoogleAuthenticationResult& result);

    // Asks for the settings of the service and for the newest version. Returns why that failed, for
    // the user, and then keeps the settings; empty if cloudCopyConfig() has just come.
    QCoro::Task<QString> refreshConfiguration();

    void startBalanceSync();
    void stopBalanceSync();

private:
    enum class Told { info, problem, unreachable, signedOut };
    enum class Move { reserve, refund };              // what moveCredits() does
    enum class WithoutReply { keep, useFallback };    // what becomes of the settings

    // Runs an action of the user: counts it in m_actions, reports its failure and returns whether
    // it succeeded. The coroutine of `work` may use `this` whenever it resumes after a request: the
    // destructor stops the requests before the members are destroyed.
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
    QCoro::Task<QString> askConfiguration(WithoutReply withoutReply);

    void receive(const AccountSummary& account);
    void changeUser(const AccountSummary& account);
    void syncWhileSignedIn();
    void setAccount(const AccountSummary& account);
    void setBalance(qint64 balance);
    void tell(const QString& message, Told told = Told::info);
    static Told toldOf(const std::exception& failure);
    void openInBrowser(const QUrl& url);    // throws AccountError on failure
    void actOnLinks();
    void actOnLinksLater();
    void handleAuthCallback(const QUrl& url);
    void exchange(const QString& token);
    void handleSocialConnectionCallback(const QUrl& url);

    AccountAPI& m_api;
    const Surroundings m_surroundings;
    AccountSummary m_account;
    int m_accountVersion = 0;    // rises with every change; replies to earlier requests are stale
    // Numbers of the last request for m_cloudCopyConfig, and of that whose reply it is.
    int m_configurationQuestion = 0, m_configurationVersion = 0;
    int m_signIn = 0;    // rises whenever somebody signs in or out
    bool m_isLoading = false, m_isSigningInOverWindow = false;
    bool m_isChecked = false;               // bootstrap() has ended
    bool m_isGoogleLoginPending = false;    // openGoogleLogin() awaits its link
    int m_signInsUnderWay = 0;
    QList<QUrl> m_links;    // received, but not acted on yet
    std::optional<QString> m_askedToken;
    int m_actions = 0, m_creditMoves = 0;    // number under way
    QString m_message, m_outcome;
    int m_outcomes = 0;
    Told m_told = Told::info;    // kind of m_outcome
    std::optional<QString> m_pendingCheckout;
    QUrl m_checkoutPage;
    CloudCopyConfig m_cloudCopyConfig = CloudCopyConfig::fallback();
    QList<PurchaseHistoryItem> m_purchaseHistory;
    int m_socialConnectionRefreshToken = 0;
    QTimer m_balanceSync;
    std::stop_source m_stop;    // stops all requests under way
};
