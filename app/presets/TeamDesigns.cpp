#include "app/presets/TeamDesigns.h"

#include "studio/StatusLog.h"
#include "studio/templates/SharedTemplates.h"

using namespace Qt::StringLiterals;

TeamDesigns::TeamDesigns(SharedTemplates& shared, QObject* parent)
    : QObject(parent), m_shared(shared)
{
}

bool TeamDesigns::isAdministrator() const
{
    return m_shared.isAdministrator();
}

int TeamDesigns::keptVersions(const QString& fileName) const
{
    const QList<SharedDesign>& designs = m_shared.designs();
    const auto shared = std::ranges::find(designs, fileName, &SharedDesign::fileName);
    return shared == designs.end() ? 0 : shared->keptVersions;
}

void TeamDesigns::tell(const QString& failure, const QString& done)
{
    if (failure.isEmpty())
        Q_EMIT told(done, StatusKind::done);
    else
        Q_EMIT told(failure, StatusKind::warning);
}

QCoro::Task<> TeamDesigns::run(Self self, QCoro::Task<QString> work, QString done)
{
    const QString failure = co_await work;
    if (self)
        self->tell(failure, done);
}

void TeamDesigns::share(const JSONVisualTemplateDefinition& definition)
{
    Q_EMIT told(u"Compartiendo «%1» con el equipo…"_s.arg(definition.name), StatusKind::note);
    run(this, m_shared.share(definition),
        u"Plantilla «%1» compartida con el equipo."_s.arg(definition.name));
}

void TeamDesigns::rename(const QString& fileName, const QString& newName)
{
    run(this, m_shared.rename(fileName, newName),
        u"La plantilla del equipo se llama ahora «%1»."_s.arg(newName));
}

void TeamDesigns::replaceWith(const QString& fileName, const QString& name,
                              const JSONVisualTemplateDefinition& definition)
{
    Q_EMIT told(u"Sustituyendo «%1»…"_s.arg(name), StatusKind::note);
    run(this, m_shared.replaceWith(fileName, definition),
        u"Plantilla «%1» sustituida para todo el equipo. Puedes recuperar la anterior."_s.arg(
            name));
}

void TeamDesigns::restore(const QString& fileName, const QString& name)
{
    Q_EMIT told(u"Recuperando la versión anterior de «%1»…"_s.arg(name), StatusKind::note);
    run(this, m_shared.restore(fileName), u"Versión anterior de «%1» recuperada."_s.arg(name));
}

void TeamDesigns::withdraw(const QString& fileName, const QString& name)
{
    Q_EMIT told(u"Retirando «%1»…"_s.arg(name), StatusKind::note);
    runWithdrawing(this, fileName, name);
}

QCoro::Task<> TeamDesigns::runWithdrawing(Self self, QString fileName, QString name)
{
    const QString failure = co_await self->m_shared.withdraw(fileName);
    if (!self)
        co_return;
    if (failure.isEmpty()) {
        self->m_withdrawnFile = fileName;
        self->m_withdrawnName = name;
        Q_EMIT self->changed();
    }
    self->tell(failure,
               u"Plantilla «%1» retirada para todo el equipo. Puedes recuperarla."_s.arg(name));
}

void TeamDesigns::callBack()
{
    if (!m_withdrawnFile.isEmpty())
        runCallingBack(this);
}

QCoro::Task<> TeamDesigns::runCallingBack(Self self)
{
    const QString fileName = self->m_withdrawnFile, name = self->m_withdrawnName;
    const QString failure = co_await self->m_shared.restore(fileName);
    if (!self)
        co_return;
    if (failure.isEmpty() && self->m_withdrawnFile == fileName) {
        self->m_withdrawnFile.clear();
        self->m_withdrawnName.clear();
        Q_EMIT self->changed();
    }
    self->tell(failure, u"Plantilla «%1» recuperada para todo el equipo."_s.arg(name));
}
