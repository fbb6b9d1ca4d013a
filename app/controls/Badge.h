#pragma once
#include "app/theme/Icons.h"

#include <QWidget>

// `accent` is for what must not be overlooked.
enum class BadgeKind { quiet, accent };

// A short word or number on a rounded background. Without a text the badge has no width and paints
// nothing.
class Badge : public QWidget {
    Q_OBJECT
public:
    explicit Badge(const QString& text = {}, QWidget* parent = nullptr);
    Badge(BadgeKind kind, Icon icon, QWidget* parent = nullptr);
    void setText(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    BadgeKind m_kind = BadgeKind::quiet;
    Icon m_icon = Icon::none;
};
