#include "app/account/CustomAmount.h"

#include "app/controls/Button.h"
#include "app/controls/PackageCard.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/FormField.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int customAmountRowHeight = 52, customAmountSide = 16, customAmountRadio = 20,
              fieldWidth = 200;

QString customAmountHelp()
{
    return u"Entre 1.000 y 1.000.000 créditos. Se ajusta a bloques de 1.000."_s;
}

class Choice : public Control {
public:
    Choice() : Control(nullptr)
    {
        setCheckable(true);
        setAutoExclusive(true);
        setText(u"Otra cantidad"_s);
        setAccessibleName(u"Otra cantidad, mín. 1.000"_s);
        setFixedHeight(customAmountRowHeight);
        setProperty("focusRadius", Radius::card);
    }
    QSize sizeHint() const override { return {400, customAmountRowHeight}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::card,
                    isChecked() ? theme.accentSoft
                                : mixed(theme.card, theme.hover, isEnabled() ? hovered() : 0));
        strokeRounded(painter, rect(), Radius::card,
                      isChecked() && isEnabled() ? theme.accentLine : theme.line,
                      isChecked() ? 1.5 : 1);
        paintRadio(painter,
                   QRectF(customAmountSide, (height() - customAmountRadio) / 2.0, customAmountRadio,
                          customAmountRadio),
                   theme, isChecked(), isEnabled());
        double left = customAmountSide + customAmountRadio + 12;
        const QColor ink2 = isEnabled() ? theme.text2 : theme.dis;
        const double name = textWidth(Type::bodyMedium, text());
        paintText(painter, QRectF(left, 0, name + 1, height()), Qt::AlignLeft, Type::bodyMedium,
                  isEnabled() ? theme.text : theme.dis, text());
        left += name + 12;
        paintText(painter, QRectF(left, 0, 80, height()), Qt::AlignLeft, Type::small, ink2,
                  u"mín. 1.000"_s);
        if (!isChecked())    // when checked, the help is beside the field instead
            paintText(painter,
                      QRectF(left + 80, 0, width() - left - 80 - customAmountSide, height()),
                      Qt::AlignRight, Type::small, ink2, customAmountHelp());
    }
};

}    // namespace

CustomAmount::CustomAmount(QWidget* parent)
    : CardGround(Look::card, parent), m_choice(new Choice),
      m_field(new FormField(u"Cantidad personalizada"_s, FieldKind::text))
{
    m_field->setFixedWidth(fieldWidth);
    m_field->edit()->setInputMethodHints(Qt::ImhDigitsOnly);
    m_field->edit()->setAccessibleDescription(customAmountHelp());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(customAmountSide, 8, customAmountSide, 12);
    row->setSpacing(customAmountSide);
    row->addWidget(m_field);
    auto* text = new Paragraph(Type::small, &Theme::text2, customAmountHelp());
    row->addWidget(text, 1, Qt::AlignBottom);
    hide();
    connect(m_choice, &Control::toggled, this, [this](bool chosen) {
        setVisible(chosen);
        Q_EMIT changed();
    });
    connect(m_choice, &Control::clicked, this,
            [this] { m_field->edit()->setFocus(Qt::OtherFocusReason); });
    connect(m_field, &FormField::typed, this, &CustomAmount::changed);
    connect(m_field, &FormField::submitted, this, &CustomAmount::submitted);
}

bool CustomAmount::isChosen() const
{
    return m_choice->isChecked();
}
