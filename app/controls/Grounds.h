#pragma once
#include "app/theme/Theme.h"

#include <QWidget>

class QPainter;
class QRectF;
enum class Icon;

// A rounded background behind controls that belong together.
class CardGround : public QWidget {
    Q_OBJECT
public:
    enum class Look { card, accent };
    explicit CardGround(Look look = Look::card, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Look m_look;
};

// A horizontal hairline. `word`, if there is one, interrupts it in the middle.
class Divider : public QWidget {
    Q_OBJECT
public:
    explicit Divider(const QString& word = {}, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_word;
};

// The initials of a name on a disc.
class Avatar : public QWidget {
    Q_OBJECT
public:
    explicit Avatar(int side, QWidget* parent = nullptr);
    void setInitials(const QString& initials);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_initials;
};

void paintAvatar(QPainter& painter, const QRectF& box, const Theme& theme, const QString& initials);

// A widget that shows only an icon.
class IconView : public QWidget {
    Q_OBJECT
public:
    IconView(Icon icon, QColor Theme::*ink, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
    QColor Theme::*m_ink;
};

// An icon on a rounded square in a pale accent colour.
class IconTile : public QWidget {
    Q_OBJECT
public:
    IconTile(Icon icon, int side, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
};
