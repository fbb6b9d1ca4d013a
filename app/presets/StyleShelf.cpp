#include "app/presets/StyleShelf.h"

#include "app/controls/Caption.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/StyleHeader.h"
#include "app/theme/Icons.h"

#include <QHBoxLayout>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {
constexpr int columns = 4;
constexpr double tileRatio = 1.6;
}    // namespace

StyleShelf::StyleShelf(QWidget* parent)
    : QWidget(parent), m_save(new PushButton(Icon::zoomIn, u"Guardar estilo"_s, ButtonKind::link,
                                             ButtonSize::small, this)),
      m_callBack(new PushButton(Icon::undo, {}, ButtonKind::link, ButtonSize::small, this)),
      m_grid(new PresetGrid(u"Estilos guardados"_s, this)),
      m_note(new Caption(Type::small, &Theme::text3,
                         u"Guarda el estilo de un texto para usarlo en otros."_s, this))
{
    m_callBack->hide();
    m_grid->setShape(columns, tileRatio);
    auto* heading = new QHBoxLayout;
    heading->setSpacing(8);
    heading->addWidget(new Caption(Type::heading, &Theme::text, u"Estilos guardados"_s, this));
    heading->addStretch(1);
    heading->addWidget(m_save);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    rows->addLayout(heading);
    rows->addWidget(m_grid);
    rows->addWidget(m_note);
    rows->addWidget(m_callBack, 0, Qt::AlignLeft);
    connect(m_save, &PushButton::clicked, this, &StyleShelf::saveRequested);
    connect(m_callBack, &PushButton::clicked, this, &StyleShelf::callBackRequested);
    connect(m_grid, &PresetGrid::menuRequested, this, &StyleShelf::showMenu);
    connect(m_grid, &PresetGrid::scrollToRequested, this, &StyleShelf::scrollToRequested);
    connect(m_grid, &PresetGrid::removeRequested, this, &StyleShelf::removeRequested);
    setStyles({}, {}, {});
}

void StyleShelf::setStyles(const QList<Preset>& styles, const QString& refusal,
                           const QString& recoverable)
{
    m_refusal = refusal;
    m_recoverable = recoverable;
    m_grid->setPresets(styles);
    m_grid->setRefusal(refusal);
    m_note->setVisible(styles.isEmpty());
    setRefused(m_save, refusal);
    // Shows m_callBack only while there are no tiles: otherwise the menu of each tile can recover
    // the removed style.
    m_callBack->setText(u"Recuperar «%1»"_s.arg(recoverable));
    m_callBack->setShortcut({});    // setText() makes a shortcut of an ampersand in the name
    m_callBack->setAccessibleName(m_callBack->text());
    m_callBack->setVisible(styles.isEmpty() && !recoverable.isEmpty());
}

void StyleShelf::rename(QUuid id)
{
    m_grid->rename(id);
}

void StyleShelf::showMenu(QUuid id, QPoint globalPosition)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, auto act) {
        QAction* action = menu->addAction(text);
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    add(u"Renombrar"_s, [this, id] { rename(id); });
    add(u"Actualizar con este estilo"_s, [this, id] {
        Q_EMIT updateRequested(id);
    })->setEnabled(m_refusal.isEmpty());
    menu->addSeparator();
    add(u"Eliminar"_s, [this, id] { Q_EMIT removeRequested(id); });
    menu->addSeparator();
    if (!m_recoverable.isEmpty())
        add(u"Recuperar «%1»"_s.arg(inMenu(m_recoverable)), [this] { Q_EMIT callBackRequested(); });
    menu->popup(globalPosition);
}

QList<QWidget*> StyleShelf::focusOrder() const
{
    return {m_save, m_grid, m_callBack};
}

void StyleShelf::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}
