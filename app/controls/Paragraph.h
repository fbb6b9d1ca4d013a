#pragma once
#include "app/theme/Theme.h"

#include <QStringList>
#include <QWidget>

// The rows that `text` breaks into, at most `mostRows`. The last one holds all the rest, and may be
// longer than `width`.
QStringList wrappedRows(const QString& text, Type type, double width, int mostRows);

enum class Spoken { byItself, byOwner };

// Read-only text over several rows. What does not fit is elided; a tooltip then shows all of it.
class Paragraph : public QWidget {
    Q_OBJECT
public:
    Paragraph(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    void setInk(QColor Theme::*ink);
    // Spoken::byOwner: the owner has the text as its accessible name, so that it is not heard
    // twice.
    void setSpoken(Spoken spoken);
    void setMostRows(int rows);

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
