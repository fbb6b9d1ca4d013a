#include "app/account/LoginView.h"

#include "app/account/SignInWall.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/CopyButton.h"
#include "app/controls/Grounds.h"
#include "app/controls/Mark.h"
#include "app/controls/Notice.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/FormField.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/forms/AccountForm.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int paneWidth = 544, loginColumnWidth = 400, loginMarkSide = 44, bottomMargin = 8;
// Heights of the column in pixels: when signing in without a notice; in the tallest mode with a
// notice.
constexpr int usualHeight = 536, highest = 688;

struct ModeRow {
    LoginMode mode;
    QStringView segment, explanation, action;
    Icon icon;
};
constexpr std::array modes{
    ModeRow{LoginMode::signIn, u"Acceder", u"Usa tu cuenta de Tallerio para acceder.", u"Entrar",
            Icon::signIn},
    ModeRow{LoginMode::createAccount, u"Crear cuenta", u"Usa tu cuenta de Tallerio para acceder.",
            u"Crear cuenta", Icon::createAccount},
    ModeRow{LoginMode::recover, u"Recuperar",
            u"Te enviaremos un enlace para crear una nueva contraseña. También sirve si tu cuenta "
            u"nació con Google y quieres entrar con email y contraseña.",
            u"Enviar enlace de recuperación", Icon::mail},
};
constexpr const ModeRow& row(LoginMode mode)
{
    return modes[std::size_t(mode)];
}
static_assert(std::ranges::all_of(modes, [](const auto& r) { return &row(r.mode) == &r; }));

QList<Segment> segmentsOfModes()
{
    QList<Segment> segments;
    for (const ModeRow& mode : modes)
        segments.append({.text = mode.segment.toString(), .name = mode.segment.toString()});
    return segments;
}

}    // namespace

LoginView::LoginView(QWidget* parent)
    : QWidget(parent), m_wall(new SignInWall(this)), m_column(new QWidget(this)),
      m_segments(new SegmentedControl(segmentsOfModes())),
      m_explanation(new Paragraph(Type::small, &Theme::text2)),
      m_email(new FormField(u"Email"_s, FieldKind::email, FieldSize::large, Icon::mail)),
      m_password(new FormField(u"Contraseña"_s, FieldKind::password, FieldSize::large, Icon::lock)),
      m_repeated(new FormField(u"Repetir contraseña"_s, FieldKind::password, FieldSize::large,
                               Icon::lock)),
      m_recover(new PushButton(Icon::none, u"Recuperar contraseña"_s, ButtonKind::link,
                               ButtonSize::small)),
      m_google(new PushButton(Icon::globe, u"Continuar con Google"_s, ButtonKind::neutral,
                              ButtonSize::large)),
      m_notice(new Notice(3)),
      m_retry(new PushButton(Icon::refresh, u"Reintentar"_s, ButtonKind::link, ButtonSize::small)),
      m_testMail(new PushButton(Icon::mail, u"Ver el correo de prueba"_s, ButtonKind::link,
                                ButtonSize::small)),
      m_waiting(new Caption(Type::small, &Theme::text2, {})),
      m_form(new AccountForm(m_notice, this))
{
    buildColumn();
    addFieldsToForm();
    connectActions();
    orderFocus();
    m_waiting->hide();
    setMode(LoginMode::signIn);
}

void LoginView::buildColumn()
{
    m_segments->setStretched(SegmentSize::large);
    m_recover->setFlush();
    m_recover->setFixedHeight(24);
    m_password->addToLabel(m_recover);
    m_google->setStretched();

    auto* heading = new QHBoxLayout;
    heading->setSpacing(14);
    heading->addWidget(new Mark(loginMarkSide));
    heading->addWidget(new Caption(Type::display, &Theme::text, u"Moltiva"_s), 1);
    auto* rows = new QVBoxLayout(m_column);
    // Adds a gap that shrinks if the window is too low for the column.
    const auto addGap = [rows](int height) {
        rows->addSpacerItem(new QSpacerItem(0, height, QSizePolicy::Minimum, QSizePolicy::Maximum));
    };
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addLayout(heading);
    rows->addSpacing(16);
    rows->addWidget(new Paragraph(
        Type::large, &Theme::text2,
        u"Accede con tu cuenta compartida para usar créditos, compras y generación."_s));
    addGap(28);
    rows->addWidget(m_segments);
    addGap(22);
    rows->addWidget(m_explanation);
    rows->addSpacing(16);
    auto* fields = new QVBoxLayout;
    fields->setSpacing(12);
    rows->addLayout(fields);
    for (FormField* field : {m_email, m_password, m_repeated})
        fields->addWidget(field);
    addGap(22);
    for (const ModeRow& mode : modes) {
        m_primaries.append(new PushButton(mode.icon, mode.action.toString(), ButtonKind::primary,
                                          ButtonSize::large));
        m_primaries.last()->setStretched();
        rows->addWidget(m_primaries.last());
    }
    rows->addSpacing(18);
    rows->addWidget(new Divider(u"o"_s));
    rows->addSpacing(18);
    rows->addWidget(m_google);
    rows->addSpacing(16);
    rows->addWidget(m_notice);
    for (PushButton* wayOut : {m_retry, m_testMail}) {
        wayOut->setFlush();
        rows->addWidget(wayOut, 0, Qt::AlignLeft);
    }
    rows->addWidget(m_waiting);
    rows->addStretch(1);
}

