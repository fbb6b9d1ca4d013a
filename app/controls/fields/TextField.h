#pragma once
#include <QLineEdit>
#include <QWidget>

// A one-line edit below a label. Unlike a placeholder, the label is always visible.
class TextField : public QWidget {
    Q_OBJECT
public:
    TextField(const QString& label, const QString& placeholder, QWidget* parent = nullptr);
    // Emits nothing. Setting the same text again does not replace what the user has typed since.
    void setText(const QString& text);
    QString text() const { return m_edit->text(); }
    QLineEdit* edit() const { return m_edit; }
    void finish();    // ends the editing; emits edited() if the text is another
    QSize sizeHint() const override { return {320, 44}; }

Q_SIGNALS:
    void edited(const QString& text);    // editing has ended, and the text has changed

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QString m_label;
    QString m_shown;    // the text of the last setText() or edited()
    QLineEdit* m_edit;
};
