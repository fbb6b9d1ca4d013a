#include "app/settings/AppearanceDetailPanel.h"

#include "app/controls/Caption.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/theme/Theme.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QList<Segment> themeSegments()
{
    QList<Segment> segments;
    for (const ThemeChoiceRow& each : Vocabulary<ThemeChoice>::rows)
        segments.append({.text = each.title.toString(), .name = u"Tema %1"_s.arg(each.title)});
    return segments;
}

}    // namespace

AppearanceDetailPanel::AppearanceDetailPanel(QWidget* parent)
    : SettingsPanel(u"Apariencia"_s, u"Colores de la ventana. Tus publicaciones no cambian."_s,
                    parent),
      m_themes(new SegmentedControl(themeSegments())),
      m_sentence(new Paragraph(Type::small, &Theme::text2, {}))
{
    rows()->addWidget(new Caption(Type::heading, &Theme::text, u"Tema"_s));
    auto* line = new QHBoxLayout;
    line->addWidget(m_themes);
    line->addStretch(1);
    rows()->addLayout(line);
    rows()->addWidget(m_sentence);
    rows()->addStretch(1);
    connect(m_themes, &SegmentedControl::chosen, this,
            [this](int index) { Q_EMIT themeChosen(ThemeChoice(index)); });
    setTheme(ThemeChoice::dark, false);
}

void AppearanceDetailPanel::setTheme(ThemeChoice choice, bool isSchemeKnown)
{
    m_themes->setCurrent(int(choice));
    m_sentence->setText(
        choice == ThemeChoice::system && !isSchemeKnown
            ? u"Este escritorio no dice si prefiere colores claros u oscuros: se usan los oscuros."_s
            : u"Con Sistema, Moltiva cambia cuando cambia el escritorio."_s);
}
