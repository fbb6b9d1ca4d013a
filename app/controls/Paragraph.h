#pragma once
#include "app/theme/Theme.h"

#include <QStringList>
#include <QWidget>

// Breaks `text` into rows up to `width` pixels wide. After `mostRows - 1` such rows, one last row
// contains all the remaining text and may be wider.
QStringList wrappedRows(const QString& text, Type type, double width, int mostRows);

enum class Spoken { byItself, byOwner };

// Read-only text in several rows. If the text does not fit, its last row is elided and a tooltip
// shows all of it.
class Paragraph : public QWidget {
    Q_OBJECT
public:
    Paragraph(Type type, QColor Theme::*ink, const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return m_text; }
    void setInk(QColor Theme::*ink);
    // With Spoken::byOwner the paragraph has no accessible name, because the accessible name of the
    // widget around it contains the text already. Otherwise a screen reader would say it twice.
    void setSpoken(Spoken spoken);
    void setMostRows(int rows);
    void setGround(QColor Theme::*ground);    // else what is behind it shows

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
    QColor Theme::*m_ground = nullptr;
    QString m_text;
    Spoken m_spoken = Spoken::byItself;
    int m_mostRows = 8;
};
