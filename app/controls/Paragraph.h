#pragma once
#include "app/theme/Theme.h"

#include <QStringList>
#include <QWidget>

// The rows that `text` breaks into, at most `mostRows`; the last one has all the rest, and
// may be longer than the width.
QStringList wrappedRows(const QString& text, Type type, double width, int mostRows);

enum class Spoken { byItself, byOwner };

// Text that is only read, over several rows. What finds no room is elided, and told by a tooltip.
class Paragraph : public QWidget {
    Q_OBJECT
public:
    Paragraph(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    void setInk(QColor Theme::*ink);
    // By its owner, whose accessible name is the text: it is not to be heard twice.
    void setSpoken(Spoken spoken);
    void setMostRows(int rows);
    // The room of so many rows is taken with fewer as well.

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
    Spoken m_spoken = Spoken::byItself;
    int m_mostRows = 8;
};
