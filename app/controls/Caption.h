#pragma once
#include "app/Theme.h"

#include <QWidget>

// A line of text that is only read, elided where it does not fit.
class Caption : public QWidget {
    Q_OBJECT
public:
    Caption(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Type m_type;
    QColor Theme::*m_ink;
    QString m_text;
};
