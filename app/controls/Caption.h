#pragma once
#include "app/theme/Theme.h"

#include <QWidget>

// One line of read-only text. If the text does not fit, it is elided and a tooltip shows all of it.
class Caption : public QWidget {
    Q_OBJECT
public:
    Caption(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    void setAlignment(Qt::Alignment alignment);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Type m_type;
    QColor Theme::*m_ink;
    QString m_text;
    Qt::Alignment m_alignment = Qt::AlignLeft;
};
