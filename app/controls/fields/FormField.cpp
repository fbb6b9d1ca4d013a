#include "app/controls/fields/FormField.h"

#include "app/controls/Button.h"
#include "app/controls/Caption.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int formFieldIconSide = 20, eyeSide = 28, formFieldLongestText = 2000;
struct SizeRow {
    FieldSize size;
    int height, padding, iconGap, radius;
    int icon;
};
constexpr std::array sizes{
    SizeRow{FieldSize::regular, 32, 8, 6, Radius::field, 16},
    SizeRow{FieldSize::large, 44, 12, 10, 10, 20},
};
constexpr const SizeRow& row(FieldSize size)
{
    return sizes[std::size_t(size)];
}

}    // namespace

FormEdit::FormEdit(const QString& name, FieldKind kind, FieldSize size, Icon icon, QWidget* parent)
    : QLineEdit(parent), m_kind(kind), m_size(size), m_icon(icon)
{
    setFrame(false);
    setFont(fontOf(Type::body));
    setAccessibleName(name);
    setMaxLength(formFieldLongestText);
    setFixedHeight(row(size).height);
    const int padding = row(size).padding;
    const int left = icon == Icon::none ? padding : padding + formFieldIconSide + row(size).iconGap;
    int right = padding;
    if (kind == FieldKind::password) {
        m_eye = new IconButton(Icon::visible, {}, eyeSide, this);
        m_eye->setIconSize(18);
        m_eye->setCursor(Qt::ArrowCursor);
        connect(m_eye, &IconButton::clicked, this,
                [this] { setRevealed(echoMode() == QLineEdit::Password); });
        right = eyeSide + (height() - eyeSide) / 2;
        setInputMethodHints(Qt::ImhHiddenText | Qt::ImhNoPredictiveText | Qt::ImhSensitiveData);
        setRevealed(false);
    } else if (kind == FieldKind::email) {
        setInputMethodHints(Qt::ImhEmailCharactersOnly | Qt::ImhNoAutoUppercase);
    }
    setTextMargins(left - 2, 0, right, 0);    // QLineEdit itself adds a margin of two pixels
}

void FormEdit::setLocked(bool locked)
{
    setReadOnly(locked);
    if (locked && m_eye)
        setRevealed(false);
    if (m_eye)
        m_eye->setEnabled(!locked);
    update();
}

void FormEdit::setProblem(bool problem)
{
    m_problem = problem;
    update();
}

void FormEdit::setRevealed(bool revealed)
{
    setEchoMode(revealed ? QLineEdit::Normal : QLineEdit::Password);
    const QString name = revealed ? u"Ocultar contraseña"_s : u"Mostrar contraseña"_s;
    m_eye->setMeaning(revealed ? Icon::hidden : Icon::visible, name);
    // A form may have several passwords.
    m_eye->setAccessibleName(u"%1: %2"_s.arg(name, accessibleName()));
}

// While the password is hidden, QLineEdit copies nothing, not even by selecting with the mouse, and
// undo restores no text.
void FormEdit::unseen(const std::function<void()>& handle)
{
    const EchoMode mode = echoMode();
    if (m_kind == FieldKind::password && mode != QLineEdit::Password)
        setEchoMode(QLineEdit::Password);
    handle();
    if (echoMode() != mode)
        setEchoMode(mode);
}

bool FormEdit::event(QEvent* event)
{
    // Claims these keys even while the password is hidden and QLineEdit ignores them: otherwise the
    // window would take them as its own shortcuts to undo or copy.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) ||
            key->matches(QKeySequence::Copy) || key->matches(QKeySequence::Cut)) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void FormEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        return event->ignore();
    if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo) ||
        event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Cut))
        return unseen([&] { QLineEdit::keyPressEvent(event); });
    QLineEdit::keyPressEvent(event);
}

void FormEdit::mousePressEvent(QMouseEvent* event)
{
    unseen([&] { QLineEdit::mousePressEvent(event); });
}

void FormEdit::mouseReleaseEvent(QMouseEvent* event)
{
    unseen([&] { QLineEdit::mouseReleaseEvent(event); });
}

void FormEdit::mouseDoubleClickEvent(QMouseEvent* event)
{
    unseen([&] { QLineEdit::mouseDoubleClickEvent(event); });
}

// Hides the password first, so that the context menu cannot copy it.
void FormEdit::contextMenuEvent(QContextMenuEvent* event)
{
    if (m_eye)
        setRevealed(false);
    QLineEdit::contextMenuEvent(event);
}

void FormEdit::resizeEvent(QResizeEvent* event)
{
    QLineEdit::resizeEvent(event);
    if (m_eye) {
        const int margin = (height() - eyeSide) / 2;
        m_eye->move(width() - eyeSide - margin, margin);
    }
}

void FormEdit::hideEvent(QHideEvent* event)
{
    if (m_eye)
        setRevealed(false);
    QLineEdit::hideEvent(event);
}

void FormEdit::paintEvent(QPaintEvent* event)
{
    constexpr double problemWidth = 2;    // pixels
    const Theme& theme = themeOf(this);
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const SizeRow& size = row(m_size);
        const bool lively = isEnabled() && !isReadOnly();
        fillRounded(painter, rect(), size.radius,
                    lively ? theme.control : mixed(theme.panel, theme.control, 0.65));
        if (m_problem)
            strokeRounded(painter, rect(), size.radius, theme.err, problemWidth);
        else if (m_size == FieldSize::large && !hasFocus())
            strokeRounded(painter, rect(), size.radius, theme.line2);
        if (hasFocus()) {
            const double inset = m_problem ? problemWidth : 0;
            strokeRounded(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                          size.radius - inset, theme.accentLine, 1.5);
        }
        paintIcon(painter, m_icon, QRectF(size.padding, 0, formFieldIconSide, height()), size.icon,
                  lively ? theme.text2 : theme.dis);
    }
    QLineEdit::paintEvent(event);
}

FormField::FormField(const QString& label, FieldKind kind, FieldSize size, Icon icon,
                     QWidget* parent)
    : QWidget(parent), m_edit(new FormEdit(label, kind, size, icon, this)),
      m_labelRow(new QWidget(this))
{
    auto* labels = new QHBoxLayout(m_labelRow);
    labels->setContentsMargins(0, 0, 0, 0);
    m_labelRow->setFixedHeight(size == FieldSize::large ? 24 : 20);
    labels->addWidget(new Caption(Type::small, &Theme::text2, label), 1);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(4);
    rows->addWidget(m_labelRow);
    rows->addWidget(m_edit);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(m_edit, &QLineEdit::textEdited, this, [this] {
        m_edit->setProblem(false);
        Q_EMIT typed();
    });
    connect(m_edit, &QLineEdit::returnPressed, this, [this] {
        if (!m_edit->isReadOnly())
            Q_EMIT submitted();
    });
}

void FormField::addToLabel(QWidget* widget)
{
    m_labelRow->layout()->addWidget(widget);
}

void FormField::setShown(const QString& text)
{
    if (text == m_shown)
        return;
    m_shown = text;
    if (m_edit->isModified() && m_edit->text() != text)
        return;
    setSaved();
}

void FormField::setSaved()
{
    m_edit->setText(m_shown);    // setText() also resets isModified()
    m_edit->setCursorPosition(0);
}

void FormField::clear()
{
    m_edit->clear();
    m_edit->setModified(false);
    m_edit->setProblem(false);
}
