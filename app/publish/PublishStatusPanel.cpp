#include "app/publish/PublishStatusPanel.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/Paragraph.h"
#include "app/controls/ProgressBar.h"
#include "app/controls/Spinner.h"
#include "app/publish/PublishTexts.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int reportSide = 14, reportTop = 11, markSide = 20, markGap = 10, checkRow = 32;

struct ReportMark {
    Icon icon;
    QColor Theme::*ink;
};

ReportMark markOf(const PublishReport& report)
{
    if (report.isPublished)
        return {Icon::done, &Theme::ok};
    switch (report.kind) {
    case StatusKind::done:
        return {Icon::done, &Theme::ok};
    case StatusKind::warning:
        return {Icon::alert, &Theme::warn};
    case StatusKind::error:
        return {Icon::alert, &Theme::err};
    case StatusKind::note:
    case StatusKind::working:
        break;
    }
    return {Icon::info, &Theme::accentText};
}

// A check: its icon, its sentence and the link to what it speaks of.
class CheckRow : public QWidget {
public:
    explicit CheckRow(const PublishCheck& check)
        : m_isWarning(check.isWarning),
          m_sentence(new Caption(Type::small, &Theme::text, check.sentence))
    {
        setFixedHeight(checkRow);
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(markSide + 6, 1, 0, 0);
        line->setSpacing(Space::medium);
        line->addWidget(m_sentence, 1);
        if (!check.link.isEmpty()) {
            link = new PushButton(Icon::none, check.link, ButtonKind::link, ButtonSize::small);
            link->setFlush();
            link->setCursor(Qt::PointingHandCursor);
            link->setFixedHeight(24);
            link->setAccessibleName(u"%1: %2"_s.arg(check.link, check.sentence));
            line->addWidget(link);
        }
        m_sentence->setAccessibleName(
            (check.isWarning ? u"Aviso: %1"_s : u"Nota: %1"_s).arg(check.sentence));
    }
    PushButton* link = nullptr;

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.fillRect(0, 0, width(), 1, theme.line);
        paintIcon(painter, m_isWarning ? Icon::alert : Icon::info, QRectF(0, 1, 18, height() - 1),
                  16, m_isWarning ? theme.warn : theme.text3);
    }

private:
    bool m_isWarning;
    Caption* m_sentence;
};

// A tick before the number of checks that found nothing.
class PassedMark : public QWidget {
public:
    PassedMark() { setFixedSize(18, 20); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintIcon(painter, Icon::check, rect(), 16, themeOf(this).ok);
    }
};

}    // namespace

PublishStatusPanel::PublishStatusPanel(QWidget* parent)
    : QWidget(parent), m_spinner(new Spinner(16, this)),
      m_sentence(new Paragraph(Type::heading, &Theme::text)),
      m_cost(new Paragraph(Type::small, &Theme::text2)),
      m_amount(new Caption(Type::small, &Theme::text2)), m_bar(new ProgressBar),
      m_stop(new PushButton(Icon::close, u"Detener"_s, ButtonKind::outlined, ButtonSize::small)),
      m_page(new PushButton(Icon::openOutside, u"Abrir la publicación"_s, ButtonKind::link,
                            ButtonSize::small)),
      m_summary(new QWidget), m_warnings(new Caption(Type::heading, &Theme::text)),
      m_passedMark(new PassedMark), m_passed(new Caption(Type::small, &Theme::text2)),
      m_rows(new QWidget)
{
    setAccessibleRole(this, QAccessible::StatusBar);
    m_bar->setAccessibleName(u"Progreso de la publicación"_s);
    m_sentence->setMostRows(4);
    m_sentence->setSpoken(Spoken::byOwner);
    m_spinner->move(reportSide + 2, reportTop + 1);
    m_page->setFlush();
    m_page->setCursor(Qt::PointingHandCursor);
    auto* sending = new QHBoxLayout;
    sending->setSpacing(Space::medium);
    sending->addWidget(m_bar, 1);
    sending->addWidget(m_amount);
    sending->addWidget(m_stop);
    auto* summary = new QHBoxLayout(m_summary);
    summary->setContentsMargins(0, 6, 0, 4);
    summary->setSpacing(4);
    summary->addWidget(m_warnings);
    summary->addStretch(1);
    summary->addWidget(m_passedMark);
    summary->addWidget(m_passed);
    auto* inside = new QVBoxLayout;
    inside->setContentsMargins(markSide + markGap, 0, 0, 0);
    inside->setSpacing(2);
    inside->addWidget(m_sentence);
    inside->addWidget(m_cost);
    inside->addLayout(sending);
    inside->addWidget(m_page, 0, Qt::AlignLeft);
    inside->addWidget(m_summary);
    auto* checks = new QVBoxLayout(m_rows);
    checks->setContentsMargins(0, 0, 0, 0);
    checks->setSpacing(0);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(reportSide, reportTop, reportSide, 9);
    rows->setSpacing(0);
    rows->addLayout(inside);
    rows->addWidget(m_rows);
    connect(m_stop, &PushButton::clicked, this, &PublishStatusPanel::stopRequested);
    connect(m_page, &PushButton::clicked, this, &PublishStatusPanel::pageRequested);
    setReport({});
}

