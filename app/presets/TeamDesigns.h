#pragma once
#include "templates/TemplateDefinition.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

class SharedTemplates;
enum class StatusKind;

// What administrators do with the designs of the team, told in sentences.
class TeamDesigns : public QObject {
    Q_OBJECT
public:
    // `shared` outlives this object.
    TeamDesigns(SharedTemplates& shared, QObject* parent);

    bool isAdministrator() const;
    // How many other versions of the design the service keeps.
    int keptVersions(const QString& fileName) const;

    void share(const JSONVisualTemplateDefinition& definition);
    // `name` in these functions: the present one of the design.
    void rename(const QString& fileName, const QString& newName);
    void replaceWith(const QString& fileName, const QString& name,
                     const JSONVisualTemplateDefinition& definition);
    void restore(const QString& fileName, const QString& name);
    void withdraw(const QString& fileName, const QString& name);
    // The name of the design that this object withdrew last and callBack() brings back; empty if
    // there is none.
    const QString& lastWithdrawn() const { return m_withdrawnName; }
    void callBack();

Q_SIGNALS:
    void told(const QString& sentence, StatusKind kind);
    void changed();    // what lastWithdrawn() returns

private:
    using Self = QPointer<TeamDesigns>;
    static QCoro::Task<> run(Self self, QCoro::Task<QString> work, QString done);
    static QCoro::Task<> runWithdrawing(Self self, QString fileName, QString name);
    static QCoro::Task<> runCallingBack(Self self);
    void tell(const QString& failure, const QString& done);

    SharedTemplates& m_shared;
    QString m_withdrawnFile, m_withdrawnName;
};
