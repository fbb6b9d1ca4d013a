#include "app/TemplatesPanel.h"

#include "app/EmptyNote.h"
#include "app/PanelLayout.h"
#include "app/controls/Button.h"
#include "app/controls/LineField.h"

using namespace Qt::StringLiterals;

TemplatesPanel::TemplatesPanel(QWidget* parent)
    : QWidget(parent),
      m_search(new LineField(u"Buscar plantilla"_s, u"Buscar plantilla"_s, Icon::search, this)),
      m_save(new PushButton(Icon::saveTemplate, u"Guardar plantilla"_s, ButtonKind::neutral,
                            ButtonSize::small, this))
{
    m_search->setEnabled(false);
    m_save->setEnabled(false);
    auto* layout = new PanelLayout(this);
    layout->addRow({m_search, m_save}, 4);
    layout->addWidget(new EmptyNote(Icon::templates, {},
                                    u"Guarda esta composición para reutilizarla en otras fotos."_s,
                                    this),
                      1);
}

QList<QWidget*> TemplatesPanel::focusOrder() const
{
    return {m_search, m_save};
}
