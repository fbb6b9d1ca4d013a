#pragma once
#include <QLineEdit>
#include <QWidget>

// A label that stays visible above the one line that is edited.
class TextField : public QWidget {
    Q_OBJECT
public:
    TextField(const QString& label, const QString& placeholder, QWidget* parent = nullptr);
    void setText(const QString& text);    // shows; emits nothing, and starts no edit anew
    QString text() const { return m_edit->text(); }
    QLineEdit* edit() const { return m_edit; }
    void finish();    // the edit under way counts from now on
    QSize sizeHint() const override { return {320, 44}; }

Q_SIGNALS:
    void edited(const QString& text);    // Enter, Esc or the focus left, and the text is another

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QString m_label;
    QString m_shown;    // what the owner last set or was told
    QLineEdit* m_edit;
};
