#include "app/publish/CaptionField.h"

#include "account/CreditAmounts.h"
#include "app/controls/Caption.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/publish/MenuButton.h"
#include "app/theme/Icons.h"
#include "studio/publish/PublishCaptions.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QSyntaxHighlighter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int captionLines = 5, mostCaptionLines = 6;
const QString unusedCaption = u"No se usa en stories"_s;
const QString unusedNote = u"Instagram Stories no admite texto de publicación/caption. Solo se "
                           "publicará la imagen renderizada."_s;
const QString copyName = u"Copiar texto"_s;

// Colours hashtags.
class TagInk : public QSyntaxHighlighter {
public:
    explicit TagInk(SlotEditor* editor) : QSyntaxHighlighter(editor->document()), m_editor(editor)
    {
        editor->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange)
            rehighlight();
        return QSyntaxHighlighter::eventFilter(object, event);
    }
    void highlightBlock(const QString& text) override
    {
        if (!m_editor->isEnabled())
            return;
        for (const CaptionTag& tag : hashtagsIn(text))
            setFormat(int(tag.start), int(tag.length), themeOf(m_editor).accentText);
    }

private:
    const SlotEditor* m_editor;
};

}    // namespace

// "310 / 2.200", with a sign when it is more than the network takes.
class CaptionCounter : public QWidget {
public:
    using QWidget::QWidget;
    void setCount(qsizetype count, qsizetype guide)
    {
        m_text = groupedThousands(count) + u" / "_s + groupedThousands(guide);
        m_isLong = count > guide;
        setToolTip(m_isLong ? u"Es más largo de lo que admite la red."_s : QString());
        updateGeometry();
        update();
    }
    QSize sizeHint() const override
    {
        return {qCeil(textWidth(Type::small, m_text)) + (m_isLong ? alertRoom : 0), 20};
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        if (m_isLong)
            paintIcon(painter, Icon::alert, QRectF(0, 0, 14, height()), 14, theme.warn);
        paintText(painter, QRectF(rect()).adjusted(m_isLong ? alertRoom : 0, 0, 1, 0),
                  Qt::AlignLeft, Type::small, m_isLong ? theme.warn : theme.text2, m_text,
                  Qt::ElideNone);
    }

private:
    static constexpr int alertRoom = 18;
    QString m_text;
    bool m_isLong = false;
};

// The ground around the editor.
class CaptionBox : public QWidget {
public:
    explicit CaptionBox(SlotEditor* editor) : m_editor(editor)
    {
        auto* inside = new QVBoxLayout(this);
        inside->setContentsMargins(14, 12, 14, 12);
        inside->addWidget(editor);
        setCursor(Qt::IBeamCursor);
        editor->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            update();
        return QWidget::eventFilter(object, event);
    }
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton)
            m_editor->setFocus(Qt::OtherFocusReason);
    }
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::card,
                    isEnabled() ? theme.control : mixed(theme.panel, theme.control, 0.65));
        if (m_editor->hasFocus())
            strokeRounded(painter, rect(), Radius::card, theme.accentLine, 1.5);
    }

private:
    SlotEditor* m_editor;
};

class OriginLine : public QWidget {
public:
    OriginLine() : m_text(new Caption(Type::caption, &Theme::text2))
    {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(20, 0, 0, 0);
        line->addWidget(m_text);
    }
    void setOrigin(const QString& origin)
    {
        m_text->setText(origin);
        setVisible(!origin.isEmpty());
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintIcon(painter, Icon::caption, QRectF(0, 0, 14, height()), 14, themeOf(this).text2);
    }

private:
    Caption* m_text;
};

CaptionField::CaptionField(QWidget* parent)
    : QWidget(parent), m_counter(new CaptionCounter),
      m_images(new MenuButton(u"Texto de la imagen"_s, MenuButton::Look::bare)),
      m_copy(new IconButton(Icon::copy, copyName, 28)),
      m_editor(new SlotEditor(u"Texto de la publicación"_s)), m_origin(new OriginLine),
      m_note(new Paragraph(Type::caption, &Theme::text2, unusedNote))
{
    m_editor->setStandalone(int(longestPostCaption));
    m_editor->setLines(captionLines, mostCaptionLines);
    m_box = new CaptionBox(m_editor);
    new TagInk(m_editor);    // a child of the document
    auto* heading = new QHBoxLayout;
    heading->setSpacing(Space::medium);
    heading->addWidget(new Caption(Type::heading, &Theme::text, u"Texto de la publicación"_s));
    heading->addWidget(m_counter);
    heading->addStretch(1);
    heading->addWidget(m_images);
    heading->addWidget(m_copy);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    rows->addLayout(heading);
    rows->addWidget(m_box);
    rows->addWidget(m_origin);
    rows->addWidget(m_note);
    connect(m_images, &MenuButton::menuWanted, this, &CaptionField::fillMenu);
    connect(m_copy, &IconButton::clicked, this, &CaptionField::copy);
    connect(m_editor, &SlotEditor::leaveRequested, this, &CaptionField::leaveRequested);
    connect(m_editor, &SlotEditor::edited, this, [this](const QString& text) {
        if (m_shown.isUnused || text == m_shown.text)
            return;
        m_shown.text = text;
        tellLength();
        Q_EMIT edited(text);
    });
    m_note->hide();
    m_origin->hide();
    tellLength();
}

void CaptionField::setShown(const CaptionShown& shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    m_editor->setEnabled(!shown.isUnused);
    m_box->setEnabled(!shown.isUnused);
    if (m_isTaking && !shown.isUnused)
        m_editor->replaceText(shown.text);
    else
        m_editor->setText(shown.isUnused ? unusedCaption : shown.text);
    setLocked(m_isLocked);
    m_origin->setOrigin(shown.isUnused ? QString() : shown.origin);
    m_note->setVisible(shown.isUnused);
    tellLength();
}

void CaptionField::setLocked(bool locked)
{
    m_isLocked = locked;
    const bool isFree = !locked && !m_shown.isUnused;
    m_editor->setReadOnly(!isFree || m_shown.text.size() > longestPostCaption);
    m_images->setEnabled(isFree && m_shown.hasChoices);
    m_copy->setEnabled(!m_shown.isUnused && !m_shown.text.isEmpty());
}

void CaptionField::tellLength()
{
    m_counter->setVisible(!m_shown.isUnused);
    m_counter->setCount(m_shown.text.size(), m_shown.guide);
    m_copy->setMeaning(Icon::copy, copyName);
    m_copy->setEnabled(!m_shown.isUnused && !m_shown.text.isEmpty());
    m_editor->setAccessibleDescription(
        m_shown.isUnused
            ? unusedNote
            : u"%1 de %2 caracteres. %3"_s.arg(groupedThousands(m_shown.text.size()),
                                               groupedThousands(m_shown.guide), m_shown.origin));
}

void CaptionField::fillMenu(QMenu* menu)
{
    QList<CaptionChoice> choices;
    Q_EMIT choicesWanted(&choices);
    for (const CaptionChoice& image : std::as_const(choices)) {
        const QAction* action = menu->addAction(inMenu(image.name));
        connect(action, &QAction::triggered, this, [this, id = image.item] { take(id); });
    }
}

void CaptionField::take(QUuid image)
{
    m_isTaking = true;
    Q_EMIT captionOfWanted(image);
    m_isTaking = false;
}

void CaptionField::copy()
{
    QGuiApplication::clipboard()->setText(m_shown.text);
    m_copy->setMeaning(Icon::check, u"Texto copiado"_s);
}

QList<QWidget*> CaptionField::focusOrder() const
{
    return {m_images, m_copy, m_editor};
}
