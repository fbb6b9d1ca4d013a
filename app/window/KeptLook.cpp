#include "app/window/KeptLook.h"

#include "app/batch/BatchColumn.h"
#include "app/layers/SidePanel.h"
#include "app/window/StudioShell.h"
#include "platform/PreferencesStore.h"

#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

const QString batchWidthKey = u"moltiva.batchColumnWidth"_s;
const QString panelWidthKey = u"moltiva.sidePanelWidth"_s;
const QString batchHiddenKey = u"moltiva.batchColumnHidden"_s;
const QString panelHiddenKey = u"moltiva.sidePanelHidden"_s;
const QString geometryKey = u"moltiva.windowGeometry"_s;
const QByteArray hiddenName = "yes", seenName = "no";

}    // namespace

QRect broughtOnto(const QList<QRect>& screens, const QRect& window, int title)
{
    QRegion hidden(window);
    QRect best = screens.value(0);
    qint64 most = 0;    // pixels
    for (const QRect& screen : screens) {
        const QRect seen = screen & window;
        const qint64 area = qint64(seen.width()) * seen.height();
        if (area > most) {
            best = screen;
            most = area;
        }
        hidden -= screen;
    }
    if (best.isEmpty() || hidden.isEmpty())
        return window;
    best.setTop(best.top() + title);
    QRect whole(window.topLeft(), window.size().boundedTo(best.size()));
    whole.moveLeft(std::clamp(whole.x(), best.x(), best.x() + best.width() - whole.width()));
    whole.moveTop(std::clamp(whole.y(), best.y(), best.y() + best.height() - whole.height()));
    return whole;
}

KeptLook::KeptLook(StudioShell* shell, PreferencesStore& preferences, QWidget* window)
    : QObject(window), m_shell(shell), m_preferences(preferences), m_window(window)
{
    connect(shell, &StudioShell::batchWidthDragged, this, [this](int width) {
        m_preferences.setValue(batchWidthKey, QByteArray::number(width));
    });
    connect(shell, &StudioShell::panelWidthDragged, this, [this](int width) {
        m_preferences.setValue(panelWidthKey, QByteArray::number(width));
    });
}

void KeptLook::restore()
{
    const auto number = [this](const QString& key) -> std::optional<int> {
        const auto stored = m_preferences.value(key);
        return stored && stored->toInt() > 0 ? std::optional(stored->toInt()) : std::nullopt;
    };
    m_shell->setBatchWidth(number(batchWidthKey));
    m_shell->setPanelWidth(number(panelWidthKey));
    setBatchColumnSeen(m_preferences.value(batchHiddenKey) != hiddenName);
    setSidePanelSeen(m_preferences.value(panelHiddenKey) != hiddenName);
    const auto geometry = m_preferences.value(geometryKey);
    if (!geometry || !m_window->restoreGeometry(*geometry))
        return;
    if (m_window->windowState().testAnyFlags(Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    // Qt is content if a part of the window can be seen.
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    const int title = m_window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    m_window->setGeometry(broughtOnto(screens, m_window->geometry(), title));
}

void KeptLook::keepGeometry()
{
    m_preferences.setValue(geometryKey, m_window->saveGeometry());
}

bool KeptLook::isBatchColumnSeen() const
{
    return !m_shell->batchColumn()->isHidden();
}

void KeptLook::setBatchColumnSeen(bool seen)
{
    m_shell->setBatchVisible(seen);
    m_preferences.setValue(batchHiddenKey, seen ? seenName : hiddenName);
    Q_EMIT changed();
}

bool KeptLook::isSidePanelSeen() const
{
    return !m_shell->sidePanel()->isHidden();
}

void KeptLook::setSidePanelSeen(bool seen)
{
    m_shell->setPanelVisible(seen);
    m_preferences.setValue(panelHiddenKey, seen ? seenName : hiddenName);
    Q_EMIT changed();
}

void KeptLook::showTab(SideTab tab)
{
    if (!isSidePanelSeen())
        setSidePanelSeen(true);
    m_shell->sidePanel()->setTab(tab);
}
