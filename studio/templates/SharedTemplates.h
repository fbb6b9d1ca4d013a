#pragma once

#include "account/AccountAPI.h"
#include "platform/Completion.h"
#include "templates/CatalogueCopy.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <exception>
#include <stop_token>

class AccountSession;

enum class CatalogueState {
    none,    // there is no copy and no service that has a catalogue
    upToDate,
    asking,
    offline,    // the service did not answer
    refused,    // it answered with an error, or not all of the catalogue could be copied
};

// The catalogue of designs that a team shares through the account service: the program's copy of
// it, and what administrators do with it. Asks the service at each sign-in. Lives on the interface
// thread.
class SharedTemplates : public QObject {
    Q_OBJECT
public:
    // The copy is in a folder of its own within `dataFolder`. `api` and `account` must outlive this
    // object.
    SharedTemplates(AccountAPI& api, AccountSession& account, const QString& dataFolder,
                    QObject* parent = nullptr);
    ~SharedTemplates() override;

    const QList<SharedDesign>& designs() const { return m_copy.designs; }
    // The ids that the team has withdrawn; designs that come with the program may be among them.
    const QSet<QUuid>& withdrawn() const { return m_copy.list.withdrawn; }
    CatalogueState state() const;
    QDateTime copied() const { return m_copy.list.copied; }    // when the service confirmed it
    // Why the copy is not what the service has, as a Spanish sentence; empty when it is.
    const QString& problem() const { return m_problem; }
    bool isAdministrator() const;
    // Whether the last thing that was asked of the service failed because it gave no answer.
    bool isUnreachable() const { return m_isUnreachable; }

    // Asks the service for what is new.
    void refresh();
    // The same, and waits until the copy is what it will be.
    QCoro::Task<> refreshed();
    // While the catalogue is looked at, the service is asked now and every 10 minutes.
    void setWatched(bool isWatched);

    // What administrators do. Each ends in a Spanish sentence about its failure, or in an empty
    // text; then the service is asked for what is new.
    QCoro::Task<QString> share(JSONVisualTemplateDefinition definition);
    QCoro::Task<QString> rename(const QString& fileName, const QString& name);
    // Takes layers and format from the definition; id, name and order remain.
    QCoro::Task<QString> replaceWith(const QString& fileName,
                                     const JSONVisualTemplateDefinition& definition);
    QCoro::Task<QString> withdraw(const QString& fileName);
    // Makes the version before the current one current; brings a withdrawn design back.
    QCoro::Task<QString> restore(const QString& fileName);

Q_SIGNALS:
    void changed();

private:
    using Self = QPointer<SharedTemplates>;
    struct Download;

    void followAccount();
    void settle(CatalogueState state, const QString& problem);
    void fail(const std::exception& error);
    QString failed(const std::exception& error);
    void show(const CatalogueCopy::Contents& contents);

    static QCoro::Task<> run(Self self);
    static QCoro::Task<> load(Self self);
    static QCoro::Task<> ask(Self self);
    // Whether the service's catalogue may have changed while it was copied.
    static QCoro::Task<bool> update(Self self, std::stop_token stop);
    static QCoro::Task<bool> copyAll(Self self, TemplateManifest manifest, std::stop_token stop);
    static QCoro::Task<> downloadNext(Self self, std::shared_ptr<Download> download);

    struct Fetched {
        QByteArray bytes;
        QString problem;
    };
    static QCoro::Task<Fetched> fetch(Self self, QString fileName,
                                      AccountAPI::SharedVersion version);
    QCoro::Task<QString> upload(const QString& fileName, const QByteArray& bytes);
    static QCoro::Task<QString> ended(Self self, QCoro::Task<> changing);
    static QCoro::Task<QString> renameFor(Self self, QString fileName, QString name);
    static QCoro::Task<QString> replaceFor(Self self, QString fileName,
                                           JSONVisualTemplateDefinition definition);
    static QCoro::Task<QString> restoreFor(Self self, QString fileName);

    AccountAPI& m_api;
    AccountSession& m_account;
    const CatalogueCopy m_disk;
    CatalogueCopy::Contents m_copy;
    bool m_isLoaded = false, m_isAsking = false, m_asksAgain = false, m_isUnreachable = false;
    CatalogueState m_state = CatalogueState::offline;    // if there is a copy
    QString m_problem;
    QString m_accountKey;    // of the account that the service was asked for
    QTimer m_timer;
    Completion m_asked;
    std::stop_source m_stop;    // stops what is asked for the copy
};
