#include "app/account/UserAccountButton.h"

#include "account/AccountTexts.h"
#include "app/controls/Grounds.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int accountBarHeight = 40, accountPadding = 6, accountAvatarSide = 28, accountGap = 9,
              chevron = 16, widestName = 150;
constexpr int accountLeastDigits = 4, accountCoin = 12, accountCoinGap = 4;
constexpr int loneCoin = 14;    // beside a balance without a name
}    // namespace

UserAccountButton::UserAccountButton(QWidget* parent) : Control(parent)
{
    setProperty("focusRadius", Radius::button);
    setAccount({}, 0);
}

void UserAccountButton::setAccount(const QString& name, qint64 balance)
{
    const int before = sizeHint().width();
    m_name = shownLine(name);
    m_balance = balance;
    const QString spoken = u"Cuenta, %1, %2"_s.arg(m_name, creditsText(balance));
    if (spoken == accessibleName())
        return;
    setAccessibleName(spoken);
    setToolTip(plainToolTip(m_name));
    if (sizeHint().width() != before)
        Q_EMIT widthChanged();
    update();
}

void UserAccountButton::setNameForm(NameForm form)
{
    m_form = form;
    update();
}

QString UserAccountButton::shownName() const
{
    return m_form == NameForm::first ? firstNameOf(m_name) : m_name;
}

// Reserves width for any balance with as many digits as m_balance, so that the top bar does not
// move when credits are spent.
double UserAccountButton::textRoom() const
{
    const int digits = int(QString::number(m_balance).size());
    if (m_form == NameForm::none)
        return std::ceil(loneCoin + accountCoinGap +
                         digitsWidth(Type::bodyMedium, std::max(accountLeastDigits, digits))) +
               1;
    const double balance = accountCoin + accountCoinGap +
                           digitsWidth(Type::caption, std::max(accountLeastDigits, digits)) +
                           textWidth(Type::caption, u" créditos"_s);
    const double name = std::min(double(widestName), textWidth(Type::heading, shownName()));
    return std::ceil(std::max(balance, name)) + 1;
}

QSize UserAccountButton::sizeHint() const
{
    return {2 * accountPadding + accountAvatarSide + accountGap + int(textRoom()) + accountGap +
                chevron,
            accountBarHeight};
}

void UserAccountButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::button,
                isDown() ? theme.seg : withOpacity(theme.hover, hovered()));
    const double top = (height() - accountAvatarSide) / 2.0;
    paintAvatar(painter, QRectF(accountPadding, top, accountAvatarSide, accountAvatarSide), theme,
                initialsOf(m_name));
    const QRectF text(accountPadding + accountAvatarSide + accountGap, 0, textRoom(), height());
    if (m_form == NameForm::none) {
        paintIcon(painter, Icon::coin, QRectF(text.left(), 0, loneCoin, height()), loneCoin,
                  theme.text);
        paintText(painter, text.adjusted(loneCoin + accountCoinGap, 0, 0, 0), Qt::AlignLeft,
                  Type::bodyMedium, theme.text, QString::number(m_balance));
    } else {
        paintText(painter, QRectF(text.left(), 4, text.width(), 17), Qt::AlignLeft, Type::heading,
                  theme.text, shownName());
        paintIcon(painter, Icon::coin, QRectF(text.left(), 22, accountCoin, accountCoin),
                  accountCoin, theme.accentText);
        const double left = text.left() + accountCoin + accountCoinGap;
        paintText(painter, QRectF(left, 21, text.right() - left, 14), Qt::AlignLeft, Type::caption,
                  theme.text2, creditsText(m_balance));
    }
    paintIcon(painter, Icon::unfold,
              QRectF(width() - accountPadding - chevron, 0, chevron, height()), chevron,
              mixed(theme.text2, theme.text, hovered()));
}
