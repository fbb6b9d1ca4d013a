#pragma once
#include <QWidget>

class IconButton;

// Which image of the batch, and the way to its neighbours.
class ViewBar : public QWidget {
    Q_OBJECT
public:
    explicit ViewBar(QWidget* parent = nullptr);
    // `current` counts from 0; without images the bar is disabled.
    void setPosition(int current, int count);
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {400, 52}; }

Q_SIGNALS:
    void previousRequested();
    void nextRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();
    double numberWidth() const;

    IconButton* m_previous;
    IconButton* m_next;
    int m_current = 0;
    int m_count = 0;
};