void PublishStatusPanel::setReport(const PublishReport& report)
{
    const bool isSame = m_isSet && report.sentence == m_report.sentence;
    const bool sameChecks = m_isSet && report.checks.found == m_report.checks.found &&
                            report.checks.passed == m_report.checks.passed &&
                            report.isChecking == m_report.isChecking;
    const QWidget* focused = window()->focusWidget();
    const bool hadFocus = focused && isAncestorOf(focused);
    m_report = report;
    m_isSet = true;
    m_sentence->setText(report.sentence);
    m_sentence->setInk(!report.sending && report.kind == StatusKind::error ? &Theme::err
                                                                           : &Theme::text);
    m_cost->setText(report.cost);
    m_cost->setInk(report.isShort ? &Theme::warn : &Theme::text2);
    m_cost->setVisible(!report.cost.isEmpty() && !report.sending && !report.isPublished);
    m_spinner->setVisible(report.sending.has_value() || report.kind == StatusKind::working);
    m_bar->setVisible(report.sending.has_value());
    m_amount->setVisible(report.sending && !report.sending->amount.isEmpty());
    m_stop->setVisible(report.sending.has_value());
    if (report.sending) {
        m_bar->setValue(report.sending->fraction);
        m_amount->setText(report.sending->amount);
        m_stop->setEnabled(report.sending->canStop);
        m_stop->setToolTip(report.sending->canStop
                               ? QString()
                               : u"Ya se ha enviado entera: falta la respuesta."_s);
    }
    m_page->setVisible(report.isPublished && report.hasPage);
    if (!sameChecks)
        showChecks(report.checks, report.isChecking);
    if (!isSame) {
        if (report.kind == StatusKind::working)
            m_announcer.tellStep();
        else
            m_announcer.tellNow();
    }
    if (hadFocus && (!focused->isVisibleTo(this) || !focused->isEnabled()))
        Q_EMIT leaveRequested();
    updateGeometry();
    update();
}

void PublishStatusPanel::announce()
{
    setAccessibleName(m_report.sentence);
    setAccessibleDescription(m_report.cost);
}

void PublishStatusPanel::showChecks(const CheckedPost& checks, bool isChecking)
{
    m_links.clear();
    for (QWidget* line : std::as_const(m_lines)) {
        m_rows->layout()->removeWidget(line);
        line->hide();
        line->deleteLater();    // its link may be what called this
    }
    m_lines.clear();
    for (const PublishCheck& check : checks.found) {
        auto* line = new CheckRow(check);
        m_rows->layout()->addWidget(line);
        m_lines.append(line);
        if (!line->link)
            continue;
        connect(line->link, &PushButton::clicked, this,
                [this, check] { Q_EMIT followRequested(check); });
        setTabOrder(m_links.isEmpty() ? static_cast<QWidget*>(m_page) : m_links.last(), line->link);
        m_links.append(line->link);
    }
    m_warnings->setText(PublishTexts::warnings(checks));
    m_passedMark->setVisible(!isChecking);
    m_passed->setText(isChecking ? PublishTexts::checking() : PublishTexts::passed(checks));
    m_summary->setVisible(checks.passed > 0 || !checks.found.isEmpty());
    m_rows->setVisible(!checks.found.isEmpty());
}

QList<QWidget*> PublishStatusPanel::focusOrder() const
{
    return QList<QWidget*>{m_stop, m_page} + m_links;
}

void PublishStatusPanel::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::card, theme.card);
    strokeRounded(painter, rect(), Radius::card, theme.line);
    if (m_spinner->isVisibleTo(this))
        return;
    const ReportMark mark = markOf(m_report);
    paintIcon(painter, mark.icon, QRectF(reportSide - 1, reportTop, markSide, 18), markSide,
              theme.*mark.ink);
}
