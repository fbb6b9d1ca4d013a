#include "app/UserAccountButton.h"

#include "app/AccountTexts.h"
#include "app/controls/Grounds.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int barHeight = 40, padding = 6, avatarSide = 28, gap = 9, chevron = 16, widestName = 150;
constexpr int leastDigits = 4, coin = 12, coinGap = 4;
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

// Wide enough for every balance of as many digits, so that spending moves nothing.
double UserAccountButton::textRoom() const
{
    const int digits = int(QString::number(m_balance).size());
    const double balance = coin + coinGap +
                           digitsWidth(Type::caption, std::max(leastDigits, digits)) +
                           textWidth(Type::caption, u" créditos"_s);
    const double name = std::min(double(widestName), textWidth(Type::heading, shownName()));
    return std::ceil(std::max(balance, name)) + 1;
}

QSize UserAccountButton::sizeHint() const
{
    return {2 * padding + avatarSide + gap + int(textRoom()) + gap + chevron, barHeight};
}

void UserAccountButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::button,
                isDown() ? theme.seg : withOpacity(theme.hover, hovered()));
    const double top = (height() - avatarSide) / 2.0;
    paintAvatar(painter, QRectF(padding, top, avatarSide, avatarSide), theme, initialsOf(m_name));
    const QRectF text(padding + avatarSide + gap, 0, textRoom(), height());
    paintText(painter, QRectF(text.left(), 4, text.width(), 17), Qt::AlignLeft, Type::heading,
              theme.text, shownName());
    paintIcon(painter, Icon::coin, QRectF(text.left(), 22, coin, coin), coin, theme.accentText);
    const double left = text.left() + coin + coinGap;
    paintText(painter, QRectF(left, 21, text.right() - left, 14), Qt::AlignLeft, Type::caption,
              theme.text2, creditsText(m_balance));
    paintIcon(painter, Icon::unfold, QRectF(width() - padding - chevron, 0, chevron, height()),
              chevron, mixed(theme.text2, theme.text, hovered()));
}
