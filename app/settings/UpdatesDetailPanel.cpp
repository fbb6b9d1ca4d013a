#include "app/settings/UpdatesDetailPanel.h"

#include "account/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/Grounds.h"
#include "app/desktop/AppVersion.h"
#include "app/forms/AccountForm.h"
#include "app/forms/InfoCard.h"
#include "app/theme/Icons.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QWidget* versionCard(const QString& label, Caption* version)
{
    auto* card = new CardGround;
    auto* lines = new QVBoxLayout(card);
    lines->setContentsMargins(16, 12, 16, 12);
    lines->setSpacing(2);
    lines->addWidget(new Caption(Type::small, &Theme::text2, label));
    lines->addWidget(version);
    return card;
}

}    // namespace

UpdatesDetailPanel::UpdatesDetailPanel(QWidget* parent)
    : SettingsPanel(u"Actualizaciones"_s, u"Versiones de Moltiva controladas desde Tallerio."_s,
                    parent),
      m_latest(new Caption(Type::sheetTitle, &Theme::text)),
      m_state(new InfoCard(Icon::updates, {}, {})),
      m_install(new PushButton(Icon::updates, u"Instalar actualización"_s, ButtonKind::primary)),
      m_check(new PushButton(Icon::refresh, u"Buscar actualizaciones"_s)),
      m_direct(new PushButton(Icon::openOutside, u"Descarga directa"_s))
{
    auto* versions = new QHBoxLayout;
    versions->setSpacing(Space::medium);
    versions->addWidget(
        versionCard(u"Versión instalada"_s,
                    new Caption(Type::sheetTitle, &Theme::text, AppVersion::display())));
    versions->addWidget(versionCard(u"Última versión"_s, m_latest));
    rows()->addLayout(versions);
    rows()->addWidget(m_state);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Space::small);
    for (PushButton* button : {m_install, m_check, m_direct})
        buttons->addWidget(button);
    buttons->addStretch(1);
    rows()->addSpacing(Space::hair);
    rows()->addLayout(buttons);
    rows()->addStretch(1);
    connect(m_check, &PushButton::clicked, this, [this] {
        form()->clearNotice();
        form()->attend(m_check);
        Q_EMIT checkRequested();
    });
    // Nothing installs itself: both open the download in the browser.
    for (PushButton* button : {m_install, m_direct}) {
        connect(button, &PushButton::clicked, this, [this, button] {
            form()->clearNotice();
            form()->attend(button);
            Q_EMIT downloadRequested(m_download);
        });
    }
    setLatest({}, {});
}

void UpdatesDetailPanel::tellProblem(const QString& sentence)
{
    form()->tellProblem(sentence);
}

void UpdatesDetailPanel::setLatest(const std::optional<QString>& version,
                                   const std::optional<QUrl>& download)
{
    const QString latest = shownLine(version.value_or(QString()));
    m_latest->setText(latest.isEmpty() ? u"Sin datos"_s : latest);
    const bool isNewer = AppVersion::isRemoteVersionNewer(version);
    if (latest.isEmpty())
        m_state->setTexts(u"No se sabe si hay una versión nueva"_s,
                          u"No hay datos de la última versión."_s);
    else if (isNewer)
        m_state->setTexts(u"Hay una versión nueva"_s,
                          u"Descárgala para tener las últimas mejoras."_s);
    else
        m_state->setTexts(
            u"Moltiva está al día"_s,
            u"Cuando publiques una nueva versión desde Tallerio, aparecerá aquí para descargarla."_s);
    m_install->setVisible(isNewer);
    m_download = download.value_or(QUrl());
    const bool isOffered = m_download.isValid();
    for (PushButton* button : {m_install, m_direct}) {
        button->setEnabled(isOffered);
        button->setToolTip(isOffered ? QString() : u"Tallerio no ofrece ninguna descarga ahora."_s);
    }
}

void UpdatesDetailPanel::setChecking(bool isChecking)
{
    m_check->setWorking(isChecking);
}
