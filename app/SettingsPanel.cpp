#include "app/SettingsPanel.h"

#include "app/AccountForm.h"
#include "app/controls/Caption.h"
#include "app/controls/Notice.h"
#include "app/controls/Paragraph.h"

#include <QVBoxLayout>

namespace {
constexpr int roomOfTheCross = 40;
}

SettingsPanel::SettingsPanel(const QString& title, const QString& sentence, QWidget* parent)
    : QWidget(parent), m_rows(new QVBoxLayout), m_foot(new QHBoxLayout),
      m_notice(new Notice(2, Qt::AlignVCenter)), m_form(new AccountForm(m_notice, this))
{
    setAccessibleName(title);
    m_rows->setSpacing(Space::medium);
    m_foot->setSpacing(Space::medium);
    m_foot->addWidget(m_notice, 1);
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
}

void SettingsPanel::setAccount(const AccountShown& account)
{
    m_form->show(account);
}
