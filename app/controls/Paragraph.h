#pragma once
#include "app/Theme.h"

#include <QStringList>
#include <QWidget>

// The rows that `text` breaks into, at most `mostRows`; the last one may be longer than the width.
QStringList wrappedRows(const QString& text, Type type, double width, int mostRows);

// Text that is only read, over several rows. What finds no room is elided, and told by a tooltip.
class Paragraph : public QWidget {
    Q_OBJECT
public:
    Paragraph(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    void setInk(QColor Theme::*ink);
    void setMostRows(int rows);
    // The room of so many rows is taken with fewer as well.
    void setLeastRows(int rows);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Type m_type;
    QColor Theme::*m_ink;
    QString m_text;
    int m_mostRows = 8, m_leastRows = 1;
};