void LoginView::addFieldsToForm()
{
    m_form->add(m_primaries + QList{m_google, m_recover, m_retry, m_testMail});
    m_form->add(CheckedField::email, m_email);
    m_form->add(CheckedField::password, m_password);
    m_form->add(CheckedField::repeatedPassword, m_repeated);
    m_form->add(QList<QWidget*>{m_segments});
}

void LoginView::connectActions()
{
    for (const FormField* field : {m_email, m_password, m_repeated})
        connect(field, &FormField::submitted, this, &LoginView::send);
    for (const PushButton* primary : m_primaries)
        connect(primary, &PushButton::clicked, this, &LoginView::send);
    connect(m_retry, &PushButton::clicked, this, [this] {
        if (m_form->send(m_retry))
            Q_EMIT retryRequested();
    });
    connect(m_testMail, &PushButton::clicked, this, &LoginView::testMailRequested);
    connect(m_segments, &SegmentedControl::chosen, this, [this](int index) {
        setMode(LoginMode(index));
        if (!m_segments->hasFocus())
            focusFirst();
    });
    connect(m_recover, &PushButton::clicked, this, [this] {
        setMode(LoginMode::recover);
        focusFirst();
    });
    connect(m_google, &PushButton::clicked, this, [this] {
        if (m_form->send(m_google))
            Q_EMIT googleRequested();
    });
}

// Tab goes through the fields and the buttons that send the form, then to m_recover and the buttons
// that show a password.
void LoginView::orderFocus()
{
    QList<QWidget*> order{m_segments, m_email->edit(), m_password->edit(), m_repeated->edit()};
    order += QList<QWidget*>(m_primaries.begin(), m_primaries.end());
    order += {m_recover, m_password->edit()->eye(), m_repeated->edit()->eye()};
    order += {m_google, m_notice->copyButton(), m_retry, m_testMail};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

PushButton* LoginView::primary(LoginMode mode) const
{
    return m_primaries[int(mode)];
}

void LoginView::setAccount(const AccountShown& account)
{
    m_form->show(account);
    // Selects the refused password, so that typing replaces it.
    if (m_wasWorking && !account.isWorking && account.isProblem)
        m_password->edit()->selectAll();
    m_wasWorking = account.isWorking;
    m_mayRetry = account.mayBeSignedIn;
    m_hasTestMail = account.hasTestMail;
    showWaysOut();
}

void LoginView::showWaysOut()
{
    m_retry->setVisible(m_mayRetry && m_mode == LoginMode::signIn);
    m_testMail->setVisible(m_hasTestMail && m_mode == LoginMode::recover);
}

void LoginView::setWaitingFiles(int count)
{
    m_waiting->setText(count == 1
                           ? u"Hay 1 archivo en espera. Se abrirá cuando entres."_s
                           : u"Hay %1 archivos en espera. Se abrirán cuando entres."_s.arg(count));
    m_waiting->setVisible(count > 0);
}

void LoginView::setMode(LoginMode mode)
{
    const bool isOther = mode != m_mode;
    m_mode = mode;
    m_segments->setCurrent(int(mode));
    m_explanation->setText(row(mode).explanation.toString());
    // Hiding the focused field would let Qt move the focus to an arbitrary widget: moves it to the
    // e-mail field first.
    const bool losesFocus = (mode != LoginMode::createAccount && m_repeated->edit()->hasFocus()) ||
                            (mode == LoginMode::recover && m_password->edit()->hasFocus());
    if (losesFocus)
        m_email->edit()->setFocus(Qt::OtherFocusReason);
    m_password->setVisible(mode != LoginMode::recover);
    m_recover->setVisible(mode == LoginMode::signIn);
    m_repeated->setVisible(mode == LoginMode::createAccount);
    for (int i = 0; i < m_primaries.size(); ++i)
        m_primaries[i]->setVisible(i == int(mode));
    showWaysOut();
    if (isOther)
        m_form->clearNotice();
}

void LoginView::clearPasswords()
{
    m_password->clear();
    m_repeated->clear();
}

void LoginView::tellProblem(const QString& sentence)
{
    m_form->tellProblem(sentence);
}

void LoginView::focusFirst()
{
    QWidget* first = m_email->text().isEmpty() || m_mode == LoginMode::recover ? m_email->edit()
                                                                               : m_password->edit();
    first->setFocus(Qt::OtherFocusReason);
}

void LoginView::send()
{
    const QString email = m_email->text().trimmed();
    const QString password = m_password->text();
    const CheckResult failure = m_mode == LoginMode::signIn ? checkLogin(email, password)
                                : m_mode == LoginMode::createAccount
                                    ? checkRegistration(email, password, m_repeated->text())
                                    : checkPasswordReset(email);
    if (!m_form->accepts(failure) || !m_form->send(primary(m_mode)))
        return;
    switch (m_mode) {
    case LoginMode::signIn:
        Q_EMIT loginRequested(email, password);
        break;
    case LoginMode::createAccount:
        Q_EMIT registrationRequested(email, password);
        break;
    case LoginMode::recover:
        Q_EMIT passwordResetRequested(email);
        break;
    }
}

void LoginView::place()
{
    const int pane = std::min(width(), paneWidth);
    const int left = width() - pane;
    m_wall->setGeometry(0, 0, left, height());
    // Uses the same top in every mode: centres the form for signing in, but higher if the tallest
    // mode would not fit otherwise.
    const int top = std::max(16, std::min((height() - usualHeight) / 2, height() - highest - 24));
    m_column->setGeometry(left + (pane - loginColumnWidth) / 2, top, loginColumnWidth,
                          std::max(0, height() - top - bottomMargin));
}

void LoginView::resizeEvent(QResizeEvent*)
{
    place();
}

void LoginView::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), themeOf(this).panel);
}
