#include "app/forms/SettingsPanel.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Caption.h"
#include "app/controls/Notice.h"
#include "app/controls/Paragraph.h"
#include "app/forms/AccountForm.h"

#include <QVBoxLayout>

namespace {
constexpr int roomOfTheCross = 40;
}

SettingsPanel::SettingsPanel(const QString& title, const QString& sentence, QWidget* parent)
    : QWidget(parent), m_rows(new QVBoxLayout), m_foot(new QHBoxLayout),
      m_footNotice(new QVBoxLayout), m_notice(new Notice(2, Qt::AlignVCenter)),
      m_form(new AccountForm(m_notice, this))
{
    setAccessibleRole(this, QAccessible::Grouping);
    setAccessibleName(title);
    m_rows->setSpacing(Space::medium);
    m_foot->setSpacing(Space::medium);
    auto* place = new QWidget;    // reserves space in the foot while the notice is elsewhere
    place->setMinimumHeight(m_notice->minimumHeight());
    place->setLayout(m_footNotice);
    m_footNotice->setContentsMargins(0, 0, 0, 0);
    m_foot->addWidget(place, 1);
    bringNoticeHome();
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    auto* heading = new QVBoxLayout;
    heading->setContentsMargins(0, 0, roomOfTheCross, 0);
    heading->setSpacing(2);
    heading->addWidget(new Caption(Type::panelTitle, &Theme::text, title));
    heading->addWidget(new Paragraph(Type::body, &Theme::text2, sentence));
    page->addLayout(heading);
    page->addSpacing(Space::column + 2);
    page->addLayout(m_rows, 1);
    page->addSpacing(Space::small);
    page->addLayout(m_foot);
    connect(m_form, &AccountForm::attended, this, &SettingsPanel::standAt);
    connect(m_form, &AccountForm::told, this,
            [this] { m_notice->setVisible(!m_notice->text().isEmpty()); });
}

void SettingsPanel::bringNoticeHome()
{
    m_notice->standIn(m_footNotice);
}

void SettingsPanel::standAt(QWidget* control)
{
    if (!control || m_foot->indexOf(control) >= 0)
        bringNoticeHome();
    else
        m_notice->standBelow(control);
}

void SettingsPanel::setAccount(const AccountShown& account)
{
    m_form->show(account);
}
