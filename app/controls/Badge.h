#pragma once
#include <QWidget>

// A short word or number on a quiet ground. Empty, it takes no room and paints nothing.
class Badge : public QWidget {
    Q_OBJECT
public:
    explicit Badge(const QString& text = {}, QWidget* parent = nullptr);
    void setText(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};
